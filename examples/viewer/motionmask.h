#pragma once

#include <QtCore/QLineF>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtGui/QImage>

#include <optional>

class QPainter;

namespace pylon::viewer {

/// The cells of a camera's picture that are watched for motion, to be painted over it.
class MotionMask {
public:
    /// Reads a file with the text of a mask. What is wrong with it goes to the log.
    ///
    /// The text tells the width; the grid is as high as its proportions, 4 to 3, make it. A text
    /// without a width fills the grid of 120 × 90.
    static std::optional<MotionMask> load(const QString& path);

    /// In cells.
    QSize size() const { return cells_.size(); }

    /// Paints over the picture that was painted into this rectangle.
    void paint(QPainter& painter, const QRectF& picture) const;

private:
    MotionMask(const char* cells, const QSize& size);

    QImage cells_;           // a pixel each
    QList<QLineF> outline_;  // where watched cells end, in cells
    int watchedCells_ = 0;
};

}  // namespace pylon::viewer
