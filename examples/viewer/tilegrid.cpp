#include "tilegrid.h"

#include <pylon/geometry/gentools.h>

#include <algorithm>

namespace pylon::viewer {

namespace {

constexpr int gap = 6;

}  // namespace

void TileGrid::setCameras(const QList<Camera>& cameras) {
    qDeleteAll(tiles_);
    tiles_.clear();
    for (const Camera& camera : cameras) {
        tiles_.append(new TileWidget(camera, this));
        tiles_.last()->show();
    }
    arrange();
}

void TileGrid::showTime(qint64 time) {
    for (TileWidget* tile : tiles_)
        tile->showTime(time);
}

void TileGrid::setZone(const TimeZone& zone) {
    for (TileWidget* tile : tiles_)
        tile->setZone(zone);
}

void TileGrid::setKeepAspect(bool on) {
    for (TileWidget* tile : tiles_)
        tile->view().setKeepAspect(on);
}

TileWidget* TileGrid::tileOf(quint32 camera) const {
    const auto tile = std::ranges::find(tiles_, camera, &TileWidget::cameraId);
    return tile == tiles_.end() ? nullptr : *tile;
}

void TileGrid::resizeEvent(QResizeEvent*) {
    arrange();
}

void TileGrid::arrange() {
    unsigned int columns = 0;
    unsigned int rows = 0;
    GenTools::bestGridLayoutDim(static_cast<unsigned int>(tiles_.size()), columns, rows);
    // Each cell keeps a gap at its right and lower edge, the last ones outside.
    const QRectF area = QRectF(rect()).adjusted(0, 0, gap, gap);
    const QList<QRectF> cells = GenTools::split(area, columns, rows);
    for (qsizetype i = 0; i < tiles_.size(); ++i)
        tiles_[i]->setGeometry(cells[i].toRect().adjusted(0, 0, -gap, -gap));
}

}  // namespace pylon::viewer
