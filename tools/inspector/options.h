#pragma once

#include <pylon/media/image.h>
#include <QtCore/QList>
#include <QtCore/QStringList>

#include <optional>

#include "logging.h"
#include "zones.h"

namespace pylon::inspector {

/// What the command line asks for.
struct Options {
    enum class Action { Inspect, ShowMask, ShowDiffMap, ListZones, ShowHelp, ShowVersion };
    enum class Format { Table, Summary, Json };

    Action action = Action::Inspect;
    Format format = Format::Table;
    std::optional<Zone> zone;  ///< For all times; without it each frame's own zone.
    QList<quint32> cameras;    ///< Empty for all.
    QList<quint8> types;       ///< Empty for all.
    QString extractFolder;     ///< Empty for no extraction.
    bool dump = false;         ///< Dump frames.
    bool resync = false;       ///< Go on after damage.
    QString pngFile;           ///< For the picture of a mask or difference map; empty for none.
    LogOptions log;
    QStringList files;  ///< "-" is standard input; of a mask or difference map there is one.

    bool selects(const Image& image) const {
        return (cameras.isEmpty() || cameras.contains(image.cameraId())) &&
               (types.isEmpty() || types.contains(image.type()));
    }
};

/// @param arguments the command line with the program's name as its first entry.
/// @return nothing, and in @p error what is wrong, for a command line that cannot be followed.
std::optional<Options> parseOptions(const QStringList& arguments, QString* error);

/// The text of --help.
QByteArray helpText();

}  // namespace pylon::inspector
