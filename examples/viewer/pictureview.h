#pragma once

#include <QtGui/QImage>
#include <QtWidgets/QWidget>

#include <optional>

#include "motionmask.h"
#include "zoomview.h"

class QAction;

namespace pylon::viewer {

/// A picture that the user may zoom and move, with the camera's motion mask over it.
///
/// The wheel zooms at the mouse, dragging moves the picture, a double click shows all of it again;
/// a menu loads and removes the mask. Zoom and mask stay when the picture is replaced.
class PictureView : public QWidget {
    Q_OBJECT

public:
    explicit PictureView(QWidget* parent = nullptr);

    /// May be null: there is nothing to be seen then.
    void setPicture(const QImage& picture);
    /// Whether the picture keeps its proportions, as at first, or fills the widget.
    void setKeepAspect(bool on);
    /// See ZoomView::zoomTo().
    void zoomTo(double factor, const QPointF& middle);
    /// Reads the mask from a file; what is wrong with it goes to the log.
    /// @return false, with the old mask still there, if it is no mask.
    bool loadMask(const QString& path);
    void removeMask();

    /// Where the picture is painted, also beyond the edges; empty without one.
    QRectF pictureRect() const { return view_.rect(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    QAction* addMenuAction(const QString& text, void (PictureView::*slot)());
    void showAll();
    void chooseMask();
    void updateSizes();
    void updateView();
    void paintFactor(QPainter& painter) const;

    QImage picture_;
    ZoomView view_;
    QPointF mouse_;  // its last position while it drags
    std::optional<MotionMask> mask_;
    QAction* showAllAction_;
    QAction* removeMaskAction_;
};

}  // namespace pylon::viewer
