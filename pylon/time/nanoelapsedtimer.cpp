#include <pylon/time/nanoelapsedtimer.h>

#include <pylon/platform/internal/clock.h>

#include <QtCore/QElapsedTimer>

namespace pylon {

namespace {

constexpr long long msecsPerSecond = 1'000;
constexpr long long usecsPerSecond = 1'000'000;
constexpr long long nsecsPerSecond = 1'000'000'000;

// Nothing ever starts the millisecond timer, so every reading is that of a new one.
long long unstartedMSecs() {
    return QElapsedTimer().elapsed();
}

// Unstarted readings are large enough to overflow in smaller units.
long long wrappingProduct(long long value, long long factor) {
    return static_cast<long long>(static_cast<unsigned long long>(value) *
                                  static_cast<unsigned long long>(factor));
}

// Whole seconds of an unstarted reading; the rest in units of 1 / (1000 * unitsPerMSec) seconds.
long long splitUnstarted(int& rest, int unitsPerMSec) {
    const long long msecs = unstartedMSecs();
    rest = static_cast<int>(msecs % msecsPerSecond) * unitsPerMSec;
    return msecs / msecsPerSecond;
}

}  // namespace

struct NanoElapsedTimer::State {
    long long frequency = platform::performanceFrequency();
    long long startCount = 0;
};

NanoElapsedTimer::NanoElapsedTimer() noexcept = default;
NanoElapsedTimer::NanoElapsedTimer(NanoElapsedTimer&& other) noexcept = default;
NanoElapsedTimer& NanoElapsedTimer::operator=(NanoElapsedTimer&& other) noexcept = default;
NanoElapsedTimer::~NanoElapsedTimer() = default;

NanoElapsedTimer::NanoElapsedTimer(const NanoElapsedTimer& other)
    : state_(other.state_ ? std::make_unique<State>(*other.state_) : nullptr) {}

NanoElapsedTimer& NanoElapsedTimer::operator=(const NanoElapsedTimer& other) {
    if (state_ && other.state_)
        *state_ = *other.state_;
    else
        state_ = NanoElapsedTimer(other).state_;
    return *this;
}

void NanoElapsedTimer::start() {
    if (!state_)
        state_ = std::make_unique<State>();
    state_->startCount = platform::performanceCounter();
}

long long NanoElapsedTimer::elapsedUnits(long long unitsPerSecond) const {
    if (!state_)
        return wrappingProduct(unstartedMSecs(), unitsPerSecond / msecsPerSecond);
    const long long ticks = platform::performanceCounter() - state_->startCount;
    const double unitsPerTick =
        static_cast<double>(unitsPerSecond) / static_cast<double>(state_->frequency);
    return static_cast<long long>(static_cast<double>(ticks) * unitsPerTick);
}

long long NanoElapsedTimer::elapsedMSecs() const {
    return elapsedUnits(msecsPerSecond);
}

long long NanoElapsedTimer::elapsedUSecs() const {
    return elapsedUnits(usecsPerSecond);
}

long long NanoElapsedTimer::elapsedNSecs() const {
    return elapsedUnits(nsecsPerSecond);
}

long long NanoElapsedTimer::elapsed() const {
    return elapsedMSecs();
}

long long NanoElapsedTimer::resolution() const {
    if (!state_)
        return 1'000'000;
    return static_cast<long long>(static_cast<double>(nsecsPerSecond) /
                                  static_cast<double>(state_->frequency));
}

long long NanoElapsedTimer::elapsed(long long& usecs) const {
    const long long msecs = unstartedMSecs();
    usecs = wrappingProduct(msecs, 1'000);
    return msecs;
}

long long NanoElapsedTimer::elapsed(long long& usecs, long long& nsecs) const {
    const long long msecs = elapsed(usecs);
    nsecs = wrappingProduct(msecs, 1'000'000);
    return msecs;
}

long long NanoElapsedTimer::elapsedMSecsPlusNSecs(int& nsecs) const {
    nsecs = 0;
    return unstartedMSecs();
}

long long NanoElapsedTimer::elapsedMSecsPlusUSecs(int& usecs) const {
    return elapsedMSecsPlusNSecs(usecs);
}

long long NanoElapsedTimer::elapsedUSecsPlusNSecs(int& nsecs) const {
    nsecs = 0;
    return wrappingProduct(unstartedMSecs(), 1'000);
}

long long NanoElapsedTimer::elapsedSecsPlusMSecs(int& msecs) const {
    return splitUnstarted(msecs, 1);
}

long long NanoElapsedTimer::elapsedSecsPlusUSecs(int& usecs) const {
    return splitUnstarted(usecs, 1'000);
}

long long NanoElapsedTimer::elapsedSecsPlusNSecs(int& nsecs) const {
    return splitUnstarted(nsecs, 1'000'000);
}

}  // namespace pylon
