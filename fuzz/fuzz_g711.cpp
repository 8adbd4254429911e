// Speech: the input as codes of either law, and as linear samples.

#include "fuzz.h"

#include <pylon/media/audioutils.h>

using namespace pylon;

namespace {

Image audioFrame(AudioSubTypes subType, const QByteArray& payload) {
    Image frame;
    frame.setType('a');
    frame.setFlags(static_cast<quint8>(subType));
    frame.setPayload(payload);
    return frame;
}

QByteArray expanded(AudioSubTypes subType, const QByteArray& codes) {
    return AudioUtils::decode(audioFrame(subType, codes)).payload();
}

void fuzz(AudioSubTypes subType, const QByteArray& bytes) {
    // Of the two codes of mu-law for 0, one is never written.
    QByteArray codes = bytes;
    if (subType == AudioG711U)
        codes.replace('\x7f', '\xff');
    FUZZ_CHECK(expanded(subType, codes).size() == 2 * codes.size());
    FUZZ_CHECK(AudioUtils::encode(subType, expanded(subType, codes)) == codes);

    const QByteArray compressed = AudioUtils::encode(subType, bytes);
    FUZZ_CHECK(compressed.size() == bytes.size() / 2);
    const Image doubled = AudioUtils::decode(Audio16B16KHZ, audioFrame(subType, compressed));
    FUZZ_CHECK(doubled.payload().size() == 4 * compressed.size());
    for (int target = -1; target < 6; ++target)
        AudioUtils::decode(target, audioFrame(AudioG726X32, bytes));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz(AudioG711U, bytesOf(data, size));
    fuzz(AudioG711A, bytesOf(data, size));
    return 0;
}
