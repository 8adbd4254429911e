#pragma once

#include <pylon/export.h>

#include <iosfwd>
#include <memory>
#include <string>

namespace pylon {

/// One time zone of the catalogue, without its abbreviation.
struct TimeZoneEntry {
    signed char offset = 0;   ///< Quarter hours (15 minutes) east of UTC, -44..55.
    unsigned char index = 0;  ///< Index of the abbreviation in TimeZoneAbbrevation's list, 0..111.
    std::string fullName;     ///< "Central European Time"; UTF-8.
    std::string continent;    ///< "Europe"; empty where none is known.

    friend bool operator==(const TimeZoneEntry&, const TimeZoneEntry&) = default;
};

/// The library's catalogue of 121 named time zones: turns an abbreviation such as "CET" and, where
/// that is not enough, the beginning of a full name into an offset from UTC.
///
/// Rows are ordered by abbreviation, byte by byte. Several abbreviations name more than one zone;
/// rows of the same abbreviation stand in the order of the built-in table. Offsets count quarter
/// hours east of UTC. Texts are matched case-sensitive.
///
/// The only instance is made by the first call and lives until the process ends.
///
/// Thread-safety: all functions may be called from any thread at any time; the catalogue is built
/// once and never changes afterwards.
class PYLON_EXPORT TimeZones {
    struct Row;
    struct Table;

public:
    /// Look-up result: no zone matches.
    static constexpr signed char notFound = 127;
    /// Look-up result: more than one zone matches.
    static constexpr signed char ambiguous = 126;

    /// A position in the catalogue; valid until the process ends. Accessors and increment must not
    /// be used at end().
    ///
    /// Thread-safety: a plain value.
    class PYLON_EXPORT Iterator {
    public:
        /// To the next row; after the last one to end().
        Iterator& operator++();
        /// Whether both are at the same row.
        friend bool operator==(Iterator, Iterator) noexcept = default;

        /// The abbreviation, "CET".
        std::string key() const;
        /// Quarter hours east of UTC.
        signed char offset() const;
        /// Index of the abbreviation in TimeZoneAbbrevation's list.
        unsigned char index() const;
        /// "Central European Time".
        std::string fullName() const;
        /// "Europe"; may be empty.
        std::string continent() const;

    private:
        friend class TimeZones;
        explicit Iterator(const Row* row) noexcept : row_(row) {}

        const Row* row_;
    };

    /// The catalogue, made on first use.
    static TimeZones& getInstance();

    /// Refers to the same table as @p other afterwards.
    TimeZones& operator=(const TimeZones& other);
    /// Refers to the same table as @p other.
    TimeZones(const TimeZones& other);
    ~TimeZones();

    /// The first row.
    static Iterator begin();
    /// The position after the last row.
    static Iterator end();
    /// The first row of @p abbrevation, end() if there is none. A null pointer counts as the empty
    /// text, which no row has.
    static Iterator find(const char* abbrevation);

    /// Offset of the zone with this abbreviation whose full name begins with @p fullName. An empty
    /// abbreviation searches all zones, an empty @p fullName fits every zone.
    ///
    /// On one match @p fullName becomes the zone's complete full name, on several matches that of
    /// the last one; without a match it stays.
    /// @return quarter hours east of UTC, #ambiguous if several zones match (even with equal
    /// offsets), #notFound if none does.
    static signed char timeZoneOffset(const std::string& abbrevation, std::string& fullName);
    /// The same without a full name: timeZoneOffset("GMT") is 0, timeZoneOffset("BST") #ambiguous.
    static signed char timeZoneOffset(const std::string& abbrevation);

    /// Whether the result of timeZoneOffset() is an offset, that is within -94..94.
    static constexpr bool isFound(signed char offset) noexcept {
        return offset >= -94 && offset <= 94;
    }

    /// Prints the zones that timeZoneOffset() would match as a table with a header line; nothing if
    /// none matches. Leaves the flags showpos, left and right set on @p os.
    /// @return the number of zones printed.
    static int list2ostream(std::ostream& os, std::string abbrevation, std::string fullName);
    /// Prints the whole catalogue; see list2ostream().
    static void listAll(std::ostream& os);

private:
    TimeZones();

    Iterator begin_() const noexcept;
    Iterator end_() const noexcept;
    Iterator find_(const char* abbrevation) const noexcept;

    std::shared_ptr<const Table> table_;
};

}  // namespace pylon
