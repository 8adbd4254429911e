#include <pylon/log/logcustom.h>

namespace pylon::plog {

LogCustomInterface::~LogCustomInterface() = default;

LogCustom::LogCustom(LogCustomInterface* sink) : LogDevice(nullptr), sink_(sink) {}

void LogCustom::write(const LogItem& item) {
    if (sink_)
        sink_->logItem(item);
}

}  // namespace pylon::plog
