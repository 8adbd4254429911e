#pragma once

#include <pylon/export.h>
#include <pylon/media/lyraimageheaderparser.h>

namespace pylon {

/// The header protocol V4. All numbers are little-endian.
///
///     offset  bytes
///          0      4  bits 31-26: marker 100000; bits 25-0: length of the whole frame
///          4      4  channel: bits 15-0 camera id, bits 31-16 track id
///          8      8  bits 63-56: zone offset, signed quarter hours; bits 55-48: index of the zone
///                    abbreviation; bits 47-0: time in 1/300 s since the Unix epoch
///         16      1  bit 7: encrypted; bit 6: new key required; bits 5-0: low bits of the type
///         17      1  flags
///         18      1  rate
///         19      1  N, length of the extension block, 0..254
///         20      N  extension block
///       20+N         payload
///
/// The extension block holds the slots in order, each starting with a lead byte:
///
///       0            empty slot
///       1-30         that many bytes of binary data follow
///       31           the next byte is the length (0-255) of the binary data behind it
///       32-255       the first byte of a text that ends before a 0 byte or with the block
///
/// A block may end early. The slots ServerName, CameraName, Marks and Text6 are written as text,
/// the others as binary. Two properties of the format to know: a text whose first byte is below 32
/// reads back as something else, and since the block is written without trailing 0 bytes, a binary
/// slot that is the last non-empty one loses its own.
class PYLON_EXPORT LyraImageHeaderParserV4 final : public LyraImageHeaderParser {
public:
    /// Bytes in front of the extension block.
    static constexpr quint32 fixedHeaderSize = 20;
    /// Longest extension block that can be written, in bytes.
    static constexpr quint32 maxExtensionSize = 254;
    /// Longest frame the size field can express, in bytes.
    static constexpr quint32 maxTotalSize = 0x3FFFFFF;

    /// Whether the marker bits of @p firstWord, the first four bytes of a frame, are those of V4.
    static constexpr bool hasMarker(quint32 firstWord) noexcept {
        return (firstWord & ~maxTotalSize) == marker;
    }

    LyraImageHeaderParserV4() = default;
    ~LyraImageHeaderParserV4() override;

    /// Does not look at the marker bits: any four bytes give a size.
    void readSize(QIODevice& device, quint32& size) const override;

    /// Binary data in the extension block replaces the content of its slot, text is appended to
    /// it, and an empty or missing field leaves it alone: with a fresh header this is plain
    /// assignment. Binary data cut short by the end of the block is taken as far as it goes.
    /// @throws std::runtime_error "Header too small" (@p header is unchanged), "Wrong header" or
    ///     "Size mismatch" (its fixed fields then hold raw values, so discard it).
    void parseHeader(const QByteArray& data, ImageHeaderBase& header) const override;

    /// The size field is adjusted by the difference between the extension block as last parsed
    /// and as written now; patchSize() on the complete frame makes it right in any case. The time
    /// must fit 48 bits. newKeyRequired is not written: that bit is bit 6 of the type.
    /// @throws std::runtime_error "Extension field is too large".
    void writeHeader(const ImageHeaderBase& header, QByteArray& out) const override;

    /// Lengths beyond #maxTotalSize spill into the marker bits.
    void patchSize(QByteArray& frame) const override;

    /// @throws std::runtime_error "Extension field is too large".
    void updateTotalSize(ImageHeaderBase& header) const override;

private:
    static constexpr quint32 marker = 0x80000000;
};

}  // namespace pylon
