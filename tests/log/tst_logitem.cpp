#include <pylon/log/logitem.h>
#include <QtCore/QSysInfo>
#include <QtTest/QTest>

#include <cstdint>
#include <cstdio>

using namespace pylon::plog;

namespace {

template <class... Values>
QByteArray printed(const char* format, Values... values) {
    char text[2048];
    return QByteArray(text, std::snprintf(text, sizeof text, format, values...));
}

const QByteArray blanks28(28, ' ');

unsigned shortProcessId() {
    return static_cast<unsigned>(QCoreApplication::applicationPid()) & 0xFFFF;
}

/// The columns that no test can foretell: the time, and the thread where the system numbers it.
struct Moment {
    QByteArray time;
    QByteArray thread;
};

Moment momentOf(const QByteArray& line) {
    const qsizetype thread = line.indexOf("[T:") + 3;
    return {line.mid(1, line.indexOf(']') - 1), line.mid(thread, 4)};
}

}  // namespace

class TestLogItem : public QObject {
    Q_OBJECT

private slots:
    // The bytes of the printf formats that the columns are defined by.
    void linesMatchPrintf_data() {
        QTest::addColumn<unsigned>("level");
        QTest::addColumn<QByteArray>("levelText");
        QTest::addColumn<QByteArray>("module");
        QTest::addColumn<QByteArray>("function");
        QTest::addColumn<QByteArray>("context");
        QTest::addColumn<QByteArray>("message");
        const auto row = [](const char* name, unsigned level, const char* levelText,
                            const QByteArray& module, const QByteArray& function,
                            const QByteArray& context, const QByteArray& message) {
            QTest::newRow(name) << level << QByteArray(levelText) << module << function << context
                                << message;
        };
        row("plain", Info, "INFO", "Network", "void f()", "", "message");
        row("context", Debug, "DEBUG", "Network", "void f()", "camera 7", "message");
        row("widths met", Trace, "TRACE", QByteArray(10, 'm'), QByteArray(40, 'f'),
            QByteArray(25, 'c'), "");
        row("widths passed", Warn, "WARN", QByteArray(11, 'm'), QByteArray(41, 'f'),
            QByteArray(26, 'c'), QByteArray(4000, 'x'));
        row("module fills the prefix", Error, "ERROR", QByteArray(600, 'm'), "f", "c", "after");
        row("function is cut by the prefix", Timing, "TIME", QByteArray(400, 'm'),
            QByteArray(60, 'f'), "c", "after");
        row("characters cut in half", Startup, "START", "Gui",
            QByteArray("f") + QByteArray("ä").repeated(30),
            QByteArray("c") + QByteArray("ö").repeated(20), "ü");
        row("null names", Graphics, "GRAPH", QByteArray(), QByteArray(), "", "message");
        row("no level", 0, "BADLEVEL", "Gui", "f", "", "message");
        row("two levels", 3, "BADLEVEL", "Gui", "f", "", "message");
        row("unknown level", 256, "BADLEVEL", "Gui", "f", "", "message");
    }

    void linesMatchPrintf() {
        QFETCH(unsigned, level);
        QFETCH(QByteArray, levelText);
        QFETCH(QByteArray, module);
        QFETCH(QByteArray, function);
        QFETCH(QByteArray, context);
        QFETCH(QByteArray, message);
        const auto text = [](const QByteArray& bytes) {
            return bytes.isNull() ? nullptr : bytes.constData();
        };
        const auto shown = [](const QByteArray& bytes) {
            return bytes.isNull() ? QByteArray("(null)") : bytes;
        };
        const void* object = reinterpret_cast<const void*>(std::uintptr_t{0xABC1234567});
        const LogItem item(static_cast<LogLevel>(level), Network, 256, text(module), "plain",
                           text(function), object, context, message);
        const Moment moment = momentOf(item.toCString());

        char prefix[512];
        const QByteArray tail =
            (context.isEmpty() ? blanks28 : printed("[%25.25s] ", context.constData())) +
            printed("%-40.40s: ", shown(function).constData());
        const QByteArray head =
            printed("[%s][%5s][%10s][P:%04x][T:%s]", moment.time.constData(), levelText.constData(),
                    shown(module).constData(), shortProcessId(), moment.thread.constData());
        std::snprintf(prefix, sizeof prefix, "%s[O:%08x]%s", head.constData(), 0xC1234567u,
                      tail.constData());
        QCOMPARE(item.toCString(), prefix + message);
        std::snprintf(prefix, sizeof prefix, "%s%s", head.constData(), tail.constData());
        QCOMPARE(item.toString(), QString::fromUtf8(prefix) + QString::fromUtf8(message));
    }

