#include <pylon/platform/internal/querysysteminfoprivate.h>
#include <pylon/platform/querysysteminfo.h>

#include <QtCore/QFile>

#include <iterator>

namespace pylon {

QuerySystemInfoPrivate::QuerySystemInfoPrivate(QObject* parent) : QObject(parent) {}

QuerySystemInfoPrivate::~QuerySystemInfoPrivate() {
    for (QProcess* process : std::as_const(processes_)) {
        process->disconnect(this);
        // Otherwise the process would complain about its end, and wait for the program's.
        process->kill();
        process->waitForFinished();
        delete process;
    }
}

void QuerySystemInfoPrivate::load() {
    QProcess* const systemProcess = newProcess();
    connect(systemProcess, &QProcess::finished, this,
            &QuerySystemInfoPrivate::handleSystemInfoReceived);
    connect(systemProcess, &QProcess::errorOccurred, this,
            &QuerySystemInfoPrivate::handleSystemInfoError);
    systemProcess->start(QStringLiteral("systeminfo"), {}, QIODevice::ReadWrite);

    QProcess* const networkProcess = newProcess();
    connect(networkProcess, &QProcess::finished, this,
            &QuerySystemInfoPrivate::handleNetworkInfoReceived);
    connect(networkProcess, &QProcess::errorOccurred, this,
            &QuerySystemInfoPrivate::handleNetworkInfoError);
    networkProcess->start(QStringLiteral("ipconfig"), {QStringLiteral("/all")},
                          QIODevice::ReadWrite);
}

void QuerySystemInfoPrivate::handleSystemInfoReceived(int, QProcess::ExitStatus) {
    const std::optional<QString> output = takeOutput();
    if (!output)
        return;
    systemInfoDone_ = true;
    const SystemInfoFindings findings = parseSystemInfo(*output, systemInfo);
    if (!findings.memory)
        qWarning("Couldn't find memory status");
    if (!findings.processors)
        qWarning("Couldn't find CPU status");
    reportIfLoaded();
}

void QuerySystemInfoPrivate::handleSystemInfoError(QProcess::ProcessError) {
    systemInfoDone_ = true;
    reportIfLoaded();
}

void QuerySystemInfoPrivate::handleNetworkInfoReceived(int, QProcess::ExitStatus) {
    const std::optional<QString> output = takeOutput();
    if (!output)
        return;
    networkInfoDone_ = true;
    std::vector<NetworkInterface> adapters = parseNetworkInfo(*output);
    network.insert(network.end(), std::make_move_iterator(adapters.begin()),
                   std::make_move_iterator(adapters.end()));
    reportIfLoaded();
}

void QuerySystemInfoPrivate::handleNetworkInfoError(QProcess::ProcessError) {
    networkInfoDone_ = true;
    reportIfLoaded();
}

QProcess* QuerySystemInfoPrivate::newProcess() {
    auto* const process = new QProcess;
    processes_.append(process);
    return process;
}

std::optional<QString> QuerySystemInfoPrivate::takeOutput() {
    // A process that a later query has overtaken answers too, but only for itself.
    auto* const process = qobject_cast<QProcess*>(sender());
    if (!process || !processes_.removeOne(process))
        return std::nullopt;
    process->deleteLater();
    return QString::fromUtf8(process->readAll());
}

void QuerySystemInfoPrivate::reportIfLoaded() {
    if (isLoaded())
        emit loaded();
}

QuerySystemInfo::QuerySystemInfo() : d_(new QuerySystemInfoPrivate(this)) {
    connect(d_, &QuerySystemInfoPrivate::loaded, this, &QuerySystemInfo::loaded);
}

QuerySystemInfo::~QuerySystemInfo() = default;

void QuerySystemInfo::load() {
    d_->load();
}

bool QuerySystemInfo::isLoaded() const {
    return d_->isLoaded();
}

SystemInfo& QuerySystemInfo::systemInfo() {
    return d_->systemInfo;
}

std::vector<NetworkInterface>& QuerySystemInfo::network() {
    return d_->network;
}

bool QuerySystemInfo::isMarlow() {
    return QFile::exists(QStringLiteral("/etc/marlow-release"));
}

}  // namespace pylon
