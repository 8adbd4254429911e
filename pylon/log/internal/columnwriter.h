#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// @file
/// Fixed-layout text columns without a general-purpose formatter. Not part of the public interface.

namespace pylon::plog {

/// Copies a short text. Widest is eight bytes at a time: the C library's copy uses the widest
/// vector registers there are, which on some processors keeps the code around it waiting for longer
/// than all else that a log line costs.
inline char* copyShort(const char* from, std::size_t size, char* to) {
    constexpr std::size_t step = sizeof(std::uint64_t);
    constexpr std::size_t longest = 256;
    if (size > longest) {
        std::memcpy(to, from, size);
        return to + size;
    }
    char* const end = to + size;
    for (; size >= step; size -= step, from += step, to += step)
        std::memcpy(to, from, step);
    while (to != end)
        *to++ = *from++;
    return end;
}

/// Writes columns into a buffer one after another; what does not fit is cut, as snprintf does.
/// Widths and precisions mean what they mean to printf: counts of bytes.
class ColumnWriter {
public:
    ColumnWriter(char* buffer, std::size_t size)
        : start_(buffer), pos_(buffer), end_(buffer + size) {}

    std::size_t length() const { return static_cast<std::size_t>(pos_ - start_); }
    std::size_t room() const { return static_cast<std::size_t>(end_ - pos_); }

    /// Counts characters that somebody else wrote behind the last column.
    void advance(int count) { pos_ += count; }

    template <std::size_t size>
    void put(const char (&literal)[size]) {
        constexpr std::size_t length = size - 1;
        if (length > room())
            return put(std::string_view(literal));
        std::memcpy(pos_, literal, length);
        pos_ += length;
    }

    void put(std::string_view text) {
        if (text.size() > room())
            text = text.substr(0, room());
        pos_ = copyShort(text.data(), text.size(), pos_);
    }

    void fill(std::size_t count) {
        if (count > room())
            count = room();
        std::memset(pos_, ' ', count);
        pos_ += count;
    }

    /// As "%<width>s".
    template <std::size_t width>
    void right(std::string_view text) {
        if (text.size() < width)
            fill(width - text.size());
        put(text);
    }

    /// As "%-<width>.<width>s".
    template <std::size_t width>
    void leftCut(std::string_view text) {
        text = text.substr(0, width);
        if (room() < width) {
            put(text);
            fill(width);
            return;
        }
        // A length known to the compiler makes the blanks cheap.
        std::memset(pos_, ' ', width);
        copyShort(text.data(), text.size(), pos_);
        pos_ += width;
    }

    /// As "%04x".
    void hex4(std::uint16_t value) {
        const std::uint32_t digits = hexDigits(value);
        put(std::string_view(reinterpret_cast<const char*>(&digits), sizeof digits));
    }

    /// As "%08x".
    void hex8(std::uint32_t value) {
        hex4(static_cast<std::uint16_t>(value >> 16));
        hex4(static_cast<std::uint16_t>(value));
    }

private:
    /// The four digits in memory order. All at once, since stores of single characters would keep
    /// later copies of the line waiting.
    static std::uint32_t hexDigits(std::uint16_t value) {
        std::uint32_t nibbles = 0;
        for (int i = 0; i < 4; ++i)
            nibbles |= ((std::uint32_t{value} >> (12 - 4 * i)) & 0xF) << shiftOfCharacter(i);
        const std::uint32_t isLetter = ((nibbles + 0x06060606) >> 4) & 0x01010101;
        return nibbles + 0x30303030 + isLetter * ('a' - '0' - 10);
    }

    static constexpr int shiftOfCharacter(int i) {
        return 8 * (std::endian::native == std::endian::little ? i : 3 - i);
    }

    char* start_;
    char* pos_;
    char* end_;
};

/// The text that printf shows for @p text, read no further than @p limit bytes.
inline std::string_view shownText(const char* text, std::size_t limit) {
    if (!text)
        return "(null)";
    const void* end = std::memchr(text, '\0', limit);
    return {text, end ? static_cast<std::size_t>(static_cast<const char*>(end) - text) : limit};
}

}  // namespace pylon::plog
