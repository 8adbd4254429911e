#pragma once

#include <pylon/log/logdevice.h>

#include <cstdio>

namespace pylon::plog {

/// Prints each item on a C stream as its text form and a line feed, UTF-8.
///
/// The stream is not owned and stays open. Thread-safety: write() may be called on several threads;
/// each line is one print on the stream, so lines do not mix but come in any order.
class PYLON_EXPORT LogConsole : public LogDevice {
    Q_OBJECT

public:
    /// @param stream where to print; a null stream drops every item.
    /// @param autoFlush whether to flush the stream after each line.
    explicit LogConsole(FILE* stream = stdout, bool autoFlush = false);

    void write(const LogItem& item) override;
    /// Always Console.
    DeviceType type() const override { return Console; }

private:
    FILE* stream_;
    bool autoFlush_;
};

}  // namespace pylon::plog
