// Finds offsets by abbreviation and name and shows a moment in a zone.

#include <pylon/time/timeconversion.h>
#include <pylon/time/timezones.h>

#include <iostream>

int main() {
    using pylon::TimeZones;
    TimeZones::list2ostream(std::cout, "CST", "");

    std::string name = "Cuba";
    std::cout << std::noshowpos << int{TimeZones::timeZoneOffset("CET")} << " quarter hours, "
              << int{TimeZones::timeZoneOffset("CST", name)} << " in " << name << ", "
              << (TimeZones::timeZoneOffset("CST") == TimeZones::ambiguous ? "ambiguous" : "clear")
              << " without the name\n";

    const QString text = pylon::msecsToString(1794726000000, "ddd hh:mm", pylon::TimeZone(5, 2));
    std::cout << qPrintable(text) << " half past five hours east of UTC\n";
}
