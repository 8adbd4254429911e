#pragma once

#include <pylon/export.h>

#include <QtCore/QRectF>
#include <QtCore/QSizeF>

#include <memory>

class QDebug;

namespace pylon {

/// A rectangle in normalised device coordinates: (0, 0) is the centre of the viewport, x grows from
/// -1 at its left to 1 at its right edge, y from -1 at its bottom to 1 at its top. By default the
/// whole viewport. A plain value.
struct NDCRect {
    double left = -1;    ///< x of the left edge.
    double top = 1;      ///< y of the upper edge.
    double right = 1;    ///< x of the right edge.
    double bottom = -1;  ///< y of the lower edge.

    friend constexpr bool operator==(const NDCRect&, const NDCRect&) = default;
};

/// Writes `NDCRect(left -1, top 1, right 1, bottom -1)`.
PYLON_EXPORT QDebug operator<<(QDebug debug, const NDCRect& rect);

/// What a renderer needs to draw into @p rect, which is in pixels from the upper left corner of a
/// viewport of @p containerSize pixels. A size of 0 gives coordinates that are not finite.
PYLON_EXPORT NDCRect zoomRectToNdcRect(QRectF rect, QSizeF containerSize);

/// Where a picture is drawn in a tile, and how the user has zoomed and moved it.
///
///     pylon::DisplayGeometry geometry;
///     geometry.setContainerSize(tile.size());
///     geometry.setImageSize(picture.size());
///     geometry.zoom(1.25, 2 * mouse.x() / tile.width() - 1, 2 * mouse.y() / tile.height() - 1);
///     painter.drawImage(geometry.zoomRect(), picture);
///
/// All coordinates are pixels of the container with (0, 0) at its upper left, unless said
/// otherwise. Unzoomed, the picture fills the container; with its aspect ratio kept it touches two
/// opposite edges and lies in the middle between the others. There the bars beside it are its
/// margins: they grow with the zoom factor, and the picture cannot be moved farther from an edge
/// than they are wide.
///
/// The zoom factor and the rectangle are separate. A new size, another aspect setting and
/// resetZoom() put the rectangle back to the unzoomed one and keep the factor, so that the next
/// zoom() begins with the factor of old. To begin anew, assign `DisplayGeometry()` and set the
/// sizes again.
///
/// Set both sizes first. Without them the rectangle is empty, and zooming or moving leaves it empty
/// or makes its coordinates infinite or NaN; the same goes for arguments that are not finite. No
/// argument is an error.
///
/// An object that was moved from behaves like a new one.
///
/// Thread-safety: not synchronised; different objects are independent.
class PYLON_EXPORT DisplayGeometry {
public:
    /// No sizes, factor 1, aspect ratio kept.
    DisplayGeometry();
    DisplayGeometry(const DisplayGeometry&) = delete;
    DisplayGeometry& operator=(const DisplayGeometry&) = delete;
    /// Takes the state of @p other.
    DisplayGeometry(DisplayGeometry&& other) noexcept;
    /// Takes the state of @p other.
    DisplayGeometry& operator=(DisplayGeometry&& other) noexcept;
    virtual ~DisplayGeometry();

    /// The size of the tile. The one that is set already, up to rounding, keeps zoom and position;
    /// any other puts the rectangle back to the unzoomed one.
    void setContainerSize(QSizeF size);
    /// The size of the picture, of which only the proportions matter; as setContainerSize() as to
    /// zoom and position. A negative size means that there is no picture.
    void setImageSize(QSizeF size);
    /// Whether the picture keeps its proportions or is stretched over the container. Puts the
    /// rectangle back to the unzoomed one, also when nothing changes.
    void setPreserveAspectRatio(bool on);
    /// Whether the picture keeps its proportions.
    bool preserveAspectRatio() const;

    /// Multiplies the zoom factor, which does not get below 1, and makes the rectangle that many
    /// times as large as the unzoomed one. The point at the centre stays where it is unless the
    /// margins forbid it.
    /// @param centreX,centreY  from (-1, -1) at the upper left to (1, 1) at the lower right of the
    ///     container: y points down, unlike in NDCRect.
    void zoom(double factor, double centreX, double centreY);
    /// Moves the picture by so many pixels to the right and down, or as far as the margins allow.
    void addOffsetPixels(double dx, double dy);
    /// Puts the rectangle back to the unzoomed one; the factor stays.
    void resetZoom();
    /// Puts the rectangle back to the unzoomed one and zooms it at the middle of the container by
    /// the factor there is, which multiplies it by itself: 2 becomes 4.
    void resetZoomOffset();

    /// At least 1.
    double zoomFactor() const;
    /// Where the picture is drawn; zoomed, it reaches beyond the container.
    QRectF zoomRect() const;

private:
    struct State;

    const State& state() const;
    State& state();

    std::unique_ptr<State> state_;  // null in an object that was moved from
};

}  // namespace pylon
