// Log calls that are disabled, and the making of a line, beside spdlog, Qt and the C library.

#include <benchmark/benchmark.h>
#include <pylon/log/logmacros.h>
#include <pylon/log/logmanager.h>
#include <spdlog/sinks/null_sink.h>
#include <spdlog/spdlog.h>
#include <unistd.h>
#include <QtCore/QLoggingCategory>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <ctime>

using namespace pylon::plog;

namespace {

Q_LOGGING_CATEGORY(category, "pylon.benchmark", QtFatalMsg)

LogClient<Network> client;

void disabledLevel(benchmark::State& state) {
    int value = 0;
    for (auto _ : state) {
        PLOG_DEBUG(client, nullptr, "value %d of %s", value, "benchmark");
        benchmark::DoNotOptimize(++value);
    }
}
BENCHMARK(disabledLevel)->Name("Disabled/Level");

void disabledModule(benchmark::State& state) {
    LogManager::instance()->unsetAll();
    int value = 0;
    for (auto _ : state) {
        PLOG_INFO(client, nullptr, "value %d of %s", value, "benchmark");
        benchmark::DoNotOptimize(++value);
    }
    LogManager::instance()->resetFilter();
}
BENCHMARK(disabledModule)->Name("Disabled/Module");

void disabledSpdlog(benchmark::State& state) {
    spdlog::logger logger("benchmark", std::make_shared<spdlog::sinks::null_sink_mt>());
    logger.set_level(spdlog::level::info);
    int value = 0;
    for (auto _ : state) {
        logger.debug("value {} of {}", value, "benchmark");
        benchmark::DoNotOptimize(++value);
    }
}
BENCHMARK(disabledSpdlog)->Name("Disabled/Peer_Spdlog");

void disabledQt(benchmark::State& state) {
    int value = 0;
    for (auto _ : state) {
        qCDebug(category, "value %d of %s", value, "benchmark");
        benchmark::DoNotOptimize(++value);
    }
}
BENCHMARK(disabledQt)->Name("Disabled/Peer_qCDebug");

constexpr const char* messageFormat = "frame %d of camera '%s' was not decoded in time, skipped";
constexpr const char* camera = "Gate 7";
constexpr const char* function = "void Decoder::decode(const Image&)";

QByteArray message(int number) {
    char text[128];
    return QByteArray(text, std::snprintf(text, sizeof text, messageFormat, number, camera));
}

void lineOfItem(benchmark::State& state) {
    int number = 0;
    for (auto _ : state) {
        const LogItem item(Info, Network, 256, "Network", "decode", function, &state, QByteArray(),
                           message(++number));
        benchmark::DoNotOptimize(item.toCString().constData());
    }
}
BENCHMARK(lineOfItem)->Name("Line/LogItem");

// The same bytes, made the plain way.
void linePeer(benchmark::State& state) {
    const auto process = static_cast<unsigned>(getpid()) & 0xFFFF;
    const auto thread = static_cast<unsigned>(gettid()) & 0xFFFF;
    int number = 0;
    for (auto _ : state) {
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        std::tm calendar{};
        localtime_r(&now.tv_sec, &calendar);
        char time[32];
        std::strftime(time, sizeof time, "%H:%M:%S", &calendar);
        char text[128];
        std::snprintf(text, sizeof text, messageFormat, ++number, camera);
        char line[640];
        benchmark::DoNotOptimize(std::snprintf(
            line, sizeof line,
            "[%s.%06u][%5s][%10s][P:%04x][T:%04hx][O:%08x]                            %-40.40s: %s",
            time, static_cast<unsigned>(now.tv_nsec / 1000), "INFO", "Network", process,
            static_cast<unsigned short>(thread),
            static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(&state)), function, text));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(linePeer)->Name("Line/Peer_Snprintf");

void lineByMacro(benchmark::State& state) {
    struct Discard : LogDevice {
        Discard() : LogDevice(nullptr) {}
        void write(const LogItem& item) override {
            benchmark::DoNotOptimize(item.toCString().constData());
        }
        DeviceType type() const override { return Custom; }
    };
    const auto device = QSharedPointer<Discard>::create();
    LogManager::instance()->addLogDevice(device);
    int number = 0;
    for (auto _ : state)
        PLOG_INFO(client, &state, messageFormat, ++number, camera);
    LogManager::instance()->removeLogDevice(device);
}
BENCHMARK(lineByMacro)->Name("Line/MacroToDevice");

}  // namespace
