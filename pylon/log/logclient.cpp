#include <pylon/log/logclient.h>
#include <pylon/log/logmanager.h>
#include <pylon/platform/osal.h>

#include <atomic>
#include <cstdarg>
#include <cstdio>

namespace pylon::plog {

LogClient<1> log_client_;

namespace {

// Nearly every message fits; longer ones are formatted a second time at their exact length.
constexpr qsizetype usualMessageSize = 1024;

/// Buffers that messages are formatted in, so that a line costs neither an allocation nor a copy.
/// One travels in the item and comes back, unless a device shares it.
///
/// A thread starts at a place of its own, and nothing belongs to a thread: what ends with one is
/// not safe to use for all that a thread may log while it ends.
class MessageBuffers {
public:
    /// A buffer with any content, to be given back by put().
    static QByteArray* take() {
        QByteArray* const buffer = slot().exchange(nullptr, std::memory_order_acquire);
        return buffer ? buffer : new QByteArray;
    }

    static void put(QByteArray* buffer) {
        delete slot().exchange(buffer, std::memory_order_release);
    }

private:
    struct alignas(64) Slot {
        std::atomic<QByteArray*> buffer;
    };

    static std::atomic<QByteArray*>& slot() {
        static std::atomic<unsigned> threads{0};
        static thread_local unsigned number = 0;
        if (number == 0)
            number = ++threads;
        return slots_[number % slotCount].buffer;
    }

    static constexpr unsigned slotCount = 16;
    static inline Slot slots_[slotCount];
};

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

    QByteArray* const buffer = MessageBuffers::take();
    QByteArray message = std::move(*buffer);
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
    if (item.message_.isDetached() && item.message_.size() <= usualMessageSize)
        *buffer = std::move(item.message_);
    MessageBuffers::put(buffer);
}

}  // namespace pylon::plog
