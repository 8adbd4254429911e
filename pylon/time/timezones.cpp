#include <pylon/time/timezones.h>

#include <algorithm>
#include <cstdlib>
#include <iomanip>
#include <iterator>
#include <ostream>
#include <span>
#include <string_view>
#include <vector>

namespace pylon {

namespace {

struct CatalogueRow {
    const char* key;
    unsigned char index;
    signed char offset;
    const char* fullName;
    const char* continent;
};

// Abbreviation, its index, quarter hours east of UTC, full name, continent. The order decides
// between rows of the same abbreviation. Repeated rows and odd spellings are what peers know and
// must stay.
constexpr CatalogueRow catalogue[] = {
    {"UTC", 0, 0, "Universal Time Coordinate", ""},
    {"GMT", 1, 0, "Greenwich Mean Time", "Europe"},
    {"BST", 2, 4, "British Summer Time", "Europe"},
    {"BST", 2, 24, "Bangladesh Standard Time", "Asia"},
    {"AKST", 3, -36, "Alaska Standard Time", "North America"},
    {"ADT", 4, -12, "Atlantic Daylight Time", "Atlantic"},
    {"ALMT", 5, 24, "Alma-Ata Time", "Asia"},
    {"AKDT", 6, -32, "Alaska Daylight Time", ""},
    {"AMT", 7, 16, "Armenia Time", "Asia"},
    {"AMT", 7, -16, "Amazon Time", "South America"},
    {"ALMST", 8, 28, "Alma-Ata Summer Time", ""},
    {"ANAT", 9, 48, "Anadyr Time", "Asia"},
    {"AMST", 10, 20, "Armenia Summer Time", "Asia"},
    {"AMST", 10, -12, "Amazon Summer Time", "South America"},
    {"AQTT", 11, 20, "Aqtobe Time", "Asia"},
    {"ANAST", 12, 48, "Anadyr Summer Time", ""},
    {"AST", 13, 12, "Arabia Standard Time", ""},
    {"AST", 13, -16, "Atlantic Standard Time", ""},
    {"AQTST", 14, 24, "Aqtobe Summer Time", "Asia"},
    {"AZOT", 15, -4, "Azores Time", ""},
    {"AZOST", 16, 0, "Azores Standard/Summer Time", ""},
    {"AZT", 17, 16, "Azerbaijan Time", ""},
    {"AZST", 18, 20, "Azerbaijan Summer Time", ""},
    {"BRT", 19, -12, "Brasília time", ""},
    {"BRST", 20, -8, "Brasilia Summer Time", ""},
    {"CET", 21, 4, "Central European Time", "Europe"},
    {"CDT", 22, -20, "Central Daylight Time", "North America"},
    {"CDT", 22, -16, "Cuba Daylight Time", "Caribean"},
    {"CHAST", 23, 51, "Chatham Island Standard Time", ""},
    {"CEST", 24, 8, "Central European Summer Time", "Europe"},
    {"CHOT", 25, 32, "Choibalsan Time", ""},
    {"CHADT", 26, 55, "Chatham Island Daylight Time", ""},
    {"CLT", 27, -16, "Chile Standard Time", ""},
    {"CHOST", 28, 36, "Choibalsan Summer Time", ""},
    {"CST", 29, -24, "Central Standard Time", "North America"},
    {"CST", 29, 32, "China Standard Time", "Asia"},
    {"CLST", 30, -12, "Chile Summer Time", ""},
    {"EAST", 31, -24, "Easter Island Standard Time", ""},
    {"CST", 32, -20, "Cuba Standard Time", "Caribean"},
    {"EET", 33, 8, "Eastern European Time", "Europe"},
    {"EASST", 34, -20, "Easter Island Summer Time", ""},
    {"EGT", 35, -4, "East Greenland Time", ""},
    {"EDT", 36, -16, "Eastern Daylight Time", "North America"},
    {"EDT", 36, -44, "Eastern Daylight Time", "Pacific"},
    {"EST", 37, -20, "Eastern Standard Time", ""},
    {"EEST", 38, 12, "Eastern European Summer Time", "Europe"},
    {"FKT", 39, -16, "Falkland Island Time", "South America"},
    {"EGST", 40, 0, "Eastern Greenland Summer Time", ""},
    {"GET", 41, 16, "Georgia Standard Time", ""},
    {"EST", 42, -20, "Unused", ""},
    {"HAST", 43, -40, "Hawaii-Aleutian Standard Time", ""},
    {"FKST", 44, -12, "Falkland Islands Summer Time", "South America"},
    {"HOVT", 45, 28, "Hovd Time", ""},
    {"GEST", 46, 20, "Georgia Summer Time", "Asia"},
    {"IRKT", 47, 36, "Irkutsk Time", ""},
    {"HADT", 48, -36, "Hawaii-Aleutian Daylight Time", ""},
    {"IRST", 49, 14, "Iran Standard Time", ""},
    {"HOVST", 50, 32, "Hovd Summer Time", ""},
    {"IST", 51, 4, "Irish Standard Time", "Europe"},
    {"IDT", 52, 12, "Israel Daylight Time", ""},
    {"KGT", 53, 24, "Kyrgyzstan Time", ""},
    {"IRDT", 54, 18, "Iran Daylight Time", ""},
    {"KRAT", 55, 32, "Krasnoyarsk Time", ""},
    {"IRKST", 56, 36, "Irkutsk Summer Time", ""},
    {"LHST", 57, 42, "Lord Howe Standard Time", ""},
    {"IST", 58, 8, "Israel Standard Time", "Asia"},
    {"IST", 58, 22, "India Standard Time", "Asia"},
    {"MAGT", 59, 48, "Magadan Time", ""},
    {"KGST", 60, 24, "Kyrghystan Summer Time", ""},
    {"MET", 61, 4, "Middle Europe Time", ""},
    {"KRAST", 62, 32, "Krasnoyarsk Summer Time", ""},
    {"MSK", 63, 16, "Moscow Standard Time", ""},
    {"LHST", 64, 42, "Lord Howe Standard Time", ""},
    {"MST", 65, -28, "Mountain Standard Time", ""},
    {"MAGST", 66, 48, "Magadan Summer Time", ""},
    {"NOVT", 67, 24, "Novosibirsk Time", ""},
    {"MDT", 68, -24, "Mountain Daylight Time", ""},
    {"NST", 69, -14, "Newfoundland Standard Time", ""},
    {"MEST", 70, 8, "Middle European Summer Time", ""},
    {"NZST", 71, 48, "New Zealand Standard Time", ""},
    {"MSD", 72, 16, "Moscow Daylight Time", ""},
    {"OMST", 73, 28, "Omsk Standard Time", ""},
    {"NDT", 74, -10, "Newfoundland Daylight Time", ""},
    {"ORAT", 75, 20, "Oral Time", ""},
    {"NOVST", 76, 28, "Novosibirsk Summer Time", ""},
    {"PETT", 77, 48, "Kamchatka Time", ""},
    {"NZDT", 78, 52, "New Zealand Daylight Time", ""},
    {"PMST", 79, -12, "Pierre & Miquelon Standard Time", "North America"},
    {"OMSST", 80, 28, "Omsk Summer Time", "Asia"},
    {"PST", 81, -32, "Pacific Standard Time", "North America"},
    {"ORAST", 82, 20, "Oral Summer Time", ""},
    {"PYT", 83, -16, "Paraguay Time", "South America"},
    {"PDT", 84, -28, "Pacific Daylight Time", "North America"},
    {"QYZT", 85, 24, "Qyzylorda Time", ""},
    {"PETST", 86, 48, "Kamchatka Summer Time", "Asia"},
    {"SAKT", 87, 40, "Sakhalin Time", ""},
    {"PMDT", 88, -8, "Pierre & Miquelon Daylight Time", "North America"},
    {"SAMT", 89, 16, "Samara Time", "Europe"},
    {"PYST", 90, -12, "Paraguay Summer Time", "South America"},
    {"ULAT", 91, 32, "Ulaanbaatar Time", "Asia"},
    {"QYZST", 92, 28, "Qyzylorda Summer Time", ""},
    {"VLAT", 93, 44, "Vladivostok Time", "Asia"},
    {"SAKST", 94, 44, "Sakhalin Summer Time", ""},
    {"WAT", 95, 4, "West Africa Time", "Africa"},
    {"SAMST", 96, 20, "Samara Summer Time", ""},
    {"WET", 97, 0, "Western European Time", "Europe"},
    {"ULAST", 98, 36, "Ulaanbaatar Summer Time", ""},
    {"WGT", 99, -12, "West Greenland Time", "North America"},
    {"VLAST", 100, 44, "Vladivostok Summer Time", "Asia"},
    {"YAKT", 101, 40, "Yakutsk Time", "Asia"},
    {"WAST", 102, 8, "West Africa Summer Time", "Africa"},
    {"YEKT", 103, 24, "Yekaterinburg Time", "Asia"},
    {"WEST", 104, 4, "Western European Summer Time", "Europe"},
    {"ST", 105, 0, "Standard Time", ""},
    {"WGST", 106, -8, "Western Greenland Summer Time", "North America"},
    {"ST", 107, 0, "Standard Time", ""},
    {"YAKST", 108, 40, "Yakutsk Summer Time", "Asia"},
    {"ST", 109, 0, "Standard Time", ""},
    {"YEKST", 110, 24, "Yekaterinburg Summer Time", "Asia"},
    {"WST", 111, 4, "Western Sahara Summer Time", "Africa"},
    {"WST", 111, 52, "West Samoa Time", "Pacific"},
};
static_assert(std::size(catalogue) == 121);

}  // namespace

// Programs that take a constant by reference import it from here.
constexpr signed char TimeZones::notFound;
constexpr signed char TimeZones::ambiguous;

struct TimeZones::Row {
    std::string key;
    TimeZoneEntry zone;
};

// A multi-map kept as one sorted array: rows with equal keys stay in the order of the catalogue.
struct TimeZones::Table {
    Table() {
        rows.reserve(std::size(catalogue));
        for (const CatalogueRow& row : catalogue)
            rows.push_back({row.key, {row.offset, row.index, row.fullName, row.continent}});
        std::ranges::stable_sort(rows, {}, &Row::key);
    }

