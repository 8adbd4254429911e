// Describes this Windows machine, or another one by what its tools printed into two files.

#include <pylon/platform/querysysteminfo.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <cstdio>

using namespace pylon;

namespace {

QString contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void show(const SystemInfo& info, const std::vector<NetworkInterface>& network) {
    std::printf("%s: %s %s\n", qPrintable(info.hostName), qPrintable(info.osName),
                qPrintable(info.osVersion));
    for (const QString& processor : info.processors)
        std::printf("processor  %s\n", qPrintable(processor));
    std::printf("memory     %s, %s of it free\n", qPrintable(info.totalPhysicalMemory),
                qPrintable(info.availablePhysicalMemory));
    for (const NetworkInterface& adapter : network)
        std::printf("%s  %s\n", qPrintable(adapter.physicalAddress), qPrintable(adapter.name));
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() == 3) {
        SystemInfo info;
        parseSystemInfo(contentOf(arguments[1]), info);
        show(info, parseNetworkInfo(contentOf(arguments[2])));
        return 0;
    }

    QuerySystemInfo query;
    const auto finish = [&] {
        show(query.systemInfo(), query.network());
        application.quit();
    };
    // Queued: it may be emitted within load(), and quit() needs exec() to have begun.
    QObject::connect(&query, &QuerySystemInfo::loaded, &application, finish, Qt::QueuedConnection);
    query.load();
    return application.exec();
}
