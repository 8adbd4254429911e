#include <pylon/log/internal/devicewritescope.h>
#include <pylon/log/logfile.h>
#include <pylon/log/logmanager.h>
#include <pylon/log/qtmessagehandler.h>

#include <QtCore/QMutex>
#include <QtCore/QSet>

#include <atomic>
#include <cstring>

namespace pylon::plog {

/// Makes items of Qt's messages.
class QtMessageRouter {
public:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text);

    static inline std::atomic<Module> module{PylonSDK};
    static inline QtMessageHandler previous = nullptr;
    static inline bool installed = false;
};

namespace {

LogLevel levelOf(QtMsgType type) {
    switch (type) {
        case QtDebugMsg:
            return Debug;
        case QtInfoMsg:
            return Info;
        case QtWarningMsg:
            return Warn;
        case QtCriticalMsg:
        case QtFatalMsg:
            break;
    }
    return Error;
}

/// Items keep names by address, and Qt's may be gone after the message: each different name is kept
/// for the life of the process. There are as many as there are places that warn.
const char* keptName(const QByteArray& name) {
    static QMutex mutex;
    static auto& names = *new QSet<QByteArray>;
    const QMutexLocker lock(&mutex);
    return names.insert(name)->constData();
}

QByteArray fullName(const QMessageLogContext& context) {
    if (!context.file)
        return context.function ? context.function : "Qt";
    const QByteArray path(context.file);
    const qsizetype folder = qMax(path.lastIndexOf('/'), path.lastIndexOf('\\'));
    return path.mid(folder + 1) + ':' + QByteArray::number(context.line) + ' ' + context.function;
}

QByteArray contextOf(const QMessageLogContext& context) {
    const bool isNamed = context.category && std::strcmp(context.category, "default") != 0;
    return isNamed ? QByteArray(context.category) : QByteArray();
}

}  // namespace

void QtMessageRouter::handle(QtMsgType type, const QMessageLogContext& context,
                             const QString& text) {
    if (DeviceWriteScope::isInsideAny()) {
        if (previous)
            previous(type, context, text);
        return;
    }
    LogManager* manager = LogManager::instance();
    const Module target = module;
    const auto entry = manager->logModule(target);
    manager->log(LogItem(levelOf(type), target, defaultSubModule,
                         entry ? entry->name_cstr() : "Unknown",
                         keptName(context.function ? context.function : "Qt"),
                         keptName(fullName(context)), nullptr, contextOf(context), text.toUtf8()));
    if (type == QtFatalMsg)
        flushFileDevices();
}

void installQtMessageHandler(Module module) {
    QtMessageRouter::module = module;
    if (QtMessageRouter::installed)
        return;
    QtMessageRouter::previous = qInstallMessageHandler(QtMessageRouter::handle);
    QtMessageRouter::installed = true;
}

void removeQtMessageHandler() {
    if (!QtMessageRouter::installed)
        return;
    qInstallMessageHandler(QtMessageRouter::previous);
    QtMessageRouter::installed = false;
}

}  // namespace pylon::plog
