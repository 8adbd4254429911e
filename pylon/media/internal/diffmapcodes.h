#pragma once

#include <QtCore/QtGlobal>

#include <algorithm>
#include <array>
#include <cstddef>

/// @file
/// The variable-length codes of difference maps, as tables for coding and decoding. Not part of
/// the public interface.

namespace pylon::diffmap {

/// Longest code in bits.
inline constexpr int maxCodeBits = 10;

/// The quotients (cell / step) from first to last have codes of so many bits, counting up.
struct CodeRange {
    int first;
    int last;
    int bits;
    unsigned code;
};

inline constexpr std::array step15Codes = {
    CodeRange{0, 0, 1, 0b0},       CodeRange{1, 1, 4, 0b1000},  CodeRange{2, 7, 5, 0b10010},
    CodeRange{8, 15, 6, 0b110000}, CodeRange{16, 16, 3, 0b111},
};

inline constexpr std::array step8Codes = {
    CodeRange{0, 0, 1, 0b0},     CodeRange{1, 1, 3, 0b100},      CodeRange{2, 3, 4, 0b1010},
    CodeRange{4, 7, 5, 0b11000}, CodeRange{8, 15, 7, 0b1110000}, CodeRange{16, 31, 8, 0b11110000},
};

inline constexpr std::array step4Codes = {
    CodeRange{0, 0, 1, 0b0},         CodeRange{1, 1, 2, 0b10},          CodeRange{2, 5, 5, 0b11000},
    CodeRange{6, 11, 8, 0b11100000}, CodeRange{12, 63, 9, 0b111001100},
};

struct Code {
    quint16 code;
    quint8 bits;
};

/// The code of each cell value.
using EncodeTable = std::array<Code, 256>;

template <typename Ranges>
constexpr Code codeOf(const Ranges& ranges, int quotient) {
    // The greatest quotients of step 15 share a code.
    const int value = std::min(quotient, ranges.back().last);
    auto range = ranges.begin();
    while (range->last < value)
        ++range;
    return {static_cast<quint16>(range->code + static_cast<unsigned>(value - range->first)),
            static_cast<quint8>(range->bits)};
}

template <typename Ranges>
constexpr EncodeTable encodeTable(const Ranges& ranges, int step) {
    EncodeTable table{};
    for (std::size_t cell = 0; cell < table.size(); ++cell)
        table[cell] = codeOf(ranges, static_cast<int>(cell) / step);
    return table;
}

/// Step 2 has the codes of step 4, each with the lowest bit of its quotient behind it.
constexpr EncodeTable withOneBitMore(EncodeTable table) {
    for (std::size_t cell = 0; cell < table.size(); ++cell) {
        const auto lowestBit = static_cast<int>(cell >> 1 & 1);
        table[cell].code = static_cast<quint16>(table[cell].code << 1 | lowestBit);
        ++table[cell].bits;
    }
    return table;
}

/// What the next #indexBits bits stand for: all codes that they hold completely, at most seven.
/// Decoding waits for little but the number of bits, so that is where it is quickest to get.
struct DecodeTable {
    static constexpr int indexBits = 11;
    static constexpr int maxCells = 7;
    static constexpr std::size_t size = std::size_t{1} << indexBits;

    std::array<quint64, size> codes{};     ///< Byte 0: bits of all codes; bytes 1-7: their cells.
    std::array<quint8, size> counts{};     ///< Number of codes, one or more.
    std::array<quint8, size> firstBits{};  ///< Bits of the first code.

    static constexpr int bitsOf(quint64 codes) { return static_cast<int>(codes & 0x3F); }
    static constexpr quint64 cellsOf(quint64 codes) { return codes >> 8; }
};
static_assert(maxCodeBits <= DecodeTable::indexBits);

/// The first code alone for every index.
constexpr DecodeTable firstCodes(const EncodeTable& codes, int step) {
    DecodeTable table;
    for (int cell = 0; cell < 256; cell += step) {
        const Code code = codes[static_cast<std::size_t>(cell)];
        const int unused = DecodeTable::indexBits - code.bits;
        const std::size_t first = std::size_t{code.code} << unused;
        // Of cells that share a code, the least stands for it.
        if (table.counts[first] != 0)
            continue;
        for (std::size_t i = first; i < first + (std::size_t{1} << unused); ++i) {
            table.codes[i] = static_cast<quint64>(cell) << 8 | code.bits;
            table.counts[i] = 1;
            table.firstBits[i] = code.bits;
        }
    }
    return table;
}

constexpr DecodeTable decodeTable(const EncodeTable& codes, int step) {
    const DecodeTable single = firstCodes(codes, step);
    DecodeTable table = single;
    for (std::size_t index = 0; index < DecodeTable::size; ++index) {
        int bits = table.firstBits[index];
        int count = 1;
        quint64 cells = DecodeTable::cellsOf(single.codes[index]);
        for (; count < DecodeTable::maxCells; ++count) {
            const std::size_t next = (index << bits) % DecodeTable::size;
            if (bits + single.firstBits[next] > DecodeTable::indexBits)
                break;
            bits += single.firstBits[next];
            cells |= DecodeTable::cellsOf(single.codes[next]) << 8 * count;
        }
        table.codes[index] = cells << 8 | static_cast<quint64>(bits);
        table.counts[index] = static_cast<quint8>(count);
    }
    return table;
}

}  // namespace pylon::diffmap
