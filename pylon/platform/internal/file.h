#pragma once

#include <QtCore/QString>

class QFile;

/// @file
/// What log files need to know and do that Qt has no portable call for. Not part of the public
/// interface.

namespace pylon::platform {

struct OpenFileStatus {
    qint64 size = 0;      ///< Bytes on disk; -1 when the file cannot be asked.
    bool linked = false;  ///< false once the file has been deleted under the one who holds it.
};

/// Asks the operating system, by the open handle and not by the name.
OpenFileStatus openFileStatus(const QFile& file);

/// Renames a file on its volume, in place of another one if there is one, in a single step: there
/// is no moment in which neither exists. Nothing changes on failure.
bool replaceFile(const QString& from, const QString& to);

}  // namespace pylon::platform
