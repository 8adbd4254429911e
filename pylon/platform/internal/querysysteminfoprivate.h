#pragma once

#include <pylon/platform/systeminfo.h>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QProcess>

#include <optional>
#include <vector>

namespace pylon {

/// What QuerySystemInfo knows, and the programs it asks.
class QuerySystemInfoPrivate : public QObject {
    Q_OBJECT

public:
    explicit QuerySystemInfoPrivate(QObject* parent);
    ~QuerySystemInfoPrivate() override;

    void load();
    bool isLoaded() const { return systemInfoDone_ && networkInfoDone_; }

    SystemInfo systemInfo;
    std::vector<NetworkInterface> network;

signals:
    void loaded();

private slots:
    void handleSystemInfoReceived(int exitCode, QProcess::ExitStatus status);
    void handleSystemInfoError(QProcess::ProcessError error);
    void handleNetworkInfoReceived(int exitCode, QProcess::ExitStatus status);
    void handleNetworkInfoError(QProcess::ProcessError error);

private:
    QProcess* newProcess();
    /// What the process that sends the signal in hand has printed; it is let go of.
    std::optional<QString> takeOutput();
    void reportIfLoaded();

    bool systemInfoDone_ = false;
    bool networkInfoDone_ = false;
    // Owned: every process that has not answered yet, also of earlier queries.
    QList<QProcess*> processes_;
};

}  // namespace pylon
