#include "../log/recorder.h"

#include <pylon/log/logmanager.h>
#include <pylon/platform/consolereader.h>
#include <pylon/platform/deferreddeletion.h>
#include <pylon/platform/plugins.h>
#include <pylon/platform/signalblocker.h>
#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <thread>
#include <vector>

using namespace pylon;

namespace {

/// Counts the calls that reach the deferred deletion handler in the main thread.
class HandlerWatch : public QObject {
public:
    HandlerWatch() { qApp->installEventFilter(this); }

    bool eventFilter(QObject* object, QEvent* event) override {
        if (event->type() == QEvent::MetaCall &&
            qstrcmp(object->metaObject()->className(), "pylon::DeferredDeletionHandler") == 0) {
            handler = object;
            ++calls;
        }
        return false;
    }

    QObject* handler = nullptr;
    int calls = 0;
};

QByteArray missing(const char* file) {
    return ("PylonSDK: Could not load plugin: " + QCoreApplication::applicationDirPath() + '/')
               .toLocal8Bit() +
           file;
}

}  // namespace

class TestObjectHelpers : public QObject {
    Q_OBJECT

private slots:
    void requestsArriveOneByOne() {
        HandlerWatch watch;
        requestProcessDeleteLaterEvents();
        DeferredDeletionHandler::queueRequest();
        QCoreApplication::processEvents();
        QCOMPARE(watch.calls, 2);

        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([] {
                for (int request = 0; request < 50; ++request)
                    requestProcessDeleteLaterEvents();
            });
        for (std::thread& thread : threads)
            thread.join();
        QCoreApplication::processEvents();
        QCOMPARE(watch.calls, 202);

        // What it does, without an event loop that would do so anyway.
        QObject receiver;
        bool delivered = false;
        QMetaObject::invokeMethod(
            &receiver, [&] { delivered = true; }, Qt::QueuedConnection);
        QVERIFY(QMetaObject::invokeMethod(watch.handler, "processDeleteLaterEvents"));
        QVERIFY(delivered);
    }

    void deletesLater_data() {
        QTest::addColumn<bool>("safely");
        QTest::addColumn<unsigned>("level");
        QTest::newRow("plain") << false << unsigned{plog::Trace};
        QTest::newRow("traced") << true << unsigned{plog::Trace};
        QTest::newRow("not traced") << true << unsigned{plog::Debug};
    }

    void deletesLater() {
        QFETCH(bool, safely);
        QFETCH(unsigned, level);
        auto* const log = plog::LogManager::instance();
        const auto recorder = QSharedPointer<Recorder>::create();
        log->addRawDevice(recorder);
        log->setLogLevel(level);
        const QPointer<QObject> object = new QObject;
        object->setObjectName(QStringLiteral("tile"));
        const QByteArray address = QByteArray::number(quintptr(object.data()), 16);
        (safely ? pylon::deleteLaterSafely : pylon::deleteLater)(object);
        log->removeRawDevice(recorder);
        QVERIFY(object);
        QCoreApplication::sendPostedEvents(object, QEvent::DeferredDelete);
        QVERIFY(!object);

        QCOMPARE(recorder->items.size(), safely && level == plog::Trace ? 1 : 0);
        for (const plog::LogItem& item : std::as_const(recorder->items)) {
            const QByteArray message = item.rawMessage().toLower();
            QVERIFY2(message.startsWith("object: ") && message.endsWith(address + " [tile]"),
                     message);
            QVERIFY(item.logLevel() == plog::Trace && item.module() == plog::Logic);
            for (const bool pretty : {false, true}) {
                plog::LogItem::usePrettyFunction(pretty);
                QCOMPARE(QByteArray(item.function()), QByteArray("pylon::deleteLaterSafely"));
            }
        }
    }

    void blockersNest() {
        for (const bool blockedBefore : {false, true}) {
            QObject object;
            object.blockSignals(blockedBefore);
            {
                const SignalBlocker outer(&object);
                {
                    const SignalBlocker inner(&object);
                    QVERIFY(object.signalsBlocked());
                }
                QVERIFY(object.signalsBlocked());
            }
            QCOMPARE(object.signalsBlocked(), blockedBefore);
        }
        const SignalBlocker none(nullptr);
    }

    void consoleReaderEndsAtOnce() {
        ConsoleReader reader;
        QSignalSpy pressed(&reader, &ConsoleReader::KeyPressed);
        QVERIFY(pressed.isValid());
        reader.start();
        QVERIFY(reader.wait(60'000));
        QCOMPARE(pressed.size(), 0);
    }

    void loadsPlugins() {
        QTest::ignoreMessage(QtWarningMsg, missing("no such.dll"));
        loadPlugin(QStringLiteral("no such"));
        QTest::ignoreMessage(QtWarningMsg, missing("Qt6Multimedia.dll"));
        loadQtPlugins({});
        QVERIFY(!qEnvironmentVariableIsSet("PYLON_TEST_PLUGIN"));
        loadQtPlugins({QStringLiteral("Multimedia"), QStringLiteral("PylonTest")});
        QCOMPARE(qgetenv("PYLON_TEST_PLUGIN"), QByteArray("loaded"));
    }
};

QTEST_MAIN(TestObjectHelpers)
#include "tst_objecthelpers.moc"
