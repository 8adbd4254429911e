#include <pylon/platform/internal/clock.h>

#include <pthread.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace pylon::platform {

namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

thread_local unsigned long threadId = 0;

// The forking thread gets a new number in the child.
[[maybe_unused]] const int atForkRegistered =
    pthread_atfork(nullptr, nullptr, [] { threadId = 0; });

}  // namespace

std::int64_t utcMicroseconds() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return std::int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}

std::int64_t performanceCounter() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t{now.tv_sec} * nanosecondsPerSecond + now.tv_nsec;
}

std::int64_t performanceFrequency() {
    return nanosecondsPerSecond;
}

bool localTime(std::int64_t secondsSinceEpoch, std::tm& result) {
    const std::time_t seconds = secondsSinceEpoch;
    return localtime_r(&seconds, &result) != nullptr;
}

unsigned long currentThreadId() {
    if (threadId == 0)
        threadId = static_cast<unsigned long>(syscall(SYS_gettid));
    return threadId;
}

}  // namespace pylon::platform
