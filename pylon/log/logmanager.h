#pragma once

#include <pylon/export.h>
#include <pylon/log/logdevice.h>
#include <pylon/log/logitem.h>
#include <pylon/log/loglevel.h>
#include <pylon/log/logmodule.h>
#include <QtCore/QList>
#include <QtCore/QMap>
#include <QtCore/QSharedPointer>
#include <QtCore/QString>

#include <unordered_map>

namespace pylon {

/// Directory for log files: the user's home directory. Thread-safe.
PYLON_EXPORT QString logDir();

namespace plog {

class LogFilter;
struct PylonSDKInfo;

/// Process-wide hub of the log: the modules, what is enabled, and the devices that lines go to.
///
/// Code that logs does so through a LogClient, best by the macros of logmacros.h. An item goes to
/// every raw device as it is, then, if its level, its module and one of its sub-modules are
/// enabled, to every log device, in the order in which devices were added.
///
/// A device may add and remove devices while it is being written to: the item in hand still goes to
/// the devices that the list being walked had when it came. What a device logs from inside goes to
/// the other devices, not back to itself. What a device throws is caught and said once on standard
/// error.
///
/// Thread-safety: any number of threads may log at once, without a lock on the way. Devices, masks
/// and filters are to be changed while no other thread logs.
class PYLON_EXPORT LogManager {
public:
    /// The only manager, made on first call; lives until the process exits. No other thread may log
    /// once it does.
    static LogManager* instance();

    /// A copy is a manager of its own that shares the original's filter and its devices. Nobody
    /// logs to it.
    LogManager(const LogManager& other) = default;
    /// Shares filter and devices of @p other from now on.
    LogManager& operator=(const LogManager& other);

    /// @name Levels
    /// Each call refreshes the level switches of loglevel.h.
    /// @{

    /// Replaces the mask of enabled levels; Info, Warn and Error are enabled at first.
    void setLogLevel(unsigned int mask);
    /// Enables one level more.
    void addLogLevel(LogLevel level);
    /// Disables one level.
    void removeLogLevel(LogLevel level);
    /// @}

    /// @name Modules
    /// @{

    /// Mask of the enabled modules, writable; every registered module is enabled at first. The
    /// reference lives as long as the manager.
    unsigned int& enabledModules() { return enabledModules_; }
    /// Mask of the enabled modules.
    unsigned int enabledModules() const { return enabledModules_; }

    /// Mask of a module's enabled sub-modules, writable; 0xFFFFFF00 for every registered module at
    /// first, 0 for a module that was never named. The reference lives as long as the manager,
    /// whatever modules come later.
    unsigned int& enabledSubmodules(Module module) { return enabledSubmodules_[module]; }
    /// Mask of a module's enabled sub-modules, 0 for a module that was never named.
    unsigned int enabledSubmodules(Module module) const;

    /// A registered module, null for any other number.
    QSharedPointer<LogModule> logModule(Module module) const { return modules_.value(module); }
    /// All registered modules by number.
    const QMap<Module, QSharedPointer<LogModule>>& logModules() const { return modules_; }
    /// @}

    /// @name Devices
    /// Identity of a device is that of its pointer. A null device is ignored.
    /// @{

    /// Adds a device for enabled items, once, and writes the start-up banner to it.
    void addLogDevice(const QSharedPointer<LogDevice>& device);
    /// Removes a device; one that is not there changes nothing.
    void removeLogDevice(const QSharedPointer<LogDevice>& device);
    /// Removes every log device, not the raw ones.
    void clearLogDevices();

    /// Adds a device that gets every item that reaches the manager, enabled or not; once for each
    /// time it is added. No banner.
    void addRawDevice(const QSharedPointer<LogDevice>& device);
    /// Removes every entry of the device.
    void removeRawDevice(const QSharedPointer<LogDevice>& device);
    /// Removes every raw device.
    void clearRawDevices();

    /// The log devices, without the raw ones, in order.
    QList<QSharedPointer<LogDevice>> logDevices() const { return logDevicesList_; }
    /// Those of one type, in order.
    QList<QSharedPointer<LogDevice>> logDevices(LogDevice::DeviceType type) const;
    /// The raw devices, in order, each as often as it was added.
    QList<QSharedPointer<LogDevice>> rawDevices() const { return rawDevicesList_; }
    /// @}

    /// @name Filters
    /// @{

    /// Enables just what a filter text names; see LogFilter for the grammar, and for the overlong
    /// names that end the process.
    /// @param[in,out] error receives the unknown names; may be null.
    /// @return false for a text with an unknown name, which changes nothing.
    bool setFilter(const QString& filter, QString* error);
    /// Enables every registered module with all its sub-modules.
    void resetFilter();
    /// Disables every module; clears all sub-module bits but the low eight, which are none.
    void unsetAll();
    /// @}

    /// @name Banners
    /// @{

    /// The banner that opens every log: a line feed, then product, version and the moment at which
    /// the manager came into being. Always the same text.
    QString logStartupHeader();
    /// The banner that closes a log, with the present time.
    static QString logShutdownHeader();
    /// Writes the start-up banner to one device; a null one is ignored.
    void writeLogStartupHeader(const QSharedPointer<LogDevice>& device);
    /// Writes the start-up banner to every log device, not to raw devices.
    void writeLogStartupHeader();
    /// @}

    /// Name of the application's log file, kept for the application alone.
    QString appLogFileName() const { return appLogFile_; }
    /// Sets what appLogFileName() returns; no device changes.
    void setAppLogFileName(const QString& fileName) { appLogFile_ = fileName; }

private:
    friend class LogClientBase;
    friend class QtMessageRouter;

    LogManager();
    ~LogManager();

    static void destroyInstance();

    void log(const LogItem& item);
    /// Whether an item of defaultSubModule would go anywhere.
    bool isWanted(LogLevel level, Module module) const;
    bool isEnabled(LogLevel level, Module module, unsigned int submods) const;
    void setInfoDebugFlags();
    void registerModule(Module module, const QSharedPointer<LogModule>& entry, bool enabled,
                        unsigned int submods);
    void registerModules();

    static LogManager* instance_;
    static PylonSDKInfo* log_info_instance_;

    LogFilter* filter_ = nullptr;
    unsigned int levelMask_;
    unsigned int enabledModules_ = 0;
    // Elements of this container keep their address when others are added: clients point at them.
    std::unordered_map<Module, unsigned int> enabledSubmodules_;
    bool hasRawDevices_ = false;
    QMap<Module, QSharedPointer<LogModule>> modules_;
    QList<QSharedPointer<LogDevice>> logDevicesList_;
    QList<QSharedPointer<LogDevice>> rawDevicesList_;
    QString appLogFile_;
};

}  // namespace plog
}  // namespace pylon
