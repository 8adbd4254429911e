#pragma once

#include <pylon/media/image.h>
#include <pylon/time/timezone.h>

#include <QtWidgets/QWidget>

#include "pictureview.h"
#include "recording.h"

namespace pylon::viewer {

/// Shows one camera: its picture, or why there is none, above a caption with name and time.
///
/// The pictures of hidden and encrypted frames are never decoded.
class TileWidget : public QWidget {
    Q_OBJECT

public:
    /// What stands in the place of the picture.
    enum class Content { Nothing, Picture, SoundOnly, Hidden, Encrypted, Damaged };

    explicit TileWidget(const Camera& camera, QWidget* parent = nullptr);

    /// Shows what is due at @p time (1/300 s since the Unix epoch).
    void showTime(qint64 time);
    /// The zone of the time in the caption.
    void setZone(const TimeZone& zone);

    /// Where the pictures are shown. Hidden while there is none.
    PictureView& view() const { return *view_; }
    quint32 cameraId() const { return camera_.id; }
    Content content() const { return content_; }
    QString caption() const { return caption_; }
    QRect captionRect() const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void showFrame(const Image* frame);
    QImage decode(const Image* frame);
    void updateCaption();
    QRect stage() const;
    void paintNotice(QPainter& painter) const;
    void paintCaption(QPainter& painter) const;

    Camera camera_;
    TimeZone zone_;
    const Image* frame_ = nullptr;  // in camera_
    Content content_;
    PictureView* view_;
    QString caption_;  // the time; empty without a frame
};

}  // namespace pylon::viewer
