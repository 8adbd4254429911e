#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>

/// @file
/// Fixed-layout text columns without a general-purpose formatter. Not part of the public interface.

namespace pylon::plog {

/// Writes columns into a buffer one after another; what does not fit is cut, as snprintf does.
/// Widths and precisions mean what they mean to printf: counts of bytes.
class ColumnWriter {
public:
    ColumnWriter(char* buffer, std::size_t size)
        : start_(buffer), pos_(buffer), end_(buffer + size) {}

    std::size_t length() const { return static_cast<std::size_t>(pos_ - start_); }
    std::size_t room() const { return static_cast<std::size_t>(end_ - pos_); }

    void put(std::string_view text) {
        if (text.size() > room())
            text = text.substr(0, room());
        std::memcpy(pos_, text.data(), text.size());
        pos_ += text.size();
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
        std::memcpy(pos_, text.data(), text.size());
        pos_ += width;
    }

    /// As "%0<digits>x", of the low bits.
    template <std::size_t digits>
    void hex(std::size_t value) {
        char text[digits];
        for (std::size_t i = digits; i-- > 0; value >>= 4)
            text[i] = "0123456789abcdef"[value & 0xF];
        put({text, digits});
    }

private:
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
