#include "../files.h"

#include <pylon/pylon.h>
#include <QtTest/QtTest>

#include <cerrno>
#include <csignal>
#include <cstdarg>

static int format(char* buffer, std::size_t size, const char* text, ...) {
    va_list values;
    va_start(values, text);
    const int result = osal::vsnprintf_c99(buffer, size, text, values);
    va_end(values);
    return result;
}

// Not local to this file, and with something left to do behind the call: it has to stay a frame.
Q_NEVER_INLINE QByteArray stackOfKnownFunction(int depth) {
    return (depth > 0 ? stackOfKnownFunction(depth - 1)
                      : QByteArray::fromStdString(pylon::StackTrace(nullptr).toString())) +
           '\n';
}

class TestProcess : public QObject {
    Q_OBJECT

private slots:
    void opensUnicodePaths() {
        const QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("żółw \u8239\u8236 \U0001F6A2.txt"));
        FILE* file = nullptr;
        QVERIFY(osal::fopen(&file, path, "rb") == ENOENT && !file);
        QCOMPARE(osal::fopen(&file, path, "wb"), 0);
        std::fclose(file);
        QVERIFY(QFile::exists(path));
    }

    void environmentChildrenAndConsole() {
        QVERIFY(!osal::getenv("PATH").isEmpty() && osal::getenv("PYLON_TEST_UNSET").isEmpty());
        FILE* pipe = osal::popen("echo ready && exit 3", "r");
        char line[16] = {};
        QVERIFY(std::fgets(line, sizeof line, pipe) && QByteArray(line).startsWith("ready"));
        QCOMPARE(osal::pclose(pipe), 3);
        QVERIFY(QMetaType::fromName("pylon::SynchronousProcess*").metaObject());
        pylon::ConsoleReader reader;
        reader.start();
        QVERIFY(reader.wait(60'000));
    }

    // What does not fit with its terminator is left out or cut; nothing behind the size changes.
    void boundedText() {
        char buffer[] = "######", whole[128], text[] = ";;one;two", none[] = ";;";
        osal::strcpy(buffer, 4, "four");
        QCOMPARE(QByteArray(buffer, 6), QByteArray("\0#####", 6));
        osal::strcpy(buffer, 5, "four");
        osal::strcpy(buffer, 0, nullptr);
        QCOMPARE(QByteArray(buffer, 6), QByteArray("four\0#", 6));
        osal::strcpy(buffer, 5, nullptr);
        QVERIFY(osal::strerror(whole, sizeof whole, ENOENT) == 0 && qstrlen(whole) > 4);
        osal::strerror(buffer, 4, ENOENT);
        QCOMPARE(QByteArray(buffer, 6), QByteArray(whole, 3) + QByteArray("\0\0#", 3));
        QCOMPARE(format(buffer, 5, "%s", "ten chars!"), 10);
        QCOMPARE(QByteArray(buffer, 6), QByteArray("ten \0#", 6));
        QCOMPARE(format(nullptr, 0, "%zu-%lld", std::size_t{7}, 8LL), 3);
        QCOMPARE(osal::strtok(text, ";"), "one");
        QCOMPARE(osal::strtok(text, ";"), "one");  // starts afresh
        QVERIFY(!osal::strtok(none, ";") && !osal::strtok(nullptr, ";"));
    }

    void namesSignals() {
        QCOMPARE(pylon::signalIds(), std::vector({21, 2, 4, 8, 11, 15, 22}));
        for (const auto& [id, number] : {std::pair(11, SIGSEGV), {22, SIGABRT}, {0, 0}})
            QVERIFY(pylon::signalNumber(id) == number && pylon::signalId(number) == id);
        QCOMPARE(pylon::signalName(99), "Unknow signal");
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("Segmentation violation .ANSI."));
        QCOMPARE(pylon::signalToString(11), QString());
    }

    void showsTheCallerNearTheTop() {
        const QByteArray stack = stackOfKnownFunction(0);
        const QByteArray top = stack.split('\n').first(3).join();
        QVERIFY2(top.contains("stackOfKnownFunction") && top.contains("tst_process.cpp"), stack);
        QVERIFY(stackOfKnownFunction(600).count("stackOfKnownFunction") > 600);
    }

    void printsTheStack() {
        QTemporaryFile file;
        QVERIFY(file.open() && file.write(QByteArray(9999, '@')) && file.flush());
        const pylon::StackTrace trace(nullptr);
        trace.print(QDir::tempPath().toLocal8Bit().toStdString());  // cannot be written
        trace.print(file.fileName().toLocal8Bit().toStdString());
        const QByteArray text = readAll(file.fileName());
        QVERIFY(text.contains("tst_process.cpp") && !text.contains('@'));
    }

#ifdef CRASH_PROGRAM
    void exampleReportsItsCrash() {
        for (const auto& [how, signal] : {std::pair("", "signal 11:"), {"abort", "signal 22:"}}) {
            const QTemporaryDir dir;
            pylon::SynchronousProcess process;
            process.start(CRASH_PROGRAM, {dir.path(), how});
            QVERIFY(process.waitForFinished(60'000));
            QVERIFY(process.exitStatus() == QProcess::CrashExit || process.exitCode() != 0);
            const QByteArray log = readAll(dir.filePath("crash.log"));
            QVERIFY2(log.contains("about to crash") && log.contains(signal), log);
            const QByteArray stack = readAll(dir.filePath("crash.txt"));
            QVERIFY2(stack.contains("decodePicture") && stack.contains("crash.cpp"), stack);
        }
    }
#endif
};

QTEST_MAIN(TestProcess)
#include "tst_process.moc"
