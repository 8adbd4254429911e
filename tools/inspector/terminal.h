#pragma once

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

/// @file
/// What differs between operating systems about the standard streams.

namespace pylon::inspector {

enum class Stream : int { Input = 0, Output = 1, Error = 2 };

/// Makes a terminal show UTF-8 and a reader that goes away a failed write instead of the end of the
/// process. To be called once, first of all.
void prepareStandardStreams();

/// Whether somebody looks at (or types into) the stream.
bool isTerminal(Stream stream);

/// Whether the terminal understands colour sequences; asks for it where it has to be switched on.
bool supportsColour(Stream stream);

/// Waits for bytes of the standard input and takes up to @p size of those that are there.
/// @return their number, 0 at the end, -1 on an error, described in @p error.
qint64 readStandardInput(char* data, qint64 size, QString* error);

enum class WriteResult {
    Done,
    ReaderGone,  ///< As with "| head": nothing to complain about.
    Failed
};

/// Writes all of @p data to standard output. @p error describes a failure.
WriteResult writeStandardOutput(QByteArrayView data, QString* error);

}  // namespace pylon::inspector
