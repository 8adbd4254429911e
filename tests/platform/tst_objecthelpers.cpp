#include "../log/recorder.h"

#include <pylon/pylon.h>
#include <QtTest/QtTest>

#include <thread>

using namespace pylon;

class TestObjectHelpers : public QObject {
    Q_OBJECT

private slots:
    // The first request comes from here, so the objects of this thread are meant.
    void requestsComeFromAnyThread() {
        DeferredDeletionHandler::queueRequest();
        QCoreApplication::processEvents();
        const auto request = &requestProcessDeleteLaterEvents;
        for (int round = 0; round < 50; ++round) {
            const QPointer<QObject> object = new QObject;
            pylon::deleteLater(object);
            QCoreApplication::processEvents();
            QVERIFY(object);  // left to an event loop further out, unless asked for
            { const std::jthread one(request), other(request); }
            QCoreApplication::processEvents();
            QVERIFY(!object);
        }
    }

    void logsWhatItDeletes() {
        auto* const log = plog::LogManager::instance();
        const auto recorder = QSharedPointer<Recorder>::create();
        log->addRawDevice(recorder);
        const QPointer<QObject> quiet = new QObject, traced = new QObject;
        traced->setObjectName("tile");
        log->setLogLevel(plog::Debug);
        deleteLaterSafely(quiet);
        log->setLogLevel(plog::Trace);
        deleteLaterSafely(traced);
        log->unsetAll();
        deleteLaterSafely(new QObject);
        const QByteArray tail = QByteArray::number(quintptr(traced.data()), 16) + " [tile]";
        QVERIFY(quiet && traced);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY(!quiet && !traced);

        QCOMPARE(recorder->items.size(), 1);
        const plog::LogItem& item = recorder->items[0];
        QVERIFY(item.logLevel() == plog::Trace && item.module() == plog::Logic);
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
