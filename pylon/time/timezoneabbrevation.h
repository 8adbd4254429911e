#pragma once

#include <pylon/export.h>

#include <concepts>
#include <cstddef>
#include <string>

class QDebug;

namespace pylon {

/// Abbreviation of a time zone ("CET"), held as a one-byte index into a fixed list of 112 texts.
///
/// Recording servers send this index with every frame. Index 0 has the empty text and means "none";
/// "UTC" is not in the list. Some texts stand in the list more than once for different zones: "CST"
/// at 29 and 32, "EST" at 37 and 42, "IST" at 51 and 58, "LHST" at 57 and 64, "ST" at 105, 107 and
/// 109. Finding an index by such a text gives the lowest one, and values compare by index.
///
/// Texts are matched whole and case-sensitive; a null pointer counts as the empty text.
///
/// Thread-safety: a plain value; the list is constant.
class PYLON_EXPORT TimeZoneAbbrevation {
public:
    /// The largest index of the list.
    static const int max_index = 111;

    /// Index 0.
    constexpr TimeZoneAbbrevation() noexcept = default;

    /// @p index if it is within 0..#max_index, else 0.
    constexpr TimeZoneAbbrevation(std::integral auto index) noexcept
        : index_(validIndex(static_cast<long long>(index))) {}

    /// The index of @p text, 0 if it is not in the list.
    TimeZoneAbbrevation(const std::string& text) noexcept;
    /// @copydoc TimeZoneAbbrevation(const std::string&)
    TimeZoneAbbrevation(const char* text) noexcept;

    /// Index into the list, 0..#max_index.
    constexpr unsigned char index() const noexcept { return index_; }

    /// Text of the index, never null; lives as long as the library is loaded.
    const char* c_str() const noexcept;
    /// Copy of c_str().
    std::string to_string() const;

    /// Takes over the index of @p text, and 0 if the list does not hold it: a failure also
    /// overwrites the old index.
    /// @return whether the new index is other than 0; false for the empty text.
    bool trySetFromString(const std::string& text) noexcept;
    /// @copydoc trySetFromString(const std::string&)
    bool trySetFromString(const char* text) noexcept;

    /// Takes over @p index if it is at most #max_index, else 0.
    constexpr void setFromIndex(unsigned char index) noexcept { index_ = validIndex(index); }

    /// The lowest index whose text equals @p text, 0 if there is none.
    static unsigned char lookupTimeZoneAbbrevationIndex(const std::string& text) noexcept;
    /// @copydoc lookupTimeZoneAbbrevationIndex(const std::string&)
    static unsigned char lookupTimeZoneAbbrevationIndex(const char* text) noexcept;

    /// Text of @p index, the empty text for 0 and for anything above #max_index. Never null; lives
    /// as long as the library is loaded.
    static const char* timeZoneAbbrevationFromIndex(unsigned char index) noexcept;

    /// Whether both hold the same index.
    friend constexpr bool operator==(TimeZoneAbbrevation, TimeZoneAbbrevation) noexcept = default;
    /// For hash containers; equal values have equal hashes.
    friend constexpr std::size_t qHash(TimeZoneAbbrevation abbrevation,
                                       std::size_t seed = 0) noexcept {
        return seed ^ abbrevation.index_;
    }
    /// Writes `TimeZoneAbbrevation("CET", 21)`.
    friend PYLON_EXPORT QDebug operator<<(QDebug debug, TimeZoneAbbrevation abbrevation);

private:
    static constexpr unsigned char validIndex(long long index) noexcept {
        return index >= 0 && index <= max_index ? static_cast<unsigned char>(index)
                                                : static_cast<unsigned char>(0);
    }

    unsigned char index_ = 0;
};

}  // namespace pylon
