#pragma once

#include <pylon/export.h>

namespace pylon {

/// Stopwatch on the processor's performance counter. While it runs, readings give the time from
/// start() to now; after stop() the time from start() to stop().
///
/// Thread-safety: one object belongs to one thread. Readings change the object.
class PYLON_EXPORT Timer {
public:
    /// A timer that runs from the counter's zero; call start() before reading.
    Timer();

    /// Measures from now on; a stopped timer runs again.
    void start();
    /// Keeps the time measured so far.
    void stop();

    /// Microseconds, with fraction.
    double getElapsedTimeInMicroSec();
    /// Milliseconds, with fraction.
    double getElapsedTimeInMilliSec();
    /// Seconds, with fraction.
    double getElapsedTimeInSec();
    /// The same as getElapsedTimeInSec().
    double getElapsedTime();

    /// The counter at start(), in microseconds since its zero, as of the last reading; 0 before the
    /// first one.
    double startTime() const { return startTimeInMicros_; }

private:
    double startTimeInMicros_ = 0.0;
    double endTimeInMicros_ = 0.0;
    int stopped_ = 0;
    long long frequency_;
    long long startCount_ = 0;
    long long endCount_ = 0;
};

}  // namespace pylon
