#include "zoomview.h"

#include <algorithm>

namespace pylon::viewer {

void ZoomView::setSizes(const QSizeF& tile, const QSizeF& picture) {
    tile_ = tile;
    picture_ = picture;
    rebuild();
}

void ZoomView::setKeepAspect(bool on) {
    keepsAspect_ = on;
    rebuild();
}

void ZoomView::zoomAt(const QPointF& position, double factor) {
    if (rect().isEmpty())
        return;
    geometry_.zoom(std::clamp(factor_ * factor, 1.0, maxFactor) / factor_,
                   2 * position.x() / tile_.width() - 1, 2 * position.y() / tile_.height() - 1);
    remember();
}

void ZoomView::move(const QPointF& offset) {
    if (rect().isEmpty())
        return;
    geometry_.addOffsetPixels(offset.x(), offset.y());
    remember();
}

void ZoomView::zoomTo(double factor, const QPointF& middle) {
    factor_ = factor;
    middle_ = middle;
    rebuild();
}

// The geometry keeps its factor when sizes change, but not its rectangle: a fresh one is brought to
// where the old one was.
void ZoomView::rebuild() {
    geometry_ = DisplayGeometry();
    geometry_.setPreserveAspectRatio(keepsAspect_);
    geometry_.setContainerSize(tile_);
    geometry_.setImageSize(picture_);
    if (factor_ == 1 || rect().isEmpty())
        return;
    geometry_.zoom(factor_, 0, 0);
    const QPointF shown(rect().x() + middle_.x() * rect().width(),
                        rect().y() + middle_.y() * rect().height());
    const QPointF offset = tileMiddle() - shown;
    geometry_.addOffsetPixels(offset.x(), offset.y());
}

void ZoomView::remember() {
    factor_ = geometry_.zoomFactor();
    const QPointF distance = tileMiddle() - rect().topLeft();
    middle_ = {distance.x() / rect().width(), distance.y() / rect().height()};
}

}  // namespace pylon::viewer
