#pragma once

#include <pylon/export.h>
#include <pylon/time/timezoneabbrevation.h>

#include <concepts>
#include <cstddef>
#include <string>

class QDebug;

namespace pylon {

/// Tag that selects the TimeZone constructor for the recording server's own time zone.
struct ServerTimeZone {};

/// A time zone as frames and callers carry it: an offset from UTC, an abbreviation, a short name,
/// and a mark that stands for the recording server's own zone.
///
/// Offsets count quarter hours (15 minutes) east of UTC: +1:00 is 4, -3:30 is -14. Valid offsets
/// are -95..95; every other value, by convention 127, means that the offset is unknown.
///
/// Thread-safety: a plain value; objects are independent of each other.
class PYLON_EXPORT TimeZone {
public:
    /// UTC: offset 0, no abbreviation, name "UTC".
    TimeZone();

    /// Offset 0, no abbreviation, empty name, then setName(): the offset of the only catalogue zone
    /// whose full name begins with @p fullName, and the name @p abbrevation. If no zone or more
    /// than one begins so, or @p abbrevation is empty, offset and name stay 0 and empty.
    TimeZone(const std::string& abbrevation, const std::string& fullName);

    /// @p offset in quarter hours, not validated, and @p name; no abbreviation.
    TimeZone(signed char offset, const std::string& name);

    /// As the constructor with a std::string; a null pointer gives the empty name.
    /// A template, so that a literal 0 as second argument always counts quarters.
    template <std::convertible_to<const char*> Text>
    TimeZone(signed char offset, const Text& name)
        : TimeZone(offset, fromPointer(static_cast<const char*>(name))) {}

    /// @p hours east of UTC, -23..23, and @p quarters of an hour away from UTC: (5, 2) is +5:30,
    /// (-3, 2) is -3:30. With 0 hours the quarters count west: (0, 2) is -0:30, and no positive
    /// offset below one hour can be given this way. The result is cut to eight bits. Other hours
    /// give the unknown offset 127. No abbreviation, empty name.
    TimeZone(signed char hours, int quarters);

    /// @p offset in quarter hours, not validated, and @p abbrevation; empty name.
    TimeZone(signed char offset, TimeZoneAbbrevation abbrevation);

    /// The recording server's own time zone: offset 0, no abbreviation, empty name.
    TimeZone(ServerTimeZone tag);

    TimeZone(const TimeZone&) = default;
    TimeZone& operator=(const TimeZone&) = default;
    /// Leaves the name of @p other empty and its other fields as they were.
    TimeZone(TimeZone&& other) noexcept;
    /// @copydoc TimeZone(TimeZone&&)
    TimeZone& operator=(TimeZone&& other) noexcept;
    ~TimeZone() = default;

    /// Quarter hours east of UTC; see isValidOffset().
    signed char offset() const noexcept { return offset_; }
    /// Abbreviation as it travels in frames; may be unknown.
    TimeZoneAbbrevation abbrevation() const noexcept { return abbrevation_; }
    /// Short name, normally an abbreviation such as "UTC" or "CET"; may be empty.
    std::string name() const { return name_; }
    /// Whether the value stands for the recording server's own time zone.
    bool isServerTimeZone() const noexcept { return serverTimeZone_; }

    /// Whether the offset is within -95..95.
    bool isValidOffset() const noexcept { return offset_ >= -maxOffset && offset_ <= maxOffset; }
    /// Whether the name is not empty.
    bool isValidName() const noexcept { return !name_.empty(); }
    /// Whether the offset or the name is valid or the value stands for the server's time zone.
    bool isValid() const noexcept { return isValidOffset() || isValidName() || isServerTimeZone(); }

    /// Sets the offset by the rule of TimeZone(signed char, int), except that hours outside -23..23
    /// give offset 0. The value no longer stands for the server's time zone; abbreviation and name
    /// stay.
    void setOffset(signed char hours, int quarters) noexcept;

    /// Sets or clears only the mark of the server's time zone.
    void setServerTimeZone(bool serverTimeZone) noexcept { serverTimeZone_ = serverTimeZone; }

    /// Looks up the offset in the catalogue (TimeZones::timeZoneOffset()) by the name this value
    /// holds before the call and by the beginning @p fullName of a full name; an empty held name
    /// searches all zones. If exactly one zone matches, its offset and the name @p abbrevation are
    /// taken over. Abbreviation and server mark always stay.
    /// @return whether the value changed; false, with nothing changed, if @p abbrevation is empty
    /// or the look-up gives no zone or several.
    bool setName(const std::string& abbrevation, const std::string& fullName);

    /// Member by member.
    friend bool operator==(const TimeZone&, const TimeZone&) = default;
    /// For hash containers; equal values have equal hashes.
    friend PYLON_EXPORT std::size_t qHash(const TimeZone& zone, std::size_t seed) noexcept;
    /// Writes `TimeZone(+5:30 "IST" "")`: offset, name and abbreviation; "unknown" for an offset
    /// that is not valid, "server" in front for the server's time zone.
    friend PYLON_EXPORT QDebug operator<<(QDebug debug, const TimeZone& zone);

private:
    static constexpr int maxOffset = 95;

    static std::string fromPointer(const char* text) { return text ? text : std::string(); }

    signed char offset_ = 0;
    TimeZoneAbbrevation abbrevation_;
    std::string name_;
    bool serverTimeZone_ = false;
};

}  // namespace pylon
