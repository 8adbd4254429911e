#include <pylon/log/logclient.h>
#include <pylon/log/logmanager.h>
#include <pylon/platform/osal.h>

#include <cstdarg>
#include <cstdio>

namespace pylon::plog {

LogClient<1> log_client_;

namespace {

// Nearly every message fits; longer ones are formatted a second time at their exact length.
constexpr qsizetype usualMessageSize = 1024;

/// The buffer that this thread formats its messages in, one after the other, so that a line costs
/// neither an allocation nor a copy. It travels in the item and comes back, unless a device shares
/// it; then, and while a line is under way, there is none.
QByteArray* threadBuffer() {
    static thread_local bool isGone = false;
    struct Buffer {
        ~Buffer() { isGone = true; }
        QByteArray bytes;
    };
    static thread_local Buffer buffer;
    // Static objects may log after the thread-local ones are gone.
    return isGone ? nullptr : &buffer.bytes;
}

int formatInto(QByteArray& message, const char* format, va_list values) {
    va_list copy;
    va_copy(copy, values);
    const int length = osal::vsnprintf_c99(
        message.data(), static_cast<std::size_t>(message.size()) + 1, format, copy);
    va_end(copy);
    return length;
}

void reportError(const char* what, int result) {
    std::fprintf(stderr, "%s:%d\n", what, result);
}

void formatMessage(QByteArray& message, const char* format, va_list values) {
    message.resize(usualMessageSize);
    int result = formatInto(message, format, values);
    if (result < 0)
        reportError("logclient error", result);
    if (result > usualMessageSize) {
        message = QByteArray(result, Qt::Uninitialized);
        const qsizetype room = result;
        result = formatInto(message, format, values);
        if (result < 0)
            reportError("logclient error2", result);
        if (result > room)
            reportError("logclient error3", result);
    }
    message.truncate(qMax(result, 0));
}

}  // namespace

LogTagHook::~LogTagHook() = default;

LogClientBase::LogClientBase(Module module) : module_(module) {
    LogManager* manager = LogManager::instance();
    enabledModules_ = &manager->enabledModules();
    enabledSubmodules_ = &manager->enabledSubmodules(module);
    if (const auto entry = manager->logModule(module))
        name_ = entry->name_cstr();
}

void LogClientBase::addHook(LogTagHook* hook) {
    if (hook)
        hooks_.append(hook);
}

void LogClientBase::removeHook(LogTagHook* hook) {
    hooks_.removeAll(hook);
}

QByteArray LogClientBase::currentTag() const {
    QByteArray tag = tag_;
    for (LogTagHook* hook : hooks_)
        hook->rewriteTag(tag);
    return tag;
}

void LogClientBase::log(LogLevel level, const char* function, const char* prettyFunction,
                        const void* object, Arg first, Arg second, const char* sentinel, ...) {
    const QByteArray tag = currentTag();
    const unsigned int submods = first.type == Arg::SubModule ? first.subMod() : defaultSubModule;

    QByteArray* const buffer = threadBuffer();
    QByteArray message = buffer ? std::move(*buffer) : QByteArray();
    va_list values;
    va_start(values, sentinel);
    const char* const format = first.type == Arg::String    ? first.str()
                               : second.type == Arg::String ? va_arg(values, const char*)
                                                            : "";
    formatMessage(message, format, values);
    va_end(values);

    LogItem item(level, module_, submods, name_, function, prettyFunction, object, tag,
                 std::move(message));
    LogManager::instance()->log(item);
    if (buffer && item.message_.isDetached() && item.message_.size() <= usualMessageSize)
        *buffer = std::move(item.message_);
}

}  // namespace pylon::plog
