#pragma once

#include <pylon/export.h>
#include <pylon/media/imageheaderbase.h>
#include <pylon/time/timezone.h>

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QMetaType>
#include <QtCore/QString>
#include <QtCore/QTimeZone>

#include <memory>
#include <string>

class QDebug;
class QFile;

namespace pylon {

class ImageBase;
class ImageHeader;

/// One media frame: a video picture, an audio block or an event record, with its header and its
/// payload.
///
/// An Image is a cheap handle to a shared record. Copies share it, so a setter called through one
/// handle changes the frame seen through all; clone() makes an independent frame. Moving copies the
/// handle, so that there always is a record behind it.
///
///     pylon::Image frame(bytesFromNetwork);  // throws when they are not exactly one frame
///     if (frame.type() == 'V' && frame.iframe())
///         show(frame.cameraName(), frame.payload());
///
/// Times are in 1/300 s since the Unix epoch (UTC) unless a name says otherwise.
///
/// Thread-safety: handles may be copied and destroyed on any thread; the record is not
/// synchronised, so clone() a frame before handing it to a thread that changes it.
class PYLON_EXPORT Image {
public:
    /// Result of checking the origin of a frame. The library stores the value for its callers,
    /// who may define further ones; any 32-bit value is kept.
    enum AuthenticationState : quint32 {
        AuthenticationUnknown = 0  ///< Nothing is known; the state of every new frame.
    };

    /// A frame with a default header (see ImageHeaderBase) and an empty payload.
    Image();

    /// A frame with a copy of the fields of @p header and a payload of @p payloadSize bytes of
    /// unspecified content; a negative size counts as 0. @p header must not be null: debug builds
    /// assert, others take a default header.
    Image(const ImageHeader& header, int payloadSize);

    /// The frame received as @p data.
    /// @throws std::runtime_error as loadFromData().
    explicit Image(const QByteArray& data);

    Image(const Image& other) = default;
    Image& operator=(const Image& other) = default;
    ~Image() = default;

    /// Replaces the frame by the one received as @p data, which must be exactly one frame.
    /// Extension slots about which the new header says nothing keep their contents, and text is
    /// appended to what a slot holds: load into a new Image to start afresh.
    /// @throws std::runtime_error "Unknown header protocol" (also for fewer than four bytes),
    ///     "Protocol support dropped", "Header too small", or "Size mismatch" when the header
    ///     contradicts itself or the length of @p data. The payload is then empty and the header
    ///     holds whatever had been parsed: discard the frame.
    void loadFromData(const QByteArray& data);

    /// An independent frame with a copy of every field. The payload bytes are copied when one of
    /// the two frames first changes them.
    Image clone() const;

    /// @name Identity
    /// @{

    /// Time stamp in 1/300 s since the Unix epoch, UTC.
    qint64 time() const;
    /// Only the low 48 bits fit the wire; a value outside them must not be sent.
    void setTime(qint64 time);
    /// Number that the client gives the frame. Not on the wire.
    quint64 id() const;
    /// Changes the shared record although the handle is const.
    void setId(quint64 id) const;
    /// Identifier of the server it came from, see serverUIDToString(). Not on the wire.
    quint64 ServerUid() const;
    /// Sets what ServerUid() returns.
    void setServerUid(quint64 uid);
    /// Number that the client gives the server. Not on the wire.
    quint32 serverId() const;
    /// Sets what serverId() returns.
    void setServerId(quint32 id);
    /// Place in an order of the client's own. Not on the wire.
    quint32 sortId() const;
    /// Sets what sortId() returns.
    void setSortId(quint32 id);
    /// Number that the client gives the stream. Not on the wire.
    quint16 streamId() const;
    /// Sets what streamId() returns.
    void setStreamId(quint16 id);
    /// Bits 0-15 are cameraId(), bits 16-31 trackId().
    quint32 channel() const;
    /// Sets camera and track together.
    void setChannel(quint32 channel);
    /// Camera, 0 to 65535; 255 for events.
    quint32 cameraId() const;
    /// Track of the camera, 0 to 65535.
    quint32 trackId() const;
    /// Time stamp of the next frame of a linked stream.
    qint64 linkedStreamNextTimeStamp() const;
    /// Sets it, in 1/300 s. Not on the wire.
    void setLinkedStreamNextTimeStamp(qint64 time);
    /// @}

    /// @name Kind and state
    /// @{

