// Header bytes: what parses is written again and parses to the same header.

#include "fuzz.h"

#include <pylon/media/lyraimageheaderparserv4.h>

#include <stdexcept>

using namespace pylon;

namespace {

// A text of the format starts with a byte of 32 or more and has no 0 in it; other contents of a
// slot that is written as text are not meant to read back.
bool readsBack(const ImageHeaderBase& header) {
    for (const auto slot : {ImageHeaderExtension::ServerName, ImageHeaderExtension::CameraName,
                            ImageHeaderExtension::Marks, ImageHeaderExtension::Text6}) {
        const QByteArray& text = header.extension(slot);
        if (text.contains('\0') || (!text.isEmpty() && static_cast<quint8>(text.front()) < 32))
            return false;
    }
    return true;
}

// The last slot of a block loses these.
QByteArray withoutTrailingZeros(QByteArray bytes) {
    while (bytes.endsWith('\0'))
        bytes.chop(1);
    return bytes;
}

void compare(const ImageHeaderBase& one, const ImageHeaderBase& other) {
    FUZZ_CHECK(one.time == other.time && one.channel == other.channel);
    FUZZ_CHECK(one.timeZoneOffset == other.timeZoneOffset);
    FUZZ_CHECK(one.timeZoneAbbrevation.index() == other.timeZoneAbbrevation.index());
    FUZZ_CHECK(one.type == other.type && one.flags == other.flags && one.rate == other.rate);
    FUZZ_CHECK(one.encrypted == other.encrypted && other.newKeyRequired);
    FUZZ_CHECK(one.totalSize - one.headerSize == other.totalSize - other.headerSize);
    if (!readsBack(one))
        return;
    for (int slot = 0; slot < imageHeaderExtensionCount; ++slot) {
        FUZZ_CHECK(withoutTrailingZeros(one.extensions[slot]) ==
                   withoutTrailingZeros(other.extensions[slot]));
    }
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