    void columnsOfMoment() {
        const LogItem item(Info, Gui, 256, "Gui", "f", "f", nullptr, {}, "message");
        const Moment moment = momentOf(item.toCString());
        char time[64];
        item.timestamp().toDefaultString(time, sizeof time);
        QCOMPARE(moment.time, QByteArray(time));
        bool number = false;
        const uint thread = moment.thread.toUInt(&number, 16);
        QVERIFY(number && moment.thread == printed("%04x", thread));
        // On Linux the main thread's number in the kernel is the process's.
        if (QSysInfo::kernelType() == QLatin1String("linux"))
            QCOMPARE(thread, shortProcessId());
    }

    void testModuleHasArrow() {
        const LogItem item(Info, Test, 256, "Test", "f", "f", nullptr, {}, "message");
        QVERIFY(item.toString().startsWith(QStringLiteral("---------------------------->  [")));
        QVERIFY(item.toString().endsWith(QStringLiteral(": message")));
        QVERIFY(item.toCString().startsWith('['));
        QVERIFY(item.toCString().endsWith(": ----------------------------> message"));
    }

    void finishedLineStaysAsItIs() {
        const QString text = QStringLiteral("\nbänner");
        const LogItem item(text);
        QCOMPARE(item.toString(), text);
        QCOMPARE(item.toCString(), text.toUtf8());
        QCOMPARE(item.logLevel(), Info);
        QCOMPARE(item.module(), PylonSDK);
        QCOMPARE(item.submods(), 256u);
        QCOMPARE(item.function(), "NONE");
        QVERIFY(item.rawMessage().isEmpty());
        QVERIFY(LogItem(QString()).toCString().startsWith("[][ INFO][    (null)]"));
    }

    void functionNameCanBeChosen() {
        const LogItem pretty(Info, Gui, 256, "Gui", "plain", "int full()", nullptr, {}, {});
        const LogItem copy(pretty);
        QVERIFY(pretty.toString().contains(QStringLiteral("int full()")));
        LogItem::usePrettyFunction(false);
        QVERIFY(pretty.toString().contains(QStringLiteral("int full()")));
        QVERIFY(copy.toString().contains(QStringLiteral(" plain ")));
        QCOMPARE(pretty.function(), "plain");
        LogItem::usePrettyFunction(true);
    }

    void namesOfLevels() {
        QCOMPARE(logLevelToString(Info), QStringLiteral("Information"));
        QCOMPARE(logLevelToString(Warn), QStringLiteral("Warning"));
        QCOMPARE(logLevelToString(LogLevel(Info | Warn)), QStringLiteral("Unknown"));
        QCOMPARE(unsigned(maxLogLevel()), 0x7FFFFFFFu);
    }

    void hexadecimalDump() {
        QCOMPARE(printByteArray({}), QString());
        QCOMPARE(printByteArray(QByteArray(1, '\0')), QStringLiteral("00 "));
        QCOMPARE(printByteArray("\x01\xAB"), QStringLiteral("01 ab "));
    }
};

QTEST_GUILESS_MAIN(TestLogItem)
#include "tst_logitem.moc"
