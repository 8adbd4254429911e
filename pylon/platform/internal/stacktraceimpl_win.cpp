#include <pylon/platform/internal/stacktraceimpl.h>

#include <QtCore/QtGlobal>

// Needs the types of the former.
#include <windows.h>

#include <dbghelp.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <vector>

namespace pylon {

namespace {

constexpr ULONG maxFrames = 65535;
constexpr ULONG maxNameLength = 1024;

using Frames = std::vector<void*>;

Q_NEVER_INLINE Frames captureFrames(ULONG skip) {
    Frames frames(128);
    for (;;) {
        const auto room = static_cast<ULONG>(frames.size());
        const ULONG count = CaptureStackBackTrace(skip + 1, room, frames.data(), nullptr);
        if (count < room || room == maxFrames) {
            frames.resize(count);
            frames.erase(std::find(frames.begin(), frames.end(), nullptr), frames.end());
            return frames;
        }
        frames.resize(std::min(room * 4, maxFrames));
    }
}

/// The symbols of this process as they are now. Under a handle of its own, the debug help library
/// keeps them apart from those of a host that uses it too.
class Symbols {
public:
    Symbols() : previousOptions_(SymGetOptions()) {
        SymSetOptions(SYMOPT_UNDNAME | SYMOPT_LOAD_LINES | SYMOPT_DEFERRED_LOADS);
        const HANDLE self = GetCurrentProcess();
        if (DuplicateHandle(self, self, self, &process_, 0, FALSE, DUPLICATE_SAME_ACCESS))
            SymInitialize(process_, nullptr, TRUE);
    }
    ~Symbols() {
        if (process_) {
            SymCleanup(process_);
            CloseHandle(process_);
        }
        SymSetOptions(previousOptions_);
    }
    Q_DISABLE_COPY_MOVE(Symbols)

    /// "file(line): ", empty where that is not known.
    std::string source(DWORD64 address) const {
        IMAGEHLP_LINE64 line{};
        line.SizeOfStruct = sizeof line;
        DWORD displacement = 0;
        if (!SymGetLineFromAddr64(process_, address, &displacement, &line) || !line.FileName)
            return {};
        return std::string(line.FileName) + '(' + std::to_string(line.LineNumber) + "): ";
    }

    /// "module!function+0x1F", or "module+0x1F" where the function is not known.
    std::string place(DWORD64 address) const {
        alignas(SYMBOL_INFO) char buffer[sizeof(SYMBOL_INFO) + maxNameLength] = {};
        auto* const symbol = reinterpret_cast<SYMBOL_INFO*>(buffer);
        symbol->SizeOfStruct = sizeof(SYMBOL_INFO);
        symbol->MaxNameLen = maxNameLength;
        DWORD64 offset = 0;
        const HMODULE module = moduleOf(address);
        if (SymFromAddr(process_, address, &offset, symbol))
            return nameOf(module) + '!' + symbol->Name + hex(offset);
        return nameOf(module) + hex(address - reinterpret_cast<DWORD64>(module));
    }

private:
    static std::string hex(DWORD64 offset) {
        char text[24];
        std::snprintf(text, sizeof text, "+0x%llX", static_cast<unsigned long long>(offset));
        return text;
    }

    static HMODULE moduleOf(DWORD64 address) {
        HMODULE module = nullptr;
        GetModuleHandleExA(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            reinterpret_cast<LPCSTR>(address), &module);
        return module;
    }

    static std::string nameOf(HMODULE module) {
        char path[MAX_PATH];
        const DWORD length = module ? GetModuleFileNameA(module, path, MAX_PATH) : 0;
        return std::filesystem::path(path, path + length).stem().string();
    }

    DWORD previousOptions_;
    HANDLE process_ = nullptr;
};

std::string describe(const Frames& frames) {
    // The debug help library serves one thread at a time.
    static std::mutex mutex;
    const std::lock_guard lock(mutex);
    const Symbols symbols;
    std::string text;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        // The address to return to may lie behind the end of the function; the call does not.
        const DWORD64 call = reinterpret_cast<DWORD64>(frames[i]) - 1;
        text.append(std::to_string(i)).append("> ");
        text.append(symbols.source(call)).append(symbols.place(call)).append("\n");
    }
    return text;
}

}  // namespace

std::string StackTraceImpl::toString() {
    try {
        return describe(captureFrames(1));
    } catch (...) {
        return {};
    }
}

}  // namespace pylon
