#pragma once

#include <QtCore/qbytearray.h>
#include <QtCore/qbytearrayview.h>
#include <QtCore/qstring.h>
#include <pylon/media/image.h>
#include <pylon/media/imageheader.h>

class QIODevice;

namespace pylon::inspector {

/// Cuts the bytes of a device into network frames, one after the other.
///
/// next() works on the bytes that are there; fill() gets more from the device. A frame that is
/// there in part waits for the rest, so the device may be a file, a pipe or a socket:
///
///     for (;;) {
///         switch (source.next()) {
///         case FrameSource::Status::Frame:     use(source.image(), source.bytes()); break;
///         case FrameSource::Status::NeedsData: if (!source.fill()) return source.finish(); break;
///         case FrameSource::Status::Failed:    return false;  // source.reason(), source.offset()
///         }
///     }
///
/// The memory used follows the bytes read, never what a header claims, and is bounded by the
/// largest frame the format knows (64 MiB) plus #chunkSize. Not thread-safe.
class FrameSource {
public:
    enum class Status {
        Frame,      ///< A whole frame is there; it stays valid until next() or fill().
        NeedsData,  ///< The next frame is not complete yet.
        Failed      ///< No further frame can be found, see reason(). Final.
    };

    /// The most bytes fill() asks the device for.
    static constexpr qsizetype chunkSize = qsizetype{512} * 1024;

    /// @p device is open for reading and outlives this object; reading starts at its position,
    /// which counts as byte 0.
    explicit FrameSource(QIODevice& device);

    /// Goes on to the next frame among the bytes already read.
    Status next();

    /// Reads once from the device.
    /// @return false if nothing came: the end of a file or pipe, for a socket also nothing yet, or
    /// an error, after which next() fails.
    bool fill();

    /// To be called when no more bytes will come.
    /// @return true if the last frame was complete; otherwise Failed is entered.
    bool finish();

    /// Where the current frame begins, or the one that failed.
    qint64 offset() const { return offset_; }
    /// Header of the current frame.
    const ImageHeader& header() const { return header_; }
    /// The current frame with its header fields and an empty payload: showing a frame does not cost
    /// a copy of its picture.
    const Image& image() const { return image_; }
    /// The current frame as it is on the wire.
    QByteArrayView bytes() const { return {buffer_.constData() + begin_, frameSize_}; }
    /// Why next() failed: a text of the header parser, or how many bytes are missing.
    const QString& reason() const { return reason_; }

    /// Bytes allocated for frame data.
    qsizetype capacity() const { return buffer_.size(); }

private:
    qsizetype available() const { return end_ - begin_; }
    quint32 claimedSize() const;
    void releaseFrame();
    Status parseHeader();
    void makeRoom();
    Status fail(const QString& reason);

    QIODevice& device_;
    QByteArray buffer_;
    qsizetype begin_ = 0;      // of the current or next frame
    qsizetype end_ = 0;        // of the bytes read
    qsizetype frameSize_ = 0;  // of the current frame; 0 between frames
    qint64 offset_ = 0;
    ImageHeader header_;  // null until the next frame's header is there
    Image image_;
    QString reason_;
    bool failed_ = false;
};

}  // namespace pylon::inspector
