// The time and time-zone views of a frame.

#include <pylon/media/image.h>
#include <pylon/media/imagebase.h>
#include <pylon/time/timeconversion.h>

namespace pylon {

namespace {

constexpr int secondsPerQuarterHour = 900;
constexpr qint64 ticksPerQuarterHour = qint64{300} * secondsPerQuarterHour;

// A UTC date-time that shows the wall-clock time at an offset in quarter hours.
QDateTime wallClock(qint64 time, qint8 offset) {
    // Unsigned, for a time at the end of its range wraps.
    const quint64 shifted =
        static_cast<quint64>(time) + static_cast<quint64>(offset * ticksPerQuarterHour);
    return QDateTime::fromMSecsSinceEpoch(toMSecs(static_cast<qint64>(shifted)), Qt::UTC);
}

std::string toText(const QDateTime& dateTime, const char* format) {
    return dateTime.toString(QString::fromUtf8(format)).toStdString();
}

}  // namespace

qint8 Image::timeZoneOffset() const {
    return image_->timeZoneOffset;
}

void Image::setTimeZone(const TimeZone& zone) {
    image_->timeZoneOffset = zone.offset();
    image_->timeZoneAbbrevation = zone.abbrevation();
}

TimeZone Image::timeZone() const {
    return {image_->timeZoneOffset, image_->timeZoneAbbrevation};
}

std::string Image::timeZoneName() const {
    return image_->timeZoneAbbrevation.to_string();
}

std::string Image::timeZoneIndexToName(qint8 index) {
    return TimeZoneAbbrevation::timeZoneAbbrevationFromIndex(static_cast<unsigned char>(index));
}

QTimeZone Image::frameQTimeZone() const {
    return QTimeZone(image_->timeZoneOffset * secondsPerQuarterHour);
}

qint64 Image::timestampMSec() const {
    return toMSecs(image_->time);
}

QDateTime Image::qDateTimeServerTimeZone() const {
    return QDateTime::fromMSecsSinceEpoch(timestampMSec(), frameQTimeZone());
}

std::string Image::dateTime(const char* format) const {
    return toText(wallClock(image_->time, image_->timeZoneOffset), format);
}

QDateTime Image::qDateTime(const TimeZone& zone) const {
    const qint8 offset = zone.isServerTimeZone() ? image_->timeZoneOffset : renderingOffset(zone);
    return wallClock(image_->time, offset);
}

QString Image::dateTime(const TimeZone& zone, const QString& format) const {
    return qDateTime(zone).toString(format);
}

std::string Image::dateTime(const TimeZone& zone, const char* format) const {
    return toText(qDateTime(zone), format);
}

QString Image::dateTimeQString(const QString& format, const TimeZone& zone) const {
    return dateTime(zone, format);
}

QDateTime Image::qDateTime(const TimeZone& zone, quint64 time) {
    return wallClock(static_cast<qint64>(time), renderingOffset(zone));
}

std::string Image::dateTime(const TimeZone& zone, quint64 time, const char* format) {
    return toText(qDateTime(zone, time), format);
}

std::string Image::dateTime(quint64 msecs, const char* format) {
    return toText(QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(msecs)), format);
}

}  // namespace pylon
