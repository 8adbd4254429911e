#include "logging.h"

#include <pylon/log/logconsole.h>
#include <pylon/log/logfile.h>
#include <pylon/log/logfilter.h>
#include <pylon/log/loglevel.h>
#include <pylon/log/logmanager.h>
#include <QtCore/QStringList>

#include <algorithm>
#include <cstdio>

#include "text.h"

namespace pylon::inspector {

namespace {

plog::LogClient<plog::Playback> client;

constexpr plog::LogLevel levels[] = {plog::Trace, plog::Debug,  plog::Info,    plog::Warn,
                                     plog::Error, plog::Timing, plog::Startup, plog::Graphics};

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

bool applyFilter(const LogOptions& options, QString* error) {
    plog::LogManager& manager = *plog::LogManager::instance();
    manager.setLogLevel(options.levels);
    if (!options.filter)
        return true;
    if (plog::LogFilter::hasOverlongName(*options.filter)) {
        *error = QStringLiteral("a name in the log filter is longer than %1 bytes")
                     .arg(plog::LogFilter::maxNameBytes);
        return false;
    }
    QString unknown;
    if (manager.setFilter(*options.filter, &unknown))
        return true;
    *error = unknown.isEmpty()
                 ? QStringLiteral("the log filter contains an empty module name")
                 : QStringLiteral("unknown name in the log filter: ") + printable(unknown);
    return false;
}

bool openLog(const LogOptions& options, QString* error) {
    if (!options.enabled)
        return true;
    plog::LogItem::usePrettyFunction(false);  // the full signatures do not fit their column
    QSharedPointer<plog::LogDevice> device;
    if (options.file.isEmpty()) {
        device = QSharedPointer<plog::LogConsole>::create(stderr, true);
    } else {
        const auto file =
            QSharedPointer<plog::LogFile>::create(options.file, QIODevice::Append, false);
        file->setMaxFileSize(options.maxFileSize * 1024 * 1024);
        if (!file->isOpen()) {
            *error = QStringLiteral("cannot write the log file ") + printable(options.file);
            return false;
        }
        device = file;
    }
    plog::LogManager::instance()->addLogDevice(device);
    return true;
}

}  // namespace pylon::inspector
