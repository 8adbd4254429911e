#include <fcntl.h>
#include <io.h>
#include <stdio.h>
#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "terminal.h"

namespace pylon::inspector {

namespace {

// Older SDKs lack the constant.
constexpr DWORD enableVirtualTerminalProcessing = 0x0004;

HANDLE console(Stream stream) {
    return reinterpret_cast<HANDLE>(_get_osfhandle(static_cast<int>(stream)));
}

// The code page belongs to the console, which outlives this process.
void showUtf8() {
    static const UINT before = GetConsoleOutputCP();
    SetConsoleOutputCP(CP_UTF8);
    std::atexit([] { SetConsoleOutputCP(before); });
}

}  // namespace

void prepareStandardStreams() {
    for (FILE* stream : {stdin, stdout, stderr})
        _setmode(_fileno(stream), _O_BINARY);
    if (isTerminal(Stream::Output) || isTerminal(Stream::Error))
        showUtf8();
}

// _isatty() alone also holds for the null device and serial lines.
bool isTerminal(Stream stream) {
    DWORD mode = 0;
    return _isatty(static_cast<int>(stream)) != 0 && GetConsoleMode(console(stream), &mode) != 0;
}

bool supportsColour(Stream stream) {
    DWORD mode = 0;
    return GetConsoleMode(console(stream), &mode) != 0 &&
           SetConsoleMode(console(stream), mode | enableVirtualTerminalProcessing) != 0;
}

qint64 readStandardInput(char* data, qint64 size) {
    constexpr qint64 most = std::numeric_limits<int>::max();
    return _read(_fileno(stdin), data, static_cast<unsigned>(std::min(size, most)));
}

}  // namespace pylon::inspector
