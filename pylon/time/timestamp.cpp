#include <pylon/platform/internal/clock.h>
#include <pylon/time/timestamp.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdint>
#include <ctime>
#include <limits>
#include <string_view>

namespace pylon {

const int Timestamp::FMTBUF_SIZE;
int Timestamp::last_secs_ = 0;
char Timestamp::last_buf[FMTBUF_SIZE] = {};
QMutex Timestamp::mutex_;

namespace {

constexpr std::string_view microsecondConversion = "%06u";
constexpr std::size_t microsecondDigits = 6;
constexpr std::size_t textSize = Timestamp::FMTBUF_SIZE;
constexpr std::size_t maxNumberDigits = std::numeric_limits<unsigned>::digits10 + 1;

/// The text of one second, up to the place where the microseconds go, in a buffer of FMTBUF_SIZE
/// characters.
struct SecondText {
    char* text;
    std::size_t length = 0;
    bool takesMicroseconds = true;
};

/// Version of the cache: odd while a thread is storing a second.
///
/// A reader takes the text only if the version was the same even number before and after; a writer
/// that finds the cache busy leaves it alone, since the text it has serves its own line anyway. So
/// nobody waits. The cache itself stays plain exported data; every access from here is atomic.
std::atomic<unsigned> cacheVersion{0};

std::atomic_ref<char> cachedChar(std::size_t i) {
    return std::atomic_ref<char>(Timestamp::last_buf[i]);
}

std::atomic_ref<int> cachedSeconds() {
    return std::atomic_ref<int>(Timestamp::last_secs_);
}

int low32(long long seconds) {
    return static_cast<int>(static_cast<std::uint32_t>(seconds));
}

// Acquire loads keep the second look at the version behind the text.
bool loadCached(long long seconds, SecondText& result) {
    const unsigned before = cacheVersion.load(std::memory_order_acquire);
    if (before % 2 != 0 || cachedSeconds().load(std::memory_order_acquire) != low32(seconds))
        return false;
    std::size_t length = 0;
    char c = '\0';
    for (; length < textSize; ++length) {
        c = cachedChar(length).load(std::memory_order_acquire);
        if (c == '\0' || c == microsecondConversion[0])
            break;
        result.text[length] = c;
    }
    result.length = length;
    result.takesMicroseconds = c == microsecondConversion[0];
    return cacheVersion.load(std::memory_order_relaxed) == before;
}

// Release stores keep the text behind the odd version.
void storeCached(long long seconds, const SecondText& second) {
    unsigned version = cacheVersion.load(std::memory_order_relaxed);
    if (version % 2 != 0 ||
        !cacheVersion.compare_exchange_strong(version, version + 1, std::memory_order_acquire))
        return;
    std::size_t i = 0;
    for (; i < second.length; ++i)
        cachedChar(i).store(second.text[i], std::memory_order_release);
    for (const char c : microsecondConversion)
        cachedChar(i++).store(c, std::memory_order_release);
    cachedChar(i).store('\0', std::memory_order_release);
    cachedSeconds().store(low32(seconds), std::memory_order_release);
    cacheVersion.store(version + 2, std::memory_order_release);
}

bool convertSecond(long long seconds, SecondText& result) {
    std::tm calendar{};
    if (!platform::localTime(seconds, calendar))
        return false;
    result.length = std::strftime(result.text, textSize, "%H:%M:%S.", &calendar);
    return result.length > 0;
}

/// As "%06u".
char* appendMicroseconds(char* out, int microseconds) {
    auto value = static_cast<unsigned>(microseconds);
    if (value >= 1'000'000)
        return std::to_chars(out, out + maxNumberDigits, value).ptr;
    for (std::size_t i = microsecondDigits; i-- > 0; value /= 10)
        out[i] = static_cast<char>('0' + value % 10);
    return out + microsecondDigits;
}

/// Renders into a buffer of FMTBUF_SIZE + maxNumberDigits characters.
/// @return the length, -1 when the second has no local time.
int render(long long seconds, int microseconds, char* buffer) {
    SecondText second{buffer};
    if (!loadCached(seconds, second)) {
        if (!convertSecond(seconds, second))
            return -1;
        storeCached(seconds, second);
    }
    char* end = buffer + second.length;
    if (second.takesMicroseconds)
        end = appendMicroseconds(end, microseconds);
    return static_cast<int>(end - buffer);
}

}  // namespace

Timestamp::Timestamp(bool setNow) {
    if (setNow)
        start();
}

Timestamp::Timestamp(const ptimeval& moment)
    : seconds_(moment.tv_sec), microseconds_(moment.tv_usec) {}

Timestamp Timestamp::currentTimeStamp() {
    return Timestamp(true);
}

ptimeval Timestamp::currentPTimeVal() {
    // The seconds are rounded by the multiplication and the microseconds are not: a moment within a
    // rounding error of the next second may count as that second.
    const std::int64_t now = platform::utcMicroseconds();
    return {static_cast<long long>(static_cast<double>(now) * 0.000001),
            static_cast<int>(now % 1'000'000)};
}

void Timestamp::start() {
    const ptimeval now = currentPTimeVal();
    seconds_ = now.tv_sec;
    microseconds_ = now.tv_usec;
}

long long Timestamp::elapsedSecs() const {
    return elapsedIn(1);
}

long long Timestamp::elapsedMilliSecs() const {
    return elapsedIn(1000);
}

long long Timestamp::elapsedMicroSecs() const {
    return elapsedIn(1'000'000);
}

long long Timestamp::elapsedIn(int unitsPerSecond) const {
    if (seconds_ == 0)
        return 0;
    const int microsecondsPerUnit = 1'000'000 / unitsPerSecond;
    const ptimeval now = currentPTimeVal();
    const long long units = static_cast<long long>(now.tv_usec / microsecondsPerUnit) -
                            microseconds_ / microsecondsPerUnit;
    // Wraps instead of overflowing for a stamp that lies absurdly far away.
    const auto seconds =
        static_cast<unsigned long long>(now.tv_sec) - static_cast<unsigned long long>(seconds_);
    return static_cast<long long>(seconds * static_cast<unsigned>(unitsPerSecond) +
                                  static_cast<unsigned long long>(units));
}

int Timestamp::toDefaultString(char* buffer, int size) const {
    if (seconds_ == 0)
        return 0;
    char text[textSize + maxNumberDigits];
    const int length = render(seconds_, microseconds_, text);
    if (length < 0)
        return -1;
    const int written = std::min(length, std::max(size, 0));
    // Not memcpy: wide loads of characters that have just been stored would wait for the stores.
    for (int i = 0; i < written; ++i)
        buffer[i] = text[i];
    if (length < size)
        buffer[length] = '\0';
    return length <= size ? length : -1;
}

}  // namespace pylon
