#pragma once

#include <pylon/log/logdevice.h>

namespace pylon::plog {

/// Receiver of log items in an application, for instance a log pane.
class PYLON_EXPORT LogCustomInterface {
public:
    virtual ~LogCustomInterface();

    /// Called with each item on the thread that logs, possibly on several threads at once. The item
    /// is valid during the call; copy it to keep it.
    virtual void logItem(const LogItem& item) = 0;
};

/// Hands each item to an object of the application.
///
/// The receiver is not owned and must outlive every call of write(). Thread-safety: write() adds no
/// lock to the receiver's own.
class PYLON_EXPORT LogCustom : public LogDevice {
    Q_OBJECT

public:
    /// @param sink the receiver; with null every item is dropped.
    explicit LogCustom(LogCustomInterface* sink);

    void write(const LogItem& item) override;
    /// Always Custom.
    DeviceType type() const override { return Custom; }

private:
    LogCustomInterface* sink_;
};

}  // namespace pylon::plog
