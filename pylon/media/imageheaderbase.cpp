#include <pylon/media/imageheaderbase.h>

#include <pylon/media/lyraimageheaderparser.h>

namespace pylon {

ImageHeaderBase::ImageHeaderBase() {
    loadTimer.start();
}

ImageHeaderBase::ImageHeaderBase(const QByteArray& data) : ImageHeaderBase() {
    parse(data);
}

ImageHeaderBase::~ImageHeaderBase() = default;

void ImageHeaderBase::loadFromData(const QByteArray& data) {
    // Keeps the bytes alive when data is one of this header's own slots.
    const QByteArray bytes = data;  // NOLINT(performance-unnecessary-copy-initialization)
    parse(bytes);
}

void ImageHeaderBase::parse(const QByteArray& data) {
    const auto version = LyraImageHeaderParser::detectVersion(data);
    LyraImageHeaderParser::createParser(version)->parseHeader(data, *this);
}

const QByteArray& ImageHeaderBase::extension(ImageHeaderExtension slot) const {
    static const QByteArray empty;
    const auto index = static_cast<qsizetype>(slot);
    return index >= 0 && index < extensions.size() ? extensions.at(index) : empty;
}

quint32 ImageHeaderBase::payloadLength() const {
    return 0;
}

}  // namespace pylon
