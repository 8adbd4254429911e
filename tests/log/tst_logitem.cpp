#include "recorder.h"

#include <pylon/pylon.h>
#include <QtTest/QtTest>

#include <cstdio>

using namespace pylon::plog;

namespace {

LogClient<Network> client;

enum class Sub { Stream = 2048 };

Q_LOGGING_CATEGORY(decoder, "pylon.decoder")

struct Suffix : LogTagHook {
    explicit Suffix(const char* suffix) : text(suffix) {}
    void rewriteTag(QByteArray& tag) override { tag += text; }
    const char* text;
};

// Before there is an application, which knows the main thread.
const QByteArray earlyLine =
    LogItem(Info, Gui, 256, "Gui", "f", "f", nullptr, {}, "early").toCString();

}  // namespace

/// What items look like, and how calls of the macros and messages of Qt become such.
class TestLogItem : public QObject {
    Q_OBJECT

    LogManager* const manager = LogManager::instance();
    const QSharedPointer<Recorder> device = QSharedPointer<Recorder>::create();

    // Of each item since the last call level, module, sub-modules, tag and message.
    QString takeItems() {
        QStringList texts;
        for (const LogItem& item : std::exchange(device->items, {}))
            texts +=
                QString::asprintf("%d %s %u [%s] %s", item.logLevel(), item.moduleName(),
                                  item.submods(), item.context().data(), item.rawMessage().data());
        return texts.join(", ");
    }

private slots:
    void init() {
        manager->addLogDevice(device);
        device->items.clear();
    }

    // The bytes of the printf formats that the columns are defined by, in a buffer of 512 bytes;
    // a row for each level.
    void linesMatchPrintf() {
        const auto process = unsigned(QCoreApplication::applicationPid());
        // On Linux the main thread's number in the kernel is the process's.
        const auto thread = QSysInfo::kernelType() == "linux"
                                ? process
                                : unsigned(quintptr(QThread::currentThreadId()));
        const QByteArray x(600, 'x');
        const QByteArray rows[][5] = {
            {"TRACE", x.left(10), x.left(40), x.left(25), ""},
            {"DEBUG", "Network", "void f()", "camera 7", "message"},
            {"INFO", "Network", "void f()", "", "message"},
            {"WARN", x.left(11), x.left(41), x.left(26), x.repeated(10)},
            {"ERROR", x, "f", "c", "after"},
            {"TIME", x.left(400), x.left(60), "c", "after"},
            {"START", "Gui", "fäääääääääääääääääääääääää", "cöööööööööööööö", "ü"},
            {"GRAPH", "Test", "f", "", "message"},
            {"BADLEVEL", "Gui", "f", "", "message"}};
        QVERIFY(earlyLine.contains("[T:0000]") && earlyLine.endsWith(": early"));
        unsigned level = 1;
        for (const auto& [levelText, module, function, context, message] : rows) {
            const bool isTest = module == "Test";
            const auto* object = reinterpret_cast<const void*>(std::uintptr_t{0xABC1234567});
            const LogItem item(LogLevel(level), isTest ? Test : Network, 256, module, "plain",
                               function, object, context, message);
            char time[64], head[512], tail[512];
            item.timestamp().toDefaultString(time, sizeof time);
            std::snprintf(head, 512, "[%s][%5s][%10s][P:%04x][T:%04x]", time, levelText.data(),
                          module.data(), process & 0xFFFF, thread & 0xFFFF);
            std::snprintf(tail, 512, context.isEmpty() ? "%28s%-40.40s: " : "[%25.25s] %-40.40s: ",
                          context.data(), function.data());
            const QByteArray text = (QByteArray(head) + tail).left(511);
            const QByteArray bytes = (head + QByteArray("[O:c1234567]") + tail).left(511);
            const QByteArray arrow(isTest ? "----------------------------> " : "");
            QCOMPARE(item.toCString(), bytes + arrow + message);
            QCOMPARE(item.toString(), QString(arrow) + (isTest ? " " : "") + text + message);
            level *= 2;
        }
    }

    void finishedLineStaysAsItIs() {
        const LogItem item(QString("\nbänner"));
        QByteArray bytes;
        item.appendTo(bytes);
        QVERIFY(item.toString() == "\nbänner" && item.toCString() == bytes && bytes == "\nbänner");
        QVERIFY(item.logLevel() == Info && item.module() == PylonSDK && item.submods() == 256);
        QVERIFY(item.rawMessage().isEmpty() && qstrcmp(item.function(), "NONE") == 0);
        QVERIFY(LogItem(QString()).toCString().startsWith("[][ INFO][    (null)]"));
    }

    void namesAndDumps() {
        const LogItem pretty(Info, Gui, 256, "Gui", "plain", "int full()", nullptr, {}, {});
        LogItem copy((QString()));
        copy = pretty;
        QVERIFY(pretty.toString().contains(" int full() "));
        LogItem::usePrettyFunction(false);
        QVERIFY(pretty.toString().contains(" int full() ") && copy.toString().contains(" plain "));
        LogItem::usePrettyFunction(true);
        QCOMPARE(logLevelToString(Info) + logLevelToString(LogLevel(12)), "InformationUnknown");
        QCOMPARE(printByteArray({}) + printByteArray(QByteArray("\0\x01\xAB", 3)), "00 01 ab ");
    }

