#pragma once

#include <pylon/media/image.h>
#include <pylon/time/timezone.h>

#include <QtCore/QList>
#include <QtCore/QString>

/// @file
/// The zones in which a user may have times shown.

namespace pylon::viewer {

struct ZoneChoice {
    QString label;
    TimeZone zone;
};

/// The recorder's own zone, UTC, then the catalogue.
QList<ZoneChoice> zoneChoices();

/// The position in @p choices of what a user typed: "server", "UTC", "ABBR" or
/// "ABBR:BEGINNING OF FULL NAME".
/// @return -1, and in @p error the candidates, if there is no such zone or more than one.
qsizetype findZone(const QList<ZoneChoice>& choices, const QString& text, QString* error);

/// The time of @p frame with its zone, "2026-11-15 13:00:03.400 CET".
QString timeText(const Image& frame, const TimeZone& zone);

}  // namespace pylon::viewer
