#include "recorder.h"

#include <pylon/pylon.h>
#include <QtTest/QtTest>

#include <bit>
#include <stdexcept>

using namespace pylon::plog;

namespace {

LogClient<Network> client;

void send(const char* message, unsigned int submods = 256) {
    client.log(Warn, "f", "f", nullptr, Arg(submods), Arg("%s"), "DUMMY_STR", "%s", message);
}

}  // namespace

class TestLogManager : public QObject {
    Q_OBJECT

    LogManager* const manager = LogManager::instance();
    const LogFilter filter{manager->logModules()};
    QSharedPointer<Recorder> device, raw;

private slots:
    void init() {
        manager->clearLogDevices();
        manager->clearRawDevices();
        device.reset(new Recorder);
        raw.reset(new Recorder);
        manager->addLogDevice(device);
        manager->addRawDevice(raw);
        QCOMPARE(device->items.takeLast().toString(), manager->logStartupHeader());
    }

    // Each macro has its level and heeds its switch; warnings and errors have none and always
    // reach the manager.
    void levels() {
        for (const unsigned mask : {28u, 0u, 1u, 2u, 4u, 32u, 64u, 128u, 255u}) {
            if (mask != 28) {  // not what is enabled at first
                manager->setLogLevel(0xF);
                manager->addLogLevel(LogLevel(0xF0));
                for (int twice = 0; twice < 2; ++twice)
                    manager->removeLogLevel(LogLevel(0xFF & ~mask));
            }
            PLOG_TRACE(client, this, 512);
            PLOG_DEBUG(client, this, 512);
            PLOG_INFO(client, this, 512);
            PLOG_WARN(client, this, 512);
            PLOG_ERROR(client, this, 512);
            PLOG_TIMING(client, this, 512);
            PLOG_STARTUP(client, this, 512);
            PLOG_GRAPHICS(client, this, 512);
            unsigned sent = 0;
            for (const LogItem& item : std::exchange(raw->items, {}))
                sent += item.logLevel();
            QCOMPARE(sent, mask | Warn | Error);
            QCOMPARE(device->take().size(), std::popcount(mask));
        }
    }

    // Lines whose message names the sub-modules, and those that each filter lets through.
    void routing() {
        const Messages lines = {"256", "512", "1024", "1536", "16384"};
        const std::pair<const char*, Messages> rows[] = {{"Network{Request}", {"512", "1536"}},
                                                         {"Network", lines.mid(1)},
                                                         {"", {}},
                                                         {"*", lines}};
        for (const auto& [text, delivered] : rows) {
            manager->resetFilter();
            QVERIFY(*text == '*' || manager->setFilter(text, nullptr));
            for (const QByteArray& line : lines)
                send(line, line.toUInt());
            QCOMPARE(device->take(), delivered);
            QCOMPARE(raw->take(), lines);
        }
    }

    void filtersKeepWhatIsNoSubModule() {
        QString error;
        unsigned int& mask = manager->enabledSubmodules(Network);
        mask = 0x2A5;
        QVERIFY(!manager->setFilter("Network{Login},Nowhere", &error));
        QVERIFY(error == "Nowhere" && mask == 0x2A5);
        QVERIFY(manager->setFilter("Network{Login}", nullptr));
        QVERIFY(mask == 0x20A5 && manager->enabledModules() == Network);
        manager->enabledModules() = Gui;
        send("the module is disabled", 8192);
        QVERIFY(device->items.isEmpty());
        manager->resetFilter();
        QCOMPARE(mask, 0xFFFFFFA5);
        mask = 0xFFFFFF00;
    }

    void devicesOfEachList() {
        const QSharedPointer<LogDevice> none, custom(new LogCustom(nullptr)),
            console(new LogConsole(nullptr)), again = device;
        for (const auto& another : {none, custom, console, again})
            manager->addLogDevice(another);
        manager->addRawDevice(raw);
        manager->addRawDevice(none);
        manager->writeLogStartupHeader();
        manager->writeLogStartupHeader(none);
        send("text");
        QCOMPARE(device->take(), Messages({"", "text"}));
        QCOMPARE(raw->take(), Messages({"text", "text"}));
        QCOMPARE(manager->logDevices(LogDevice::Console), QList{console});
        manager->addRawDevice(device);
        manager->removeRawDevice(raw);
        manager->removeLogDevice(device);
        send("to the raw device that is left");
        QVERIFY(device->items.size() == 1 && raw->items.isEmpty());
    }

    // A device changes the list it is in while it is written to. The item in hand goes to those
    // that were there, the next to those that are.
    void listsChangeDuringTheWalk() {
        QWeakPointer<Recorder> first;
        const auto another = [] { return QSharedPointer<Recorder>::create(); };
        const std::function<void()> changes[] = {
            [&] { manager->addLogDevice(another()); }, [&] { manager->removeLogDevice(first); },
            [&] { manager->clearLogDevices(); },       [&] { manager->addRawDevice(another()); },
            [&] { manager->removeRawDevice(first); },  [&] { manager->clearRawDevices(); }};
        for (int i = 0; i < 6; ++i) {
            init();
            const auto last = another();
            i < 3 ? manager->addLogDevice(last) : manager->addRawDevice(last);
            last->items.clear();
            first = i < 3 ? device : raw;
            (i < 3 ? device : raw)->onWrite = [&](const LogItem&) { changes[i](); };
            device.reset();
            raw.reset();
            send("first");
            send("second");
            QCOMPARE(first.isNull(), i % 3 != 0);
            QCOMPARE(last->take().size(), i % 3 == 2 ? 1 : 2);
        }
    }

