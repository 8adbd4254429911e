#include "logging.h"

#include <QtCore/qstringlist.h>
#include <pylon/log/logconsole.h>
#include <pylon/log/loglevel.h>
#include <pylon/log/logmanager.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "text.h"

namespace pylon::inspector {

namespace {

plog::LogClient<plog::Playback> client;

constexpr plog::LogLevel levels[] = {plog::Trace, plog::Debug,  plog::Info,    plog::Warn,
                                     plog::Error, plog::Timing, plog::Startup, plog::Graphics};

// The filter parser of the library ends the process at a name that does not fit its buffer.
constexpr qsizetype filterNameBuffer = 256;

unsigned int levelNamed(const QString& name) {
    if (name.compare(QLatin1String("all"), Qt::CaseInsensitive) == 0)
        return plog::maxLogLevel();
    for (const plog::LogLevel level : levels) {
        if (name.compare(QLatin1String(plog::logLevelShortName(level)), Qt::CaseInsensitive) == 0 ||
            name.compare(plog::logLevelToString(level), Qt::CaseInsensitive) == 0)
            return level;
    }
    return 0;
}

bool hasOverlongName(const QByteArray& filter) {
    bool inBraces = false;
    qsizetype length = 0;
    for (const char c : filter) {
        const bool ends = std::strchr(inBraces ? ", }" : ", \t{", c) != nullptr;
        length = ends ? 0 : length + 1;
        if (length >= filterNameBuffer)
            return true;
        if (ends && (c == '{' || c == '}'))
            inBraces = c == '{';
    }
    return false;
}

}  // namespace

LogOptions::LogOptions() : levels(plog::Info | plog::Warn | plog::Error) {}

plog::LogClientBase& logClient() {
    return client;
}

std::optional<unsigned int> parseLogLevels(const QString& list, QString* error) {
    unsigned int mask = 0;
    QStringList unknown;
    for (const QString& part : list.split(QLatin1Char(','))) {
        const unsigned int level = levelNamed(part.trimmed());
        if (level == 0)
            unknown += QLatin1Char('"') + printable(part.trimmed()) + QLatin1Char('"');
        mask |= level;
    }
    if (unknown.isEmpty())
        return mask;
    *error = QStringLiteral("unknown log level %1; the levels are")
                 .arg(unknown.join(QLatin1String(", ")));
    for (const plog::LogLevel level : levels)
        *error += QLatin1Char(' ') + QString::fromLatin1(plog::logLevelShortName(level));
    *error += QLatin1String(" and ALL");
    return {};
}

bool startLogging(const LogOptions& options, QString* error) {
    if (!options.enabled)
        return true;
    plog::LogManager& manager = *plog::LogManager::instance();
    if (options.filter) {
        if (hasOverlongName(options.filter->toUtf8())) {
            *error = QStringLiteral("a name in the log filter is longer than %1 bytes")
                         .arg(filterNameBuffer - 1);
            return false;
        }
        QString unknown;
        if (!manager.setFilter(*options.filter, &unknown)) {
            *error = unknown.isEmpty()
                         ? QStringLiteral("the log filter contains an empty module name")
                         : QStringLiteral("unknown name in the log filter: ") + printable(unknown);
            return false;
        }
    }
    plog::LogItem::usePrettyFunction(false);  // the full signatures do not fit their column
    manager.setLogLevel(options.levels);
    manager.addLogDevice(QSharedPointer<plog::LogConsole>::create(stderr, true));
    return true;
}

}  // namespace pylon::inspector