    /// An ASCII character, such as 'V' for a video picture or 'a' for an audio block.
    quint8 type() const;
    /// A type received from the wire has bit 6 set; when a header is written, that bit of the type
    /// tells the receiver that a new key is required.
    void setType(quint8 type);
    /// Frame rate as sent by the server.
    quint8 rate() const;
    /// All flag bits, also those without meaning here.
    quint8 flags() const;
    /// Replaces all flag bits.
    void setFlags(quint8 flags);
    /// Sets the given bits, leaves the others.
    void addFlags(quint8 flags);
    /// Clears the given bits, leaves the others.
    void clearFlags(quint8 flags);
    /// True for a key frame: flag 0x08 is clear.
    bool iframe() const;
    /// Makes the frame a key frame.
    void setIFrame();
    /// True for a frame of a recording: flag 0x80 is set.
    bool isRecording() const;
    /// True when the payload is encrypted now.
    bool isEncrypted() const;
    /// Says whether the payload is encrypted now; the payload itself stays as it is.
    void setEncrypted(bool encrypted);
    /// True when the frame arrived encrypted, whatever setEncrypted() said since.
    bool receivedEncrypted() const;
    /// What the client found out about the frame's signature. Not on the wire.
    AuthenticationState authenticationState() const;
    /// Sets what authenticationState() returns.
    void setAuthenticationState(AuthenticationState state);
    /// True when the frame has no size: it was neither loaded nor given a payload by setPayload().
    bool isNull() const;
    /// @}

    /// @name Age
    /// @{

    /// Wall-clock time of loading in ms since the Unix epoch. Nothing in the library sets it: 0.
    qint64 imageClientSystemLoadTimeMSecsSinceEpoch() const;
    /// Microseconds since the record was constructed; a clone goes on with the age of its source.
    qint64 elapsedUSecsSinceImageLoad() const;
    /// @}

    /// @name Payload and sizes
    /// @{

    /// Valid until the payload changes; copy the array (cheap, shared) to keep it.
    const QByteArray& payload() const;
    /// Stores @p data and sets totalSize() to what the frame takes on the wire. imageSize()
    /// counts from the header as last parsed and so may differ from payloadSize() afterwards.
    /// @throws std::runtime_error "Extension field is too large" when the extension slots do not
    ///     fit a header; the payload is stored, totalSize() is as before.
    void setPayload(const QByteArray& data);
    /// The payload bytes for writing. Detaches them from copies of the array and from clones, so
    /// call it once, not per byte.
    char* payloadData();
    /// The payload bytes; never copies.
    const char* payloadData() const;
    /// Length of the payload in bytes.
    quint32 payloadSize() const;
    /// Length of the whole frame as its header says, in bytes.
    quint32 totalSize() const;
    /// totalSize() less the header as last parsed. Equals payloadSize() after loading; wraps when
    /// setters made the frame shorter than its old header.
    quint32 imageSize() const;
    /// @}

    /// @name Extension slots
    /// @{

    /// The content of @p slot, valid until the slot changes; empty for a value outside the
    /// enumeration.
    const QByteArray& extension(ImageHeaderExtension slot) const;
    /// Takes over all slots of @p header. It must not be null: debug builds assert, others leave
    /// the frame as it is.
    void setExtensions(const ImageHeader& header);
    /// Side data of the client, see ImageHeader::setAttachedData().
    QByteArray attachedData() const;
    /// Text of the slot CameraName, UTF-8; empty when there is none.
    QString cameraName() const;
    /// Text of the slot ServerName, UTF-8; empty when there is none.
    QString serverName() const;
    /// True when the slot Marks contains an "h".
    bool isHidden() const;
    /// Adds the mark "h", or removes every one; other marks stay. totalSize() is not updated.
    void setHiddenFlag(bool hidden);
    /// True when the slot Dewarping has content.
    bool isDewarping() const;
    /// Camera id (0..255) of the linked audio source; cameraId() when the slot LinkedAudio starts
    /// with 0, -1 when it is empty.
    int linkedAudioCameraID() const;
    /// @}

    /// @name Time zone of the frame
    /// @{

    /// Quarter hours east of UTC.
    qint8 timeZoneOffset() const;
    /// Takes offset and abbreviation of @p zone.
    void setTimeZone(const TimeZone& zone);
    /// Offset and abbreviation of the frame, without a name.
    TimeZone timeZone() const;
    /// The abbreviation, such as "CET"; empty when the frame has none.
    std::string timeZoneName() const;
    /// The abbreviation of @p index, taken as an unsigned byte; empty when there is none.
    static std::string timeZoneIndexToName(qint8 index);
    /// A zone with the frame's fixed offset. Invalid when Qt cannot express the offset (beyond 14
    /// hours; 16 in later versions of Qt).
    QTimeZone frameQTimeZone() const;
    /// @}

    /// @name Time views
    /// Formats are those of QDateTime::toString(), `const char*` ones in UTF-8.
    ///
    /// Functions that take a TimeZone use its offset; where that is unknown, the offset of its
    /// name if the time-zone catalogue has just one, else 0. For the server time zone, member
    /// functions use the frame's own offset. Their result is a UTC date-time that *shows* the
    /// wall-clock time of the zone.
    /// @{

