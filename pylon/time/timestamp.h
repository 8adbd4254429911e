#pragma once

#include <pylon/export.h>
#include <QtCore/QMutex>

class QDebug;

namespace pylon {

/// A wall-clock moment as whole seconds and microseconds since 1970-01-01 00:00:00 UTC.
struct PYLON_EXPORT ptimeval {
    long long tv_sec = 0;  ///< Whole seconds since the epoch.
    int tv_usec = 0;       ///< Microseconds within that second, 0..999999.

    friend constexpr bool operator==(const ptimeval&, const ptimeval&) = default;
    /// Writes `ptimeval(1794726000.000005)`.
    friend PYLON_EXPORT QDebug operator<<(QDebug debug, const ptimeval& moment);
};

/// Wall-clock moment that stamps log records; cheap to take and to render.
///
/// A stamp whose seconds are 0 is not set: it reports 0 for every elapsed time and renders as
/// nothing. Elapsed times follow the system clock and jump when that clock is set; use
/// NanoElapsedTimer to measure durations.
///
/// Thread-safety: a value type; distinct objects may be used on any threads. Rendering is free of
/// locks and safe on any number of threads at once.
class PYLON_EXPORT Timestamp {
public:
    /// A stamp of the current time if @p setNow, otherwise one that is not set.
    explicit Timestamp(bool setNow);
    /// A stamp of the given moment; a moment with @c tv_sec 0 is not set.
    explicit Timestamp(const ptimeval& moment);

    /// The moment itself.
    ptimeval moment() const { return {seconds_, microseconds_}; }

    /// A stamp of now, to the microsecond where the clock has it.
    static Timestamp currentTimeStamp();
    /// Now, as seconds and microseconds since the Unix epoch.
    static ptimeval currentPTimeVal();

    /// Sets the stamp to the current time.
    void start();
    /// Same as start().
    void restart() { start(); }

    /// Whole seconds from the stamp to now, by difference of the seconds fields alone.
    long long elapsedSecs() const;
    /// Milliseconds from the stamp to now; both microsecond fields are cut to milliseconds first.
    long long elapsedMilliSecs() const;
    /// Microseconds from the stamp to now.
    long long elapsedMicroSecs() const;

    /// Renders the stamp as local time "HH:MM:SS.uuuuuu", 15 characters.
    ///
    /// Writes at most @p size characters. The text is followed by a terminator only where there is
    /// room for it: with @p size 15 it is complete but not terminated.
    ///
    /// @return the length of the text; 0 for a stamp that is not set, with @p buffer untouched; -1
    ///         when the text is longer than @p size (its first @p size characters are written) or
    ///         the moment has no local time (nothing is written).
    int toDefaultString(char* buffer, int size) const;

    /// Whether both are the same microsecond.
    friend bool operator==(const Timestamp&, const Timestamp&) = default;
    /// Writes `Timestamp(08:00:00.000005)`, local time without the day; nothing in the brackets for
    /// a stamp that is not set.
    friend PYLON_EXPORT QDebug operator<<(QDebug debug, const Timestamp& stamp);

    /// Size of the rendering cache in characters.
    static const int FMTBUF_SIZE = 64;

    /// @name Rendering cache
    /// The prefix of the second that was rendered last, shared by the whole process, so that
    /// renderings within one second convert to calendar time once. Exposed for diagnostics: read
    /// it only while no other thread renders.
    /// @{

    /// Low 32 bits of the seconds last rendered, 0 before the first rendering.
    static int last_secs_;
    /// Text of that second, "HH:MM:SS.%06u", terminated.
    static char last_buf[FMTBUF_SIZE];
    /// Not locked by any operation of this class.
    static QMutex mutex_;
    /// @}

private:
    long long elapsedIn(int unitsPerSecond) const;

    long long seconds_ = 0;
    int microseconds_ = 0;
};

}  // namespace pylon
