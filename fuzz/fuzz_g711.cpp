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

static void fuzz(AudioSubTypes subType, const QByteArray& bytes) {
    // Of the two codes of mu-law for 0, one is never written.
    QByteArray codes = bytes;
    if (subType == AudioG711U)
        codes.replace('\x7f', '\xff');
    FUZZ_CHECK(decoded(subType, codes, Audio16B8KHZ).size() == 2 * codes.size());
    FUZZ_CHECK(AudioUtils::encode(subType, decoded(subType, codes, Audio16B8KHZ)) == codes);

    const QByteArray compressed = AudioUtils::encode(subType, bytes);
    FUZZ_CHECK(compressed.size() == bytes.size() / 2);
    FUZZ_CHECK(decoded(subType, compressed, Audio16B16KHZ).size() == 4 * compressed.size());
    for (int target = -1; target < 6; ++target)
        decoded(AudioG726X32, bytes, target);
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz(AudioG711U, bytesOf(data, size));
    fuzz(AudioG711A, bytesOf(data, size));
    return 0;
}
