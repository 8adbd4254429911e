#include "recorder.h"

#include <pylon/log/logclient.h>
#include <pylon/log/logconsole.h>
#include <pylon/log/logcustom.h>
#include <pylon/log/logmanager.h>
#include <QtCore/QDir>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <cstdio>
#include <memory>
#include <stdexcept>

using namespace pylon::plog;

namespace {

struct Sink : LogCustomInterface {
    void logItem(const LogItem& item) override { lines.append(item.toString()); }
    QStringList lines;
};

/// What a call of a level, sub-module and message through a client of module Network sends.
void send(LogLevel level, unsigned int submods, const char* message) {
    static LogClient<Network> client;
    client.log(level, "f", "f", nullptr, Arg(submods), Arg("%s"), "DUMMY_STR", "%s", message);
}

}  // namespace

class TestLogManager : public QObject {
    Q_OBJECT

    LogManager* const manager = LogManager::instance();

private slots:
    void cleanup() {
        manager->clearLogDevices();
        manager->clearRawDevices();
        manager->resetFilter();
        manager->setLogLevel(Info | Warn | Error);
    }

    void initialState() {
        QVERIFY(LG_info_enabled);
        QVERIFY(!LG_trace_enabled && !LG_debug_enabled && !LG_timing_enabled);
        QVERIFY(!LG_startup_enabled && !LG_graphics_enabled);
        QCOMPARE(QString::fromLatin1(log_client_.name()), QStringLiteral("PylonSDK"));
        QVERIFY(QDir(pylon::logDir()).exists());
    }

    void switchesMirrorTheMask_data() {
        QTest::addColumn<unsigned>("level");
        QTest::addColumn<const bool*>("levelSwitch");
        QTest::newRow("trace") << 1u << static_cast<const bool*>(&LG_trace_enabled);
        QTest::newRow("debug") << 2u << static_cast<const bool*>(&LG_debug_enabled);
        QTest::newRow("info") << 4u << static_cast<const bool*>(&LG_info_enabled);
        QTest::newRow("timing") << 32u << static_cast<const bool*>(&LG_timing_enabled);
        QTest::newRow("startup") << 64u << static_cast<const bool*>(&LG_startup_enabled);
        QTest::newRow("graphics") << 128u << static_cast<const bool*>(&LG_graphics_enabled);
    }

    void switchesMirrorTheMask() {
        QFETCH(unsigned, level);
        QFETCH(const bool*, levelSwitch);
        manager->setLogLevel(0);
        QVERIFY(!*levelSwitch);
        manager->addLogLevel(LogLevel(level));
        QVERIFY(*levelSwitch);
        QCOMPARE(LG_trace_enabled + LG_debug_enabled + LG_info_enabled + LG_timing_enabled +
                     LG_startup_enabled + LG_graphics_enabled,
                 1);
        manager->removeLogLevel(LogLevel(level));
        QVERIFY(!*levelSwitch);
        manager->setLogLevel(maxLogLevel());
        QVERIFY(*levelSwitch);
    }

    void routing_data() {
        QTest::addColumn<unsigned>("level");
        QTest::addColumn<unsigned>("submods");
        QTest::addColumn<QString>("filter");
        QTest::addColumn<bool>("delivered");
        const QString all = QStringLiteral("*");
        QTest::newRow("everything enabled") << 4u << 256u << all << true;
        QTest::newRow("level disabled") << 2u << 256u << all << false;
        QTest::newRow("warning of a disabled module")
            << 8u << 512u << QStringLiteral("Gui") << false;
        QTest::newRow("named sub-module")
            << 4u << 512u << QStringLiteral("Network{Request}") << true;
        QTest::newRow("other sub-module")
            << 4u << 1024u << QStringLiteral("Network{Request}") << false;
        QTest::newRow("one of two") << 4u << 1536u << QStringLiteral("Network{Request}") << true;
        QTest::newRow("untagged line") << 4u << 256u << QStringLiteral("Network") << false;
        QTest::newRow("tagged line") << 4u << 16384u << QStringLiteral("Network") << true;
        QTest::newRow("no filter at all") << 16u << 256u << QString() << false;
    }

