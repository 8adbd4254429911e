#include <pylon/time/timezoneabbrevation.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace pylon {

namespace {

// Position is the index that servers send; repeated texts belong to different zones.
// clang-format off
constexpr std::string_view abbrevationTexts[] = {
    /*   0 */ "", "GMT", "BST", "AKST", "ADT", "ALMT", "AKDT", "AMT", "ALMST", "ANAT",
    /*  10 */ "AMST", "AQTT", "ANAST", "AST", "AQTST", "AZOT", "AZOST", "AZT", "AZST", "BRT",
    /*  20 */ "BRST", "CET", "CDT", "CHAST", "CEST", "CHOT", "CHADT", "CLT", "CHOST", "CST",
    /*  30 */ "CLST", "EAST", "CST", "EET", "EASST", "EGT", "EDT", "EST", "EEST", "FKT",
    /*  40 */ "EGST", "GET", "EST", "HAST", "FKST", "HOVT", "GEST", "IRKT", "HADT", "IRST",
    /*  50 */ "HOVST", "IST", "IDT", "KGT", "IRDT", "KRAT", "IRKST", "LHST", "IST", "MAGT",
    /*  60 */ "KGST", "MET", "KRAST", "MSK", "LHST", "MST", "MAGST", "NOVT", "MDT", "NST",
    /*  70 */ "MEST", "NZST", "MSD", "OMST", "NDT", "ORAT", "NOVST", "PETT", "NZDT", "PMST",
    /*  80 */ "OMSST", "PST", "ORAST", "PYT", "PDT", "QYZT", "PETST", "SAKT", "PMDT", "SAMT",
    /*  90 */ "PYST", "ULAT", "QYZST", "VLAT", "SAKST", "WAT", "SAMST", "WET", "ULAST", "WGT",
    /* 100 */ "VLAST", "YAKT", "WAST", "YEKT", "WEST", "ST", "WGST", "ST", "YAKST", "ST",
    /* 110 */ "YEKST", "WST",
};
// clang-format on
static_assert(std::size(abbrevationTexts) == TimeZoneAbbrevation::max_index + 1);

unsigned char lookup(std::string_view text) noexcept {
    const auto* const found = std::ranges::find(abbrevationTexts, text);
    return found == std::end(abbrevationTexts)
               ? static_cast<unsigned char>(0)
               : static_cast<unsigned char>(found - std::begin(abbrevationTexts));
}

std::string_view textOrEmpty(const char* text) noexcept {
    return text ? std::string_view(text) : std::string_view();
}

}  // namespace

const int TimeZoneAbbrevation::max_index;

TimeZoneAbbrevation::TimeZoneAbbrevation(const std::string& text) noexcept : index_(lookup(text)) {}

TimeZoneAbbrevation::TimeZoneAbbrevation(const char* text) noexcept
    : index_(lookup(textOrEmpty(text))) {}

const char* TimeZoneAbbrevation::c_str() const noexcept {
    return abbrevationTexts[index_].data();
}

std::string TimeZoneAbbrevation::to_string() const {
    return std::string(abbrevationTexts[index_]);
}

bool TimeZoneAbbrevation::trySetFromString(const std::string& text) noexcept {
    index_ = lookup(text);
    return index_ != 0;
}

bool TimeZoneAbbrevation::trySetFromString(const char* text) noexcept {
    index_ = lookup(textOrEmpty(text));
    return index_ != 0;
}

unsigned char TimeZoneAbbrevation::lookupTimeZoneAbbrevationIndex(
    const std::string& text) noexcept {
    return lookup(text);
}

unsigned char TimeZoneAbbrevation::lookupTimeZoneAbbrevationIndex(const char* text) noexcept {
    return lookup(textOrEmpty(text));
}

const char* TimeZoneAbbrevation::timeZoneAbbrevationFromIndex(unsigned char index) noexcept {
    return TimeZoneAbbrevation(index).c_str();
}

}  // namespace pylon
