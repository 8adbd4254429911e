// How the values of this folder show in debug output.

#include <pylon/log/logfilteritem.h>
#include <pylon/log/logitem.h>
#include <pylon/log/logmodule.h>
#include <QtCore/QDebug>
#include <QtCore/QStringList>

namespace pylon::plog {

QDebug operator<<(QDebug debug, const LogItem& item) {
    const QDebugStateSaver saver(debug);
    QByteArray line;
    item.appendTo(line);
    debug.nospace().noquote() << "LogItem(" << QString::fromUtf8(line) << ')';
    return debug;
}

QDebug operator<<(QDebug debug, const LogFilterItem& item) {
    const QDebugStateSaver saver(debug);
    debug.nospace().noquote() << "LogFilterItem(" << item.moduleStr();
    if (!item.subModulesStr().isEmpty())
        debug << '{' << item.subModulesStr().join(QLatin1String(", ")) << '}';
    debug << (item.isValid() ? ")" : " not valid)");
    return debug;
}

QDebug operator<<(QDebug debug, const LogModule& module) {
    const QDebugStateSaver saver(debug);
    debug.nospace().noquote() << "LogModule(" << module.name() << ", 0x" << Qt::hex
                              << static_cast<unsigned int>(module.module()) << ')';
    return debug;
}

}  // namespace pylon::plog
