#pragma once

#include <pylon/export.h>
#include <pylon/media/imageheaderbase.h>

#include <QtCore/QByteArrayView>
#include <QtCore/QtGlobal>

#include <memory>

class QByteArray;
class QIODevice;

namespace pylon {

/// Reads and writes frame headers of one header protocol.
///
/// Thread-safety: implementations hold no state, so one object may serve several threads; the
/// headers and arrays handed to it must not be in use elsewhere.
class PYLON_EXPORT LyraImageHeaderParser {
public:
    virtual ~LyraImageHeaderParser();

    /// Reads the length in bytes of the frame that starts at the position of @p device, and
    /// leaves the position where it was; works on sequential devices too. @p size becomes 0 when
    /// the device has fewer than four bytes to give.
    virtual void readSize(QIODevice& device, quint32& size) const = 0;

    /// Parses the header at the start of @p data into @p header, and sets its headerSize to the
    /// offset of the payload. Fields that are not on the wire stay as they are.
    /// @p data must not be one of the slots of @p header.
    /// @throws std::runtime_error with a text naming the reason.
    virtual void parseHeader(const QByteArray& data, ImageHeaderBase& header) const = 0;

    /// Writes @p header over the first bytes of @p out, which grows where it is too short; bytes
    /// behind the header stay.
    /// @throws std::runtime_error when the header cannot be expressed; @p out is then unchanged.
    virtual void writeHeader(const ImageHeaderBase& header, QByteArray& out) const = 0;

    /// Writes the length of @p frame into its size field. An array too short to hold the field
    /// stays as it is.
    virtual void patchSize(QByteArray& frame) const = 0;

    /// Sets totalSize of @p header to what the frame it belongs to would take on the wire with its
    /// present slots and payload. headerSize and extensionSize keep describing the last parse.
    /// @throws std::runtime_error when the slots cannot be expressed; @p header is then unchanged.
    virtual void updateTotalSize(ImageHeaderBase& header) const = 0;

    /// A parser for @p version.
    /// @throws std::runtime_error "Protocol support dropped" for ImageHeaderVersion::Legacy,
    ///     "Unknown header protocol" for anything else but ImageHeaderVersion::V4.
    static std::unique_ptr<LyraImageHeaderParser> createParser(ImageHeaderVersion version);

    /// The protocol of the frame that starts with @p data, told by its first four bytes alone;
    /// ImageHeaderVersion::Unknown when there are fewer.
    static ImageHeaderVersion detectVersion(QByteArrayView data) noexcept;

protected:
    LyraImageHeaderParser() = default;
    LyraImageHeaderParser(const LyraImageHeaderParser& other) = default;
    LyraImageHeaderParser& operator=(const LyraImageHeaderParser& other) = default;
};

}  // namespace pylon
