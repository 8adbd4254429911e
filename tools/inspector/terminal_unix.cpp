#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>

#include "terminal.h"

namespace pylon::inspector {

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

qint64 readStandardInput(char* data, qint64 size) {
    ssize_t count;
    do {
        count = read(STDIN_FILENO, data, static_cast<size_t>(size));
    } while (count < 0 && errno == EINTR);
    return count;
}

}  // namespace pylon::inspector
