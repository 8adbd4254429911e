#include <pylon/platform/internal/stacktraceimpl.h>

// The library that is linked decides how symbols are found; the default of the headers finds few.
#define BOOST_STACKTRACE_LINK
#include <boost/stacktrace.hpp>

namespace pylon {

/// As Boost's own text of a stack, but each line names the place of the call rather than that
/// behind it, which after a call that never returns belongs to another function.
static std::string describe(const boost::stacktrace::stacktrace& stack) {
    std::string text;
    for (std::size_t i = 0; i < stack.size(); ++i) {
        const auto* const behind = static_cast<const char*>(stack[i].address());
        text.append(i < 10 ? " " : "").append(std::to_string(i)).append("# ");
        text.append(to_string(boost::stacktrace::frame(behind - 1))).append("\n");
    }
    return text;
}

std::string StackTraceImpl::toString() {
    try {
        return describe(boost::stacktrace::stacktrace(1, 65535));
    } catch (...) {
        return {};
    }
}

}  // namespace pylon
