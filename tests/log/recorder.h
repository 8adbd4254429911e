#pragma once

#include <pylon/log/logdevice.h>
#include <QtCore/QList>

#include <functional>

using Messages = QList<QByteArray>;

/// Keeps copies of the items it is given; may do something on each.
struct Recorder : pylon::plog::LogDevice {
    Recorder() : LogDevice(nullptr) {}
    DeviceType type() const override { return Custom; }
    void write(const pylon::plog::LogItem& item) override {
        items.append(item);
        if (onWrite)
            onWrite(item);
    }

    /// The messages of the items since the last call.
    Messages take() {
        Messages messages;
        for (const pylon::plog::LogItem& item : std::exchange(items, {}))
            messages.append(item.rawMessage());
        return messages;
    }

    QList<pylon::plog::LogItem> items;
    std::function<void(const pylon::plog::LogItem&)> onWrite;
};
