#include "zones.h"

#include <pylon/time/timezones.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "text.h"

namespace pylon::inspector {

namespace {

constexpr int maxQuarters = 95;
constexpr qint64 msecsPerQuarter = 900'000;

struct Candidate {
    std::string abbreviation;
    int quarters;
    QString fullName;
    std::string continent;
};

template <typename Matches>
std::vector<Candidate> candidates(Matches matches) {
    std::vector<Candidate> result;
    for (auto row = TimeZones::begin(); row != TimeZones::end(); ++row) {
        Candidate candidate{row.key(), row.offset(), QString::fromStdString(row.fullName()),
                            row.continent()};
        if (matches(candidate))
            result.push_back(std::move(candidate));
    }
    return result;
}

QByteArray offsetText(int quarters) {
    const int minutes = std::abs(quarters) * 15;
    return QStringLiteral("%1%2:%3")
        .arg(quarters < 0 ? QLatin1Char('-') : QLatin1Char('+'))
        .arg(minutes / 60, 2, 10, QLatin1Char('0'))
        .arg(minutes % 60, 2, 10, QLatin1Char('0'))
        .toLatin1();
}

QString listing(const std::vector<Candidate>& zones) {
    QByteArray text;
    for (const Candidate& zone : zones) {
        text += "\n  ";
        appendCell(text, zone.abbreviation, 6);
        text += offsetText(zone.quarters) + "  " + zone.fullName.toUtf8();
        if (!zone.continent.empty())
            text += " (" + QByteArray::fromStdString(zone.continent) + ')';
    }
    return QString::fromUtf8(text);
}

// What somebody who typed an unknown zone may have meant.
std::vector<Candidate> similarZones(const std::string& abbreviation) {
    const QString wanted = QString::fromStdString(abbreviation);
    auto zones =
        candidates([&](const Candidate& zone) { return zone.abbreviation == abbreviation; });
    if (zones.empty() && !wanted.isEmpty())
        zones = candidates([&](const Candidate& zone) {
            return wanted.compare(QString::fromStdString(zone.abbreviation), Qt::CaseInsensitive) ==
                       0 ||
                   zone.fullName.contains(wanted, Qt::CaseInsensitive);
        });
    return zones;
}

QString allAbbreviations() {
    constexpr qsizetype lineLength = 78;
    std::set<std::string> keys;
    for (auto row = TimeZones::begin(); row != TimeZones::end(); ++row)
        keys.insert(row.key());
    QString text;
    qsizetype column = lineLength;
    for (const std::string& key : keys) {
        const QString word = QString::fromStdString(key);
        if (column + 1 + word.size() > lineLength) {
            text += QLatin1String("\n ");
            column = 1;
        }
        text += QLatin1Char(' ') + word;
        column += 1 + word.size();
    }
    return text;
}

QString unknownZone(const QString& text, const std::string& abbreviation) {
    const QString start = QStringLiteral("unknown time zone \"%1\"; ").arg(printable(text));
    const auto similar = similarZones(abbreviation);
    if (similar.empty())
        return start + QLatin1String("the known abbreviations are") + allAbbreviations();
    return start + QLatin1String("candidates are") + listing(similar);
}

}  // namespace

Zone zoneOf(const Image& image) {
    Zone zone{image.timeZoneOffset(), QByteArray::fromStdString(image.timeZoneName())};
    if (std::abs(zone.quarters) > maxQuarters) {
        const int found = TimeZones::timeZoneOffset(zone.label.toStdString());
        if (!TimeZones::isFound(static_cast<signed char>(found)))
            return {};
        zone.quarters = found;
    }
    if (zone.label.isEmpty())
        zone.label = zone.quarters == 0 ? QByteArray("UTC") : offsetText(zone.quarters);
    return zone;
}

std::optional<Zone> findZone(const QString& text, QString* error) {
    const qsizetype colon = text.indexOf(QLatin1Char(':'));
    const std::string abbreviation = text.left(colon).toStdString();
    const std::string beginning = colon < 0 ? std::string() : text.sliced(colon + 1).toStdString();
    if (abbreviation.empty() && beginning.empty()) {
        *error = QStringLiteral("empty time zone; --zones lists those known");
        return {};
    }

    const auto zones = candidates([&](const Candidate& zone) {
        return (abbreviation.empty() || zone.abbreviation == abbreviation) &&
               zone.fullName.startsWith(QString::fromStdString(beginning));
    });
    if (zones.empty()) {
        *error = unknownZone(text, abbreviation);
        return {};
    }
    const auto differs = [&](const Candidate& zone) {
        return zone.quarters != zones.front().quarters;
    };
    if (std::ranges::any_of(zones, differs)) {
        *error = QStringLiteral("ambiguous time zone \"%1\"; candidates are%2")
                     .arg(printable(text), listing(zones));
        return {};
    }
    return Zone{zones.front().quarters, QByteArray::fromStdString(zones.front().abbreviation)};
}

QByteArray zoneListing() {
    std::ostringstream stream;
    TimeZones::listAll(stream);
    return QByteArray::fromStdString(stream.str());
}

void appendZonedTime(QByteArray& out, qint64 msecs, const Zone& zone) {
    appendDateTime(out, msecs + zone.quarters * msecsPerQuarter, ' ');
    out.append(' ');
    out.append(zone.label);
}

}  // namespace pylon::inspector
