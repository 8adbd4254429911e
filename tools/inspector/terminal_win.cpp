#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <windows.h>

#include <algorithm>
#include <cstdlib>

#include "terminal.h"

namespace pylon::inspector {

namespace {

// Older SDKs lack the constant.
constexpr DWORD enableVirtualTerminalProcessing = 0x0004;

HANDLE handle(Stream stream) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(static_cast<int>(stream)));
}

bool isBrokenPipe(DWORD error) {
    return error == ERROR_BROKEN_PIPE || error == ERROR_NO_DATA ||
           error == ERROR_PIPE_NOT_CONNECTED;
}

QString lastError() {
    return qt_error_string(static_cast<int>(GetLastError()));
}

// The code page belongs to the console, which outlives this process.
void showUtf8() {
    static const UINT before = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    std::atexit([] { SetConsoleOutputCP(before); });
}

}  // namespace

void prepareStandardStreams() {
    _setmode(_fileno(stderr), _O_BINARY);
    if (isTerminal(Stream::Output) || isTerminal(Stream::Error))
        showUtf8();
}

// _isatty() alone also holds for the null device and serial lines.
bool isTerminal(Stream stream) {
    DWORD mode = 0;
    return _isatty(static_cast<int>(stream)) != 0 && GetConsoleMode(handle(stream), &mode) != 0;
}

bool supportsColour(Stream stream) {
    DWORD mode = 0;
    return GetConsoleMode(handle(stream), &mode) != 0 &&
           SetConsoleMode(handle(stream), mode | enableVirtualTerminalProcessing) != 0;
}

// Past the C runtime, which would translate line ends and knows no error for a reader that is gone.
qint64 readStandardInput(char* data, qint64 size, QString* error) {
    constexpr qint64 most = 1 << 30;
    DWORD count = 0;
    if (ReadFile(handle(Stream::Input), data, static_cast<DWORD>(std::min(size, most)), &count,
                 nullptr))
        return count;
    if (isBrokenPipe(GetLastError()))
        return 0;
    *error = lastError();
    return -1;
}

WriteResult writeStandardOutput(QByteArrayView data, QString* error) {
    constexpr qsizetype most = 1 << 30;
    while (!data.isEmpty()) {
        DWORD count = 0;
        if (!WriteFile(handle(Stream::Output), data.data(),
                       static_cast<DWORD>(std::min(data.size(), most)), &count, nullptr)) {
            if (isBrokenPipe(GetLastError()))
                return WriteResult::ReaderGone;
            *error = lastError();
            return WriteResult::Failed;
        }
        data = data.sliced(count);
    }
    return WriteResult::Done;
}

}  // namespace pylon::inspector
