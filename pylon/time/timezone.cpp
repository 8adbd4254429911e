#include <pylon/time/timezone.h>

#include <pylon/time/timezones.h>

#include <QtCore/QHashFunctions>

#include <functional>
#include <utility>

namespace pylon {

namespace {

constexpr signed char unknownOffset = 127;
constexpr int maxHours = 23;
constexpr int quartersPerHour = 4;

signed char offsetOf(signed char hours, int quarters, signed char ifOutOfRange) noexcept {
    if (hours < -maxHours || hours > maxHours)
        return ifOutOfRange;
    const long long away = hours > 0 ? quarters : -static_cast<long long>(quarters);
    return static_cast<signed char>(away + static_cast<long long>(hours) * quartersPerHour);
}

}  // namespace

TimeZone::TimeZone() : name_("UTC") {}

TimeZone::TimeZone(const std::string& abbrevation, const std::string& fullName) {
    setName(abbrevation, fullName);
}

TimeZone::TimeZone(signed char offset, const std::string& name) : offset_(offset), name_(name) {}

TimeZone::TimeZone(signed char hours, int quarters)
    : offset_(offsetOf(hours, quarters, unknownOffset)) {}

TimeZone::TimeZone(signed char offset, TimeZoneAbbrevation abbrevation)
    : offset_(offset), abbrevation_(abbrevation) {}

TimeZone::TimeZone(ServerTimeZone) : serverTimeZone_(true) {}

TimeZone::TimeZone(TimeZone&& other) noexcept
    : offset_(other.offset_),
      abbrevation_(other.abbrevation_),
      name_(std::exchange(other.name_, std::string())),
      serverTimeZone_(other.serverTimeZone_) {}

TimeZone& TimeZone::operator=(TimeZone&& other) noexcept {
    offset_ = other.offset_;
    abbrevation_ = other.abbrevation_;
    name_ = std::exchange(other.name_, std::string());
    serverTimeZone_ = other.serverTimeZone_;
    return *this;
}

void TimeZone::setOffset(signed char hours, int quarters) noexcept {
    serverTimeZone_ = false;
    offset_ = offsetOf(hours, quarters, 0);
}

bool TimeZone::setName(const std::string& abbrevation, const std::string& fullName) {
    if (abbrevation.empty())
        return false;

    std::string filter = fullName;
    const signed char offset = TimeZones::timeZoneOffset(name_, filter);
    if (!TimeZones::isFound(offset))
        return false;

    offset_ = offset;
    name_ = abbrevation;
    return true;
}

std::size_t qHash(const TimeZone& zone, std::size_t seed) noexcept {
    return qHashMulti(seed, zone.offset_, zone.abbrevation_, std::hash<std::string>()(zone.name_),
                      zone.serverTimeZone_);
}

}  // namespace pylon
