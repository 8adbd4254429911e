#pragma once

#include <pylon/log/logmacros.h>

namespace pylon::CryptoTools::internal {

/// Log of one operation: its lines go to module Playback, sub-module "Encrypt", and name the
/// operation as their origin, whichever function writes them.
class OperationLog {
public:
    /// @param operation qualified name; static text.
    constexpr explicit OperationLog(const char* operation) : operation_(operation) {}

    /// A line without message at level Trace: the operation was called.
    void entered() const;

    /// A line at level Trace, Debug or Warn, if that is enabled.
    PYLON_PLOG_PRINTF_CHECK(3, 4)
    void operator()(plog::LogLevel level, const char* format, ...) const;

private:
    const char* operation_;
};

}  // namespace pylon::CryptoTools::internal
