#pragma once

#include <QtCore/qbytearray.h>

namespace pylon::inspector {

class FrameSource;

/// Appends the current frame of @p source as one JSON object and a line feed. Integers are written
/// with all their digits; texts are UTF-8.
void appendJson(QByteArray& out, const FrameSource& source);

}  // namespace pylon::inspector
