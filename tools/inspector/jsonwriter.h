#pragma once

#include <QtCore/QByteArray>

namespace pylon {
class FrameReader;
}

namespace pylon::inspector {

/// Appends the current frame of @p reader, which begins at @p offset of the recording, as one JSON
/// object and a line feed. Integers are written with all their digits; texts are UTF-8.
void appendJson(QByteArray& out, const FrameReader& reader, qint64 offset);

}  // namespace pylon::inspector
