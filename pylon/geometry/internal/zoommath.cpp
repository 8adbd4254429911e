#include <pylon/geometry/internal/zoommath.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace pylon::zoommath {

// Divisions by 0 and infinite factors are left to the arithmetic.
static_assert(std::numeric_limits<double>::is_iec559);

namespace {

bool isSame(double current, double next) {
    const double difference = std::abs(current - next);
    if (current == 0 || next == 0)
        return difference <= 1e-12;
    return difference * 1e12 <= std::min(std::abs(current), std::abs(next));
}

// std::clamp wants ordered limits; these need not be, or may not be numbers.
double clampedStart(double start, double size, double margin, double room) {
    const double highest = margin;
    const double lowest = std::min(highest, room - size - highest);
    if (start > highest)
        return highest;
    return start < lowest ? lowest : start;
}

}  // namespace

bool isSameSize(const QSizeF& current, const QSizeF& next) {
    return isSame(current.width(), next.width()) && isSame(current.height(), next.height());
}

QRectF fittedRect(const QSizeF& container, const QSizeF& image, bool keepAspect) {
    if (image.width() < 0 || image.height() < 0)
        return {};
    if (!keepAspect)
        return {QPointF(), container};
    // Rounding may make it a little larger than its room.
    const auto bar = [](double room, double size) { return size < room ? (room - size) * 0.5 : 0; };
    if (container.width() / container.height() > image.width() / image.height()) {
        const double width = container.height() / image.height() * image.width();
        return {bar(container.width(), width), 0, width, container.height()};
    }
    const double height = container.width() / image.width() * image.height();
    return {0, bar(container.height(), height), container.width(), height};
}

Margins marginsAround(const QRectF& rect, const QSizeF& container) {
    return {rect.y(), rect.x(), container.height() - rect.y() - rect.height(),
            container.width() - rect.x() - rect.width()};
}

QRectF zoomedRect(const QRectF& rect, const QRectF& base, double factor, const QPointF& centre,
                  const QSizeF& container) {
    const double growthX = factor * base.width() - rect.width();
    const double growthY = factor * base.height() - rect.height();
    const double fixedX = (centre.x() + 1) * 0.5 * container.width();
    const double fixedY = (centre.y() + 1) * 0.5 * container.height();
    return {rect.x() - (fixedX - rect.x()) / rect.width() * growthX,
            rect.y() - (fixedY - rect.y()) / rect.height() * growthY, rect.width() + growthX,
            rect.height() + growthY};
}

QRectF clampedRect(const QRectF& rect, const QSizeF& container, const Margins& margins,
                   double factor) {
    return {clampedStart(rect.x(), rect.width(), factor * margins.left, container.width()),
            clampedStart(rect.y(), rect.height(), factor * margins.top, container.height()),
            rect.width(), rect.height()};
}

}  // namespace pylon::zoommath
