// Logs to standard output, first everything, then one sub-module alone.

#include <pylon/log/logconsole.h>
#include <pylon/log/logmacros.h>
#include <pylon/log/logmanager.h>

using namespace pylon::plog;

static LogClient<Network> client;

int main() {
    constexpr unsigned int login = 8192;
    LogManager* log = LogManager::instance();
    log->addLogDevice(QSharedPointer<LogConsole>::create());
    log->addLogLevel(Debug);

    PLOG_INFO(client, nullptr, "connecting to %s:%d", "gate.example", 8601);
    PLOG_DEBUG(client, nullptr, login, "user '%s' accepted", "guard");

    QString error;
    if (!log->setFilter("Network{Login}, Bogus", &error))
        PLOG_WARN(client, nullptr, "filter not used, unknown: %s", qPrintable(error));
    log->setFilter("Network{Login}", nullptr);
    PLOG_INFO(client, nullptr, "not shown: names no sub-module");
    PLOG_INFO(client, nullptr, login, "shown");
}
