#pragma once

#include <pylon/export.h>
#include <pylon/media/image.h>
#include <pylon/media/imageheader.h>
#include <pylon/media/lyraimageheaderparserv4.h>

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QString>

class QIODevice;

namespace pylon {

/// Initial FrameReader::chunkSize() in bytes.
inline constexpr qsizetype defaultFrameChunkSize = qsizetype{512} * 1024;

/// Cuts the bytes of a device into network frames, one after the other.
///
/// next() works on the bytes that are there, fill() gets more from the device, and finish() says
/// that no more will come. A frame that is there in part waits for the rest, so the device may be
/// a file, a pipe or a socket. For a file:
///
///     pylon::FrameReader reader(file);
///     for (;;) {
///         switch (reader.next()) {
///             case pylon::FrameReader::Status::Frame:
///                 show(reader.image());
///                 break;
///             case pylon::FrameReader::Status::NeedsData:
///                 if (!reader.fill())
///                     reader.finish();
///                 break;
///             case pylon::FrameReader::Status::End:
///                 return true;
///             case pylon::FrameReader::Status::Failed:
///                 qWarning() << reader.offset() << reader.reason();
///                 return false;  // or reader.resynchronise(), and go on
///         }
///     }
///
/// For a socket, leave the loop at NeedsData when fill() returns false, and enter it again on
/// readyRead(); call finish() when the other side has disconnected.
///
/// Memory follows the bytes read, never what a header claims: beyond the first chunk it is at most
/// twice what is waiting, and bounded by the longest frame allowed plus a header and a chunk.
///
/// Thread-safety: not synchronised, also not the const members.
class PYLON_EXPORT FrameReader {
public:
    /// What next() came to.
    enum class Status {
        Frame,      ///< A whole frame is there; it stays valid until next() or fill().
        NeedsData,  ///< The next frame is not complete yet. Never after finish().
        End,        ///< After finish(): every byte has been given out or skipped.
        Failed      ///< The bytes at offset() are no frame, see reason(). Only resynchronise()
                    ///< leads on.
    };

    /// @p device is open for reading and outlives this object. Reading starts at its position,
    /// which counts as byte 0. Open files with QIODevice::Unbuffered: a second buffer costs time.
    explicit FrameReader(QIODevice& device);
    FrameReader(const FrameReader&) = delete;
    FrameReader& operator=(const FrameReader&) = delete;

    /// @name Settings
    /// Both may be changed at any time, and hold for what is read afterwards.
    /// @{

    /// Longest frame accepted, in bytes: one whose header claims more is an error, found without
    /// waiting for its bytes. At first what the format can express, 67,108,863.
    quint32 frameSizeLimit() const { return frameSizeLimit_; }
    /// Values beyond the format's limit count as that.
    void setFrameSizeLimit(quint32 bytes);
    /// The most bytes fill() asks the device for.
    qsizetype chunkSize() const { return chunkSize_; }
    /// Values below 1 count as 1.
    void setChunkSize(qsizetype bytes);
    /// @}

    /// @name Reading
    /// @{

    /// Goes on to the next frame among the bytes already read.
    Status next();

    /// Reads once from the device; the current frame is given up.
    /// @return false if nothing came: the end of a file or pipe, for a socket also nothing yet, or
    ///     an error, after which next() fails for good.
    bool fill();

    /// To be called when no more bytes will come: a frame that is not complete is then an error.
    void finish() { ended_ = true; }

    /// After next() has failed: makes it look for a frame behind the damage.
    ///
    /// next() then skips to the first byte whose 20 bytes are a plausible header (marker, size,
    /// length of the extension block) that is followed, at the distance it claims, by two more.
    /// It asks for data as long as it needs it to tell, but for no more than one frame of
    /// frameSizeLimit(); then, and after finish(), a chain that ends with the data is enough. A
    /// frame that was cut off by the end is not found.
    ///
    /// A damaged size field that is not too large looks like a frame: the error then shows only
    /// at the end of it, and what it swallowed is not looked at again.
    /// @return false, and nothing changes, unless next() failed for another reason than a device
    ///     that could not be read.
    bool resynchronise();

    /// How many bytes the last resynchronise() has led over so far, from the offset() that failed;
    /// complete when next() has returned anything but NeedsData.
    qint64 skippedBytes() const { return skippedBytes_; }
    /// @}

    /// @name The current frame
    /// After Status::Frame; offset() and reason() also after Status::Failed.
    /// @{

    /// Where the frame begins, or the one that failed, in bytes.
    qint64 offset() const { return offset_; }
    /// The frame as it is on the wire.
    QByteArrayView bytes() const { return {buffer_.constData() + begin_, frameSize_}; }
    /// What follows header and extension block in bytes().
    QByteArrayView payload() const;
    /// The header as a new object, parsed on the first call for a frame. Null without a frame.
    const ImageHeader& header() const;
    /// The frame with all header fields, but an empty payload: its picture is not copied. A new
    /// record for each frame; an Image by default without a frame.
    const Image& headerImage() const;
    /// The frame as a new, independent record with a copy of its payload; an Image by default
    /// without a frame.
    Image image() const;
    /// Why next() failed: a text of the header parser, or what size was claimed and what size
    /// there is.
    const QString& reason() const { return reason_; }
    /// @}

    /// Bytes of memory held for frame data.
    qsizetype capacity() const { return buffer_.size(); }

private:
    enum class Verdict { Rejected, Undecided, Confirmed };

    qsizetype available() const { return end_ - begin_; }
    const char* front() const { return buffer_.constData() + begin_; }
    quint32 claimedSize() const;
    void advance(qsizetype count);
    void releaseFrame();
    void makeRoom();

    Status examine();
    Status needData();
    Status fail(const QString& reason);

    bool search();
    Verdict judge(qsizetype position) const;
    qsizetype plausibleSize(qsizetype position) const;
    bool skipToConfirmed();
    void skip(qsizetype count);

    QIODevice& device_;
    quint32 frameSizeLimit_ = LyraImageHeaderParserV4::maxTotalSize;
    qsizetype chunkSize_ = defaultFrameChunkSize;

    QByteArray buffer_;
    qsizetype begin_ = 0;      // of the current or next frame
    qsizetype end_ = 0;        // of the bytes read
    qsizetype frameSize_ = 0;  // of the current frame; 0 between frames
    qint64 offset_ = 0;        // of begin_ in the device

    mutable ImageHeader header_;  // of the current frame once asked for
    mutable Image headerImage_;
    mutable bool headerImageIsCurrent_ = false;

    QString reason_;
    bool failed_ = false;
    bool deviceFailed_ = false;
    bool ended_ = false;
    bool searching_ = false;
    qint64 skippedBytes_ = 0;
    qint64 searchedUpTo_ = 0;  // offset before which only the front needs another look
    qint64 nextLook_ = 0;      // offset the data must reach before the next look behind the front
};

}  // namespace pylon
