#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "terminal.h"

namespace pylon::inspector {

namespace {

// After a failed call: whether a signal came between, or the other end has made the stream
// non-blocking, in which case this waits until it is ready.
bool canRetry(int stream, short event) {
    if (errno == EINTR)
        return true;
    if (errno != EAGAIN && errno != EWOULDBLOCK)
        return false;
    pollfd ready{stream, event, 0};
    return poll(&ready, 1, -1) >= 0 || errno == EINTR;
}

}  // namespace

void prepareStandardStreams() {
    // Otherwise the next file opened would take the place of a closed stream. The wrong mode keeps
    // using it an error.
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) < 0)
            (void)open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
    std::signal(SIGPIPE, SIG_IGN);
}

bool isTerminal(Stream stream) {
    return isatty(static_cast<int>(stream)) == 1;
}

bool supportsColour(Stream stream) {
    const char* kind = std::getenv("TERM");
    return isTerminal(stream) && kind && *kind && std::strcmp(kind, "dumb") != 0;
}

qint64 readStandardInput(char* data, qint64 size, QString* error) {
    for (;;) {
        const ssize_t count = read(STDIN_FILENO, data, static_cast<size_t>(size));
        if (count >= 0)
            return count;
        if (canRetry(STDIN_FILENO, POLLIN))
            continue;
        *error = qt_error_string(errno);
        return -1;
    }
}

WriteResult writeStandardOutput(QByteArrayView data, QString* error) {
    while (!data.isEmpty()) {
        const ssize_t count = write(STDOUT_FILENO, data.data(), static_cast<size_t>(data.size()));
        if (count >= 0) {
            data = data.sliced(count);
            continue;
        }
        if (canRetry(STDOUT_FILENO, POLLOUT))
            continue;
        if (errno == EPIPE)
            return WriteResult::ReaderGone;
        *error = qt_error_string(errno);
        return WriteResult::Failed;
    }
    return WriteResult::Done;
}

}  // namespace pylon::inspector
