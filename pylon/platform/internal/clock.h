#pragma once

#include <cstdint>
#include <ctime>

/// @file
/// The clocks and the thread number of the operating system, each with one meaning on every
/// platform. Not part of the public interface.

namespace pylon::platform {

/// System wall clock: microseconds since 1970-01-01 00:00:00 UTC. Steps when the clock is set.
std::int64_t utcMicroseconds();

/// Monotonic high-resolution counter; its unit is 1 / performanceFrequency() seconds.
std::int64_t performanceCounter();

/// Ticks of performanceCounter() per second; constant while the system runs.
std::int64_t performanceFrequency();

/// Calendar time of @p secondsSinceEpoch in the machine's local time zone.
/// @return false when the moment cannot be expressed; @p result is then unspecified.
bool localTime(std::int64_t secondsSinceEpoch, std::tm& result);

/// The operating system's number of the calling thread (on Linux the kernel's thread id).
unsigned long currentThreadId();

}  // namespace pylon::platform
