#include <pylon/time/timeconversion.h>

#include <pylon/time/timezones.h>

#include <QtCore/QLocale>

namespace pylon {

namespace {

constexpr long long msecsPerQuarterHour = 900'000;

}  // namespace

long long dateTimeToTime300(const QDateTime& dt) {
    const long long msecs = dt.toMSecsSinceEpoch();
    return msecs / 10 * 3 + msecs % 10 * 3 / 10;
}

long long toMSecs(long long time300) noexcept {
    // Unsigned, for extreme values wrap. 3t + t / 3 is 10t / 3 without the larger product.
    return static_cast<long long>(3 * static_cast<unsigned long long>(time300) +
                                  static_cast<unsigned long long>(time300 / 3));
}

QDateTime time300ToDateTime(long long time300, const QTimeZone& zone) {
    return QDateTime::fromMSecsSinceEpoch(toMSecs(time300), zone);
}

QDateTime time300ToDateTimeUTC(long long time300) {
    return time300ToDateTime(time300, QTimeZone::utc());
}

QString toString(long long time300, const QString& format, bool appendTicks) {
    QString text = QDateTime::fromMSecsSinceEpoch(toMSecs(time300)).toString(format);
    if (appendTicks)
        text += u' ' + QString::number(time300);
    return text;
}

QString msecsToString(unsigned long long msecs, const QString& format, const TimeZone& zone) {
    const auto shift = static_cast<unsigned long long>(renderingOffset(zone) * msecsPerQuarterHour);
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(msecs + shift), Qt::UTC)
        .toString(format);
}

signed char renderingOffset(const TimeZone& zone) {
    if (zone.isValidOffset())
        return zone.offset();
    if (!zone.isValidName())
        return 0;
    const signed char offset = TimeZones::timeZoneOffset(zone.name());
    return TimeZones::isFound(offset) ? offset : static_cast<signed char>(0);
}

QString dateFormat() {
    return QLocale().dateFormat(QLocale::ShortFormat);
}

QString dateTimeFormat() {
    return dateFormat() + QStringLiteral(" HH:mm:ss");
}

QString dateTimeFormatWithMs() {
    return dateFormat() + QStringLiteral(" HH:mm:ss.zzz");
}

QString arabicDateFormat() {
    return QStringLiteral("yyyy/MM/dd");
}

QString arabicDateTimeFormat() {
    return QStringLiteral("ss:mm:HH yyyy/MM/dd");
}

QString arabicDateTimeFormatWithMs() {
    return QStringLiteral("zzz.ss:mm:HH yyyy/MM/dd");
}

}  // namespace pylon
