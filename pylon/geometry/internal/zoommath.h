#pragma once

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QSizeF>

/// @file
/// The arithmetic behind DisplayGeometry. Pure functions; a size of 0 or less gives what IEEE 754
/// makes of the quotients, never an error.

namespace pylon::zoommath {

/// Widths of the bars between a picture and the edges of its container, in pixels.
struct Margins {
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;
};

/// Whether two sizes differ by no more than rounding does.
bool isSameSize(const QSizeF& current, const QSizeF& next);

/// Where a picture is drawn that fills its container, or as much as its proportions allow if
/// @p keepAspect; an empty rectangle if its size is negative, that is, not known.
QRectF fittedRect(const QSizeF& container, const QSizeF& image, bool keepAspect);

Margins marginsAround(const QRectF& rect, const QSizeF& container);

/// @p rect made @p factor times as large as @p base. The point of it that lies at @p centre, which
/// goes from (-1, -1) top left to (1, 1) bottom right in the container, stays there.
QRectF zoomedRect(const QRectF& rect, const QRectF& base, double factor, const QPointF& centre,
                  const QSizeF& container);

/// @p rect moved to where it leaves no more than @p factor times the margins free. Where it is too
/// small for that, the left and the top margin decide.
QRectF clampedRect(const QRectF& rect, const QSizeF& container, const Margins& margins,
                   double factor);

}  // namespace pylon::zoommath