    void routing() {
        QFETCH(unsigned, level);
        QFETCH(unsigned, submods);
        QFETCH(QString, filter);
        QFETCH(bool, delivered);
        const auto device = QSharedPointer<Recorder>::create();
        const auto raw = QSharedPointer<Recorder>::create();
        manager->addLogDevice(device);
        manager->addRawDevice(raw);
        if (filter != QLatin1String("*"))
            QVERIFY(manager->setFilter(filter, nullptr));
        device->items.clear();
        send(LogLevel(level), submods, "line");
        QCOMPARE(device->items.size(), delivered ? 1 : 0);
        QCOMPARE(raw->takeMessages(), QList<QByteArray>{"line"});
        manager->resetFilter();
        manager->setLogLevel(maxLogLevel());
        send(LogLevel(level), submods, "line");
        QCOMPARE(device->items.size(), delivered ? 2 : 1);
    }

    void filtersKeepWhatIsNoSubModule() {
        manager->enabledSubmodules(Network) = 0x2A5;
        QString error;
        QVERIFY(!manager->setFilter(QStringLiteral("Network{Login},Nowhere"), &error));
        QCOMPARE(error, QStringLiteral("Nowhere"));
        QCOMPARE(manager->enabledSubmodules(Network), 0x2A5u);
        QVERIFY(manager->setFilter(QStringLiteral("Network{Login}"), &error));
        QCOMPARE(manager->enabledSubmodules(Network), 0x20A5u);
        QCOMPARE(manager->enabledModules(), unsigned(Network));
        manager->resetFilter();
        QCOMPARE(manager->enabledSubmodules(Network), 0xFFFFFFA5u);
        manager->enabledSubmodules(Network) = 0xFFFFFF00;
        QCOMPARE(std::as_const(*manager).enabledSubmodules(Module(0x10000)), 0u);
    }

    void devicesOfEachList() {
        const auto device = QSharedPointer<Recorder>::create();
        manager->addLogDevice(device);
        manager->addLogDevice(device);
        manager->addLogDevice({});
        QCOMPARE(device->items.size(), 1);
        QCOMPARE(device->items.constFirst().toString(), manager->logStartupHeader());
        const auto raw = QSharedPointer<Recorder>::create();
        manager->addRawDevice(raw);
        manager->addRawDevice(raw);
        manager->addRawDevice({});
        QVERIFY(raw->items.isEmpty());
        send(Info, 256, "twice");
        QCOMPARE(raw->takeMessages(), (QList<QByteArray>{"twice", "twice"}));
        const auto console = QSharedPointer<LogConsole>::create(nullptr);
        manager->addLogDevice(console);
        QCOMPARE(manager->logDevices().size(), 2);
        QCOMPARE(manager->logDevices(LogDevice::Console).constFirst().data(), console.data());
        QVERIFY(manager->logDevices(LogDevice::File).isEmpty());
        manager->removeLogDevice(device);
        const auto kept = QSharedPointer<Recorder>::create();
        manager->addRawDevice(kept);
        manager->removeRawDevice(raw);
        send(Info, 256, "one is left");
        QCOMPARE(kept->items.size(), 1);
        QCOMPARE(device->items.size(), 2);
        QVERIFY(raw->items.isEmpty());
    }

    // A device changes the list it is in while it is written to. The item in hand goes to those
    // that were there, the next to those that are.
    void listsChangeDuringTheWalk_data() {
        QTest::addColumn<bool>("raw");
        QTest::addColumn<QString>("change");
        QTest::addColumn<int>("itemsOfLast");
        for (const bool raw : {false, true}) {
            const QString list = raw ? QStringLiteral("raw: ") : QStringLiteral("log: ");
            QTest::newRow(qPrintable(list + "clear")) << raw << "clear" << 1;
            QTest::newRow(qPrintable(list + "remove")) << raw << "remove" << 2;
            QTest::newRow(qPrintable(list + "add")) << raw << "add" << 2;
        }
    }

