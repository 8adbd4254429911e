#include <pylon/security/internal/operationlog.h>

#include <QtCore/QString>

#include <cstdarg>

namespace pylon::CryptoTools::internal {

namespace {

constexpr unsigned int encrypt = 8192;

plog::LogClient<plog::Playback> client;

bool isEnabled(plog::LogLevel level) {
    if (level == plog::Trace && !plog::LG_trace_enabled)
        return false;
    if (level == plog::Debug && !plog::LG_debug_enabled)
        return false;
    return client.isEnabled();
}

}  // namespace

void OperationLog::entered() const {
    if (isEnabled(plog::Trace))
        plog::internal::submit(client, plog::Trace, {operation_, operation_, nullptr}, encrypt);
}

void OperationLog::operator()(plog::LogLevel level, const char* format, ...) const {
    if (!isEnabled(level))
        return;
    va_list values;
    va_start(values, format);
    const QByteArray message = QString::vasprintf(format, values).toUtf8();
    va_end(values);
    plog::internal::submit(client, level, {operation_, operation_, nullptr}, encrypt, "%s",
                           message.constData());
}

}  // namespace pylon::CryptoTools::internal
