// Frames: loading, twice into the same frame, and everything that can be asked of what was loaded.

#include "fuzz.h"

#include <pylon/media/audioutils.h>
#include <pylon/media/image.h>
#include <pylon/media/imageheader.h>

#include <stdexcept>

using namespace pylon;

namespace {

// Keeps results from being optimised away.
volatile std::size_t sink = 0;

template <typename... Values>
void use(const Values&... values) {
    sink = sink + (sizeof(values) + ... + 0);
}

void readFields(const Image& frame) {
    use(frame.time(), frame.id(), frame.ServerUid(), frame.serverId(), frame.sortId(),
        frame.streamId(), frame.channel(), frame.cameraId(), frame.trackId(), frame.rate(),
        frame.type(), frame.flags(), frame.iframe(), frame.isRecording(), frame.isEncrypted(),
        frame.receivedEncrypted(), frame.authenticationState(), frame.isNull(), frame.totalSize(),
        frame.linkedStreamNextTimeStamp(), frame.elapsedUSecsSinceImageLoad());
    FUZZ_CHECK(frame.imageSize() == frame.payloadSize());
    FUZZ_CHECK(frame.payloadSize() == static_cast<quint32>(frame.payload().size()));
    for (int slot = 0; slot <= imageHeaderExtensionCount; ++slot)
        use(frame.extension(static_cast<ImageHeaderExtension>(slot)));
    use(frame.cameraName(), frame.serverName(), frame.isHidden(), frame.isDewarping(),
        frame.linkedAudioCameraID(), frame.attachedData());
}

void readTimes(const Image& frame) {
    const TimeZone zone = frame.timeZone();
    const QString format = QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz");
    use(frame.timestampMSec(), frame.timeZoneOffset(), frame.timeZoneName(), zone);
    use(frame.frameQTimeZone().isValid(), frame.qDateTimeServerTimeZone().toString(format));
    use(frame.dateTime("hh:mm:ss"), frame.qDateTime(zone), frame.dateTime(zone, format));
    use(Image::dateTime(zone, static_cast<quint64>(frame.time()), "hh"));
    use(frame.toString(), frame.idToString());
}

void convert(const Image& frame) {
    const ImageHeader header(frame);
    use(header.isNewKeyRequired(), AudioUtils::audioFormatName(frame));
    use(AudioUtils::duration_thrifties(frame), AudioUtils::decode(1, frame).payloadSize());
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
            readFields(frame);
            readTimes(frame);
            convert(frame);
        } catch (const std::runtime_error&) {
        }
    }
    return 0;
}
