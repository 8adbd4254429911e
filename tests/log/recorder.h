#pragma once

#include <pylon/log/logdevice.h>
#include <QtCore/QList>

#include <functional>

/// Keeps copies of the items it is given; may do something on each.
class Recorder : public pylon::plog::LogDevice {
public:
    Recorder() : LogDevice(nullptr) {}

    void write(const pylon::plog::LogItem& item) override {
        items.append(item);
        if (onWrite)
            onWrite(item);
    }
    DeviceType type() const override { return Custom; }

    /// The messages of the items since the last call.
    QList<QByteArray> takeMessages() {
        QList<QByteArray> messages;
        for (const pylon::plog::LogItem& item : std::exchange(items, {}))
            messages.append(item.rawMessage());
        return messages;
    }

    QList<pylon::plog::LogItem> items;
    std::function<void(const pylon::plog::LogItem&)> onWrite;
};
