#include <pylon/geometry/displaygeometry.h>
#include <pylon/geometry/internal/zoommath.h>

#include <QtCore/QDebug>

#include <algorithm>

namespace pylon {

struct DisplayGeometry::State {
    QRectF fitted() const {
        return zoommath::fittedRect(containerSize, imageSize, preserveAspectRatio);
    }

    void recompute() {
        baseRect = fitted();
        zoomRect = baseRect;
        margins = zoommath::marginsAround(zoomRect, containerSize);
    }

    // One of the two sizes.
    void setSize(QSizeF& size, const QSizeF& newSize) {
        const bool keepsZoom =
            zoommath::isSameSize(size, newSize) && zoomRect.width() > 0 && zoomRect.height() > 0;
        size = newSize;
        if (!keepsZoom)
            recompute();
    }

    void setZoomRect(const QRectF& rect) {
        zoomRect = zoommath::clampedRect(rect, containerSize, margins, zoomFactor);
    }

    void zoom(double factor, const QPointF& centre) {
        // In this order a factor that is no number becomes 1.
        zoomFactor = std::max(1.0, factor * zoomFactor);
        setZoomRect(zoommath::zoomedRect(zoomRect, fitted(), zoomFactor, centre, containerSize));
    }

    QSizeF containerSize;
    QSizeF imageSize;
    QRectF zoomRect;
    double zoomFactor = 1;
    bool preserveAspectRatio = true;
    QRectF baseRect;
    zoommath::Margins margins;
};

DisplayGeometry::DisplayGeometry() : state_(std::make_unique<State>()) {}

DisplayGeometry::DisplayGeometry(DisplayGeometry&& other) noexcept = default;

DisplayGeometry& DisplayGeometry::operator=(DisplayGeometry&& other) noexcept = default;

DisplayGeometry::~DisplayGeometry() = default;

const DisplayGeometry::State& DisplayGeometry::state() const {
    static constexpr State initial{};
    return state_ ? *state_ : initial;
}

DisplayGeometry::State& DisplayGeometry::state() {
    if (!state_)
        state_ = std::make_unique<State>();
    return *state_;
}

void DisplayGeometry::setContainerSize(QSizeF size) {
    state().setSize(state().containerSize, size);
}

void DisplayGeometry::setImageSize(QSizeF size) {
    state().setSize(state().imageSize, size);
}

void DisplayGeometry::setPreserveAspectRatio(bool on) {
    state().preserveAspectRatio = on;
    state().recompute();
}

bool DisplayGeometry::preserveAspectRatio() const {
    return state().preserveAspectRatio;
}

void DisplayGeometry::zoom(double factor, double centreX, double centreY) {
    state().zoom(factor, QPointF(centreX, centreY));
}

void DisplayGeometry::addOffsetPixels(double dx, double dy) {
    state().setZoomRect(state().zoomRect.translated(dx, dy));
}

void DisplayGeometry::resetZoom() {
    state().zoomRect = state().baseRect;
}

void DisplayGeometry::resetZoomOffset() {
    resetZoom();
    zoom(zoomFactor(), 0, 0);
}

double DisplayGeometry::zoomFactor() const {
    return state().zoomFactor;
}

QRectF DisplayGeometry::zoomRect() const {
    return state().zoomRect;
}

NDCRect zoomRectToNdcRect(QRectF rect, QSizeF containerSize) {
    const double halfWidth = containerSize.width() * 0.5;
    const double halfHeight = containerSize.height() * 0.5;
    return {(rect.x() - halfWidth) / halfWidth, (halfHeight - rect.y()) / halfHeight,
            (rect.x() + rect.width() - halfWidth) / halfWidth,
            (halfHeight - (rect.y() + rect.height())) / halfHeight};
}

QDebug operator<<(QDebug debug, const NDCRect& rect) {
    const QDebugStateSaver saver(debug);
    debug.nospace() << "NDCRect(left " << rect.left << ", top " << rect.top << ", right "
                    << rect.right << ", bottom " << rect.bottom << ')';
    return debug;
}

}  // namespace pylon
