#include <pylon/platform/osal.h>
#include <QtCore/QProcess>

#include <cerrno>
#include <cstdlib>
#include <cwchar>
#include <vector>

namespace osal {

namespace {

void reportInvalidParameter(const wchar_t* expression, const wchar_t* function, const wchar_t* file,
                            unsigned int line, uintptr_t) {
    const auto text = [](const wchar_t* value) { return value ? value : L""; };
    std::wprintf(L"Invalid parameter detected in function %ls. File: %ls Line: %d\n",
                 text(function), text(file), static_cast<int>(line));
    std::wprintf(L"Expression: %ls\n", text(expression));
}

#ifdef _UCRT
constexpr auto setHandler = _set_thread_local_invalid_parameter_handler;
#else
// Process-wide: of two threads that format at once, one may put back the other's.
constexpr auto setHandler = _set_invalid_parameter_handler;
#endif

/// Lets a bad format be reported instead of ending the process, for as long as it lives.
class InvalidParameterGuard {
public:
    InvalidParameterGuard() : previous_(setHandler(reportInvalidParameter)) {}
    ~InvalidParameterGuard() { setHandler(previous_); }
    Q_DISABLE_COPY_MOVE(InvalidParameterGuard)

private:
    _invalid_parameter_handler previous_;
};

const wchar_t* wide(const QString& text) {
    return reinterpret_cast<const wchar_t*>(text.utf16());
}

}  // namespace

int fopen(FILE** file, const QString& path, const QString& mode) {
    if (!file)
        return EINVAL;
    *file = nullptr;
    return _wfopen_s(file, wide(path), wide(mode));
}

QString getenv(const QString& name) {
    // Copies under the runtime's lock. The narrow twin would give the value in the code page.
    std::size_t size = 0;
    _wgetenv_s(&size, nullptr, 0, wide(name));
    std::vector<wchar_t> value(size);
    if (_wgetenv_s(&size, value.data(), value.size(), wide(name)) != 0 || size == 0)
        return {};
    return QString::fromWCharArray(value.data());
}

FILE* popen(const char* command, const char* mode) {
    return command && mode ? ::_popen(command, mode) : nullptr;
}

int pclose(FILE* stream) {
    return stream ? ::_pclose(stream) : -1;
}

int strerror(char* buffer, std::size_t bufferSize, int errorNumber) {
    if (!buffer || bufferSize == 0)
        return EINVAL;
    return strerror_s(buffer, bufferSize, errorNumber);
}

int vsnprintf_c99(char* buffer, std::size_t bufferSize, const char* format, va_list arguments) {
    if (!format)
        return -1;
    const InvalidParameterGuard guard;
    // The C++ library's function has C99 rules with every runtime this builds for; the runtime's
    // own bounded function knows neither %zu nor the full length of a cut text.
    const int length = std::vsnprintf(buffer, bufferSize, format, arguments);
    return length < 0 ? -1 : length;
}

QString getProcessList() {
    constexpr int waitMilliseconds = 1000;
    QProcess process;
    process.setReadChannel(QProcess::StandardOutput);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QStringLiteral("cmd"),
                  {QStringLiteral("/C"), QStringLiteral("echo"), QStringLiteral("process"),
                   QStringLiteral("get"), QStringLiteral("|"), QStringLiteral("wmic")},
                  QIODevice::ReadWrite);
    process.waitForStarted(waitMilliseconds);
    process.waitForFinished(waitMilliseconds);
    return QString::fromUtf8(process.readAll());
}

}  // namespace osal
