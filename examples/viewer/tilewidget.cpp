#include "tilewidget.h"

#include <pylon/log/logmacros.h>

#include <QtGui/QPainter>

#include "placeholder.h"
#include "theme.h"
#include "zonechoice.h"

namespace pylon::viewer {

namespace {

plog::LogClient<plog::Gui> client;

constexpr int captionHeight = 28;
constexpr int margin = 10;

struct Notice {
    TileWidget::Content content;
    Symbol symbol;
    const char* title;
    const char* detail;
};

constexpr Notice notices[] = {
    {TileWidget::Content::Nothing, Symbol::None, "No picture yet", "the first one comes later"},
    {TileWidget::Content::SoundOnly, Symbol::Sound, "Sound only", "this camera has no pictures"},
    {TileWidget::Content::Hidden, Symbol::Eye, "Hidden", "not to be shown at this moment"},
    {TileWidget::Content::Encrypted, Symbol::Lock, "Encrypted", "the key is not at hand"},
    {TileWidget::Content::Damaged, Symbol::None, "Not readable", "the picture is damaged"},
};

}  // namespace

TileWidget::TileWidget(const Camera& camera, QWidget* parent)
    : QWidget(parent),
      camera_(camera),
      zone_(ServerTimeZone()),
      content_(camera.pictures.isEmpty() ? Content::SoundOnly : Content::Nothing),
      view_(new PictureView(this)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    view_->hide();
}

void TileWidget::showTime(qint64 time) {
    if (camera_.pictures.isEmpty())
        return;
    const Image* frame = camera_.pictureAt(time);
    if (frame != frame_)
        showFrame(frame);
}

void TileWidget::showFrame(const Image* frame) {
    frame_ = frame;
    view_->setPicture(decode(frame));
    view_->setVisible(content_ == Content::Picture);
    updateCaption();
    update();
}

QImage TileWidget::decode(const Image* frame) {
    QImage picture;
    if (!frame) {
        content_ = Content::Nothing;
    } else if (frame->isEncrypted()) {
        content_ = Content::Encrypted;
    } else if (frame->isHidden()) {
        content_ = Content::Hidden;
    } else if (picture.loadFromData(frame->payload(), "JPG")) {
        content_ = Content::Picture;
    } else {
        content_ = Content::Damaged;
        PLOG_WARN(client, this, "not a JPEG picture: %s", frame->toString().toUtf8().constData());
    }
    return picture;
}

void TileWidget::setZone(const TimeZone& zone) {
    zone_ = zone;
    updateCaption();
    update();
}

void TileWidget::updateCaption() {
    caption_ = frame_ ? timeText(*frame_, zone_) : QString();
}

QRect TileWidget::stage() const {
    return rect().adjusted(0, 0, 0, -captionHeight);
}

QRect TileWidget::captionRect() const {
    return rect().adjusted(0, stage().height(), 0, 0);
}

void TileWidget::resizeEvent(QResizeEvent*) {
    view_->setGeometry(stage());
}

void TileWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (content_ != Content::Picture)
        paintNotice(painter);
    paintCaption(painter);
}

void TileWidget::paintNotice(QPainter& painter) const {
    painter.fillRect(stage(), theme::tile);
    for (const Notice& notice : notices) {
        if (notice.content == content_)
            paintPlaceholder(painter, stage(), notice.symbol, QString::fromUtf8(notice.title),
                             QString::fromUtf8(notice.detail));
    }
}

void TileWidget::paintCaption(QPainter& painter) const {
    painter.fillRect(captionRect(), theme::caption);
    QRect line = captionRect().adjusted(margin, 0, -margin, 0);
    painter.setPen(theme::dimText);
    painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, caption_);

    if (frame_ && frame_->isRecording()) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme::recording);
        painter.drawEllipse(QPointF(line.left() + 4, line.center().y() + 0.5), 4, 4);
        line.adjust(margin + 6, 0, 0, 0);
    }
    QFont font = painter.font();
    font.setBold(true);
    const int room = line.width() - painter.fontMetrics().horizontalAdvance(caption_) - margin;
    painter.setFont(font);
    painter.setPen(theme::text);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                     QFontMetrics(font).elidedText(camera_.name, Qt::ElideRight, room));
}

}  // namespace pylon::viewer
