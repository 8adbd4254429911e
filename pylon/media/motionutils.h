#pragma once

#include <pylon/export.h>

#include <QtCore/QString>

#include <cstddef>
#include <optional>
#include <span>

namespace pylon {

/// Codecs for motion detection: a text form of masks and a bit-packed form of difference maps.
///
/// A mask tells which cells of a camera's picture are watched. It is a grid of 90 rows with 120
/// cells, each a `char`: 0 not watched, 1 watched. A camera uses the upper left part of it.
///
/// The text of a mask is a character for the width, missing where there is none for it, followed
/// by runs of cells that go on across the ends of rows:
///
///     A-Z, a-w, z   as the first character: width 16-41, 42-64, 120; else the width is 1
///     0, 1          one cell of this value, which becomes the current value
///     2             one cell like the one above it, and this becomes the current "value"
///     A-Z           1-26 cells of the current value; it is inverted thereafter (2 becomes 0)
///     a-z           27, 54, ... 702 cells of the current value
///     3-9           729, 1458, ... 5103 cells of the current value
///     end           all cells that are left have the current value, which is 1 at the beginning
///
/// A difference map tells the strength of motion, 0-255, in each cell of a picture, row by row. Its
/// coded form is two bytes followed by a code of one to ten bits for each cell, most significant
/// bit first. Cells are coded as multiples of a step, so decoding gives them rounded down.
///
///     byte 0   bit 7: coded; bits 6-0: width
///     byte 1   bits 7-6: step, 0 = 2, 1 = 4, 2 = 8, 3 = 15; bits 5-0: height
///
/// Without bit 7, byte 1 is the height and the cells follow as they are.
///
/// For bytes from a network use the functions with "try" in their names, which know the sizes of
/// what they read and write.
///
/// Thread-safety: no state; all functions may be called from any thread.
class PYLON_EXPORT MotionUtils {
public:
    /// Cells in a row of a mask.
    static constexpr int maskWidth = 120;
    /// Rows of a mask.
    static constexpr int maskHeight = 90;

    /// Dimensions of a difference map in cells.
    struct DiffMapSize {
        int width = 0;   ///< 0 to 127.
        int height = 0;  ///< 0 to 63, in raw form 0 to 255.
    };

    /// @name Masks
    /// @{

    /// The text of the upper left part of @p mask, the dimensions of which are taken as within
    /// 16-120 and 16-90; @p mask holds at least that many rows. For widths from 65 to 119 there is
    /// no character, so their text does not read back as the same mask. A mask of one value is the
    /// digit of it alone. A cell of 2, as decodeMask() may leave it, is coded as such; any other
    /// value but 0 is that of a watched cell.
    static QString encodeMask(const char (*mask)[maskWidth], int width, int height);

    /// Fills @p mask, all 90 rows of it, from @p text, which ends with a 0 byte. Cells to the right
    /// of the width go on with the value that the row ends with. Where @p text wants row 0 to be
    /// like the row above, its cells become 2.
    /// @return the width, or -1 at a character that means nothing; cells before it are filled then.
    static int decodeMask(const char* text, char (*mask)[maskWidth]);

    /// decodeMask() with sizes. @p mask holds 90 times 120 cells or more, of which the first are
    /// filled; after a failure it is unchanged. Unlike there, @p text ends with its last character.
    /// @param[out] error receives the reason of a failure, if given: "Mask too small", or "Invalid
    ///     character in mask text at byte N", counted from 0.
    /// @return the width, or none after a failure.
    [[nodiscard]] static std::optional<int> tryDecodeMask(std::span<const char> text,
                                                          std::span<char> mask,
                                                          QString* error = nullptr);
    /// @}

    /// @name Difference maps
    /// @{

    /// The most bytes that the coded form of a map can take.
    static constexpr std::size_t maxCodedSize(int width, int height, int step) noexcept {
        if (width <= 0 || height <= 0)
            return 2;
        const auto cells = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        const std::size_t bits = step == 15 ? 6 : step == 4 ? 9 : step == 2 ? 10 : 8;
        return 2 + (cells * bits + 7) / 8;
    }

    /// Codes @p map with a step of 2, 4, 8 or 15; any other @p step copies the cells as they are.
    /// @pre @p width is below 128 and @p height below 64 (256 when copied); @p out has room for
    ///     maxCodedSize() bytes.
    /// @return the number of bytes written.
    int encodeDiffMap(const unsigned char* map, int width, int height, int step,
                      unsigned char* out) const;

    /// Decodes the map at @p coded, and writes as many cells as its first two bytes say.
    /// @pre @p coded is complete and @p map has room for all cells.
    void decodeDiffMap(const unsigned char* coded, unsigned char* map) const;

    /// encodeDiffMap() with sizes and without preconditions.
    /// @param[out] error receives the reason of a failure, if given: "Difference map dimensions out
    ///     of range", "Difference map too short" when @p map has fewer cells, or "Buffer too small"
    ///     when @p out has no room for maxCodedSize() bytes.
    /// @return the number of bytes written, or none after a failure; @p out is then unchanged.
    [[nodiscard]] static std::optional<std::size_t> tryEncodeDiffMap(
        std::span<const unsigned char> map, int width, int height, int step,
        std::span<unsigned char> out, QString* error = nullptr);

    /// decodeDiffMap() with sizes. Bytes behind the last code, and cells of @p map behind the last
    /// one coded, do not matter.
    /// @param[out] error receives the reason of a failure, if given: "Difference map too short"
    ///     when @p coded ends early, or "Buffer too small" when @p map has no room for all cells.
    /// @return the dimensions, or none after a failure; the cells of @p map are then unspecified.
    [[nodiscard]] static std::optional<DiffMapSize> tryDecodeDiffMap(
        std::span<const unsigned char> coded, std::span<unsigned char> map,
        QString* error = nullptr);
    /// @}

    /// @name Bits
    /// Bit @p position is bit 7 - @p position % 8 of byte @p position / 8: most significant first.
    /// @{

    /// The number in the @p n bits (0-32) from @p position on, which advances by @p n.
    static int readUn(const unsigned char* buffer, int& position, int n);

    /// Writes the low @p n bits (up to 32) of @p value from @p position on, which advances by @p n;
    /// nothing for an @p n below 1. A byte is cleared when its first bit is written; into one begun
    /// before, the bits are ORed.
    void writeUn(unsigned char* buffer, int& position, int n, int value) const;
    /// @}
};

}  // namespace pylon
