#pragma once

#include <pylon/export.h>

#include <QtCore/QElapsedTimer>

namespace pylon {

/// QElapsedTimer behind virtual functions, so that a test or a simulation can supply its own clock.
/// Each function forwards to the QElapsedTimer function of its name and shares its conditions:
/// readings of a timer that is not valid mean nothing.
///
/// Thread-safety: one object belongs to one thread.
class PYLON_EXPORT ElapsedTimer {
public:
    /// A timer that is not valid.
    ElapsedTimer() = default;
    ElapsedTimer(const ElapsedTimer&) = default;
    ElapsedTimer(ElapsedTimer&&) = default;
    ElapsedTimer& operator=(const ElapsedTimer&) = default;
    ElapsedTimer& operator=(ElapsedTimer&&) = default;
    virtual ~ElapsedTimer();

    /// Measures from now on.
    virtual void start();
    /// Measures from now on.
    /// @return milliseconds since the previous start.
    virtual qint64 restart();
    /// Makes the timer not valid.
    virtual void invalidate();
    /// Whether the timer was started and not invalidated since.
    virtual bool isValid() const;
    /// Nanoseconds since the start.
    virtual qint64 nsecsElapsed() const;
    /// Milliseconds since the start.
    virtual qint64 elapsed() const;

private:
    QElapsedTimer timer_;
};

}  // namespace pylon
