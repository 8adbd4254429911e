// Speech: the input as codes of either law, and as linear samples.

#include "fuzz.h"

#include <pylon/media/audioutils.h>

using namespace pylon;

static QByteArray decoded(AudioSubTypes subType, const QByteArray& codes, int target) {
    Image frame;
    frame.setType('a');
    frame.setFlags(static_cast<quint8>(subType));
    frame.setPayload(codes);
    return AudioUtils::decode(target, frame).payload();
}

void fuzz(const QByteArray& input) {
    for (const AudioSubTypes law : {AudioG711U, AudioG711A}) {
        // Of the two codes of mu-law for 0, one is never written.
        QByteArray codes = input;
        if (law == AudioG711U)
            codes.replace('\x7f', '\xff');
        FUZZ_CHECK(AudioUtils::encode(law, decoded(law, codes, Audio16B8KHZ)) == codes);

        codes = AudioUtils::encode(law, input);
        FUZZ_CHECK(decoded(law, codes, Audio16B16KHZ).size() == input.size() / 2 * 4);
    }
    decoded(AudioG726X32, input, Audio16B16KHZ);
}
