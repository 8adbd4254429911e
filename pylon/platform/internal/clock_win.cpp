#include <pylon/platform/internal/clock.h>

#include <windows.h>

namespace pylon::platform {

namespace {

// FILETIME counts 100-ns units since 1601-01-01 UTC.
constexpr std::int64_t microsecondsFrom1601To1970 = 11'644'473'600'000'000;

}  // namespace

std::int64_t utcMicroseconds() {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const ULARGE_INTEGER ticks{{now.dwLowDateTime, now.dwHighDateTime}};
    return static_cast<std::int64_t>(ticks.QuadPart / 10) - microsecondsFrom1601To1970;
}

std::int64_t performanceCounter() {
    LARGE_INTEGER count;
    QueryPerformanceCounter(&count);
    return count.QuadPart;
}

std::int64_t performanceFrequency() {
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return frequency.QuadPart;
}

bool localTime(std::int64_t secondsSinceEpoch, std::tm& result) {
    const __time64_t seconds = secondsSinceEpoch;
    return _localtime64_s(&result, &seconds) == 0;
}

unsigned long currentThreadId() {
    return GetCurrentThreadId();
}

}  // namespace pylon::platform
