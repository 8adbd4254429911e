#include <pylon/log/logcustom.h>
#include <pylon/log/logmacros.h>
#include <pylon/log/logmanager.h>
#include <QtTest/QTest>

#include <mutex>
#include <thread>
#include <vector>

using namespace pylon::plog;

namespace {

constexpr int threadCount = 4;
constexpr int linesPerThread = 5000;

struct CountingSink : LogCustomInterface {
    void logItem(const LogItem& item) override {
        if (item.rawMessage().isEmpty())
            return;  // the banner
        const QByteArray line = item.toCString();
        const QList<QByteArray> words = item.rawMessage().split(' ');
        const int thread = words[0].toInt();
        const std::lock_guard lock(mutex);
        if (words[1].toInt() != next[thread] || !line.endsWith(": " + item.rawMessage()))
            ++wrong;
        ++next[thread];
    }
    std::mutex mutex;
    int next[threadCount] = {};
    int wrong = 0;
};

LogClient<Network> client;

}  // namespace

class TestLogThreads : public QObject {
    Q_OBJECT

private slots:
    // Every line arrives once, whole and in the order of its thread, by both lists of devices.
    void manyThreadsLog() {
        CountingSink sinks[2];
        LogManager* manager = LogManager::instance();
        manager->addRawDevice(QSharedPointer<LogCustom>::create(&sinks[0]));
        manager->addLogDevice(QSharedPointer<LogCustom>::create(&sinks[1]));
        std::vector<std::thread> threads;
        for (int t = 0; t < threadCount; ++t) {
            threads.emplace_back([t] {
                for (int i = 0; i < linesPerThread; ++i)
                    PLOG_INFO(client, nullptr, "%d %d %s", t, i, "text");
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        manager->clearLogDevices();
        manager->clearRawDevices();
        for (const CountingSink& sink : sinks) {
            QCOMPARE(sink.wrong, 0);
            for (const int lines : sink.next)
                QCOMPARE(lines, linesPerThread);
        }
    }
};

QTEST_GUILESS_MAIN(TestLogThreads)
#include "tst_logthreads.moc"
