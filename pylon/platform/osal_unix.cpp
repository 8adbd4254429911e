#include <pylon/platform/osal.h>
#include <QtCore/QFile>

#include <sys/wait.h>

#include <cerrno>
#include <cstring>

namespace osal {

int fopen(FILE** file, const QString& path, const QString& mode) {
    if (!file)
        return EINVAL;
    *file = std::fopen(QFile::encodeName(path).constData(), mode.toLatin1().constData());
    return *file ? 0 : errno;
}

QString getenv(const QString& name) {
    return qEnvironmentVariable(name.toUtf8().constData());
}

FILE* popen(const char* command, const char* mode) {
    if (!command || !mode)
        return nullptr;
    // Text and binary marks are a Windows matter that popen refuses here.
    const char direction[] = {mode[0], '\0'};
    return ::popen(command, direction);
}

int pclose(FILE* stream) {
    if (!stream)
        return -1;
    const int status = ::pclose(stream);
    if (status == -1)
        return -1;
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

int strerror(char* buffer, std::size_t bufferSize, int errorNumber) {
    if (!buffer || bufferSize == 0)
        return EINVAL;
    // The GNU form returns the text, which need not be in the buffer it was given.
    char scratch[256];
    std::snprintf(buffer, bufferSize, "%s", strerror_r(errorNumber, scratch, sizeof scratch));
    return 0;
}

int vsnprintf_c99(char* buffer, std::size_t bufferSize, const char* format, va_list arguments) {
    if (!format)
        return -1;
    const int length = std::vsnprintf(buffer, bufferSize, format, arguments);
    return length < 0 ? -1 : length;
}

QString getProcessList() {
    return {};
}

}  // namespace osal