    void listsChangeDuringTheWalk() {
        QFETCH(bool, raw);
        QFETCH(QString, change);
        const auto add = [&](const QSharedPointer<LogDevice>& device) {
            raw ? manager->addRawDevice(device) : manager->addLogDevice(device);
        };
        auto first = QSharedPointer<Recorder>::create();
        const auto last = QSharedPointer<Recorder>::create();
        const QWeakPointer<Recorder> watched = first;
        add(first);
        add(QSharedPointer<Recorder>::create());
        add(last);
        last->items.clear();
        first->onWrite = [&](const LogItem&) {
            const auto self = watched.toStrongRef();
            if (change == QLatin1String("add"))
                add(QSharedPointer<Recorder>::create());
            else if (change == QLatin1String("clear"))
                raw ? manager->clearRawDevices() : manager->clearLogDevices();
            else
                raw ? manager->removeRawDevice(self) : manager->removeLogDevice(self);
        };
        first.reset();
        send(Info, 256, "first");
        send(Info, 256, "second");
        QCOMPARE(watched.isNull(), change != QLatin1String("add"));
        QTEST(int(last->items.size()), "itemsOfLast");
        QCOMPARE(last->items.constFirst().rawMessage(), "first");
    }

    // What a device does from inside write(), or as it ends, reaches the others and never itself.
    void devicesThatLogAndThrow() {
        struct LogsAtItsEnd : Recorder {
            ~LogsAtItsEnd() override { send(Error, 256, "end"); }
        };
        const auto logging = QSharedPointer<Recorder>::create();
        const auto last = QSharedPointer<Recorder>::create();
        int number = 0;
        logging->onWrite = [&](const LogItem&) {
            send(Info, 256, "nested");
            if (++number % 2 == 0)
                throw std::runtime_error("told once");
            throw number;
        };
        manager->addLogDevice(QSharedPointer<LogsAtItsEnd>::create());
        manager->addRawDevice(logging);
        manager->addRawDevice(last);
        send(Info, 256, "one");
        send(Info, 256, "two");
        manager->clearLogDevices();
        QCOMPARE(logging->takeMessages(), (QList<QByteArray>{"one", "two", "end"}));
        QCOMPARE(last->takeMessages(),
                 (QList<QByteArray>{"nested", "one", "nested", "two", "nested", "end"}));
    }

    void banners() {
        const QString startup = manager->logStartupHeader();
        const QRegularExpression startupForm(
            QStringLiteral("^\n#{24} PylonSDK \\{6\\.52\\.2\\} Started on [A-Z][a-z]{2} "
                           "[A-Z][a-z]+ \\d{1,2} \\d{4} at "
                           "\\d\\d:\\d\\d:\\d\\d\\.\\d{3} #{21}$"));
        QVERIFY2(startupForm.match(startup).hasMatch(), qPrintable(startup));
        QCOMPARE(manager->logStartupHeader(), startup);
        const QRegularExpression shutdownForm(QStringLiteral(
            "^#{34} PylonSDK \\{6\\.52\\.2\\} Shutdown at \\d\\d:\\d\\d:\\d\\d\\.\\d{3} #{31}$"));
        QVERIFY(shutdownForm.match(LogManager::logShutdownHeader()).hasMatch());
        const auto device = QSharedPointer<Recorder>::create();
        const auto raw = QSharedPointer<Recorder>::create();
        manager->addLogDevice(device);
        manager->addRawDevice(raw);
        manager->writeLogStartupHeader();
        manager->writeLogStartupHeader(nullptr);
        QCOMPARE(device->items.size(), 2);
        QVERIFY(raw->items.isEmpty());
    }

    void consoleAndCustomDevices() {
        const std::unique_ptr<FILE, int (*)(FILE*)> stream(std::tmpfile(), std::fclose);
        QVERIFY(stream);
        Sink sink;
        const auto console = QSharedPointer<LogConsole>::create(stream.get(), true);
        const auto custom = QSharedPointer<LogCustom>::create(&sink);
        manager->addLogDevice(console);
        manager->addLogDevice(custom);
        manager->addLogDevice(QSharedPointer<LogCustom>::create(nullptr));
        send(Info, 256, "grün");
        QCOMPARE(sink.lines.size(), 2);
        std::rewind(stream.get());
        QByteArray printed(4096, '\0');
        printed.resize(qsizetype(std::fread(printed.data(), 1, 4096, stream.get())));
        QCOMPARE(QString::fromUtf8(printed).remove(u'\r'), sink.lines.join(u'\n') + u'\n');
        QCOMPARE(int(console->type()), 1);
        QCOMPARE(int(custom->type()), 2);
    }
};

QTEST_GUILESS_MAIN(TestLogManager)
#include "tst_logmanager.moc"
