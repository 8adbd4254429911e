#include <pylon/log/logdevice.h>

namespace pylon::plog {

LogDevice::LogDevice(QObject* parent) : QObject(parent) {}

LogDevice::~LogDevice() = default;

}  // namespace pylon::plog