    void formsOfACall() {
        PLOG_INFO(client, this, "plain");
        PLOG_WARN(client, this, "%s=%d", "x", 5);
        PLOG_INFO(client, this, 8192, "sub %.2f%c", 1.5, '!');
        PLOG_INFO(client, this, Sub::Stream);
        PLOG_INFO(client, this, Sub::Stream, "enum");
        // A format that is missing or cannot be carried out costs the message, not the line.
        for (const Arg& first : {Arg(static_cast<const char*>(nullptr)), Arg()})
            client.log(Info, "f", "f", nullptr, first, Arg(), "DUMMY_STR");
        QCOMPARE(device->items[0].object(), static_cast<const void*>(this));
        QVERIFY(QByteArray(device->items[0].function()).contains("TestLogItem::formsOfACall"));
        QCOMPARE(
            takeItems(),
            "4 Network 256 [] plain, 8 Network 256 [] x=5, 4 Network 8192 [] sub 1.50!, "
            "4 Network 2048 [] , 4 Network 2048 [] enum, 4 Network 256 [] , 4 Network 256 [] ");
    }

    void callsEvaluateWhatTheyNeed() {
        int evaluated = 0;
        const auto value = [&] { return ++evaluated; };
        PLOG_INFO(client, (value(), this), "%d %d", value(), value());
        PLOG_WARN(client, this, 512 * unsigned(value() > 0), "%s", (value(), "text"));
        PLOG_DEBUG(client, (value(), this), "%d", value());
        manager->enabledModules() &= ~unsigned(Network);
        PLOG_ERROR(client, (value(), this), "%d", value());
        manager->resetFilter();
        QCOMPARE(evaluated, 5);
        if (evaluated == 0)
            PLOG_ERROR(client, this, "if");
        else  // and not that of the macro
            evaluated = 0;
        QCOMPARE(evaluated, 0);
    }

    void messagesArriveWhole() {
        for (const int length : {0, 1023, 1024, 1025, 1 << 20}) {
            const QByteArray text = QByteArray("0123456789abc").repeated(length).left(length);
            PLOG_INFO(client, this, "%s", text.constData());
            PLOG_INFO(client, this, 512, "%s", text.constData());
            QVERIFY2(device->take() == Messages({text, text}), QByteArray::number(length));
        }
    }

    void tagsAndHooks() {
        Suffix first("-1"), second("-2");
        LogClient<Gui> tagged;
        tagged.setTag("tag");
        for (Suffix* hook : {&first, &second, static_cast<Suffix*>(nullptr)})
            tagged.addHook(hook);
        PLOG_INFO(tagged, this, "with hooks");
        tagged.removeHook(&first);
        PLOG_INFO(tagged, this, "with one");
        QCOMPARE(takeItems(), "4 Gui 256 [tag-1-2] with hooks, 4 Gui 256 [tag-2] with one");
    }

    void messagesOfQt() {
        static QStringList previousHandlerGot;
        const QtMessageHandler handlerOfQtTest =
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& text) {
                previousHandlerGot += text;
            });
        manager->setLogLevel(maxLogLevel());
        installQtMessageHandler(Gui);
        installQtMessageHandler(Qml);
        // Names of a message may be gone right after it; those of an item must not.
        QByteArray file("/some/where/Main.qml"), function("onClicked");
        QMessageLogger(file.data(), 12, function.data()).debug("debug %d", 1);
        file.fill('#');
        function.fill('#');
        QMessageLogger("C:\\x.cpp", 3, nullptr).info("%s", "grün % s");
        QMessageLogger().warning(decoder, "warning");
        QMessageLogger().critical("critical");
        QStringList functions;
        for (const LogItem& item : std::as_const(device->items))
            functions += item.function();
        QCOMPARE(functions.join(", "), "Main.qml:12 onClicked, x.cpp:3, Qt, Qt");
        QCOMPARE(takeItems(),
                 "2 Qml 256 [] debug 1, 4 Qml 256 [] grün % s, 8 Qml 256 [pylon.decoder] warning, "
                 "16 Qml 256 [] critical");
        // A device that warns does not get the warning.
        device->onWrite = [](const LogItem&) { qWarning("from the device"); };
        PLOG_ERROR(client, this, "once");
        device->onWrite = nullptr;
        QCOMPARE(device->take(), Messages{"once"});
        // A handler that came later stays, and may still call the one below it.
        static QtMessageHandler below;
        below =
            qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context,
                                      const QString& text) { below(type, context, '+' + text); });
        removeQtMessageHandler();
        qWarning("passed on");
        qInstallMessageHandler(below);
        installQtMessageHandler(Gui);
        qWarning("logged");
        QCOMPARE(device->take(), Messages{"logged"});
        removeQtMessageHandler();
        removeQtMessageHandler();
        qWarning("after removal");
        QCOMPARE(previousHandlerGot.join(", "), "from the device, +passed on, after removal");
        qInstallMessageHandler(handlerOfQtTest);
    }
};

QTEST_GUILESS_MAIN(TestLogItem)
#include "tst_logitem.moc"
