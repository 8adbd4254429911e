#include <pylon/log/loglevel.h>

namespace pylon::plog {

bool LG_trace_enabled = false;
bool LG_debug_enabled = false;
bool LG_info_enabled = true;
bool LG_timing_enabled = false;
bool LG_startup_enabled = true;
bool LG_graphics_enabled = true;

namespace {

struct LevelRow {
    LogLevel level;
    const char* shortName;
    const char* longName;
};

// In the order of look-up.
constexpr LevelRow levelTable[] = {
    {Trace, "TRACE", "Trace"},     {Debug, "DEBUG", "Debug"},       {Info, "INFO", "Information"},
    {Startup, "START", "Startup"}, {Warn, "WARN", "Warning"},       {Error, "ERROR", "Error"},
    {Timing, "TIME", "Timing"},    {Graphics, "GRAPH", "Graphics"},
};
constexpr LevelRow unknownLevel = {LogLevel{}, "BADLEVEL", "Unknown"};

const LevelRow& levelRow(LogLevel level) {
    for (const LevelRow& row : levelTable) {
        if (row.level == level)
            return row;
    }
    return unknownLevel;
}

}  // namespace

QString logLevelToString(LogLevel level) {
    return QString::fromLatin1(levelRow(level).longName);
}

const char* logLevelShortName(LogLevel level) {
    return levelRow(level).shortName;
}

LogLevel maxLogLevel() {
    return static_cast<LogLevel>(0x7FFFFFFF);
}

}  // namespace pylon::plog
