#pragma once

#include <pylon/export.h>
#include <pylon/time/timer.h>

#include <QtCore/QSharedPointer>
#include <QtCore/QTime>

namespace pylon {

/// The points of a frame's way to the screen that RenderingTimings measures. Other values may be
/// passed and are ignored.
enum TimePoint : int {
    TimePoint4 = 4,
    TimePoint5 = 5,
};

/// Measures two points of the rendering of a frame and how late the frame was dispatched.
///
/// Copies keep their own results but share one Timer: starting one restarts the clock of all.
///
/// Thread-safety: one object belongs to one thread, and so do all its copies, for the sake of the
/// shared timer.
class PYLON_EXPORT RenderingTimings {
public:
    RenderingTimings();
    // Without moves of its own: a moved-from object would lack its timer.
    RenderingTimings(const RenderingTimings&) = default;
    RenderingTimings& operator=(const RenderingTimings&) = default;
    ~RenderingTimings() = default;

    /// Starts the timer and notes the local time of day.
    void start();

    /// Notes the time since start() for @p point.
    void setTime(TimePoint point);
    /// Microseconds from start() to the last setTime() of @p point; 0 before and for other points.
    double time(TimePoint point) const;

    /// Sets the local time of day at which the frame is due.
    void setTargetTime(const QTime& targetTime) { targetTime_ = targetTime; }

    /// Whether start() was called.
    bool isValid() const { return startTime_.isValid(); }

    /// Milliseconds from the target time to the start time of day, negative when started early; 0
    /// without a target or start time. The first result other than 0 is kept for good: later calls
    /// of start() and setTargetTime() do not change it.
    int dispatchTimeDiff() const;

private:
    // Keeps the layout; nothing writes it.
    [[maybe_unused]] double reserved_ = 0.0;
    double time4_ = 0.0;
    double time5_ = 0.0;
    QSharedPointer<Timer> timer_;
    QTime targetTime_;
    QTime startTime_;
    mutable int dispatchDiff_ = 0;
};

}  // namespace pylon
