#pragma once

#include <QtCore/QString>

class QFile;

/// @file
/// What log files need to know and do that Qt has no portable call for. Not part of the public
/// interface.

namespace pylon::platform {

/// Writes at the end of a file that was opened unbuffered and for appending, wherever that end is
/// by now.
/// @return the number of bytes written, which may be fewer than @p size; -1 when there were none.
qint64 appendToFile(QFile& file, const char* data, qint64 size);

/// Bytes on disk of a file that is open for appending, whoever wrote them; 0 for a device or a
/// pipe. The quickest question there is: log files ask it for each line.
qint64 openFileSize(const QFile& file);

/// Whether a file that is open still has a name, or has been deleted under the one who holds it.
bool isLinked(const QFile& file);

/// Renames a file on its volume, in place of another one if there is one, in a single step: there
/// is no moment in which neither exists. Nothing changes on failure.
bool replaceFile(const QString& from, const QString& to);

}  // namespace pylon::platform
