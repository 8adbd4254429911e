#include <pylon/media/imageheader.h>

#include <pylon/media/image.h>
#include <pylon/media/imagebase.h>

namespace pylon {

ImageHeader::ImageHeader(const Image& image)
    : header_(QSharedPointer<ImageHeaderBase>::create(*image.image_)) {}

int ImageHeader::loadFromData(const QByteArray& data) {
    ImageHeaderBase& header = ensureHeader();
    header.loadFromData(data);
    return static_cast<int>(header.headerSize);
}

void ImageHeader::setAttachedData(const QByteArray& data) {
    ensureHeader().attachedData = data;
}

void ImageHeader::addAbsentExtensionsFrom(const ImageHeader& other) {
    if (other.isNull())
        return;
    QList<QByteArray>& own = ensureHeader().extensions;
    const QList<QByteArray>& others = other.header_->extensions;
    for (qsizetype slot = 0; slot < imageHeaderExtensionCount; ++slot) {
        if (own.at(slot).isEmpty() && !others.at(slot).isEmpty())
            own[slot] = others.at(slot);
    }
}

bool ImageHeader::isNull() const noexcept {
    return header_.isNull();
}

quint32 ImageHeader::channel() const noexcept {
    return header_ ? header_->channel : 0;
}

bool ImageHeader::isNewKeyRequired() const noexcept {
    return header_ && header_->newKeyRequired;
}

const QByteArray& ImageHeader::extension(ImageHeaderExtension slot) const {
    static const QByteArray empty;
    Q_ASSERT(header_);
    return header_ ? header_->extension(slot) : empty;
}

ImageHeaderBase& ImageHeader::ensureHeader() {
    if (!header_)
        header_ = QSharedPointer<ImageHeaderBase>::create();
    return *header_;
}

}  // namespace pylon
