#include <pylon/time/elapsedtimer.h>

namespace pylon {

ElapsedTimer::~ElapsedTimer() = default;

void ElapsedTimer::start() {
    timer_.start();
}

qint64 ElapsedTimer::restart() {
    return timer_.restart();
}

void ElapsedTimer::invalidate() {
    timer_.invalidate();
}

bool ElapsedTimer::isValid() const {
    return timer_.isValid();
}

qint64 ElapsedTimer::nsecsElapsed() const {
    return timer_.nsecsElapsed();
}

qint64 ElapsedTimer::elapsed() const {
    return timer_.elapsed();
}

}  // namespace pylon
