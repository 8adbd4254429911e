#include "recorder.h"

#include <pylon/log/logmacros.h>
#include <pylon/log/logmanager.h>
#include <QtTest/QTest>

using namespace pylon::plog;

namespace {

LogClient<Playback> client;

struct AppendHook : LogTagHook {
    explicit AppendHook(const char* suffix) : text(suffix) {}
    void rewriteTag(QByteArray& tag) override { tag += text; }
    const char* text;
};

enum class Sub { Stream = 2048 };

}  // namespace

class TestLogClient : public QObject {
    Q_OBJECT

    LogManager* const manager = LogManager::instance();
    const QSharedPointer<Recorder> device = QSharedPointer<Recorder>::create();

private slots:
    void init() {
        manager->setLogLevel(maxLogLevel());
        manager->addLogDevice(device);
        device->items.clear();
    }

    void formsOfACall() {
        PLOG_INFO(client, this, "plain");
        PLOG_DEBUG(client, this, "%s=%d", "x", 5);
        PLOG_DEBUG(client, this, 8192, "sub %.2f%c", 1.5, '!');
        PLOG_TRACE(client, nullptr, Sub::Stream);
        PLOG_TRACE(client, nullptr, Sub::Stream, "enum");
        const QList<LogItem> items = std::exchange(device->items, {});
        QCOMPARE(items.size(), 5);
        QCOMPARE(items[0].rawMessage(), "plain");
        QCOMPARE(items[0].submods(), 256u);
        QCOMPARE(items[0].module(), Playback);
        QCOMPARE(QByteArray(items[0].moduleName()), "Playback");
        QCOMPARE(items[0].object(), static_cast<const void*>(this));
        QVERIFY(QByteArray(items[0].function()).contains("TestLogClient::formsOfACall"));
        QCOMPARE(items[1].rawMessage(), "x=5");
        QCOMPARE(items[2].rawMessage(), "sub 1.50!");
        QCOMPARE(items[2].submods(), 8192u);
        QVERIFY(items[3].rawMessage().isEmpty());
        QCOMPARE(items[3].submods(), 2048u);
        QCOMPARE(items[4].rawMessage(), "enum");
    }

    void levelOfEachMacro() {
        PLOG_TRACE(client, this, 512);
        PLOG_DEBUG(client, this, 512);
        PLOG_INFO(client, this, 512);
        PLOG_WARN(client, this, 512);
        PLOG_ERROR(client, this, 512);
        PLOG_TIMING(client, this, 512);
        PLOG_STARTUP(client, this, 512);
        PLOG_GRAPHICS(client, this, 512);
        unsigned expected = 1;
        for (const LogItem& item : std::as_const(device->items)) {
            QCOMPARE(unsigned(item.logLevel()), expected);
            expected *= 2;
        }
        QCOMPARE(expected, 256u);
    }

    void argumentsAreEvaluatedAsNeeded() {
        int evaluated = 0;
        const auto value = [&] { return ++evaluated; };
        PLOG_INFO(client, (value(), this), "%d %d", value(), value());
        PLOG_WARN(client, this, 512 * unsigned(value() > 0), "%s", (value(), "text"));
        QCOMPARE(evaluated, 5);
        manager->removeLogLevel(Info);
        PLOG_INFO(client, (value(), this), "%d", value());
        manager->enabledModules() &= ~unsigned(Playback);
        PLOG_ERROR(client, (value(), this), "%d", value());
        manager->resetFilter();
        QCOMPARE(evaluated, 5);
        QCOMPARE(device->items.size(), 2);
    }

    void isOneStatement() {
        for (const bool wanted : {true, false})
            if (wanted)
                PLOG_INFO(client, this, "if");
            else
                PLOG_INFO(client, this, "else");
        for (int i = 0; i < 2; ++i)
            PLOG_INFO(client, this, "loop");
        QCOMPARE(device->takeMessages(), (QList<QByteArray>{"if", "else", "loop", "loop"}));
    }

    void messagesArriveWhole_data() {
        QTest::addColumn<int>("length");
        for (const int length : {0, 1, 1022, 1023, 1024, 1025, 1026, 4096, 1 << 20})
            QTest::addRow("%d", length) << length;
    }

    void messagesArriveWhole() {
        QFETCH(int, length);
        QByteArray text;
        for (int i = 0; i < length; ++i)
            text += static_cast<char>('a' + i % 26);
        PLOG_INFO(client, this, "%s", text.constData());
        PLOG_INFO(client, this, 512, "%s", text.constData());
        QCOMPARE(device->takeMessages(), (QList<QByteArray>{text, text}));
    }

    // A format that is missing or cannot be carried out costs the message, not the line.
    void noFormat() {
        client.log(Info, "f", "f", nullptr, Arg(static_cast<const char*>(nullptr)), Arg(),
                   "DUMMY_STR");
        client.log(Info, "f", "f", nullptr, Arg(), Arg(), "DUMMY_STR");
        QCOMPARE(device->takeMessages(), QList<QByteArray>(2));
    }

    void tagsAndHooks() {
        AppendHook first("-1"), second("-2");
        LogClient<Gui> tagged;
        tagged.setTag("tag");
        tagged.addHook(&first);
        tagged.addHook(&second);
        tagged.addHook(nullptr);
        PLOG_INFO(tagged, this, "with hooks");
        tagged.removeHook(&first);
        PLOG_INFO(tagged, this, "with one");
        QCOMPARE(device->items[0].context(), "tag-1-2");
        QCOMPARE(device->items[1].context(), "tag-2");
        QCOMPARE(tagged.tag(), "tag");
    }

    void masksKeepTheirPlace() {
        const unsigned int* modules = &manager->enabledModules();
        const unsigned int* submods = &manager->enabledSubmodules(Playback);
        for (unsigned int module = 0x100000; module < 0x100000 + 5000; ++module)
            manager->enabledSubmodules(Module(module)) = module;
        QCOMPARE(&manager->enabledModules(), modules);
        QCOMPARE(&manager->enabledSubmodules(Playback), submods);
        QVERIFY(client.isEnabled(512));
        manager->enabledSubmodules(Playback) &= ~512u;
        QVERIFY(!client.isEnabled(512) && client.isEnabled(1024) && client.isEnabled());
        manager->resetFilter();
    }

    void unregisteredModule() {
        LogClient<0x80000000> stranger;
        QCOMPARE(stranger.name(), "Unknown");
        QVERIFY(!stranger.isEnabled());
        manager->enabledModules() |= 0x80000000;
        PLOG_ERROR(stranger, this, "dropped for want of sub-modules");
        manager->enabledSubmodules(stranger.module()) = 256;
        PLOG_ERROR(stranger, this, "let through");
        manager->enabledModules() &= ~0x80000000;
        QCOMPARE(device->takeMessages(), QList<QByteArray>{"let through"});
    }
};

QTEST_GUILESS_MAIN(TestLogClient)
#include "tst_logclient.moc"
