#pragma once

#include <pylon/export.h>
#include <QtCore/QString>

#include <cstdarg>
#include <cstddef>
#include <cstdio>

/// @file
/// One portable name for each runtime function that differs between platforms. The wrappers keep
/// the runtime's own error convention, neither log nor throw, and are safe on any thread unless
/// said otherwise.

namespace osal {

/// Opens a file by a path with any Unicode characters.
/// @param[out] file the stream, owned by the caller; null on failure.
/// @param mode as for the C library's @c fopen.
/// @return 0, or the runtime's error number (@c errno value).
PYLON_EXPORT int fopen(FILE** file, const QString& path, const QString& mode);

/// Value of an environment variable; empty when it is not set. Other threads may change the
/// environment meanwhile if they do so by @c qputenv.
PYLON_EXPORT QString getenv(const QString& name);

/// Starts a command by the system's command interpreter, connected by a pipe.
/// @param mode begins with "r" to read the command's output or "w" to write its input.
/// @return the pipe, to be closed with pclose(), or null.
PYLON_EXPORT FILE* popen(const char* command, const char* mode);

/// Closes a pipe of popen() and waits for the command.
/// @return the exit code of the command, 128 + signal number if a signal ended it, or -1 on error.
PYLON_EXPORT int pclose(FILE* stream);

/// Copies a text into a buffer of @p destinationSize characters. A text that does not fit with its
/// terminator, or a null @p source, leaves an empty text; nothing is written past the end.
PYLON_EXPORT void strcpy(char* destination, int destinationSize, const char* source);

/// Writes the message of an @c errno value into a buffer, cut to fit and always terminated.
/// @return 0, or an error number when there is no buffer.
PYLON_EXPORT int strerror(char* buffer, std::size_t bufferSize, int errorNumber);

/// First token of @p text, which is cut at the token's end. Every call starts afresh: there is no
/// way to ask for the second token.
/// @return the token inside @p text, or null when there is none or an argument is null.
PYLON_EXPORT char* strtok(char* text, const char* delimiters);

/// Formats like C99 @c vsnprintf on every platform. The text in @p buffer is cut to fit and always
/// terminated; @p buffer may be null when @p bufferSize is 0.
/// @return the length of the complete text without its terminator, or -1 for a bad format, after
///         which nothing in @p buffer is to be relied on.
PYLON_EXPORT int vsnprintf_c99(char* buffer, std::size_t bufferSize, const char* format,
                               va_list arguments);

/// Raw text of the operating system's process table, for support reports. Windows only; empty
/// elsewhere and when the system's tool does not answer. Blocks for up to two seconds.
PYLON_EXPORT QString getProcessList();

}  // namespace osal
