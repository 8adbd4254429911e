#include <pylon/time/renderingtimings.h>

namespace pylon {

RenderingTimings::RenderingTimings() : timer_(QSharedPointer<Timer>::create()) {}

void RenderingTimings::start() {
    timer_->start();
    startTime_ = QTime::currentTime();
}

void RenderingTimings::setTime(TimePoint point) {
    if (point == TimePoint4)
        time4_ = timer_->getElapsedTimeInMicroSec();
    else if (point == TimePoint5)
        time5_ = timer_->getElapsedTimeInMicroSec();
}

double RenderingTimings::time(TimePoint point) const {
    if (point == TimePoint4)
        return time4_;
    return point == TimePoint5 ? time5_ : 0.0;
}

int RenderingTimings::dispatchTimeDiff() const {
    if (dispatchDiff_ == 0 && targetTime_.isValid())
        dispatchDiff_ = targetTime_.msecsTo(startTime_);
    return dispatchDiff_;
}

}  // namespace pylon
