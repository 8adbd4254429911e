// Frames: loading, twice into the same frame, and everything that interprets what was loaded.

#include "fuzz.h"

#include <pylon/media/audioutils.h>
#include <pylon/media/image.h>
#include <pylon/media/imageheader.h>

#include <stdexcept>

using namespace pylon;

namespace {

void interpret(const Image& frame) {
    FUZZ_CHECK(frame.imageSize() == frame.payloadSize());
    FUZZ_CHECK(frame.payloadSize() == static_cast<quint32>(frame.payload().size()));
    for (int slot = 0; slot <= imageHeaderExtensionCount; ++slot)
        frame.extension(static_cast<ImageHeaderExtension>(slot));
    frame.toString();
    frame.idToString();
    frame.linkedAudioCameraID();
    frame.dateTime("hh:mm:ss");
    frame.dateTime(frame.timeZone(), frame.qDateTimeServerTimeZone().toString());
    AudioUtils::audioFormatName(frame);
    AudioUtils::duration_thrifties(AudioUtils::decode(1, frame));
}

void writeAgain(const Image& frame) {
    Image clone = frame.clone();
    clone.setHiddenFlag(!clone.isHidden());
    QByteArray written;
    clone.generateNetworkImage(written, ImageHeaderVersion::V4);
    FUZZ_CHECK(Image(written).payload() == frame.payload());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Image frame;
    for (int round = 0; round < 2; ++round) {
        try {
            frame.loadFromData(bytesOf(data, size));
            interpret(frame);
            writeAgain(frame);
        } catch (const std::runtime_error&) {
        }
    }
    return 0;
}
