#pragma once

#include <QtCore/QRectF>
#include <QtCore/QString>

class QPainter;

namespace pylon::viewer {

enum class Symbol { None, Lock, Eye, Sound };

/// Paints a symbol with a title and a line below it into the middle of @p area, in place of a
/// picture.
void paintPlaceholder(QPainter& painter, const QRectF& area, Symbol symbol, const QString& title,
                      const QString& detail);

}  // namespace pylon::viewer
