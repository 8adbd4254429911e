// Header bytes: what parses is written again and parses to the same header.

#include "fuzz.h"

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

void compare(const ImageHeaderBase& one, const ImageHeaderBase& other) {
    FUZZ_CHECK(one.time == other.time && one.channel == other.channel);
    FUZZ_CHECK(one.timeZoneOffset == other.timeZoneOffset);
    FUZZ_CHECK(one.timeZoneAbbrevation.index() == other.timeZoneAbbrevation.index());
    FUZZ_CHECK(one.type == other.type && one.flags == other.flags && one.rate == other.rate);
    FUZZ_CHECK(one.encrypted == other.encrypted && other.newKeyRequired);
    FUZZ_CHECK(one.totalSize - one.headerSize == other.totalSize - other.headerSize);
    FUZZ_CHECK(slotsOf(one).isEmpty() || slotsOf(one) == slotsOf(other));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const ImageHeaderBase header(bytesOf(data, size));
        QByteArray written;
        LyraImageHeaderParserV4().writeHeader(header, written);
        compare(header, ImageHeaderBase(written));
    } catch (const std::runtime_error&) {
    }
    return 0;
}
