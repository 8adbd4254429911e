#include <pylon/media/framereader.h>

#include <pylon/media/byteconversion.h>

#include <QtCore/QIODevice>

#include <algorithm>
#include <cstring>
#include <span>
#include <stdexcept>

namespace pylon {

namespace {

using Wire = LyraImageHeaderParserV4;

constexpr qsizetype sizeFieldSize = 4;
constexpr qsizetype headerSize = Wire::fixedHeaderSize;
constexpr qsizetype extensionSizeOffset = 19;

// Random bytes look like a header every 64 bytes or so, but claim a size with another header behind
// it only once in half a million; twice in a row has to be enough.
constexpr int confirmingHeaders = 2;

// How often the search looks at what came behind an undecided start, and how far back it looks
// again: the frames there may have got the bytes that confirm them.
constexpr qsizetype lookStep = qsizetype{64} * 1024;
constexpr qsizetype lookBack = 8 * lookStep;

quint32 firstWord(QByteArrayView bytes) {
    return tryByteSpanToUint32(std::as_bytes(std::span(bytes))).value_or(0);
}

qsizetype sizeWithExtensions(QByteArrayView header) {
    return headerSize + static_cast<uchar>(header[extensionSizeOffset]);
}

// The parser's own words about bytes that are no header.
QString parserError(QByteArrayView bytes) {
    try {
        ImageHeader().loadFromData(QByteArray::fromRawData(bytes.data(), bytes.size()));
    } catch (const std::runtime_error& error) {
        return QString::fromUtf8(error.what());
    }
    return QStringLiteral("Size mismatch");
}

}  // namespace

FrameReader::FrameReader(QIODevice& device) : device_(device) {}

void FrameReader::setFrameSizeLimit(quint32 bytes) {
    frameSizeLimit_ = std::min(bytes, Wire::maxTotalSize);
}

void FrameReader::setChunkSize(qsizetype bytes) {
    chunkSize_ = std::max<qsizetype>(bytes, 1);
}

FrameReader::Status FrameReader::next() {
    if (failed_)
        return Status::Failed;
    releaseFrame();
    if (searching_ && !search())
        return ended_ ? Status::End : Status::NeedsData;
    return examine();
}

FrameReader::Status FrameReader::examine() {
    const QByteArrayView rest(front(), available());
    if (rest.size() < sizeFieldSize)
        return needData();
    if (!Wire::hasMarker(firstWord(rest)))
        return fail(parserError(rest));
    const quint32 size = claimedSize();
    if (size > frameSizeLimit_)
        return fail(
            QStringLiteral("claims %1 bytes, the limit is %2").arg(size).arg(frameSizeLimit_));
    if (rest.size() < headerSize)
        return needData();
    if (sizeWithExtensions(rest) > size)
        return fail(parserError(rest));
    if (rest.size() < size)
        return needData();
    frameSize_ = size;
    headerImageIsCurrent_ = false;
    return Status::Frame;
}

FrameReader::Status FrameReader::needData() {
    if (!ended_)
        return Status::NeedsData;
    const qsizetype left = available();
    if (left == 0)
        return Status::End;
    const quint32 needed = claimedSize();
    const QString what = needed < headerSize
                             ? QStringLiteral("needs %1 bytes for its header").arg(headerSize)
                             : QStringLiteral("needs %1 bytes").arg(needed);
    return fail(QStringLiteral("%1, %2 %3 left")
                    .arg(what)
                    .arg(left)
                    .arg(left == 1 ? QLatin1String("is") : QLatin1String("are")));
}

FrameReader::Status FrameReader::fail(const QString& reason) {
    failed_ = true;
    reason_ = reason;
    return Status::Failed;
}

// Of the frame at begin_, by its size field; 0 as long as that is not there.
quint32 FrameReader::claimedSize() const {
    return firstWord({front(), available()}) & Wire::maxTotalSize;
}

void FrameReader::advance(qsizetype count) {
    begin_ += count;
    offset_ += count;
}

void FrameReader::releaseFrame() {
    if (frameSize_ == 0)
        return;
    advance(frameSize_);
    frameSize_ = 0;
    header_ = {};
    headerImageIsCurrent_ = false;
}

bool FrameReader::fill() {
    if (failed_ || ended_)
        return false;
    releaseFrame();
    makeRoom();
    const qsizetype room = std::min(buffer_.size() - end_, chunkSize_);
    const qint64 count = device_.read(buffer_.data() + end_, room);
    if (count < 0) {
        deviceFailed_ = true;
        fail(QStringLiteral("cannot read: %1").arg(device_.errorString()));
    }
    if (count <= 0)
        return false;
    end_ += static_cast<qsizetype>(count);
    return true;
}

// Moves what is left of the last read to the front; grows only when the buffer is full of one
// frame.
void FrameReader::makeRoom() {
    if (begin_ > 0) {
        std::memmove(buffer_.data(), front(), static_cast<size_t>(available()));
        end_ = available();
        begin_ = 0;
    }
    if (end_ < buffer_.size())
        return;
    const qsizetype size = std::min(std::max(2 * buffer_.size(), chunkSize_),
                                    std::max<qsizetype>(claimedSize(), end_ + chunkSize_));
    buffer_.reserve(size);
    buffer_.resize(size);
}

QByteArrayView FrameReader::payload() const {
    return frameSize_ == 0 ? QByteArrayView() : bytes().sliced(sizeWithExtensions(bytes()));
}

const ImageHeader& FrameReader::header() const {
    if (header_.isNull() && frameSize_ > 0)
        header_.loadFromData(QByteArray::fromRawData(front(), frameSize_));
    return header_;
}

const Image& FrameReader::headerImage() const {
    if (!headerImageIsCurrent_) {
        headerImage_ = frameSize_ == 0 ? Image() : Image(header(), 0);
        headerImageIsCurrent_ = true;
    }
    return headerImage_;
}

Image FrameReader::image() const {
    return frameSize_ == 0 ? Image() : Image(QByteArray::fromRawData(front(), frameSize_));
}

bool FrameReader::resynchronise() {
    if (!failed_ || deviceFailed_)
        return false;
    failed_ = false;
    searching_ = true;
    skippedBytes_ = 0;
    skip(std::min<qsizetype>(available(), 1));
    searchedUpTo_ = nextLook_ = offset_;
    return true;
}

void FrameReader::skip(qsizetype count) {
    advance(count);
    skippedBytes_ += count;
}

// True when a frame begins at begin_. Each start is looked at when it comes to the front, and a few
// times before that: a false header at the front that claims many bytes must not keep the frames
// behind it waiting.
bool FrameReader::search() {
    for (; available() >= headerSize; skip(1)) {
        const Verdict verdict = judge(begin_);
        if (verdict == Verdict::Rejected)
            continue;
        const bool waitedEnough = available() >= headerSize + qsizetype{frameSizeLimit_};
        if (verdict == Verdict::Undecided && !waitedEnough && !skipToConfirmed())
            return false;
        searching_ = false;
        return true;
    }
    if (ended_)
        skip(available());
    return false;
}

// Goes on to the first start behind begin_ that is beyond doubt, if there is one.
bool FrameReader::skipToConfirmed() {
    const qint64 endOffset = offset_ + available();
    if (endOffset < nextLook_)
        return false;
    const qint64 first = std::max(searchedUpTo_, offset_ + 1);
    for (qint64 start = first; start + headerSize <= endOffset; ++start) {
        const auto distance = static_cast<qsizetype>(start - offset_);
        if (judge(begin_ + distance) == Verdict::Confirmed) {
            skip(distance);
            return true;
        }
    }
    searchedUpTo_ = std::max(first, endOffset - lookBack);
    nextLook_ = endOffset + lookStep;
    return false;
}

// Of a start that has a whole header at least.
FrameReader::Verdict FrameReader::judge(qsizetype position) const {
    for (int confirmed = 0;; ++confirmed) {
        const qsizetype left = end_ - position;
        if (left < headerSize) {
            const bool fits = left < sizeFieldSize ||
                              Wire::hasMarker(firstWord({buffer_.constData() + position, left}));
            if (!fits)
                return Verdict::Rejected;
            return ended_ ? Verdict::Confirmed : Verdict::Undecided;
        }
        const qsizetype size = plausibleSize(position);
        if (size == 0)
            return Verdict::Rejected;
        if (confirmed == confirmingHeaders)
            return Verdict::Confirmed;
        if (size > left && ended_)
            return confirmed > 0 ? Verdict::Confirmed : Verdict::Rejected;
        if (size > left)
            return Verdict::Undecided;
        position += size;
    }
}

// What the header at `position` claims; 0 if it is none.
qsizetype FrameReader::plausibleSize(qsizetype position) const {
    const QByteArrayView header(buffer_.constData() + position, headerSize);
    const quint32 word = firstWord(header);
    const quint32 size = word & Wire::maxTotalSize;
    const bool plausible =
        Wire::hasMarker(word) && size <= frameSizeLimit_ &&
        sizeWithExtensions(header) <= qsizetype{size} &&
        static_cast<uchar>(header[extensionSizeOffset]) <= Wire::maxExtensionSize;
    return plausible ? size : 0;
}

}  // namespace pylon
