#include <pylon/media/internal/maskcodes.h>
#include <pylon/media/motionutils.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace pylon {

namespace {

using namespace motionmask;

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