    /// time() in milliseconds since the Unix epoch, truncated toward zero.
    qint64 timestampMSec() const;
    /// The frame's instant in frameQTimeZone(); invalid when that is.
    QDateTime qDateTimeServerTimeZone() const;
    /// The frame's own wall-clock time.
    std::string dateTime(const char* format) const;
    /// The wall-clock time of @p zone.
    QDateTime qDateTime(const TimeZone& zone) const;
    /// The wall-clock time of @p zone as text.
    QString dateTime(const TimeZone& zone, const QString& format) const;
    /// The same, in UTF-8.
    std::string dateTime(const TimeZone& zone, const char* format) const;
    /// The same as dateTime(const TimeZone&, const QString&) const.
    QString dateTimeQString(const QString& format, const TimeZone& zone) const;
    /// The wall-clock time of @p zone at @p time (1/300 s).
    static QDateTime qDateTime(const TimeZone& zone, quint64 time);
    /// The same as text, in UTF-8.
    static std::string dateTime(const TimeZone& zone, quint64 time, const char* format);
    /// @p msecs since the Unix epoch in the machine's local time zone.
    static std::string dateTime(quint64 msecs, const char* format);
    /// @}

    /// @name Text for logs
    /// @{

    /// One line such as
    ///
    ///     Image: { Camera: 'Gate'. Channel: 10003. Payload Size: 512. Flags: 10001000.
    ///     Time: 512345678901. Type: 'V'. Rate: 25 }
    ///
    /// with the channel in hexadecimal and the flags in binary; the type byte shows as Latin-1.
    QString toString() const;
    /// Id, time and time of day in UTC, such as `[ id: 7, time: 300 (00:00:01.000) ]`.
    QString idToString() const;
    /// Writes the line that toString() gives.
    friend PYLON_EXPORT QDebug operator<<(QDebug debug, const Image& image);
    /// @}

    /// @name Writing to the network
    /// @throws std::runtime_error "Protocol support dropped" for ImageHeaderVersion::Legacy,
    ///     "Unknown header protocol" for anything but ImageHeaderVersion::V4, and "Extension field
    ///     is too large"; @p out is then unchanged.
    /// @{

    /// Writes header and extension block over the first bytes of @p out; bytes behind them stay.
    void generateNetworkImageHeader(QByteArray& out, ImageHeaderVersion version) const;
    /// Writes header and extension block over the first bytes of @p out, appends the payload at
    /// its end, and sets the size field to the length of all of it. Pass an empty @p out to get
    /// the frame; one longer than 67,108,863 bytes cannot be read back.
    void generateNetworkImage(QByteArray& out, ImageHeaderVersion version) const;
    /// @}

    /// @name Dump files
    /// A dump holds one block of bytes, normally a frame as received, under a name that tells what
    /// is in the header of the frame.
    /// @{

    /// Writes @p size bytes at @p data to a file in the dumpFolder() of @p frame, which must exist.
    /// A file of that name is overwritten. Whether the file could be opened is told by one line on
    /// standard output, nothing else is reported.
    ///
    /// The name is
    ///
    ///     img-A_B_C-TIME_OFFSET_ZONE-TYPE-KEY-CHANNEL-CAMERA-TRACK-RATE-FLAGS-ENCRYPTED-RECEIVED-
    ///     SIZE-IMAGESIZE-PAYLOADSIZE-SUM-L0-L1-L2-L3-L4-L5-L6-LINKED-S3-S6-S0-S1-NAME.bin
    ///
    /// without a line break: @p a, @p b and @p c as given, KEY "i" for a key frame and "p" for any
    /// other, ENCRYPTED and RECEIVED "1" or "0", Ln the length of slot n, LINKED the
    /// linkedAudioCameraID(), SUM and Sn the sum of the bytes of the payload and of slot n, and
    /// NAME the camera name with "_" for blanks. All numbers are decimal. The sums take bytes as
    /// signed and print modulo 2^64, so that one byte 0xFF sums up to 18446744073709551615.
    ///
    /// A name with a path separator in it, as a camera name may bring, is never opened.
    static void dump(const char* data, quint32 size, const Image& frame, quint32 a, quint32 b,
                     quint32 c);

    /// Where dump() writes @p frame, with a "/" at the end: TestServerData/unit/images in the
    /// user's home directory, or for frames of camera 255 the folder event in that.
    static QString dumpFolder(const Image& frame);

    /// Replaces the frame by the one in the file at @p path, which must hold exactly that frame.
    /// @return false when the file cannot be opened; the frame is then unchanged.
    /// @throws std::runtime_error as loadFromData().
    bool undump(const QString& path);

    /// Looks ahead for the length in bytes of the next frame in @p file, a sequence of network
    /// frames that is open for reading; its position stays where it is.
    /// @param[out] size the length, which is also returned.
    /// @throws std::runtime_error "Unknown header protocol" (also when fewer than four bytes are
    ///     left) and "Protocol support dropped"; @p size is then unchanged.
    quint32 determineSizeFromFile(QFile& file, quint32& size) const;
    /// @}

private:
    friend class ImageHeader;

    explicit Image(std::shared_ptr<ImageBase> image);

    /// Never null.
    std::shared_ptr<ImageBase> image_;
};

}  // namespace pylon

Q_DECLARE_METATYPE(pylon::Image)