    std::span<const Row> withKey(std::string_view key) const noexcept {
        const auto keyOf = [](const Row& row) -> std::string_view { return row.key; };
        return {std::ranges::lower_bound(rows, key, {}, keyOf),
                std::ranges::upper_bound(rows, key, {}, keyOf)};
    }

    // The rows a look-up goes through.
    std::span<const Row> candidates(std::string_view abbrevation) const noexcept {
        return abbrevation.empty() ? std::span<const Row>(rows) : withKey(abbrevation);
    }

    std::vector<Row> rows;
};

TimeZones::Iterator& TimeZones::Iterator::operator++() {
    ++row_;
    return *this;
}

std::string TimeZones::Iterator::key() const {
    return row_->key;
}

signed char TimeZones::Iterator::offset() const {
    return row_->zone.offset;
}

unsigned char TimeZones::Iterator::index() const {
    return row_->zone.index;
}

std::string TimeZones::Iterator::fullName() const {
    return row_->zone.fullName;
}

std::string TimeZones::Iterator::continent() const {
    return row_->zone.continent;
}

TimeZones::TimeZones() : table_(std::make_shared<const Table>()) {}
TimeZones::TimeZones(const TimeZones& other) = default;
TimeZones& TimeZones::operator=(const TimeZones& other) = default;
TimeZones::~TimeZones() = default;

TimeZones& TimeZones::getInstance() {
    // Never destroyed: other objects may look zones up while the process exits.
    static TimeZones* const instance = new TimeZones;
    return *instance;
}

TimeZones::Iterator TimeZones::begin() {
    return getInstance().begin_();
}

TimeZones::Iterator TimeZones::end() {
    return getInstance().end_();
}

TimeZones::Iterator TimeZones::find(const char* abbrevation) {
    return getInstance().find_(abbrevation);
}

TimeZones::Iterator TimeZones::begin_() const noexcept {
    return Iterator(table_->rows.data());
}

TimeZones::Iterator TimeZones::end_() const noexcept {
    return Iterator(table_->rows.data() + table_->rows.size());
}

TimeZones::Iterator TimeZones::find_(const char* abbrevation) const noexcept {
    const auto found = table_->withKey(abbrevation ? abbrevation : "");
    return found.empty() ? end_() : Iterator(found.data());
}

signed char TimeZones::timeZoneOffset(const std::string& abbrevation, std::string& fullName) {
    int matches = 0;
    const TimeZoneEntry* last = nullptr;
    for (const Row& row : getInstance().table_->candidates(abbrevation)) {
        if (!row.zone.fullName.starts_with(fullName))
            continue;
        ++matches;
        last = &row.zone;
    }
    if (!last)
        return notFound;

    fullName = last->fullName;
    return matches == 1 ? last->offset : ambiguous;
}

signed char TimeZones::timeZoneOffset(const std::string& abbrevation) {
    std::string fullName;
    return timeZoneOffset(abbrevation, fullName);
}

namespace {

void printHeader(std::ostream& os) {
    os << std::setiosflags(std::ios::right) << std::setw(6) << "TZone" << std::setw(8) << "UTC"
       << std::setw(3) << std::setiosflags(std::ios::right | std::ios::showpos) << "+-H:"
       << "MM" << std::setw(32) << "Time Zone Full Name"
       << " "
       << "Continent" << std::endl
       << "----------------------------------------------------------------\n";
}

// setiosflags() adds to the adjust field: with left and right both set, streams pad on the left.
void printRow(std::ostream& os, const std::string& key, const TimeZoneEntry& zone) {
    static constexpr const char* minutes[] = {"00", "15", "30", "45"};
    os << std::setiosflags(std::ios::left) << std::setw(6) << key << std::setw(8) << " UTC"
       << std::setw(3) << std::setiosflags(std::ios::right | std::ios::showpos) << zone.offset / 4
       << ":" << minutes[std::abs(zone.offset) % 4] << std::setw(32) << zone.fullName << " "
       << zone.continent << std::endl;
}

}  // namespace

int TimeZones::list2ostream(std::ostream& os, std::string abbrevation, std::string fullName) {
    int printed = 0;
    for (const Row& row : getInstance().table_->candidates(abbrevation)) {
        if (!row.zone.fullName.starts_with(fullName))
            continue;
        if (printed == 0)
            printHeader(os);
        printRow(os, row.key, row.zone);
        ++printed;
    }
    return printed;
}

void TimeZones::listAll(std::ostream& os) {
    list2ostream(os, std::string(), std::string());
}

}  // namespace pylon
