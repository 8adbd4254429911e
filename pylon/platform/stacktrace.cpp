#include <pylon/platform/internal/stacktraceimpl.h>
#include <pylon/platform/stacktrace.h>

#include <fstream>
#include <ostream>

namespace pylon {

StackTrace::StackTrace(void*) : impl_(std::make_unique<StackTraceImpl>()) {}

StackTrace::~StackTrace() = default;

std::string StackTrace::toString() const {
    return impl_->toString();
}

void StackTrace::print(std::ostream& out) const {
    out << toString();
}

void StackTrace::print(const std::string& path) const {
    std::ofstream file(path, std::ios::trunc);
    print(file);
}

}  // namespace pylon
