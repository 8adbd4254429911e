#include <pylon/time/timer.h>

#include <pylon/platform/internal/clock.h>

namespace pylon {

Timer::Timer() : frequency_(platform::performanceFrequency()) {}

void Timer::start() {
    stopped_ = 0;
    startCount_ = platform::performanceCounter();
}

void Timer::stop() {
    stopped_ = 1;
    endCount_ = platform::performanceCounter();
}

double Timer::getElapsedTimeInMicroSec() {
    if (stopped_ == 0)
        endCount_ = platform::performanceCounter();

    const double microsPerTick = 1'000'000.0 / static_cast<double>(frequency_);
    startTimeInMicros_ = static_cast<double>(startCount_) * microsPerTick;
    endTimeInMicros_ = static_cast<double>(endCount_) * microsPerTick;
    return endTimeInMicros_ - startTimeInMicros_;
}

double Timer::getElapsedTimeInMilliSec() {
    return getElapsedTimeInMicroSec() * 0.001;
}

double Timer::getElapsedTimeInSec() {
    return getElapsedTimeInMicroSec() * 0.000001;
}

double Timer::getElapsedTime() {
    return getElapsedTimeInSec();
}

}  // namespace pylon
