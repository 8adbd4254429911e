// Rendering of time stamps beside the C library.

#include <benchmark/benchmark.h>
#include <pylon/time/timestamp.h>

#include <cstdio>
#include <ctime>

namespace {

constexpr long long base = 1794726000;

void timestampWithinSecond(benchmark::State& state) {
    const pylon::Timestamp stamp(pylon::ptimeval{base, 123'456});
    char text[64];
    for (auto _ : state) {
        benchmark::DoNotOptimize(stamp.toDefaultString(text, sizeof text));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(timestampWithinSecond)->Name("Timestamp/WithinSecond");

void timestampOfNewSeconds(benchmark::State& state) {
    char text[64];
    long long second = base;
    for (auto _ : state) {
        const pylon::Timestamp stamp(pylon::ptimeval{++second, 123'456});
        benchmark::DoNotOptimize(stamp.toDefaultString(text, sizeof text));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(timestampOfNewSeconds)->Name("Timestamp/NewSeconds");

void timestampPeer(benchmark::State& state) {
    char text[64];
    for (auto _ : state) {
        const std::time_t second = base;
        std::tm calendar{};
        localtime_r(&second, &calendar);
        char prefix[32];
        std::strftime(prefix, sizeof prefix, "%H:%M:%S", &calendar);
        benchmark::DoNotOptimize(std::snprintf(text, sizeof text, "%s.%06u", prefix, 123'456u));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(timestampPeer)->Name("Timestamp/Peer_LocaltimeStrftimeSnprintf");

}  // namespace
