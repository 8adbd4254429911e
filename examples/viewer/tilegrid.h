#pragma once

#include <pylon/time/timezone.h>

#include <QtCore/QList>
#include <QtWidgets/QWidget>

#include "recording.h"
#include "tilewidget.h"

namespace pylon::viewer {

/// The tiles of all cameras in a grid that is as square as their number allows.
class TileGrid : public QWidget {
    Q_OBJECT

public:
    using QWidget::QWidget;

    void setCameras(const QList<Camera>& cameras);
    void showTime(qint64 time);
    void setZone(const TimeZone& zone);
    void setKeepAspect(bool on);

    const QList<TileWidget*>& tiles() const { return tiles_; }
    /// The tile of the camera with this number, null if there is none.
    TileWidget* tileOf(quint32 camera) const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void arrange();

    QList<TileWidget*> tiles_;
};

}  // namespace pylon::viewer
