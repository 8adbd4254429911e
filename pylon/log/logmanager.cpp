#include <pylon/log/internal/devicewritescope.h>
#include <pylon/log/logfilter.h>
#include <pylon/log/logmanager.h>
#include <pylon/log/qtmessagehandler.h>
#include <pylon/platform/internal/clock.h>

#include <QtCore/QDateTime>
#include <QtCore/QDir>
#include <QtCore/QStandardPaths>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <utility>

namespace pylon {

QString logDir() {
    const QString home = QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
    return home.isEmpty() ? QDir::homePath() : home;
}

namespace plog {

/// The start-up record.
struct PylonSDKInfo {
    QDateTime startTime = QDateTime::currentDateTime();
    QString headerText;
    QString version = QStringLiteral(PYLON_VERSION_TEXT);
    bool headerBuilt = false;
};

LogManager* LogManager::instance_ = nullptr;
PylonSDKInfo* LogManager::log_info_instance_ = nullptr;

namespace {

constexpr unsigned int initialLevels = Info | Warn | Error;

void reportThrow(const char* what) {
    static std::once_flag once;
    std::call_once(once, [&] {
        std::fprintf(stderr, "logmanager error: a device threw: %s (said once)\n", what);
    });
}

/// Hands an item to a device, unless it comes from inside that device. What a device throws ends
/// here: it is not the fault of the code that logs.
void writeTo(LogDevice& device, const LogItem& item) {
    if (DeviceWriteScope::isInside(device))
        return;
    const DeviceWriteScope scope(device);
    try {
        device.write(item);
    } catch (const std::exception& error) {
        reportThrow(error.what());
    } catch (...) {
        reportThrow("unknown exception");
    }
}

using Devices = QList<QSharedPointer<LogDevice>>;

/// Lists that this thread changed from inside a walk, as they were, so that the walk can go on over
/// them. Null outside such walks. Walks hold no reference of their own: counting it would make all
/// threads that log write to one place.
thread_local QList<Devices>* retiredLists = nullptr;

/// To be called before a list is changed.
void retire(const Devices& devices) {
    if (!DeviceWriteScope::isInsideAny())
        return;
    if (!retiredLists)
        retiredLists = new QList<Devices>;
    retiredLists->append(devices);
}

/// Puts another list in place of one. Devices that end with the old list may log while they do: by
/// then the new one is in place.
void replace(Devices& list, Devices other) {
    retire(list);
    list.swap(other);
}

Devices without(Devices devices, const QSharedPointer<LogDevice>& device) {
    devices.removeAll(device);
    return devices;
}

void writeToAll(const Devices& list, const LogItem& item) {
    const auto end = list.cend();
    for (auto device = list.cbegin(); device != end; ++device)
        writeTo(**device, item);
    if (retiredLists && !DeviceWriteScope::isInsideAny())
        delete std::exchange(retiredLists, nullptr);
}

}  // namespace

LogManager* LogManager::instance() {
    if (!instance_) {
        std::atexit(destroyInstance);
        instance_ = new LogManager;
        log_info_instance_ = new PylonSDKInfo;
    }
    return instance_;
}

LogManager& LogManager::operator=(const LogManager& other) {
    if (this == &other)
        return *this;
    filter_ = other.filter_;
    levelMask_ = other.levelMask_;
    enabledModules_ = other.enabledModules_;
    // One by one: the masks that clients point at keep their place.
    for (auto& [module, mask] : enabledSubmodules_)
        mask = other.enabledSubmodules(module);
    for (const auto& [module, mask] : other.enabledSubmodules_)
        enabledSubmodules_[module] = mask;
    hasRawDevices_ = other.hasRawDevices_;
    modules_ = other.modules_;
    logDevicesList_ = other.logDevicesList_;
    rawDevicesList_ = other.rawDevicesList_;
    appLogFile_ = other.appLogFile_;
    return *this;
}

LogManager::LogManager() : levelMask_(initialLevels) {
    setInfoDebugFlags();
    registerModules();
    filter_ = new LogFilter(modules_);
}

LogManager::~LogManager() {
    delete filter_;
}

void LogManager::destroyInstance() {
    removeQtMessageHandler();
    // While the manager is still there, for devices that log when they end.
    instance_->clearRawDevices();
    instance_->clearLogDevices();
    delete instance_;
    instance_ = nullptr;
    delete log_info_instance_;
    log_info_instance_ = nullptr;
}

void LogManager::log(const LogItem& item) {
    if (hasRawDevices_)
        writeToAll(rawDevicesList_, item);
    if (isEnabled(item.logLevel(), item.module(), item.submods()))
        writeToAll(logDevicesList_, item);
}

bool LogManager::isEnabled(LogLevel level, Module module, unsigned int submods) const {
    return (level & levelMask_) != 0 && (module & enabledModules_) != 0 &&
           (submods & enabledSubmodules(module)) != 0;
}

bool LogManager::isWanted(LogLevel level, Module module) const {
    return hasRawDevices_ || isEnabled(level, module, defaultSubModule);
}

void LogManager::setLogLevel(unsigned int mask) {
    levelMask_ = mask;
    setInfoDebugFlags();
}

void LogManager::addLogLevel(LogLevel level) {
    setLogLevel(levelMask_ | level);
}

void LogManager::removeLogLevel(LogLevel level) {
    setLogLevel(levelMask_ & ~level);
}

void LogManager::setInfoDebugFlags() {
    LG_trace_enabled = (levelMask_ & Trace) != 0;
    LG_debug_enabled = (levelMask_ & Debug) != 0;
    LG_info_enabled = (levelMask_ & Info) != 0;
    LG_timing_enabled = (levelMask_ & Timing) != 0;
    LG_startup_enabled = (levelMask_ & Startup) != 0;
    LG_graphics_enabled = (levelMask_ & Graphics) != 0;
}

unsigned int LogManager::enabledSubmodules(Module module) const {
    const auto found = enabledSubmodules_.find(module);
    return found == enabledSubmodules_.end() ? 0 : found->second;
}

void LogManager::addLogDevice(const QSharedPointer<LogDevice>& device) {
    if (!device || logDevicesList_.contains(device))
        return;
    retire(logDevicesList_);
    logDevicesList_.append(device);
    writeLogStartupHeader(device);
}

void LogManager::removeLogDevice(const QSharedPointer<LogDevice>& device) {
    replace(logDevicesList_, without(logDevicesList_, device));
}

void LogManager::clearLogDevices() {
    replace(logDevicesList_, {});
}

void LogManager::addRawDevice(const QSharedPointer<LogDevice>& device) {
    if (!device)
        return;
    retire(rawDevicesList_);
    rawDevicesList_.append(device);
    hasRawDevices_ = true;
}

void LogManager::removeRawDevice(const QSharedPointer<LogDevice>& device) {
    replace(rawDevicesList_, without(rawDevicesList_, device));
    hasRawDevices_ = !rawDevicesList_.isEmpty();
}

void LogManager::clearRawDevices() {
    hasRawDevices_ = false;
    replace(rawDevicesList_, {});
}

QList<QSharedPointer<LogDevice>> LogManager::logDevices(LogDevice::DeviceType type) const {
    QList<QSharedPointer<LogDevice>> result;
    for (const QSharedPointer<LogDevice>& device : logDevicesList_) {
        if (device->type() == type)
            result.append(device);
    }
    return result;
}

bool LogManager::setFilter(const QString& filter, QString* error) {
    const QList<LogFilterItem> items = filter_->parseFilterString(filter, nullptr);
    if (!filter_->isValid(items, error))
        return false;
    unsetAll();
    for (const LogFilterItem& item : items) {
        enabledModules_ |= item.module();
        enabledSubmodules(item.module()) |= item.subModules();
    }
    return true;
}

void LogManager::resetFilter() {
    enabledModules_ = 0;
    for (auto entry = modules_.cbegin(); entry != modules_.cend(); ++entry) {
        enabledModules_ |= entry.key();
        enabledSubmodules(entry.key()) |= allSubModules;
    }
}

void LogManager::unsetAll() {
    enabledModules_ = 0;
    for (auto entry = modules_.cbegin(); entry != modules_.cend(); ++entry)
        enabledSubmodules(entry.key()) &= ~allSubModules;
}

QString LogManager::logStartupHeader() {
    static QMutex mutex;  // devices ask for it when they rotate, each on a thread that logs
    const QMutexLocker lock(&mutex);
    PylonSDKInfo& info = *log_info_instance_;
    if (!info.headerBuilt) {
        info.headerText =
            QStringLiteral(
                "\n######################## PylonSDK {%1} Started on %2 at %3 "
                "#####################")
                .arg(info.version, info.startTime.toString(QStringLiteral("ddd MMMM d yyyy")),
                     info.startTime.toString(QStringLiteral("hh:mm:ss.zzz")));
        info.headerBuilt = !info.headerText.isEmpty();
    }
    return info.headerText;
}

QString LogManager::logShutdownHeader() {
    // Qt formats no dates once the process is exiting, and that is when this banner is wanted.
    const std::int64_t now = platform::utcMicroseconds();
    std::tm time{};
    platform::localTime(now / 1'000'000, time);
    char text[160];
    std::snprintf(text, sizeof text,
                  "################################## PylonSDK {%s} Shutdown at "
                  "%02d:%02d:%02d.%03d ###############################",
                  PYLON_VERSION_TEXT, time.tm_hour, time.tm_min, time.tm_sec,
                  static_cast<int>(now / 1000 % 1000));
    return QString::fromLatin1(text);
}

void LogManager::writeLogStartupHeader(const QSharedPointer<LogDevice>& device) {
    if (device)
        writeToAll({device}, LogItem(logStartupHeader()));
}

void LogManager::writeLogStartupHeader() {
    writeToAll(logDevicesList_, LogItem(logStartupHeader()));
}

}  // namespace plog
}  // namespace pylon
