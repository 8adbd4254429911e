#pragma once

#include <pylon/export.h>
#include <pylon/log/logitem.h>
#include <QtCore/QObject>

namespace pylon::plog {

/// An output that the log manager hands items to; base of the devices here and of a host's own.
///
/// Devices are shared with the manager through QSharedPointer and live until the last holder lets
/// go. Thread-safety: write() is called on whatever thread logs, possibly on several at once; a
/// device that keeps state guards it itself.
class PYLON_EXPORT LogDevice : public QObject {
    Q_OBJECT

public:
    /// What LogManager::logDevices() selects by.
    enum DeviceType : int {
        File = 0,     ///< Rotating log file.
        Console = 1,  ///< LogConsole.
        Custom = 2,   ///< LogCustom, and devices of the host.
    };
    Q_ENUM(DeviceType)

    /// @param parent may be null, and is for a device held by QSharedPointer.
    explicit LogDevice(QObject* parent);
    ~LogDevice() override;

    /// Outputs one item; the item is valid during the call only.
    virtual void write(const LogItem& item) = 0;
    /// Which kind of device it is; the same for the life of the device.
    virtual DeviceType type() const = 0;
};

}  // namespace pylon::plog
