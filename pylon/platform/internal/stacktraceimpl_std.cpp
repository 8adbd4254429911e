#include <pylon/platform/internal/stacktraceimpl.h>

#include <stacktrace>

namespace pylon {

std::string StackTraceImpl::toString() {
    try {
        return std::to_string(std::stacktrace::current(1, 65535));
    } catch (...) {
        return {};
    }
}

}  // namespace pylon
