#include <pylon/media/motionutils.h>

#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace pylon {

namespace {

constexpr int gridWidth = MotionUtils::maskWidth;
constexpr int gridCells = gridWidth * MotionUtils::maskHeight;
constexpr int minDimension = 16;
// The mask is handled in words of this many cells, which may reach beyond its end.
constexpr int wordSize = sizeof(quint64);
constexpr quint64 everyByte = 0x0101010101010101;

constexpr int likeAbove = 2;

// Cells that one character of a class stands for.
constexpr int smallRun = 27;
constexpr int mediumRun = 702;
constexpr int largeRun = 729;
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

constexpr int inverted(int value) {
    return value == 0 ? 1 : 0;
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

class MaskReader {
public:
    // A text without an end given ends with a 0 byte.
    explicit MaskReader(const char* text, const char* end = nullptr) : at_(text), end_(end) {
        if (!atEnd())
            width_ = readWidth();
    }

    bool readCells() {
        for (int row = 0; row < MotionUtils::maskHeight; ++row) {
            if (!readRow())
                return false;
            put(gridWidth - width_);
        }
        return true;
    }

    int width() const { return width_; }
    // The character read last.
    const char* lastRead() const { return at_ - 1; }
    const char* cells() const { return cells_.data(); }
    std::size_t filled() const { return static_cast<std::size_t>(filled_); }

private:
    static constexpr int toTheEnd = 55000;

    bool atEnd() const { return end_ ? at_ == end_ : *at_ == '\0'; }

    int readWidth() {
        const char first = *at_;
        int width = 1;
        if (first >= 'A' && first <= 'Z')
            width = first - 49;
        else if (first >= 'a' && first <= 'w')
            width = first - 55;
        else if (first == 'z')
            width = gridWidth;
        if (width > 1)
            ++at_;
        return width;
    }

    bool readRow() {
        for (int left = width_; left > 0;) {
            if (remaining_ == 0 && !readRun())
                return false;
            const int count = std::min(remaining_, left);
            put(count);
            remaining_ -= count;
            left -= count;
        }
        return true;
    }

    bool readRun() {
        if (atEnd()) {
            value_ = toggle_;
            remaining_ = toTheEnd;
            return true;
        }
        const char character = *at_++;
        if (character >= '0' && character <= '2') {
            value_ = toggle_ = character - '0';
            remaining_ = 1;
            return true;
        }
        value_ = toggle_;
        remaining_ = runLength(character);
        if (remaining_ <= 26)
            toggle_ = inverted(toggle_);
        return remaining_ > 0;
    }

    // 0 for a character that means nothing.
    static int runLength(char character) {
        if (character >= 'A' && character <= 'Z')
            return character - 'A' + 1;
        if (character >= 'a' && character <= 'z')
            return smallRun * (character - 'a' + 1);
        if (character >= '3' && character <= '9')
            return largeRun * (character - '2');
        return 0;
    }

    // Gives a value to the next cells, all of one row. Whole words are written, of which the cells
    // to come will overwrite what is too much.
    void put(int count) {
        char* const first = cells_.data() + filled_;
        char* const last = first + count;
        if (value_ == likeAbove && filled_ >= gridWidth) {
            for (char* to = first; to < last; to += wordSize)
                std::memcpy(to, to - gridWidth, wordSize);
        } else {
            const quint64 word = static_cast<quint64>(value_) * everyByte;
            for (char* to = first; to < last; to += wordSize)
                std::memcpy(to, &word, wordSize);
        }
        filled_ += count;
    }

    const char* at_;
    const char* end_;
    int width_ = 1;
    int remaining_ = 0;
    int value_ = 0;
    int toggle_ = 1;
    int filled_ = 0;
    std::array<char, gridCells + wordSize> cells_;
};

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

int MotionUtils::decodeMask(const char* text, char (*mask)[maskWidth]) {
    MaskReader reader(text);
    const bool valid = reader.readCells();
    std::memcpy(mask, reader.cells(), reader.filled());
    return valid ? reader.width() : -1;
}

std::optional<int> MotionUtils::tryDecodeMask(std::span<const char> text, std::span<char> mask,
                                              QString* error) {
    const auto fail = [error](const QString& reason) {
        if (error)
            *error = reason;
        return std::nullopt;
    };
    if (mask.size() < std::size_t{gridCells})
        return fail(QStringLiteral("Mask too small"));
    const char* const begin = text.empty() ? "" : text.data();
    MaskReader reader(begin, begin + text.size());
    if (!reader.readCells())
        return fail(QStringLiteral("Invalid character in mask text at byte %1")
                        .arg(reader.lastRead() - begin));
    std::memcpy(mask.data(), reader.cells(), reader.filled());
    return reader.width();
}

}  // namespace pylon
