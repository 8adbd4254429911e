#pragma once

#include <pylon/media/image.h>

#include <QtCore/QList>
#include <QtCore/QString>

#include <optional>

namespace pylon::viewer {

/// A camera of a recording, with its pictures in the order of their times.
struct Camera {
    quint32 id = 0;
    QString name;  ///< never empty
    QList<Image> pictures;

    /// The latest picture up to @p time (1/300 s since the Unix epoch); null before the first.
    const Image* pictureAt(qint64 time) const;
};

/// What is recorded, ready to be played: everything is in memory. Times are in 1/300 s since the
/// Unix epoch. A plain value.
struct Recording {
    QString fileName;
    QList<Camera> cameras;  ///< by id; a camera may have sound alone
    QList<Image> events;    ///< event records by time
    qint64 begin = 0;       ///< time of the first frame
    qint64 end = 0;         ///< time of the last frame

    /// Reads the file at @p path. What is in it, and what is wrong with it, goes to the log; a
    /// damaged file is played up to the damage.
    /// @return nothing if there is not a single frame to be read.
    static std::optional<Recording> load(const QString& path);
};

}  // namespace pylon::viewer
