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
    static inline std::atomic<QtMessageHandler> previous{nullptr};
    static inline std::atomic<bool> installed{false};

private:
    static void forward(QtMsgType type, const QMessageLogContext& context, const QString& text);
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
    const QByteArray place = path.mid(folder + 1) + ':' + QByteArray::number(context.line);
    return context.function ? place + ' ' + context.function : place;
}

QByteArray contextOf(const QMessageLogContext& context) {
    const bool isNamed = context.category && std::strcmp(context.category, "default") != 0;
    return isNamed ? QByteArray(context.category) : QByteArray();
}

}  // namespace

void QtMessageRouter::forward(QtMsgType type, const QMessageLogContext& context,
                              const QString& text) {
    if (const QtMessageHandler handler = previous)
        handler(type, context, text);
}

void QtMessageRouter::handle(QtMsgType type, const QMessageLogContext& context,
                             const QString& text) {
    if (!installed || DeviceWriteScope::isInsideAny())
        return forward(type, context, text);
    LogManager* manager = LogManager::instance();
    const Module target = module;
    if (manager->isWanted(levelOf(type), target)) {
        const auto entry = manager->logModule(target);
        manager->log(
            LogItem(levelOf(type), target, defaultSubModule, entry ? entry->name_cstr() : "Unknown",
                    keptName(context.function ? context.function : "Qt"),
                    keptName(fullName(context)), nullptr, contextOf(context), text.toUtf8()));
    }
    if (type == QtFatalMsg)
        flushFileDevices();
}

void installQtMessageHandler(Module module) {
    QtMessageRouter::module = module;
    if (QtMessageRouter::installed)
        return;
    const QtMessageHandler before = qInstallMessageHandler(QtMessageRouter::handle);
    // Still there, below another one, after a removal that could not take it out.
    if (before != QtMessageRouter::handle)
        QtMessageRouter::previous = before;
    QtMessageRouter::installed = true;
}

void removeQtMessageHandler() {
    if (!QtMessageRouter::installed)
        return;
    QtMessageRouter::installed = false;
    const QtMessageHandler top = qInstallMessageHandler(QtMessageRouter::previous);
    // A handler that came later stays; it may well call ours, which then only passes on.
    if (top != QtMessageRouter::handle)
        qInstallMessageHandler(top);
}

}  // namespace pylon::plog
