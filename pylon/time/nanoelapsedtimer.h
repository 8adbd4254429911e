#pragma once

#include <pylon/export.h>

#include <memory>

namespace pylon {

/// Elapsed time since start() from the processor's performance counter.
///
/// Use start() with elapsedMSecs(), elapsedUSecs() or elapsedNSecs(). The functions with an output
/// argument do not see start(): they read an internal millisecond timer that is never started and
/// report what an unstarted QElapsedTimer reports; before start() the others do so too.
///
/// A copy has its own state. A moved-from timer is like one that was not started. Results that do
/// not fit 64 bits wrap.
///
/// Thread-safety: one object belongs to one thread.
class PYLON_EXPORT NanoElapsedTimer {
public:
    /// A timer that is not started. Allocates nothing.
    NanoElapsedTimer() noexcept;
    /// A timer with the start of @p other.
    NanoElapsedTimer(const NanoElapsedTimer& other);
    /// Takes the start of @p other.
    NanoElapsedTimer(NanoElapsedTimer&& other) noexcept;
    /// Takes over the start of @p other.
    NanoElapsedTimer& operator=(const NanoElapsedTimer& other);
    /// Takes the start of @p other.
    NanoElapsedTimer& operator=(NanoElapsedTimer&& other) noexcept;
    ~NanoElapsedTimer();

    /// Measures from now on.
    void start();

    /// Whole milliseconds since start().
    long long elapsedMSecs() const;
    /// Whole microseconds since start().
    long long elapsedUSecs() const;
    /// Nanoseconds since start(), in steps of resolution().
    long long elapsedNSecs() const;
    /// The same as elapsedMSecs().
    long long elapsed() const;

    /// Whole nanoseconds of one counter tick; 1000000 before start().
    long long resolution() const;

    /// @name Readings of the millisecond timer
    /// The result is in whole units of the first name; the output argument is set to the rest in
    /// the unit of the second name, or, for elapsed(), to the same reading in microseconds and
    /// nanoseconds.
    /// @{

    /// Milliseconds, and the same in microseconds.
    long long elapsed(long long& usecs) const;
    /// Milliseconds, and the same in microseconds and in nanoseconds.
    long long elapsed(long long& usecs, long long& nsecs) const;
    /// Milliseconds and the remaining nanoseconds.
    long long elapsedMSecsPlusNSecs(int& nsecs) const;
    /// Milliseconds and the remaining microseconds.
    long long elapsedMSecsPlusUSecs(int& usecs) const;
    /// Microseconds and the remaining nanoseconds.
    long long elapsedUSecsPlusNSecs(int& nsecs) const;
    /// Seconds and the remaining milliseconds.
    long long elapsedSecsPlusMSecs(int& msecs) const;
    /// Seconds and the remaining microseconds.
    long long elapsedSecsPlusUSecs(int& usecs) const;
    /// Seconds and the remaining nanoseconds.
    long long elapsedSecsPlusNSecs(int& nsecs) const;
    /// @}

private:
    struct State;

    long long elapsedUnits(long long unitsPerSecond) const;

    // Null until start().
    std::unique_ptr<State> state_;
};

}  // namespace pylon
