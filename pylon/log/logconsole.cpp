#include <pylon/log/logconsole.h>

namespace pylon::plog {

LogConsole::LogConsole(FILE* stream, bool autoFlush)
    : LogDevice(nullptr), stream_(stream), autoFlush_(autoFlush) {}

void LogConsole::write(const LogItem& item) {
    if (!stream_)
        return;
    std::fprintf(stream_, "%s\n", item.toString().toUtf8().constData());
    if (autoFlush_)
        std::fflush(stream_);
}

}  // namespace pylon::plog
