#include "framesource.h"

#include <QtCore/qiodevice.h>
#include <pylon/media/byteconversion.h>
#include <pylon/media/lyraimageheaderparserv4.h>

#include <algorithm>
#include <cstring>
#include <span>
#include <stdexcept>

namespace pylon::inspector {

namespace {

using Wire = LyraImageHeaderParserV4;

constexpr qsizetype sizeFieldSize = 4;
constexpr qsizetype headerSize = Wire::fixedHeaderSize;
constexpr qsizetype extensionSizeOffset = 19;

}  // namespace

FrameSource::FrameSource(QIODevice& device)
    : device_(device), buffer_(chunkSize, Qt::Uninitialized) {}

FrameSource::Status FrameSource::next() {
    if (failed_)
        return Status::Failed;
    releaseFrame();
    if (header_.isNull()) {
        if (const Status status = parseHeader(); status != Status::Frame)
            return status;
    }
    if (available() < claimedSize())
        return Status::NeedsData;
    frameSize_ = claimedSize();
    return Status::Frame;
}

void FrameSource::releaseFrame() {
    if (frameSize_ == 0)
        return;
    begin_ += frameSize_;
    offset_ += frameSize_;
    frameSize_ = 0;
    header_ = {};
}

// Status::Frame stands for a header that is complete and sound.
FrameSource::Status FrameSource::parseHeader() {
    if (available() < sizeFieldSize)
        return Status::NeedsData;
    const QByteArrayView rest(buffer_.constData() + begin_, available());
    if (LyraImageHeaderParser::detectVersion(rest) == ImageHeaderVersion::V4) {
        if (rest.size() < headerSize)
            return Status::NeedsData;
        // A header that runs past the end of its own frame is refused without waiting for the rest.
        const qsizetype withExtensions = headerSize + static_cast<uchar>(rest[extensionSizeOffset]);
        if (withExtensions <= claimedSize() && rest.size() < withExtensions)
            return Status::NeedsData;
    }
    try {
        header_.loadFromData(QByteArray::fromRawData(rest.data(), rest.size()));
    } catch (const std::runtime_error& error) {
        header_ = {};
        return fail(QString::fromUtf8(error.what()));
    }
    image_ = Image(header_, 0);
    return Status::Frame;
}

// Of the frame at begin_, by its size field; 0 as long as that is not there.
quint32 FrameSource::claimedSize() const {
    const QByteArrayView rest(buffer_.constData() + begin_, available());
    return tryByteSpanToUint32(std::as_bytes(std::span(rest))).value_or(0) & Wire::maxTotalSize;
}

bool FrameSource::fill() {
    if (failed_)
        return false;
    releaseFrame();
    makeRoom();
    const qsizetype room = std::min(buffer_.size() - end_, chunkSize);
    const qint64 count = device_.read(buffer_.data() + end_, room);
    if (count < 0)
        fail(QStringLiteral("cannot read: %1").arg(device_.errorString()));
    if (count <= 0)
        return false;
    end_ += static_cast<qsizetype>(count);
    return true;
}

// Moves what is left of the last read to the front; grows only when the buffer is full of one
// frame.
void FrameSource::makeRoom() {
    if (begin_ > 0) {
        std::memmove(buffer_.data(), buffer_.constData() + begin_,
                     static_cast<size_t>(available()));
        end_ = available();
        begin_ = 0;
    }
    if (end_ < buffer_.size())
        return;
    const qsizetype size =
        std::min(2 * buffer_.size(), std::max<qsizetype>(claimedSize(), end_ + chunkSize));
    buffer_.reserve(size);
    buffer_.resize(size);
}

bool FrameSource::finish() {
    if (failed_)
        return false;
    releaseFrame();
    const qsizetype left = available();
    if (left == 0)
        return true;
    const quint32 needed = claimedSize();
    const QString what = needed < headerSize
                             ? QStringLiteral("needs %1 bytes for its header").arg(headerSize)
                             : QStringLiteral("needs %1 bytes").arg(needed);
    fail(QStringLiteral("%1, %2 %3 left")
             .arg(what)
             .arg(left)
             .arg(left == 1 ? QLatin1String("is") : QLatin1String("are")));
    return false;
}

FrameSource::Status FrameSource::fail(const QString& reason) {
    failed_ = true;
    reason_ = reason;
    return Status::Failed;
}

}  // namespace pylon::inspector
