#include "childprocess.h"
#include "recorder.h"

#include <pylon/log/logmacros.h>
#include <pylon/log/qtmessagehandler.h>
#include <QtCore/QLoggingCategory>
#include <QtTest/QTest>

using namespace pylon::plog;

namespace {

Q_LOGGING_CATEGORY(decoder, "pylon.decoder")

QStringList previousHandlerGot;

void previousHandler(QtMsgType, const QMessageLogContext&, const QString& text) {
    previousHandlerGot.append(text);
}

}  // namespace

class TestQtMessageHandler : public QObject {
    Q_OBJECT

    LogManager* const manager = LogManager::instance();
    QtMessageHandler handlerOfQtTest = nullptr;

private slots:
    void init() {
        handlerOfQtTest = qInstallMessageHandler(previousHandler);
        previousHandlerGot.clear();
        manager->setLogLevel(maxLogLevel());
    }

    void cleanup() {
        removeQtMessageHandler();
        manager->clearLogDevices();
        qInstallMessageHandler(handlerOfQtTest);
    }

    void messagesBecomeItems() {
        const auto device = QSharedPointer<Recorder>::create();
        manager->addLogDevice(device);
        device->items.clear();
        installQtMessageHandler(Gui);
        installQtMessageHandler(Qml);
        qDebug("debug %d", 1);
        qInfo("%s", "grün % s");
        qCWarning(decoder) << "warning";
        qCritical("critical");
        removeQtMessageHandler();
        removeQtMessageHandler();
        qWarning("after removal");
        QCOMPARE(previousHandlerGot, QStringList{QStringLiteral("after removal")});

        QCOMPARE(device->items.size(), 4);
        const LogLevel levels[] = {Debug, Info, Warn, Error};
        const QList<QByteArray> texts = {"debug 1", "grün % s", "warning", "critical"};
        for (int i = 0; i < 4; ++i) {
            const LogItem& item = device->items[i];
            QCOMPARE(item.logLevel(), levels[i]);
            QCOMPARE(item.module(), Qml);
            QCOMPARE(item.moduleName(), "Qml");
            QCOMPARE(item.submods(), 256u);
            QCOMPARE(item.rawMessage(), texts[i]);
            QCOMPARE(item.context(), i == 2 ? QByteArray("pylon.decoder") : QByteArray());
            const QByteArray source(item.function());
            QVERIFY2(source.contains("tst_qtmessagehandler.cpp:") &&
                         source.contains("TestQtMessageHandler::messagesBecomeItems"),
                     source.constData());
        }
    }

    // Names of a message may be gone right after it; those of an item must not.
    void namesOutliveTheMessage() {
        const auto device = QSharedPointer<Recorder>::create();
        manager->addLogDevice(device);
        installQtMessageHandler();
        {
            QByteArray file("/some/where/Main.qml"), function("onClicked");
            QMessageLogger(file.constData(), 12, function.constData()).warning("from a script");
            file.fill('#');
            function.fill('#');
        }
        QMessageLogger().warning("from nowhere");
        QCOMPARE(device->items[1].function(), "Main.qml:12 onClicked");
        QCOMPARE(device->items[1].module(), PylonSDK);
        QCOMPARE(device->items[2].function(), "Qt");
    }

    void warningsOfDevicesDoNotRecurse() {
        const auto device = QSharedPointer<Recorder>::create();
        device->onWrite = [](const LogItem& item) {
            qWarning("device got: %s", item.rawMessage().constData());
        };
        manager->addLogDevice(device);
        installQtMessageHandler();
        PLOG_INFO(log_client_, this, "once");
        QCOMPARE(device->items.size(), 2);
        QCOMPARE(previousHandlerGot,
                 (QStringList{QStringLiteral("device got: "), QStringLiteral("device got: once")}));
    }

    void fatalMessagesReachTheFile() {
        const ChildRun run = ChildRun::of(QStringLiteral("fatal"));
        QVERIFY(!run.endedByItself);
        QVERIFY(run.log.contains("[ WARN]["));
        QVERIFY2(run.log.endsWith(": last words\n"), run.log.constData());
    }
};

int main(int argc, char** argv) {
    if (ChildRun::isChild(argc, argv)) {
        return ChildRun::child(argc, argv, [](const QByteArray&) {
            installQtMessageHandler(Gui);
            qWarning("first");
            qFatal("last words");
        });
    }
    QCoreApplication application(argc, argv);
    TestQtMessageHandler test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_qtmessagehandler.moc"
