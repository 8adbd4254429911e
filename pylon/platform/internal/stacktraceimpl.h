#pragma once

#include <string>

namespace pylon {

/// Way to read the calling thread's stack.
class StackTraceImplInterface {
public:
    virtual ~StackTraceImplInterface() = default;

    /// The stack from the caller outwards, one line a frame; empty on failure.
    virtual std::string toString() = 0;
};

/// The way of this platform. Each of stacktraceimpl_*.cpp defines it; the build picks the one that
/// the compiler and the system support.
class StackTraceImpl final : public StackTraceImplInterface {
public:
    std::string toString() override;
};

}  // namespace pylon
