#include <pylon/media/internal/maskcodes.h>
#include <pylon/media/motionutils.h>

#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace pylon {

namespace {

using namespace motionmask;

constexpr int minDimension = 16;

// Cells that the last character of a class stands for.
constexpr int mediumRun = 702;
constexpr int hugeRun = 5103;

quint64 loadCells(const char* cells) {
    return qFromLittleEndian<quint64>(cells);
}

// One bit for each byte that is not 0, the lowest for the first.
quint64 nonZeroBytes(quint64 word) {
    constexpr quint64 lowBits = 0x7F * everyByte;
    const quint64 highBits = (((word & lowBits) + lowBits) | word) & ~lowBits;
    return (highBits >> 7) * 0x0102040810204080 >> 56;
}

// A set of cells, by their numbers, with an end mark behind the last.
class CellSet {
public:
    // Puts in each of count cells that differs from the one a distance before it, and the cells
    // that have none there.
    CellSet(const char* cells, int count, int distance) {
        for (int i = 0; i < distance; ++i)
            insert(i);
        // The word with the first cell that has one before it is not whole.
        int cell = distance;
        for (; cell % wordSize != 0; ++cell) {
            if (cells[cell] != cells[cell - distance])
                insert(cell);
        }
        for (; cell < count; cell += wordSize) {
            const quint64 difference = loadCells(cells + cell) ^ loadCells(cells + cell - distance);
            words_[index(cell)] |= nonZeroBytes(difference) << (cell % bitsPerWord);
        }
        // What was compared beyond the last cell does not matter: nobody looks behind the mark.
        insert(count);
    }

    // The first cell in the set from this one on, at most the end mark.
    int firstFrom(int cell) const {
        std::size_t i = index(cell);
        quint64 word = words_[i] & (~quint64{0} << (cell % bitsPerWord));
        while (word == 0)
            word = words_[++i];
        return static_cast<int>(i) * bitsPerWord + std::countr_zero(word);
    }

private:
    static constexpr int bitsPerWord = 64;

    static std::size_t index(int cell) { return static_cast<std::size_t>(cell / bitsPerWord); }
    void insert(int cell) { words_[index(cell)] |= quint64{1} << (cell % bitsPerWord); }

    std::array<quint64, gridCells / bitsPerWord + 1> words_{};
};

// The used part of a mask without gaps between its rows.
class PackedMask {
public:
    PackedMask(const char (*mask)[gridWidth], int width, int height) {
        char* to = cells_.data();
        for (int row = 0; row < height; ++row, to += width) {
            for (int column = 0; column < width; column += wordSize)
                std::memcpy(to + column, mask[row] + column, wordSize);
        }
        std::memset(to, 0, wordSize);
    }

    const char* cells() const { return cells_.data(); }

private:
    std::array<char, gridCells + wordSize> cells_;
};

class MaskWriter {
public:
    explicit MaskWriter(int width) : hasLargeRuns_(width == gridWidth) {
        if (hasLargeRuns_)
            put('z');
        else if (width <= 41)
            put(static_cast<char>(width + 49));
        else if (width <= 64)
            put(static_cast<char>(width + 55));
    }

    void writeRun(int value, int length) {
        if (value != predicted_) {
            putDigit(value);
            --length;
        }
        predicted_ = value;
        if (hasLargeRuns_)
            length = putLargeRuns(length);
        for (; length >= mediumRun; length -= mediumRun)
            put('z');
        if (length >= smallRun)
            put(static_cast<char>('a' - 1 + length / smallRun));
        length %= smallRun;
        if (length > 0) {
            put(static_cast<char>('A' - 1 + length));
            predicted_ = inverted(value);
        }
    }

    // The last run needs no length.
    QString finish(int value) {
        if (predicted_ == nothing)
            size_ = 0;
        if (value != predicted_)
            putDigit(value);
        return QString::fromLatin1(text_.data(), size_);
    }

private:
    static constexpr int nothing = -1;

    int putLargeRuns(int length) {
        for (; length >= hugeRun; length -= hugeRun)
            put('9');
        if (length >= largeRun)
            put(static_cast<char>('2' + length / largeRun));
        return length % largeRun;
    }

    void putDigit(int value) { put(static_cast<char>('0' + value)); }
    void put(char character) { text_[static_cast<std::size_t>(size_++)] = character; }

    // No character but the first stands for less than one cell.
    std::array<char, gridCells + 1> text_;
    int size_ = 0;
    int predicted_ = nothing;
    bool hasLargeRuns_;
};

// The value of a run that begins with this cell.
int valueOf(char cell) {
    return cell == 0 || cell == likeAbove ? cell : 1;
}

}  // namespace

// Programs that take a constant by reference import it from here.
constexpr int MotionUtils::maskWidth;
constexpr int MotionUtils::maskHeight;

QString MotionUtils::encodeMask(const char (*mask)[maskWidth], int width, int height) {
    width = std::clamp(width, minDimension, maskWidth);
    height = std::clamp(height, minDimension, maskHeight);
    const PackedMask packed(mask, width, height);
    const int count = width * height;
    const CellSet changes(packed.cells(), count, 1);
    const CellSet unlikeAbove(packed.cells(), count, width);
    MaskWriter writer(width);
    for (int cell = 0;;) {
        // A run goes on for as long as its cells have one value or, if that takes it farther, are
        // all like the ones above them.
        const int valueEnd = changes.firstFrom(cell + 1);
        const int copyEnd = unlikeAbove.firstFrom(cell);
        const int value = copyEnd > valueEnd ? likeAbove : valueOf(packed.cells()[cell]);
        const int end = std::max(valueEnd, copyEnd);
        if (end >= count)
            return writer.finish(value);
        writer.writeRun(value, end - cell);
        cell = end;
    }
}

}  // namespace pylon
