#include <pylon/platform/signals.h>
#include <pylon/platform/stacktrace.h>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <csignal>
#include <thread>

static QByteArray contentOf(const QString& path) {
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return file.readAll();
}

// Not local to this file, and with something left to do behind the call: it has to stay a frame.
Q_NEVER_INLINE QByteArray stackOfKnownFunction(int depth) {
    return (depth > 0 ? stackOfKnownFunction(depth - 1)
                      : QByteArray::fromStdString(pylon::StackTrace(nullptr).toString())) +
           '\n';
}

class TestDiagnostics : public QObject {
    Q_OBJECT

private slots:
    void namesSignals() {
        QCOMPARE(pylon::signalIds(), std::vector({21, 2, 4, 8, 11, 15, 22}));
        QCOMPARE(pylon::signalId(21), pylon::signalNumber(21));  // no other signal's number
        for (const auto [id, number] : {std::pair(11, SIGSEGV), {22, SIGABRT}, {0, 0}}) {
            QCOMPARE(pylon::signalNumber(id), number);
            QCOMPARE(pylon::signalId(number), id);
        }
        QCOMPARE(pylon::signalName(99), "Unknow signal");
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Segmentation violation .ANSI."));
        QCOMPARE(pylon::signalToString(11), QString());
    }

    void showsTheCallerNearTheTop() {
        QByteArray stack;
        std::thread([&stack] { stack = stackOfKnownFunction(0); }).join();
        const QByteArray top = stack.split('\n').first(3).join();
        QVERIFY2(top.contains("stackOfKnownFunction") && top.contains("tst_diagnostics.cpp"),
                 stack);
        QVERIFY(stackOfKnownFunction(600).count("stackOfKnownFunction") > 600);
    }

    void prints() {
        const QTemporaryDir dir;
        QFile open(dir.filePath("stack.txt"));
        QVERIFY(open.open(QFile::ReadWrite) && open.write(QByteArray(9999, '@')) && open.flush());
        const pylon::StackTrace trace(nullptr);
        trace.print(dir.path().toLocal8Bit().toStdString());  // cannot be written
        trace.print(open.fileName().toLocal8Bit().toStdString());
        const QByteArray text = contentOf(open.fileName());
        QVERIFY(text.contains("tst_diagnostics.cpp") && !text.contains('@'));
    }

#ifdef CRASH_PROGRAM
    void exampleReportsItsCrash() {
        const std::pair<QString, QByteArray> crashes[] = {
            {"", "signal 11: Segmentation violation (ANSI)"}, {"abort", "signal 22: Abort (ANSI)"}};
        for (const auto& [how, line] : crashes) {
            const QTemporaryDir dir;
            QProcess process;
            process.start(CRASH_PROGRAM, {dir.path(), how});
            QVERIFY(process.waitForFinished(60'000));
            QVERIFY(process.exitStatus() == QProcess::CrashExit || process.exitCode() != 0);
            const QByteArray log = contentOf(dir.filePath("crash.log"));
            QVERIFY2(log.contains("about to crash") && log.contains(line), log);
            const QByteArray stack = contentOf(dir.filePath("crash.txt"));
            QVERIFY2(stack.contains("decodePicture") && stack.contains("crash.cpp"), stack);
        }
    }
#endif
};

QTEST_MAIN(TestDiagnostics)
#include "tst_diagnostics.moc"
