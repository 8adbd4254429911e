#pragma once

#include <pylon/media/image.h>

#include <QtCore/QList>
#include <QtCore/QString>

namespace pylon::viewer {

/// The frames of the file at @p path, in its order.
/// @param[out] error why reading ended before the end of the file, with the offset; else empty.
/// @return the frames before that place; none if the file cannot be opened.
QList<Image> readFrames(const QString& path, QString* error);

}  // namespace pylon::viewer
