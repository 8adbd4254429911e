// One log line into a file, from the call to the file system, beside spdlog, glog, Qt's messages
// and the floor: the same system calls with ready-made text. Lines are 150 bytes long in all cases.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <glog/logging.h>
#include <pylon/log/logfile.h>
#include <pylon/log/logmacros.h>
#include <pylon/log/logmanager.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>
#include <sys/stat.h>
#include <unistd.h>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <vector>

namespace plog = pylon::plog;

namespace {

const QTemporaryDir& folder() {
    static const QTemporaryDir dir;
    return dir;
}

std::string path(const char* name) {
    return folder().filePath(QString::fromLatin1(name)).toStdString();
}

plog::LogClient<plog::Network> client;

// Makes the whole line of the library 150 bytes long; the peers' messages are lengthened to match.
constexpr const char* tail = "on";
constexpr const char* peerTail =
    "of a camera whose name is long enough to make 150 bytes, on the first try, all told";

constexpr const char* spdlogPattern = "[%H:%M:%S.%f][%5l][%10n][P:%P][T:%t] %v";

void logLine(int number) {
    PLOG_INFO(client, nullptr, "frame %8d %s", number, tail);
}

/// The log manager with one file device, for the threads of a benchmark.
void openLogFile() {
    const QString file = folder().filePath(QStringLiteral("logfile.log"));
    plog::LogManager::instance()->addLogDevice(
        QSharedPointer<plog::LogFile>::create(file, QIODevice::Truncate, false));
}

void closeLogFile() {
    plog::LogManager::instance()->clearLogDevices();
}

void logFile(benchmark::State& state) {
    if (state.thread_index() == 0)
        openLogFile();
    int number = 0;
    for (auto _ : state)
        logLine(++number);
    state.SetItemsProcessed(state.iterations());
    if (state.thread_index() == 0)
        closeLogFile();
}
BENCHMARK(logFile)->Name("LogFile/Line");
BENCHMARK(logFile)->Name("LogFileThreads/FourThreads")->Threads(4)->UseRealTime();
BENCHMARK(logFile)->Name("LogFileThreads/Peer_OneThread")->UseRealTime();

// What a rotating log with the promises of LogFile has to do: ask the file's size for each line and
// flush every third.
void spdlogSizeAndFlush(benchmark::State& state) {
    const auto sink =
        std::make_shared<spdlog::sinks::basic_file_sink_mt>(path("spdlog-size.log"), true);
    spdlog::logger logger("Network", sink);
    logger.set_pattern(spdlogPattern);
    int number = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::filesystem::file_size(sink->filename()));
        logger.info("frame {:8} {}", ++number, peerTail);
        if (number % 3 == 0)
            logger.flush();
    }
}
BENCHMARK(spdlogSizeAndFlush)->Name("LogFile/Peer_SpdlogSizeAndFlush");

void spdlogPlain(benchmark::State& state) {
    spdlog::logger logger(
        "Network", std::make_shared<spdlog::sinks::basic_file_sink_mt>(path("spdlog.log"), true));
    logger.set_pattern(spdlogPattern);
    int number = 0;
    for (auto _ : state)
        logger.info("frame {:8} {}", ++number, peerTail);
}
BENCHMARK(spdlogPlain)->Name("LogFile/Peer_Spdlog");

void glog(benchmark::State& state) {
    static const bool started = [] {
        FLAGS_log_dir = folder().path().toStdString();
        google::InitGoogleLogging("bench");
        google::SetStderrLogging(google::FATAL);
        return true;
    }();
    benchmark::DoNotOptimize(started);
    int number = 0;
    for (auto _ : state)
        LOG(INFO) << "frame " << ++number << ' ' << peerTail;
}
BENCHMARK(glog)->Name("LogFile/Peer_Glog");

QFile* qtLog = nullptr;

void qtHandler(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    static std::mutex mutex;
    const QByteArray line = qFormatLogMessage(type, context, text).toUtf8();
    const std::lock_guard lock(mutex);
    qtLog->write(line);
    qtLog->write("\n");
}

void qtMessages(benchmark::State& state) {
    QFile file(folder().filePath(QStringLiteral("qt.log")));
    if (!file.open(QIODevice::WriteOnly))
        return state.SkipWithError("no file");
    qtLog = &file;
    qSetMessagePattern(QStringLiteral("[%{time hh:mm:ss.zzz}][%{type}][%{pid}] %{message}"));
    const QtMessageHandler previous = qInstallMessageHandler(qtHandler);
    int number = 0;
    for (auto _ : state)
        qInfo("frame %8d %s", ++number, peerTail);
    qInstallMessageHandler(previous);
}
BENCHMARK(qtMessages)->Name("LogFile/Peer_QtHandlerToQFile");

void floorOfSystemCalls(benchmark::State& state) {
    const int file = open(path("floor.log").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0600);
    const std::string text(501, 'x');
    std::size_t pending = 0;
    for (auto _ : state) {
        struct stat status {};
        benchmark::DoNotOptimize(fstat(file, &status));
        pending += 150;
        if (pending < text.size())
            continue;
        benchmark::DoNotOptimize(write(file, text.data(), text.size()));
        pending -= text.size();
    }
    close(file);
}
BENCHMARK(floorOfSystemCalls)->Name("LogFile/Peer_FloorFstatAndWrite");

/// Percentiles of single calls, in nanoseconds.
void latency(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    openLogFile();
    std::vector<double> times;
    int number = 0;
    for (auto _ : state) {
        const auto before = Clock::now();
        logLine(++number);
        times.push_back(std::chrono::duration<double, std::nano>(Clock::now() - before).count());
    }
    closeLogFile();
    std::sort(times.begin(), times.end());
    const auto percentile = [&](double part) {
        return times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
    };
    state.counters["p50_ns"] = percentile(0.5);
    state.counters["p99_ns"] = percentile(0.99);
    state.counters["p99.9_ns"] = percentile(0.999);
}
BENCHMARK(latency)->Name("Latency/LogFile")->Iterations(200'000);

long residentKiB() {
    std::ifstream status("/proc/self/statm");
    long size = 0, resident = 0;
    status >> size >> resident;
    return resident * sysconf(_SC_PAGESIZE) / 1024;
}

void memory(benchmark::State& state) {
    openLogFile();
    int number = 0;
    for (int i = 0; i < 1000; ++i)
        logLine(++number);
    const long before = residentKiB();
    for (auto _ : state)
        logLine(++number);
    state.counters["growth_KiB"] = static_cast<double>(residentKiB() - before);
    closeLogFile();
}
BENCHMARK(memory)->Name("Memory/MillionLines")->Iterations(1'000'000);

}  // namespace
