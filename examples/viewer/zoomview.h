#pragma once

#include <pylon/geometry/displaygeometry.h>

#include <QtCore/QPointF>
#include <QtCore/QRectF>
#include <QtCore/QSizeF>

namespace pylon::viewer {

/// Which part of its picture a tile shows, and how large.
///
/// A DisplayGeometry that goes on with the factor, and with what is in the middle of the tile, when
/// the size of the tile or of the picture or the aspect setting changes.
class ZoomView {
public:
    static constexpr double maxFactor = 20;

    /// In pixels. The tile may be empty, and the size of the picture is negative while there is
    /// none: the rectangle is then empty.
    void setSizes(const QSizeF& tile, const QSizeF& picture);
    /// Whether the picture keeps its proportions, as at first, or fills the tile.
    void setKeepAspect(bool on);

    /// Zooms so that the point of the picture at this position of the tile stays there.
    void zoomAt(const QPointF& position, double factor);
    /// Moves the picture by so many pixels, as far as there is more of it to be seen.
    void move(const QPointF& offset);
    /// Zooms by @p factor (1..maxFactor) from the whole picture, and puts this point of it, (0, 0)
    /// its upper left to (1, 1), into the middle of the tile, or as near to it as it can be.
    void zoomTo(double factor, const QPointF& middle);
    void showAll() { zoomTo(1, {0.5, 0.5}); }

    double factor() const { return factor_; }
    /// Where the picture is to be painted in the tile.
    QRectF rect() const { return geometry_.zoomRect(); }

private:
    QPointF tileMiddle() const { return {tile_.width() / 2, tile_.height() / 2}; }
    void rebuild();
    void remember();

    DisplayGeometry geometry_;
    QSizeF tile_;
    QSizeF picture_;
    bool keepsAspect_ = true;
    double factor_ = 1;
    QPointF middle_{0.5, 0.5};  // what is in the middle of the tile, see zoomTo()
};

}  // namespace pylon::viewer
