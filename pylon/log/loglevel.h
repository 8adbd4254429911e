#pragma once

#include <pylon/export.h>
#include <QtCore/QString>

namespace pylon::plog {

/// Importance and kind of a log line. Each level is one bit; levels combine into masks.
enum LogLevel : unsigned int {
    Trace = 1,       ///< Way of the program through its functions.
    Debug = 2,       ///< Details for whoever is looking for a fault.
    Info = 4,        ///< What a user of the program would want to know.
    Warn = 8,        ///< Something is not as it should be; the program goes on as intended.
    Error = 16,      ///< An operation failed.
    Timing = 32,     ///< Measured times.
    Startup = 64,    ///< Steps of the program's start.
    Graphics = 128,  ///< Graphics system and drivers.
};

/// Long name of one level, "Information" for Info; "Unknown" for anything but one known level.
/// Thread-safe.
PYLON_EXPORT QString logLevelToString(LogLevel level);

/// Short name of one level as it stands in log lines, "INFO" for Info; "BADLEVEL" for anything but
/// one known level. Static text. Thread-safe.
PYLON_EXPORT const char* logLevelShortName(LogLevel level);

/// The mask of every level there can be, 0x7FFFFFFF.
PYLON_EXPORT LogLevel maxLogLevel();

/// @name Level switches
/// Mirrors of the log manager's level mask, for testing inline before a message is built. Only the
/// manager writes them (LogManager::setLogLevel and its siblings), before other threads log.
/// Warn and Error have none: their calls always reach the manager.
/// @{
PYLON_EXPORT extern bool LG_trace_enabled;
PYLON_EXPORT extern bool LG_debug_enabled;
PYLON_EXPORT extern bool LG_info_enabled;
PYLON_EXPORT extern bool LG_timing_enabled;
PYLON_EXPORT extern bool LG_startup_enabled;
PYLON_EXPORT extern bool LG_graphics_enabled;
/// @}

}  // namespace pylon::plog
