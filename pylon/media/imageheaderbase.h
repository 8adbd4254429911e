#pragma once

#include <pylon/export.h>
#include <pylon/time/nanoelapsedtimer.h>
#include <pylon/time/timezoneabbrevation.h>

#include <QtCore/QByteArray>
#include <QtCore/QList>

namespace pylon {

/// Extension slots of a frame header.
enum class ImageHeaderExtension : int {
    ServerName = 0,   ///< Text: name of the recording server, UTF-8.
    CameraName = 1,   ///< Text: name of the camera, UTF-8.
    LinkedAudio = 2,  ///< Binary: first byte is the camera id of the linked audio source.
    Dewarping = 3,    ///< Binary: non-empty when the frame is dewarped.
    Binary4 = 4,      ///< Binary, meaning known to the server only.
    Marks = 5,        ///< Text: one-character markers; "h" marks a hidden frame.
    Text6 = 6         ///< Text, meaning known to the server only.
};

/// Number of extension slots of every header.
inline constexpr int imageHeaderExtensionCount = 7;

/// Header protocols a frame can be written in or recognised as.
enum class ImageHeaderVersion : int {
    Unknown = 0,  ///< Not a frame header.
    Legacy = 1,   ///< The older protocol: recognised, no longer supported.
    V4 = 2        ///< The current protocol, see LyraImageHeaderParserV4.
};

/// The header record of one media frame: what travels in its header, and what the client notes
/// beside it. @c Image is the usual way to reach a frame's header fields.
///
/// Thread-safety: not synchronised; do not change a record that another thread reads.
class PYLON_EXPORT ImageHeaderBase {
public:
    /// A default header: every number 0, the type "-", seven empty slots, the load timer running.
    ImageHeaderBase();

    /// A default header into which @p data is parsed.
    /// @throws std::runtime_error as loadFromData().
    explicit ImageHeaderBase(const QByteArray& data);

    ImageHeaderBase(const ImageHeaderBase& other) = default;
    ImageHeaderBase& operator=(const ImageHeaderBase& other) = default;
    virtual ~ImageHeaderBase();

    /// Recognises the header protocol from the first four bytes of @p data and parses the header
    /// into this object. Slots about which the new header says nothing keep their contents, see
    /// LyraImageHeaderParserV4::parseHeader(). @p data may go on after the header.
    /// @throws std::runtime_error "Unknown header protocol" (also for fewer than four bytes),
    ///     "Protocol support dropped", "Header too small" or "Size mismatch". After the last one
    ///     the fields hold unusable raw values: discard the header.
    void loadFromData(const QByteArray& data);

    /// The content of @p slot; an empty array for a value outside the enumeration. The reference
    /// is valid until the slot or #extensions changes.
    const QByteArray& extension(ImageHeaderExtension slot) const;

    /// Length in bytes of the payload of the frame this header belongs to; 0 for a header that
    /// stands alone.
    virtual quint32 payloadLength() const;

    /// Frame time in 1/300 s since the Unix epoch (UTC); 48 bits on the wire.
    qint64 time = 0;
    /// Wall-clock time of loading, in milliseconds since the Unix epoch. Only copied, never set
    /// by the library.
    qint64 imageClientSystemLoadTimeMSecsSinceEpoch = 0;
    /// Time stamp (1/300 s) of the next frame of a linked stream. Not on the wire.
    qint64 linkedStreamNextTimeStamp = 0;
    /// Unique id of the originating server. Not on the wire.
    quint64 serverUid = 0;
    /// Frame id. Not on the wire.
    quint64 id = 0;
    /// Bits 0-15 camera id, bits 16-31 track id.
    quint32 channel = 0;
    /// Id of the server. Not on the wire.
    quint32 serverId = 0;
    /// Id of the stream. Not on the wire.
    quint16 streamId = 0;
    /// Bytes before the payload as last parsed: 20 + #extensionSize.
    quint32 headerSize = 0;
    /// Length of the extension block as last parsed, 0..254 bytes.
    quint32 extensionSize = 0;
    /// Length of the whole frame in bytes: header, extension block and payload, at most
    /// 67,108,863.
    quint32 totalSize = 0;
    /// Sort key. Not on the wire.
    quint32 sortId = 0;
    /// Offset of the frame's time zone from UTC in quarter hours, positive east of Greenwich.
    qint8 timeZoneOffset = 0;
    /// Frame type, an ASCII character.
    quint8 type = '-';
    /// Frame flag bits; Image names those the library knows.
    quint8 flags = 0;
    /// Frame rate as sent by the server.
    quint8 rate = 0;
    /// The payload is encrypted.
    bool encrypted = false;
    /// The frame arrived encrypted; stays set when the payload is decrypted later.
    bool receivedEncrypted = false;
    /// The sender asks for a new key.
    bool newKeyRequired = false;
    /// Abbreviation of the frame's time zone.
    TimeZoneAbbrevation timeZoneAbbrevation;
    /// Side data of the client. Not on the wire.
    QByteArray attachedData;
    /// Runs since this object, or the one it was copied from, was constructed.
    NanoElapsedTimer loadTimer;
    /// The slots, indexed by ImageHeaderExtension: always imageHeaderExtensionCount entries.
    QList<QByteArray> extensions = QList<QByteArray>(imageHeaderExtensionCount);

protected:
    /// As loadFromData(), for @p data that is not a member of this object.
    void parse(const QByteArray& data);
};

}  // namespace pylon
