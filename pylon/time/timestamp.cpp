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

int Timestamp::last_secs_ = 0;
char Timestamp::last_buf[FMTBUF_SIZE] = {};
QMutex Timestamp::mutex_;

namespace {

using namespace std::string_view_literals;

// strftime turns the doubled percent sign into the conversion that stands for the microseconds.
constexpr const char* secondFormat = "%H:%M:%S.%%06u";
constexpr std::string_view microsecondConversion = "%06u"sv;
constexpr std::size_t microsecondDigits = 6;

/// The text of one second with the place where the microseconds go.
struct SecondText {
    char text[Timestamp::FMTBUF_SIZE];
    std::size_t length = 0;
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
    for (; length < sizeof result.text; ++length) {
        const char c = cachedChar(length).load(std::memory_order_acquire);
        if (c == '\0')
            break;
        result.text[length] = c;
    }
    result.length = length;
    return cacheVersion.load(std::memory_order_relaxed) == before;
}

// Release stores keep the text behind the odd version.
void storeCached(long long seconds, const SecondText& second) {
    unsigned version = cacheVersion.load(std::memory_order_relaxed);
    if (version % 2 != 0 ||
        !cacheVersion.compare_exchange_strong(version, version + 1, std::memory_order_acquire))
        return;
    for (std::size_t i = 0; i < second.length; ++i)
        cachedChar(i).store(second.text[i], std::memory_order_release);
    cachedChar(second.length).store('\0', std::memory_order_release);
    cachedSeconds().store(low32(seconds), std::memory_order_release);
    cacheVersion.store(version + 2, std::memory_order_release);
}

bool convertSecond(long long seconds, SecondText& result) {
    std::tm calendar{};
    if (!platform::localTime(seconds, calendar))
        return false;
    result.length = std::strftime(result.text, sizeof result.text, secondFormat, &calendar);
    return result.length > 0;
}

char* appendMicroseconds(char* out, int microseconds) {
    char digits[std::numeric_limits<unsigned>::digits10 + 1];
    const auto value = static_cast<unsigned>(microseconds);
    const char* end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    const auto count = static_cast<std::size_t>(end - digits);
    if (count < microsecondDigits)
        out = std::fill_n(out, microsecondDigits - count, '0');
    return std::copy_n(digits, count, out);
}

/// Replaces the conversion in the text of a second by the microseconds.
std::size_t render(const SecondText& second, int microseconds, char* out) {
    const std::string_view text(second.text, second.length);
    const std::size_t place = text.find(microsecondConversion);
    char* end = std::copy_n(text.data(), std::min(place, text.size()), out);
    if (place == std::string_view::npos)
        return static_cast<std::size_t>(end - out);
    end = appendMicroseconds(end, microseconds);
    const std::string_view rest = text.substr(place + microsecondConversion.size());
    end = std::copy_n(rest.data(), rest.size(), end);
    return static_cast<std::size_t>(end - out);
}

int writeBounded(const char* text, std::size_t length, char* buffer, int size) {
    const std::size_t room = size > 0 ? static_cast<std::size_t>(size) : 0;
    std::copy_n(text, std::min(length, room), buffer);
    if (length > room)
        return -1;
    if (length < room)
        buffer[length] = '\0';
    return static_cast<int>(length);
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
    const long long units = unitsPerSecond == 1 ? 0
                                                : now.tv_usec / microsecondsPerUnit -
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
    SecondText second;
    if (!loadCached(seconds_, second)) {
        if (!convertSecond(seconds_, second))
            return -1;
        storeCached(seconds_, second);
    }
    char text[FMTBUF_SIZE + std::numeric_limits<unsigned>::digits10 + 1];
    return writeBounded(text, render(second, microseconds_, text), buffer, size);
}

}  // namespace pylon
