#pragma once

#include <pylon/export.h>
#include <pylon/time/timezone.h>

#include <QtCore/QDateTime>
#include <QtCore/QString>
#include <QtCore/QTimeZone>

/// @file
/// Conversions between the servers' time unit, milliseconds and QDateTime, time stamps as text, and
/// the date and time formats of the client.
///
/// time300 is a signed 64-bit count of 1/300-second ticks since 1970-01-01 00:00:00 UTC; 3 ticks
/// are 10 ms. Divisions cut toward zero, so tick counts that are no multiple of 3 do not survive a
/// conversion to milliseconds and back. Results that do not fit 64 bits wrap.
///
/// Thread-safety: all functions may be called from any thread. Formats that take the default
/// QLocale follow QLocale::setDefault().

namespace pylon {

/// The moment @p dt in time300: the whole part of its milliseconds since the epoch × 0.3.
PYLON_EXPORT long long dateTimeToTime300(const QDateTime& dt);

/// @p time300 in milliseconds since the epoch: the whole part of @p time300 × 10 / 3.
PYLON_EXPORT long long toMSecs(long long time300) noexcept;

/// The moment @p time300 as calendar time of @p zone; invalid if @p zone is.
PYLON_EXPORT QDateTime time300ToDateTime(long long time300, const QTimeZone& zone);

/// The moment @p time300 as calendar time of QTimeZone::utc().
PYLON_EXPORT QDateTime time300ToDateTimeUTC(long long time300);

/// The moment @p time300 in the machine's local time zone, rendered by
/// QDateTime::toString(@p format).
/// @param appendTicks adds a space and @p time300 in decimal.
PYLON_EXPORT QString toString(long long time300, const QString& format, bool appendTicks);

/// Calendar time of @p zone, rendered by QDateTime::toString(@p format) as if it were UTC: a format
/// that prints the zone prints "UTC".
/// @param msecs milliseconds since 1970-01-01 00:00:00 UTC.
/// @param zone taken at its renderingOffset().
PYLON_EXPORT QString msecsToString(unsigned long long msecs, const QString& format,
                                   const TimeZone& zone);

/// Quarter hours east of UTC at which msecsToString() shows times in @p zone: its offset if that is
/// valid, else the catalogue's offset for its name (TimeZones::timeZoneOffset()), else 0.
/// Abbreviation and server mark are not consulted.
PYLON_EXPORT signed char renderingOffset(const TimeZone& zone);

/// Short date format of the default QLocale.
PYLON_EXPORT QString dateFormat();
/// dateFormat() and " HH:mm:ss".
PYLON_EXPORT QString dateTimeFormat();
/// dateFormat() and " HH:mm:ss.zzz".
PYLON_EXPORT QString dateTimeFormatWithMs();

/// "yyyy/MM/dd" in every locale.
PYLON_EXPORT QString arabicDateFormat();
/// "ss:mm:HH yyyy/MM/dd" in every locale: the time fields run from seconds to hours.
PYLON_EXPORT QString arabicDateTimeFormat();
/// "zzz.ss:mm:HH yyyy/MM/dd" in every locale: the time fields run from milliseconds to hours.
PYLON_EXPORT QString arabicDateTimeFormatWithMs();

}  // namespace pylon
