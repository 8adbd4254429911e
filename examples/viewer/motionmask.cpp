#include "motionmask.h"

#include <pylon/log/logmacros.h>
#include <pylon/media/motionutils.h>

#include <QtCore/QFileInfo>
#include <QtGui/QPainter>

#include <array>

#include "theme.h"

namespace pylon::viewer {

namespace {

plog::LogClient<plog::Playback> client;

constexpr int gridWidth = MotionUtils::maskWidth;
constexpr int gridHeight = MotionUtils::maskHeight;
// The width and a character for each cell.
constexpr qint64 maxTextSize = 1 + qint64{gridWidth} * gridHeight;
constexpr int fillAlpha = 100;
constexpr qreal outlineWidth = 1.5;

using Grid = std::array<char, std::size_t{gridWidth} * gridHeight>;

QSize sizeOf(int width) {
    return width == 1 ? QSize(gridWidth, gridHeight) : QSize(width, width * gridHeight / gridWidth);
}

QColor fillColour() {
    QColor colour = theme::accent;
    colour.setAlpha(fillAlpha);
    return colour;
}

}  // namespace

std::optional<MotionMask> MotionMask::load(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        PLOG_ERROR(client, nullptr, "%s: %s", path.toUtf8().constData(),
                   file.errorString().toUtf8().constData());
        return std::nullopt;
    }
    const QByteArray text = file.read(maxTextSize).trimmed();
    Grid grid;
    QString error;
    const std::optional<int> width = MotionUtils::tryDecodeMask(text, grid, &error);
    if (!width) {
        PLOG_ERROR(client, nullptr, "%s: %s", path.toUtf8().constData(),
                   error.toUtf8().constData());
        return std::nullopt;
    }
    MotionMask mask(grid.data(), sizeOf(*width));
    PLOG_INFO(client, nullptr, "Motion mask %s: %d x %d cells, %d of them watched",
              QFileInfo(path).fileName().toUtf8().constData(), mask.size().width(),
              mask.size().height(), mask.watchedCells_);
    return mask;
}

MotionMask::MotionMask(const char* cells, const QSize& size)
    : cells_(size, QImage::Format_ARGB32_Premultiplied) {
    const auto isWatched = [&](int column, int row) {
        return column >= 0 && row >= 0 && column < size.width() && row < size.height() &&
               cells[row * gridWidth + column] != 0;
    };
    cells_.fill(Qt::transparent);
    for (int row = 0; row <= size.height(); ++row) {
        for (int column = 0; column <= size.width(); ++column) {
            const bool watched = isWatched(column, row);
            if (watched) {
                cells_.setPixelColor(column, row, fillColour());
                ++watchedCells_;
            }
            if (watched != isWatched(column, row - 1))
                outline_.append(QLineF(column, row, column + 1, row));
            if (watched != isWatched(column - 1, row))
                outline_.append(QLineF(column, row, column, row + 1));
        }
    }
}

void MotionMask::paint(QPainter& painter, const QRectF& picture) const {
    painter.save();
    painter.translate(picture.topLeft());
    painter.scale(picture.width() / cells_.width(), picture.height() / cells_.height());
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.drawImage(QPointF(), cells_);
    painter.setRenderHint(QPainter::Antialiasing);
    QPen pen(theme::accent, outlineWidth);
    pen.setCosmetic(true);
    painter.setPen(pen);
    painter.drawLines(outline_);
    painter.restore();
}

}  // namespace pylon::viewer
