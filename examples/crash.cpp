// Leaves a report when it crashes: the calls that led there in one file, the log in another.

#include <pylon/log/logfile.h>
#include <pylon/log/logmacros.h>
#include <pylon/log/logmanager.h>
#include <pylon/platform/signals.h>
#include <pylon/platform/stacktrace.h>

#include <QtCore/QCoreApplication>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

using namespace pylon;

static plog::LogClient<plog::Playback> client;

namespace {

// Made before there is anything to report: the handler finds it complete.
std::string reportPath;

void onSignal(int number) {
    // From here on the signal does what it would have done without us, also if we fail.
    std::signal(number, SIG_DFL);
    const int id = signalId(number);
    if (id != 2 && id != 15 && id != 21)  // those are somebody's wish
        StackTrace(nullptr).print(reportPath);
    PLOG_ERROR(client, nullptr, "ended by signal %d: %s", id, signalName(id));
    plog::flushFileDevices();
    std::raise(number);
}

void installHandlers() {
    for (const int id : signalIds()) {
        if (const int number = signalNumber(id))
            std::signal(number, onSignal);
    }
}

// Where no memory is; volatile, or the compiler would see through the fault.
int* volatile nowhere = reinterpret_cast<int*>(64);

Q_NEVER_INLINE void decodePicture(bool giveUp) {
    if (giveUp)
        std::abort();
    *nowhere = 1;
}

}  // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const QString folder = application.arguments().value(1, QStringLiteral("."));
    reportPath = (folder + QStringLiteral("/crash.txt")).toLocal8Bit().toStdString();
    plog::LogManager::instance()->addLogDevice(QSharedPointer<plog::LogFile>::create(
        folder + QStringLiteral("/crash.log"), QIODevice::Truncate, false));
    installHandlers();

    PLOG_INFO(client, nullptr, "about to crash; the report will be %s", reportPath.c_str());
    decodePicture(application.arguments().value(2) == QStringLiteral("abort"));
    std::puts("never printed");
}
