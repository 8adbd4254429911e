// Frames: the header alone, which is written again and parses to the same header, then the frame,
// loaded twice into the same record, and everything that interprets what was loaded.

#include "fuzz.h"

#include <pylon/media/audioutils.h>
#include <pylon/media/image.h>
#include <pylon/media/lyraimageheaderparserv4.h>

#include <stdexcept>
#include <tuple>

using namespace pylon;

namespace {

auto fieldsOf(const ImageHeaderBase& header) {
    return std::tuple(header.time, header.channel, header.timeZoneOffset,
                      header.timeZoneAbbrevation.index(), header.type, header.flags, header.rate,
                      header.encrypted, header.totalSize - header.headerSize);
}

// The texts as they read back. One that is written as text starts with a byte of 32 or more and has
// no 0 in it, or is not meant to; the last slot of a block loses zeros at its end.
QByteArrayList slotsOf(QByteArrayList texts) {
    for (const int slot : {0, 1, 5, 6})
        if (texts[slot].contains('\0') || (!texts[slot].isEmpty() && quint8(texts[slot][0]) < 32))
            return {};
    for (QByteArray& slot : texts)
        while (slot.endsWith('\0'))
            slot.chop(1);
    return texts;
}

void checkHeader(const QByteArray& bytes) try {
    const ImageHeaderBase header(bytes);
    QByteArray written;
    LyraImageHeaderParserV4().writeHeader(header, written);
    const ImageHeaderBase again(written);
    FUZZ_CHECK(fieldsOf(header) == fieldsOf(again) && again.newKeyRequired);
    const QByteArrayList texts = slotsOf(header.extensions);
    FUZZ_CHECK(texts.isEmpty() || texts == slotsOf(again.extensions));
} catch (const std::runtime_error&) {
}

void checkFrame(const Image& frame) {
    FUZZ_CHECK(frame.imageSize() == frame.payloadSize());
    frame.toString();
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

}  // namespace

void fuzz(const QByteArray& input) {
    checkHeader(input);
    // Otherwise few inputs had the length that they claim.
    QByteArray bytes = input;
    LyraImageHeaderParserV4().patchSize(bytes);
    Image frame;
    for (int round = 0; round < 2; ++round) {
        try {
            frame.loadFromData(bytes);
            checkFrame(frame);
        } catch (const std::runtime_error&) {
        }
    }
}
