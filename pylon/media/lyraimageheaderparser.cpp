#include <pylon/media/lyraimageheaderparser.h>

#include <pylon/media/byteconversion.h>
#include <pylon/media/lyraimageheaderparserv4.h>

#include <span>
#include <stdexcept>

namespace pylon {

namespace {

constexpr quint32 legacyFirstWord = 0xFFFFFFFF;

}  // namespace

LyraImageHeaderParser::~LyraImageHeaderParser() = default;

std::unique_ptr<LyraImageHeaderParser> LyraImageHeaderParser::createParser(
    ImageHeaderVersion version) {
    switch (version) {
        case ImageHeaderVersion::V4:
            return std::make_unique<LyraImageHeaderParserV4>();
        case ImageHeaderVersion::Legacy:
            throw std::runtime_error("Protocol support dropped");
        case ImageHeaderVersion::Unknown:
            break;
    }
    throw std::runtime_error("Unknown header protocol");
}

ImageHeaderVersion LyraImageHeaderParser::detectVersion(QByteArrayView data) noexcept {
    const quint32 word = tryByteSpanToUint32(std::as_bytes(std::span(data))).value_or(0);
    if (word == legacyFirstWord)
        return ImageHeaderVersion::Legacy;
    return LyraImageHeaderParserV4::hasMarker(word) ? ImageHeaderVersion::V4
                                                    : ImageHeaderVersion::Unknown;
}

}  // namespace pylon
