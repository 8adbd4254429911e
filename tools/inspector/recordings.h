#pragma once

#include <QtCore/QIODevice>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>
#include <vector>

namespace pylon::inspector {

/// What is shown as one recording.
struct Recording {
    QString name;       ///< For people.
    QStringList files;  ///< To be read one after the other; "-" is standard input.

    /// In bytes, as far as it is known beforehand.
    qint64 size() const;
};

/// Sorts out the arguments of the command line. Frames that Image::dump() has written, as the names
/// of their files tell, make one recording if they follow each other or are in one folder: in the
/// order of their times, and of the caller's numbers in their names.
std::vector<Recording> recordingsOf(const QStringList& arguments);

/// The name of an input file for people.
QString displayName(const QString& file);

/// Opens an input file for reading.
/// @return null, with the reason in @p error, for one that cannot be read.
std::unique_ptr<QIODevice> openInput(const QString& file, QString* error);

}  // namespace pylon::inspector
