#include <pylon/log/internal/devicewritescope.h>

namespace pylon::plog {

static thread_local const DeviceWriteScope* innermost = nullptr;

DeviceWriteScope::DeviceWriteScope(const LogDevice& device) : device_(&device), outer_(innermost) {
    innermost = this;
}

DeviceWriteScope::~DeviceWriteScope() {
    innermost = outer_;
}

bool DeviceWriteScope::isInside(const LogDevice& device) {
    for (const DeviceWriteScope* scope = innermost; scope; scope = scope->outer_) {
        if (scope->device_ == &device)
            return true;
    }
    return false;
}

bool DeviceWriteScope::isInsideAny() {
    return innermost != nullptr;
}

}  // namespace pylon::plog
