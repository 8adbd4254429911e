#include "../log/recorder.h"

#include <pylon/log/logmanager.h>
#include <pylon/platform/consolereader.h>
#include <pylon/platform/deferreddeletion.h>
#include <pylon/platform/plugins.h>
#include <pylon/platform/signalblocker.h>
#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtTest/QTest>

#include <thread>

using namespace pylon;

/// Counts the calls that reach the deferred deletion handler in the main thread.
struct HandlerWatch : QObject {
    bool eventFilter(QObject* object, QEvent*) override {
        if (object->inherits("pylon::DeferredDeletionHandler"))
            handler = object, ++calls;
        return false;
    }
    QObject* handler = nullptr;
    int calls = 0;
};

class TestObjectHelpers : public QObject {
    Q_OBJECT

private slots:
    void requestsArriveOneByOne() {
        HandlerWatch watch;
        qApp->installEventFilter(&watch);
        DeferredDeletionHandler::queueRequest();
        const auto request = [] {
            for (int i = 0; i < 50; ++i)
                requestProcessDeleteLaterEvents();
        };
        std::thread one(request), another(request);
        one.join(), another.join();
        QCoreApplication::processEvents();
        QCOMPARE(watch.calls, 101);

        // What it does, without an event loop that would do so anyway.
        QMetaObject::invokeMethod(
            this, [this] { setObjectName("called"); }, Qt::QueuedConnection);
        QVERIFY(QMetaObject::invokeMethod(watch.handler, "processDeleteLaterEvents"));
        QCOMPARE(objectName(), "called");
    }

    void deletesLater() {
        auto* const log = plog::LogManager::instance();
        const auto recorder = QSharedPointer<Recorder>::create();
        log->addRawDevice(recorder);
        const QPointer<QObject> plain = new QObject, traced = new QObject, untraced = new QObject;
        traced->setObjectName("tile");
        log->setLogLevel(plog::Trace);
        pylon::deleteLater(plain);
        deleteLaterSafely(traced);
        log->unsetAll();
        deleteLaterSafely(new QObject);
        log->resetFilter();
        log->setLogLevel(plog::Debug);
        deleteLaterSafely(untraced);
        const QByteArray tail = QByteArray::number(quintptr(traced.data()), 16) + " [tile]";
        QVERIFY(plain && untraced);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!plain && !traced && !untraced);

        QCOMPARE(recorder->items.size(), 1);
        const plog::LogItem& item = recorder->items[0];
        QVERIFY(item.logLevel() == plog::Trace && item.module() == plog::Logic);
        QVERIFY(item.rawMessage().startsWith("Object: "));
        QVERIFY(item.rawMessage().toLower().endsWith(tail));
        QCOMPARE(item.function(), "pylon::deleteLaterSafely");
    }

    void blockersNest() {
        const SignalBlocker none(nullptr);
        {
            const SignalBlocker outer(this);
            { const SignalBlocker inner(this); }
            QVERIFY(signalsBlocked());
        }
        QVERIFY(!signalsBlocked());
    }

    void consoleReaderEndsAtOnce() {
        ConsoleReader reader;
        QVERIFY(reader.metaObject()->indexOfSignal("KeyPressed(char)") >= 0);
        reader.start();
        QVERIFY(reader.wait(60'000));
    }

    void loadsPlugins() {
        const QString warning = "PylonSDK: Could not load plugin: " + qApp->applicationDirPath();
        for (const char* file : {"/no such.dll", "/Qt6Multimedia.dll"})
            QTest::ignoreMessage(QtWarningMsg, qPrintable(warning + file));
        loadPlugin("no such");
        loadQtPlugins({"Multimedia", "PylonTest"});
        QCOMPARE(qgetenv("PYLON_TEST_PLUGIN"), "loaded");
    }
};

QTEST_MAIN(TestObjectHelpers)
#include "tst_objecthelpers.moc"
