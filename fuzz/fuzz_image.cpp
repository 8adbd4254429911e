// Frames: the header alone, which is written again and parses to the same header, then the frame,
// loaded twice into the same record, and everything that interprets what was loaded.

#include "fuzz.h"

#include <pylon/media/audioutils.h>
#include <pylon/media/image.h>
#include <pylon/media/imageheader.h>
#include <pylon/media/lyraimageheaderparserv4.h>

#include <stdexcept>

using namespace pylon;

namespace {

// The texts as they read back. One that is written as text starts with a byte of 32 or more and has
// no 0 in it, or is not meant to; the last slot of a block loses zeros at its end.
QByteArrayList slotsOf(const ImageHeaderBase& header) {
    QByteArrayList texts = header.extensions;
    for (const int slot : {0, 1, 5, 6}) {
        if (texts[slot].contains('\0') || (!texts[slot].isEmpty() && quint8(texts[slot][0]) < 32))
            return {};
    }
    for (QByteArray& slot : texts) {
        while (slot.endsWith('\0'))
            slot.chop(1);
    }
    return texts;
}

void checkHeader(const QByteArray& data) {
    const ImageHeaderBase one(data);
    QByteArray written;
    LyraImageHeaderParserV4().writeHeader(one, written);
    const ImageHeaderBase other(written);
    FUZZ_CHECK(one.time == other.time && one.channel == other.channel);
    FUZZ_CHECK(one.timeZoneOffset == other.timeZoneOffset);
    FUZZ_CHECK(one.timeZoneAbbrevation.index() == other.timeZoneAbbrevation.index());
    FUZZ_CHECK(one.type == other.type && one.flags == other.flags && one.rate == other.rate);
    FUZZ_CHECK(one.encrypted == other.encrypted && other.newKeyRequired);
    FUZZ_CHECK(one.totalSize - one.headerSize == other.totalSize - other.headerSize);
    FUZZ_CHECK(slotsOf(one).isEmpty() || slotsOf(one) == slotsOf(other));
}

void checkFrame(const Image& frame) {
    FUZZ_CHECK(frame.imageSize() == frame.payloadSize());
    for (int slot = 0; slot <= imageHeaderExtensionCount; ++slot)
        frame.extension(static_cast<ImageHeaderExtension>(slot));
    frame.toString();
    frame.idToString();
    frame.linkedAudioCameraID();
    frame.dateTime(frame.timeZone(), frame.qDateTimeServerTimeZone().toString());
    AudioUtils::audioFormatName(frame);
    AudioUtils::duration_thrifties(AudioUtils::decode(1, frame));

    Image clone = frame.clone();
    clone.setHiddenFlag(!clone.isHidden());
    QByteArray written;
    clone.generateNetworkImage(written, ImageHeaderVersion::V4);
    FUZZ_CHECK(Image(written).payload() == frame.payload());
}

template <typename Check>
void attempt(Check check) {
    try {
        check();
    } catch (const std::runtime_error&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    QByteArray bytes = bytesOf(data, size);
    attempt([&] { checkHeader(bytes); });
    // Otherwise few inputs had the length that they claim.
    LyraImageHeaderParserV4().patchSize(bytes);
    Image frame;
    for (int round = 0; round < 2; ++round) {
        attempt([&] {
            frame.loadFromData(bytes);
            checkFrame(frame);
        });
    }
    return 0;
}
