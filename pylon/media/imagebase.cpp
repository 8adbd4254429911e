#include <pylon/media/imagebase.h>

#include <stdexcept>

namespace pylon {

ImageBase::ImageBase(const ImageHeaderBase& header) : ImageHeaderBase(header) {}

ImageBase::ImageBase(const QByteArray& frame) {
    take(frame);
}

ImageBase::~ImageBase() = default;

void ImageBase::load(const QByteArray& frame) {
    // Keeps the bytes alive when the frame is this record's own payload or one of its slots.
    const QByteArray bytes = frame;  // NOLINT(performance-unnecessary-copy-initialization)
    payload.clear();
    take(bytes);
}

void ImageBase::take(const QByteArray& frame) {
    parse(frame);
    if (frame.size() != qsizetype{totalSize})
        throw std::runtime_error("Size mismatch");
    payload = frame.sliced(headerSize);
}

quint32 ImageBase::payloadLength() const {
    return static_cast<quint32>(payload.size());
}

}  // namespace pylon
