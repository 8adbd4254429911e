// Every part of the logging framework once; the README shows this program and what it prints.

#include <pylon/log/assertions.h>
#include <pylon/log/logconsole.h>
#include <pylon/log/logcustom.h>
#include <pylon/log/logfile.h>
#include <pylon/log/logmacros.h>
#include <pylon/log/logmanager.h>
#include <pylon/log/qtmessagehandler.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QLoggingCategory>

#include <cstdio>

using namespace pylon::plog;

// A client for the module that this source file belongs to.
static LogClient<Network> client;

namespace {

constexpr unsigned int stream = 2048;  // sub-module "Stream" of "Network"

// A device of the application: here it only counts.
struct Counter : LogCustomInterface {
    void logItem(const LogItem& item) override { errors += item.logLevel() == Error; }
    int errors = 0;
};

// Rewrites the tag of each item.
struct AddSession : LogTagHook {
    void rewriteTag(QByteArray& tag) override { tag += " session 4"; }
};

struct Receiver {
    void receive(int frames) {
        PLOG_TRACE(client, this, stream);                       // function entered
        PLOG_INFO(client, this, "%d frames", frames);           // message
        PLOG_DEBUG(client, this, stream, "%d frames", frames);  // message of a sub-module
        PLOG_ERROR(client, this, stream, "%s", "connection lost");
    }
};

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    LogManager* log = LogManager::instance();
    Counter counter;
    LogItem::usePrettyFunction(false);
    log->addLogDevice(QSharedPointer<LogConsole>::create(stdout, true));
    log->addLogDevice(QSharedPointer<LogCustom>::create(&counter));
    if (argc > 1)
        log->addLogDevice(QSharedPointer<LogFile>::create(QString::fromLocal8Bit(argv[1]),
                                                          QIODevice::Append, false));

    std::puts("\n-- levels Info, Warn and Error are enabled at first");
    Receiver receiver;
    receiver.receive(1);

    std::puts("-- all levels, but of Network only the sub-module Stream");
    log->setLogLevel(maxLogLevel());
    log->setFilter(QStringLiteral("Network{Stream}"), nullptr);
    receiver.receive(2);

    std::puts("-- tag and hook");
    AddSession addSession;
    client.setTag("camera 7");
    client.addHook(&addSession);
    PLOG_WARN(client, &receiver, stream, "late by %.1f s", 0.4);
    client.removeHook(&addSession);

    std::puts("-- Qt's messages, as lines of the module Gui");
    log->resetFilter();
    installQtMessageHandler(Gui);
    qWarning("something about a window");
    removeQtMessageHandler();

    P_ASSERT(counter.errors == 2);  // would be logged and end the program
    log->clearLogDevices();
}
