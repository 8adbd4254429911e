#include <pylon/log/logconsole.h>
#include <pylon/log/logcustom.h>
#include <pylon/log/logfile.h>
#include <pylon/log/logmacros.h>
#include <pylon/log/logmanager.h>
#include <pylon/platform/osal.h>
#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <atomic>
#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

using namespace pylon::plog;

namespace {

constexpr int threadCount = 8;
constexpr int linesPerThread = PYLON_STRESS_LINES;

LogClient<Network> client;

struct Sink : LogCustomInterface {
    void logItem(const LogItem& item) override {
        const std::lock_guard lock(mutex);
        text += item.toCString() + '\n';
    }
    std::mutex mutex;
    QByteArray text;
};

QByteArray content(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().replace("\r\n", "\n") : QByteArray();
}

/// What is wrong with a log of all threads; empty when every line is there once, whole, in the
/// order of its thread and with a time between two moments of the day.
QByteArray fault(const QByteArray& log, const QByteArray& from, const QByteArray& to) {
    int next[threadCount] = {};
    for (const QByteArray& line : log.split('\n')) {
        const qsizetype at = line.indexOf("line of thread ");
        if (at < 0)
            continue;
        const QList<QByteArray> words = line.mid(at).split(' ');
        if (words.size() != 6 || words[5] != "end" || !line.startsWith('['))
            return "not whole: " + line;
        const int thread = words[3].toInt();
        if (words[4].toInt() != next[thread]++)
            return "out of order: " + line;
        const QByteArray time = line.mid(1, 15);
        if (from <= to && (time < from || time > to))
            return "wrong time: " + line;
    }
    for (const int lines : next) {
        if (lines != linesPerThread)
            return "lines: " + QByteArray::number(lines);
    }
    return {};
}

QByteArray timeOfDay() {
    char text[64];
    return QByteArray(text,
                      pylon::Timestamp::currentTimeStamp().toDefaultString(text, sizeof text));
}

void runThreads() {
    std::atomic<bool> done = false;
    std::thread otherSeconds([&done] {
        char text[64];
        for (long long second = 1; !done; second += 3607)
            pylon::Timestamp(pylon::ptimeval{second, 1}).toDefaultString(text, sizeof text);
    });
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < linesPerThread; ++i)
                PLOG_INFO(client, &client, "line of thread %d %d end", t, i);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    done = true;
    otherSeconds.join();
}

int copyInput(const char* path) {
    QFile input, output(QString::fromLocal8Bit(path));
    if (!input.open(stdin, QIODevice::ReadOnly) || !output.open(QIODevice::WriteOnly))
        return 1;
    for (QByteArray bytes; !(bytes = input.read(65536)).isEmpty();)
        output.write(bytes);
    return 0;
}

/// Logs until it is killed and says after each line which it was.
int logForever(const char* path) {
    const auto file =
        QSharedPointer<LogFile>::create(QString::fromLocal8Bit(path), QIODevice::Truncate, true);
    LogManager::instance()->addLogDevice(file);
    for (int i = 0;; ++i) {
        PLOG_INFO(client, nullptr, "number %d end", i);
        std::printf("%d\n", i);
        std::fflush(stdout);
    }
}

}  // namespace

class TestLogStress : public QObject {
    Q_OBJECT

    const QTemporaryDir dir;

private slots:
    void everyLineInEveryDevice() {
        const QString filePath = dir.filePath(QStringLiteral("file.log"));
        const QString pipePath = dir.filePath(QStringLiteral("pipe.log"));
        const QString command =
            QStringLiteral("%1 --copy %2").arg(QCoreApplication::applicationFilePath(), pipePath);
        FILE* pipe = osal::popen(qPrintable(command), "w");
        QVERIFY(pipe);
        Sink sink;
        LogManager* manager = LogManager::instance();
        const auto file = QSharedPointer<LogFile>::create(filePath, QIODevice::Truncate, false);
        file->setMaxFileSize(LogFile::maxMaxFileSize);
        manager->addLogDevice(file);
        manager->addLogDevice(QSharedPointer<LogConsole>::create(pipe));
        manager->addLogDevice(QSharedPointer<LogCustom>::create(&sink));

        const QByteArray from = timeOfDay();
        runThreads();
        const QByteArray to = timeOfDay();
        manager->clearLogDevices();
        file->flush();
        QCOMPARE(osal::pclose(pipe), 0);

        QCOMPARE(fault(content(filePath), from, to), QByteArray());
        QCOMPARE(fault(content(pipePath), from, to), QByteArray());
        QCOMPARE(fault(sink.text, from, to), QByteArray());
    }

    // What was logged before is on disk; at most the last line is cut.
    void killedWhileLogging() {
        const QString path = dir.filePath(QStringLiteral("killed.log"));
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--forever"), path});
        QByteArray output;
        while (output.count('\n') < 500) {
            QVERIFY(process.waitForReadyRead(30'000));
            output += process.readAllStandardOutput();
        }
        process.kill();
        QVERIFY(process.waitForFinished(30'000));
        output += process.readAllStandardOutput();
        const int said =
            output.replace("\r", "").left(output.lastIndexOf('\n')).split('\n').constLast().toInt();

        QList<QByteArray> lines = content(path).split('\n');
        lines.removeLast();  // empty, or cut
        int number = 0;
        for (const QByteArray& line : std::as_const(lines)) {
            if (line.contains(": number "))
                QVERIFY2(line.endsWith(": number " + QByteArray::number(number++) + " end"),
                         line.constData());
        }
        QVERIFY2(number > said, qPrintable(QStringLiteral("%1 of %2").arg(number).arg(said)));
    }
};

int main(int argc, char** argv) {
    if (argc == 3 && QByteArray(argv[1]) == "--copy")
        return copyInput(argv[2]);
    if (argc == 3 && QByteArray(argv[1]) == "--forever")
        return logForever(argv[2]);
    QCoreApplication application(argc, argv);
    TestLogStress test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_logstress.moc"
