#pragma once

#include <pylon/media/image.h>
#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

/// @file
/// The zones in which times are shown. Stateless; thread-safe.

namespace pylon::inspector {

/// An offset from UTC and how it is called beside a time.
struct Zone {
    int quarters = 0;  ///< Quarter hours east of UTC.
    QByteArray label = "UTC";
};

/// The zone a frame carries. One without abbreviation is labelled by its offset ("+05:30"). An
/// offset no zone can have gives way to that of the abbreviation, as everywhere in the library, or
/// to UTC.
Zone zoneOf(const Image& image);

/// The zone meant by a user's "ABBR" or "ABBR:BEGINNING OF FULL NAME".
/// @return nothing, and in @p error a message that lists the candidates, if there is no such zone,
/// or if there are several with different offsets.
std::optional<Zone> findZone(const QString& text, QString* error);

/// The catalogue of zones as a table.
QByteArray zoneListing();

/// Appends the wall-clock time of @p zone and its label, "2023-11-14 23:13:20.000 CET".
/// @p msecs counts from the Unix epoch in UTC.
void appendZonedTime(QByteArray& out, qint64 msecs, const Zone& zone);

}  // namespace pylon::inspector
