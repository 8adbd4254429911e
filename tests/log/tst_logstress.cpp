#include "../files.h"

#include <pylon/pylon.h>
#include <QtTest/QtTest>

#include <mutex>
#include <thread>

using namespace pylon::plog;

namespace {

constexpr int threadCount = 8;

LogClient<Network> client;

struct Sink : LogCustomInterface {
    void logItem(const LogItem& item) override {
        const std::lock_guard lock(mutex);
        text += item.toCString() + '\n';
    }
    std::mutex mutex;
    QByteArray text;
};

QByteArray timeOfDay() {
    char text[64];
    return {text, pylon::Timestamp(true).toDefaultString(text, sizeof text)};
}

/// The first line of a log of all threads that is not whole, in the order of its thread and from
/// between two moments of the day; empty when every line is there.
QByteArray fault(QByteArray log, const QByteArray& from, const QByteArray& to) {
    int next[threadCount] = {};
    for (const QByteArray& line : log.replace("\r\n", "\n").split('\n')) {
        const qsizetype at = line.indexOf(": thread ");
        if (at < 0)
            continue;
        const int thread = line.mid(at + 9, 1).toInt();
        const QString expected = QString(": thread %1 – line %2").arg(thread).arg(next[thread]++);
        const QByteArray time = line.mid(1, 15);
        if (line.mid(at) != expected.toUtf8() || (from <= to && (time < from || time > to)))
            return line;
    }
    return std::ranges::count(next, PYLON_STRESS_LINES) == threadCount ? "" : "lines are missing";
}

/// Logs until it is killed and says after each line which it was.
int logForever(const QString& path) {
    const auto file = QSharedPointer<LogFile>::create(path, QIODevice::Truncate, true);
    LogManager::instance()->addLogDevice(file);
    LogManager::instance()->addLogDevice(QSharedPointer<LogConsole>::create(stdout, true));
    for (int i = 0;; ++i)
        PLOG_INFO(client, nullptr, "number %d end", i);
}

}  // namespace

class TestLogStress : public QObject {
    Q_OBJECT

    const QTemporaryDir dir;

private slots:
    void everyLineInEveryDevice() {
        const QString filePath = dir.filePath("file.log"), pipePath = dir.filePath("pipe.log");
        const QString copier = QCoreApplication::applicationFilePath() + " --copy " + pipePath;
        FILE* pipe = osal::popen(qPrintable(copier), "w");
        Sink sink;
        LogManager* manager = LogManager::instance();
        const auto file = QSharedPointer<LogFile>::create(filePath, QIODevice::Truncate, false);
        file->setMaxFileSize(LogFile::maxMaxFileSize);
        manager->addLogDevice(file);
        manager->addLogDevice(QSharedPointer<LogConsole>::create(pipe));
        manager->addLogDevice(QSharedPointer<LogCustom>::create(&sink));
        const QByteArray from = timeOfDay();
        const std::jthread other([](const std::stop_token& end) {
            char text[pylon::Timestamp::FMTBUF_SIZE];
            for (pylon::ptimeval moment{}; !end.stop_requested(); ++moment.tv_sec)
                pylon::Timestamp(moment).toDefaultString(text, sizeof text);
        });
        std::vector<std::jthread> threads;
        for (int t = 0; t < threadCount; ++t) {
            threads.emplace_back([t] {
                for (int i = 0; i < PYLON_STRESS_LINES; ++i)
                    PLOG_INFO(client, &client, "thread %d – line %d", t, i);
            });
        }
        threads.clear();
        const QByteArray to = timeOfDay();
        manager->clearLogDevices();
        file->flush();
        QCOMPARE(osal::pclose(pipe), 0);
        for (const QByteArray& log : {readAll(filePath), readAll(pipePath), sink.text})
            QCOMPARE(fault(log, from, to), "");
    }

    // What was logged before is on disk; at most the last line is cut.
    void killedWhileLogging() {
        const QString path = dir.filePath("killed.log");
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(), {"--forever", path});
        QByteArray output;
        while (output.count('\n') < 500) {
            QVERIFY(process.waitForReadyRead(30'000));
            output += process.readAllStandardOutput();
        }
        process.kill();
        QVERIFY(process.waitForFinished(30'000));
        output += process.readAllStandardOutput();
        const QList<QByteArray> lines = readAll(path).split('\n');
        QVERIFY(lines.size() > output.count('\n'));
        for (qsizetype i = 2; i < lines.size() - 1; ++i)  // behind the banner
            QVERIFY2(lines[i].endsWith(": number " + QByteArray::number(i - 2) + " end"), lines[i]);
    }
};

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "--forever") == 0)
        return logForever(argv[2]);
    if (argc == 3 && qstrcmp(argv[1], "--copy") == 0) {
        QFile input;
        return input.open(stdin, QFile::ReadOnly) && writeAll(argv[2], input.readAll()) ? 0 : 1;
    }
    TestLogStress test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_logstress.moc"