    // What a device does from inside write(), or as it ends, reaches the others and never itself.
    void devicesThatLogAndThrow() {
        struct LogsAtItsEnd : Recorder {
            ~LogsAtItsEnd() override { send("end"); }
        };
        const auto last = QSharedPointer<Recorder>::create();
        raw->onWrite = [](const LogItem& item) {
            send("nested");
            if (item.rawMessage() == "one")
                throw std::runtime_error("told once");
            throw 2;
        };
        manager->addLogDevice(QSharedPointer<LogsAtItsEnd>::create());
        manager->addRawDevice(last);
        send("one");
        send("two");
        manager->clearLogDevices();
        QCOMPARE(raw->take(), Messages({"one", "two", "end"}));
        QCOMPARE(last->take(), Messages({"nested", "one", "nested", "two", "nested", "end"}));
    }

    void banners() {
        const QRegularExpression forms(
            R"(^\n#{24} PylonSDK \{6\.52\.2\} Started on [A-Z]\w\w [A-Z]\w+ \d+ \d{4} at )"
            R"([\d:]{8}\.\d{3} #{21}#{34} PylonSDK \{6\.52\.2\} Shutdown at [\d:]{8}\.\d{3} #{31}$)");
        const QString found = manager->logStartupHeader() + LogManager::logShutdownHeader();
        QVERIFY2(forms.match(found).hasMatch() && QDir(pylon::logDir()).exists(),
                 qPrintable(found));
    }

    // Clients point at the masks.
    void masksKeepTheirPlace() {
        LogClient<0x80000000> stranger;
        manager->enabledModules() |= 0x80000000;
        PLOG_ERROR(stranger, this, "dropped for want of sub-modules");
        for (unsigned int module = 0x100000; module < 0x100000 + 5000; ++module)
            manager->enabledSubmodules(Module(module)) = module;
        manager->enabledSubmodules(stranger.module()) = 256;
        QVERIFY(stranger.isEnabled(256) && !stranger.isEnabled(512));
        static LogManager& copy = *new LogManager(*manager);  // that nobody may delete
        unsigned& later = manager->enabledSubmodules(Module(0x200000 - 1));
        later = 256;
        manager->unsetAll();
        manager->clearLogDevices();
        manager->enabledSubmodules(stranger.module()) = 0;
        *manager = copy;
        QCOMPARE(later, 0u);
        PLOG_ERROR(stranger, this, "let through");
        manager->enabledModules() &= ~0x80000000;
        QVERIFY(!stranger.isEnabled(256) && qstrcmp(stranger.name(), "Unknown") == 0);
        QCOMPARE(device->take(), Messages{"let through"});
    }

    // A digest: users write these names, and peers know the numbers.
    void registeredModules() {
        QByteArray table;
        for (const auto& module : manager->logModules()) {
            table += QByteArray::number(module->module()) + ' ' + module->name_cstr();
            for (unsigned id = 1; id != 0; id *= 2)
                table += ' ' + module->subModuleName(id).toUtf8();
            QCOMPARE(manager->enabledSubmodules(module->module()), 0xFFFFFF00u);
        }
        QCOMPARE(QCryptographicHash::hash(table, QCryptographicHash::Sha1).toHex(),
                 "ec644e24de6ced6c38ee363b438cfd249f83f2b7");
        QCOMPARE(manager->enabledModules(), 0xEFFFFu);
        QVERIFY(!manager->logModule(Module(Network | Config)));
    }

    // A filter; of each term the name, "=" or "!" for valid or not, and the module and sub-modules
    // it resolved to, hexadecimal; what is wrong, appended to what was there.
    void terms() {
        const char* const rows[][3] = {
            {"", "", "?"},
            {"Network{Request, Login} Config", "Network=2:2200 Config=4:400", "?"},
            {"Network\t{Request}Gui", "Network=2:200 Gui=40000:0", "?"},
            {"Playback{,, Stream ,Audio}", "Playback=10:1800", "?"},
            {"Network{", "Network=2:7e00", "?"},
            {"Network{Request ", "Network=2:200", "?"},
            {"Network\tConfig", "Network=2:7e00 Config=4:400", "?"},
            {"Network,\tConfig", "Network=2:7e00 !0:0 Config=4:400", "?, "},
            {" , ", "!0:0", "?, "},
            {"Network;Config", "Network;Config!0:0", "?, Network;Config"},
            {"network{X}", "network!0:0", "?, network"},
            {"Gui{X} Network{Request,stream}", "Gui!40000:0 Network!2:200",
             "?, Gui{X}, Network{stream}"}};
        for (const auto& [text, expected, expectedError] : rows) {
            QString terms, error("?"), again("?");
            for (const LogFilterItem& item : filter.parseFilterString(text, &error))
                terms +=
                    QString::asprintf("%s%c%x:%x ", qPrintable(item.moduleStr()),
                                      item.isValid() ? '=' : '!', item.module(), item.subModules());
            QCOMPARE(terms.trimmed(), expected);
            QCOMPARE(error, expectedError);
            QVERIFY(filter.isValid(text, &again) == (error == "?") && again == error);
        }
        const QString fits(255, u'x');
        QVERIFY(!LogFilter::hasOverlongName(fits + u'{' + fits + u',' + fits));
        QVERIFY(!filter.isValid(fits, nullptr));  // and does not end the process
        for (const QString& text : {fits + 'x', "Gui Network{a," + fits + 'x', QString(128, u'ä')})
            QVERIFY(LogFilter::hasOverlongName(text));
    }
};

QTEST_GUILESS_MAIN(TestLogManager)
#include "tst_logmanager.moc"
