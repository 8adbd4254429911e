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

int formatInto(char* buffer, qsizetype capacity, const char* format, va_list values) {
    va_list copy;
    va_copy(copy, values);
    const int length =
        osal::vsnprintf_c99(buffer, static_cast<std::size_t>(capacity) + 1, format, copy);
    va_end(copy);
    return length;
}

void reportError(const char* what, int result) {
    std::fprintf(stderr, "%s:%d\n", what, result);
}

QByteArray formatLong(qsizetype length, const char* format, va_list values) {
    QByteArray message(length, Qt::Uninitialized);
    const int result = formatInto(message.data(), length, format, values);
    if (result < 0)
        reportError("logclient error2", result);
    if (result > length)
        reportError("logclient error3", result);
    message.resize(qBound(qsizetype{0}, qsizetype{result}, length));
    return message;
}

QByteArray formatMessage(const char* format, va_list values) {
    char buffer[usualMessageSize + 1];
    const int result = formatInto(buffer, usualMessageSize, format, values);
    if (result < 0) {
        reportError("logclient error", result);
        return {};
    }
    if (result > usualMessageSize)
        return formatLong(result, format, values);
    return QByteArray(buffer, result);
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

    QByteArray message;
    va_list values;
    va_start(values, sentinel);
    if (first.type == Arg::String) {
        message = formatMessage(first.str(), values);
    } else if (second.type == Arg::String) {
        const char* format = va_arg(values, const char*);
        message = formatMessage(format, values);
    }
    va_end(values);

    LogManager::instance()->log(
        LogItem(level, module_, submods, name_, function, prettyFunction, object, tag, message));
}

}  // namespace pylon::plog
