#include "zonechoice.h"

#include <pylon/time/timeconversion.h>
#include <pylon/time/timezones.h>

#include <cstdlib>
#include <sstream>

namespace pylon::viewer {

namespace {

QString offsetText(int quarters) {
    const int minutes = std::abs(quarters) * 15;
    return QStringLiteral("UTC%1%2:%3")
        .arg(quarters < 0 ? QLatin1Char('-') : QLatin1Char('+'))
        .arg(minutes / 60, 2, 10, QLatin1Char('0'))
        .arg(minutes % 60, 2, 10, QLatin1Char('0'));
}

QString catalogueLabel(const std::string& abbreviation, int quarters, const std::string& fullName) {
    return QStringLiteral("%1  %2, %3")
        .arg(QString::fromStdString(abbreviation), QString::fromStdString(fullName),
             offsetText(quarters));
}

QString candidates(const std::string& abbreviation, const std::string& fullName) {
    std::ostringstream list;
    TimeZones::list2ostream(list, abbreviation, fullName);
    return QString::fromStdString(list.str());
}

}  // namespace

QList<ZoneChoice> zoneChoices() {
    QList<ZoneChoice> choices{{QStringLiteral("Recorder's own zone"), TimeZone(ServerTimeZone())},
                              {QStringLiteral("UTC"), TimeZone()}};
    for (auto row = TimeZones::begin(); row != TimeZones::end(); ++row)
        choices.append({catalogueLabel(row.key(), row.offset(), row.fullName()),
                        TimeZone(row.offset(), row.key())});
    return choices;
}

qsizetype findZone(const QList<ZoneChoice>& choices, const QString& text, QString* error) {
    if (text == QLatin1String("server"))
        return 0;
    if (text == QLatin1String("UTC"))
        return 1;
    const qsizetype colon = text.indexOf(QLatin1Char(':'));
    const std::string abbreviation = text.left(colon).toStdString();
    const std::string beginning = colon < 0 ? std::string() : text.sliced(colon + 1).toStdString();
    std::string fullName = beginning;
    const signed char offset = TimeZones::timeZoneOffset(abbreviation, fullName);
    if (offset == TimeZones::ambiguous) {
        *error = QStringLiteral("several time zones fit \"%1\":\n%2")
                     .arg(text, candidates(abbreviation, beginning));
        return -1;
    }
    for (qsizetype i = 2; offset != TimeZones::notFound && i < choices.size(); ++i) {
        const std::string key = choices[i].zone.name();
        if ((abbreviation.empty() || key == abbreviation) &&
            choices[i].label == catalogueLabel(key, offset, fullName))
            return i;
    }
    *error = QStringLiteral("there is no time zone \"%1\"").arg(text);
    return -1;
}

QString timeText(const Image& frame, const TimeZone& zone) {
    QString name =
        QString::fromStdString(zone.isServerTimeZone() ? frame.timeZoneName() : zone.name());
    if (name.isEmpty())
        name = offsetText(renderingOffset(zone.isServerTimeZone() ? frame.timeZone() : zone));
    return frame.dateTime(zone, QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz")) + QLatin1Char(' ') +
           name;
}

}  // namespace pylon::viewer
