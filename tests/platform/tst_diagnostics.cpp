#include <pylon/platform/signals.h>
#include <pylon/platform/stacktrace.h>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <csignal>
#include <sstream>
#include <thread>

using pylon::StackTrace;

namespace {

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace

// Not local to this file, and with something left to do behind the call: it has to stay a frame.
Q_NEVER_INLINE QByteArray stackOfKnownFunction(int depth) {
    return (depth > 0 ? stackOfKnownFunction(depth - 1)
                      : QByteArray::fromStdString(StackTrace(nullptr).toString()))
        .append('\0')
        .chopped(1);
}

class TestDiagnostics : public QObject {
    Q_OBJECT

private slots:
    void namesSignals_data() {
        QTest::addColumn<int>("id");
        QTest::addColumn<int>("number");
        QTest::addColumn<QByteArray>("name");
        QTest::newRow("2") << 2 << SIGINT << QByteArray("Interrupt (ANSI)");
        QTest::newRow("4") << 4 << SIGILL << QByteArray("Illegal instruction (ANSI)");
        QTest::newRow("8") << 8 << SIGFPE << QByteArray("Floating-point exception (ANSI)");
        QTest::newRow("11") << 11 << SIGSEGV << QByteArray("Segmentation violation (ANSI)");
        QTest::newRow("15") << 15 << SIGTERM << QByteArray("Termination (ANSI)");
        QTest::newRow("22") << 22 << SIGABRT << QByteArray("Abort (ANSI) or IOT trap (4.2 BSD)");
        QTest::newRow("0") << 0 << 0 << QByteArray("Unknow signal");
        QTest::newRow("99") << 99 << 0 << QByteArray("Unknow signal");
    }

    void namesSignals() {
        QFETCH(int, id);
        QFETCH(int, number);
        QFETCH(QByteArray, name);
        QCOMPARE(QByteArray(pylon::signalName(id)), name);
        QCOMPARE(pylon::signalNumber(id), number);
        QCOMPARE(pylon::signalId(number), number == 0 ? 0 : id);
        const QString naming = QRegularExpression::escape(QString::fromLatin1(name));
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Argument missing: .*" + naming));
        QCOMPARE(pylon::signalToString(id), QString());
    }

    void listsSignals() {
        QCOMPARE(pylon::signalIds(), std::vector({21, 2, 4, 8, 11, 15, 22}));
        QCOMPARE(QByteArray(pylon::signalName(21)), QByteArray("Ctrl-Break sequence"));
        // Where a number means something else, it is nobody's.
        QCOMPARE(pylon::signalId(21), pylon::signalNumber(21));
    }

    void showsTheCallerNearTheTop() {
        QByteArray stack;
        std::thread([&stack] { stack = stackOfKnownFunction(0); }).join();
        const auto lines = stack.split('\n');
        const auto isKnown = [](const QByteArray& line) {
            return line.contains("stackOfKnownFunction") && line.contains("tst_diagnostics.cpp");
        };
        const auto known = std::find_if(lines.begin(), lines.end(), isKnown) - lines.begin();
        QVERIFY2(known < 3, stack);
        QCOMPARE(lines.last(), QByteArray());
        QVERIFY(lines.first().trimmed().startsWith('0'));
    }

    void showsDeepStacks() {
        QVERIFY(stackOfKnownFunction(600).count("stackOfKnownFunction") > 600);
    }

    void prints() {
        std::ostringstream stream;
        StackTrace(nullptr).print(stream);
        QVERIFY(stream.str().find("tst_diagnostics.cpp") != std::string::npos);

        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("stack.txt"));
        QFile other(path);
        QVERIFY(other.open(QIODevice::ReadWrite) && other.write(QByteArray(100'000, '@')) > 0);
        QVERIFY(other.flush());
        StackTrace(nullptr).print(path.toLocal8Bit().toStdString());
        const QByteArray text = contentOf(path);
        QVERIFY(text.contains("tst_diagnostics.cpp") && !text.contains('@'));
        StackTrace(nullptr).print(dir.path().toLocal8Bit().toStdString());
        StackTrace(nullptr).print(std::string());
    }

#ifdef CRASH_PROGRAM
    void exampleReportsItsCrash_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QByteArray>("line");
        QTest::newRow("fault") << QStringList()
                               << QByteArray("signal 11: Segmentation violation (ANSI)");
        QTest::newRow("abort") << QStringList("abort") << QByteArray("signal 22: Abort (ANSI)");
    }

    void exampleReportsItsCrash() {
        QFETCH(QStringList, arguments);
        QFETCH(QByteArray, line);
        const QTemporaryDir dir;
        QProcess process;
        process.start(QStringLiteral(CRASH_PROGRAM), QStringList(dir.path()) + arguments);
        QVERIFY(process.waitForFinished(60'000));
        QVERIFY(process.exitStatus() == QProcess::CrashExit || process.exitCode() != 0);
        const QByteArray log = contentOf(dir.filePath(QStringLiteral("crash.log")));
        QVERIFY2(log.contains("about to crash") && log.contains(line), log);
        const QByteArray stack = contentOf(dir.filePath(QStringLiteral("crash.txt")));
        QVERIFY2(stack.contains("decodePicture") && stack.contains("crash.cpp"), stack);
    }
#endif
};

QTEST_MAIN(TestDiagnostics)
#include "tst_diagnostics.moc"
