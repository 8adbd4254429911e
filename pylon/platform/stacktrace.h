#pragma once

#include <pylon/export.h>
#include <QtCore/QtGlobal>

#include <iosfwd>
#include <memory>
#include <string>

namespace pylon {

class StackTraceImplInterface;

/// The calls that led to where the program is now, as text for a crash report.
///
///     pylon::StackTrace(nullptr).print(std::cerr);
///
/// The stack is that of the calling thread at the moment of toString() or print(), innermost call
/// first, one line each with its number. Function names come from the symbols and, with debug
/// information, source files and lines too; how a line looks depends on the platform. The first
/// lines may be this class's own. The text is empty when the stack cannot be read.
///
/// It allocates memory and reads files, so a signal handler that calls it may hang or crash again
/// where the heap is damaged. Thread-safety: every function may be called on any thread.
class PYLON_EXPORT StackTrace {
public:
    /// @param context reserved, not used.
    explicit StackTrace(void* context);
    ~StackTrace();
    Q_DISABLE_COPY_MOVE(StackTrace)

    /// The present stack, at most 65535 calls deep; each line ends with a line feed.
    std::string toString() const;

    /// Writes the present stack to a stream.
    void print(std::ostream& out) const;

    /// Writes the present stack into a file, in place of what it held. Others may have it open.
    /// Nothing happens when it cannot be written.
    /// @param path in the encoding of the C library's file names.
    void print(const std::string& path) const;

private:
    std::unique_ptr<StackTraceImplInterface> impl_;
};

}  // namespace pylon
