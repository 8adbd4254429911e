#pragma once

#include <pylon/export.h>

#include <QtCore/QByteArray>
#include <QtCore/QMutex>
#include <QtCore/QRandomGenerator>

namespace pylon {

/// The process's source of pseudo-random numbers that can be had again: test data and payloads.
/// Never for keys, salts or anything else that nobody may guess.
///
/// The numbers are those of the 32-bit Mersenne Twister, seeded by a seed sequence of one element;
/// before the first init() as if that were 1.
///
/// Thread-safety: init(), isInitalised() and seed() may be called from any thread; numbers and
/// payloads are to be drawn by one thread at a time, and while none calls init().
class PYLON_EXPORT RandomGenerator {
public:
    /// Starts the sequence that belongs to @p seed.
    static void init(int seed);
    /// Starts the sequence that belongs to the time of day: milliseconds since local midnight.
    static void init();
    /// Whether either init() was called.
    static bool isInitalised();
    /// The seed last used; 0 before the first init().
    static int seed();

    /// The next 64 random bits, two numbers of the generator, the first in the lower half.
    static quint64 randomNumber();

    /// Random bytes, at least @p minSize and fewer than @p maxSize of them, or exactly @p minSize
    /// if both are the same. Empty for a size below 1 or if @p maxSize is below @p minSize.
    static QByteArray randomPayload(int minSize, int maxSize);

private:
    static QMutex mutex_;
    static bool initialised_;
    static int seed_;
    static QRandomGenerator generator_;
};

}  // namespace pylon
