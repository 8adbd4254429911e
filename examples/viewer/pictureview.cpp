#include "pictureview.h"

#include <QtGui/QAction>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QFileDialog>

#include <cmath>

#include "theme.h"

namespace pylon::viewer {

namespace {

constexpr double factorOfNotch = 1.25;
constexpr double unitsOfNotch = QWheelEvent::DefaultDeltasPerStep;
constexpr int badgeMargin = 8;

}  // namespace

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setContextMenuPolicy(Qt::ActionsContextMenu);
    showAllAction_ = addMenuAction(QStringLiteral("Show whole picture"), &PictureView::showAll);
    addMenuAction(QStringLiteral("Load motion mask…"), &PictureView::chooseMask);
    removeMaskAction_ =
        addMenuAction(QStringLiteral("Remove motion mask"), &PictureView::removeMask);
    updateView();
}

QAction* PictureView::addMenuAction(const QString& text, void (PictureView::*slot)()) {
    auto* action = new QAction(text, this);
    connect(action, &QAction::triggered, this, slot);
    addAction(action);
    return action;
}

void PictureView::setPicture(const QImage& picture) {
    picture_ = picture;
    updateSizes();
    update();
}

void PictureView::setKeepAspect(bool on) {
    view_.setKeepAspect(on);
    updateView();
}

void PictureView::zoomTo(double factor, const QPointF& middle) {
    view_.zoomTo(factor, middle);
    updateView();
}

void PictureView::showAll() {
    view_.showAll();
    updateView();
}

void PictureView::chooseMask() {
    const QString path =
        QFileDialog::getOpenFileName(this, QStringLiteral("Load a motion mask"), QString(),
                                     QStringLiteral("Motion masks (*.mask);;All files (*)"));
    if (!path.isEmpty())
        loadMask(path);
}

bool PictureView::loadMask(const QString& path) {
    std::optional<MotionMask> mask = MotionMask::load(path);
    if (!mask)
        return false;
    mask_ = std::move(mask);
    updateView();
    return true;
}

void PictureView::removeMask() {
    mask_.reset();
    updateView();
}

void PictureView::updateView() {
    const bool isZoomed = view_.factor() > 1;
    showAllAction_->setEnabled(isZoomed);
    removeMaskAction_->setEnabled(mask_.has_value());
    setCursor(isZoomed ? Qt::OpenHandCursor : Qt::ArrowCursor);
    update();
}

void PictureView::updateSizes() {
    view_.setSizes(size(), picture_.isNull() ? QSizeF() : picture_.size());
}

void PictureView::resizeEvent(QResizeEvent*) {
    updateSizes();
}

void PictureView::wheelEvent(QWheelEvent* event) {
    const double notches = event->angleDelta().y() / unitsOfNotch;
    view_.zoomAt(event->position(), std::pow(factorOfNotch, notches));
    updateView();
}

void PictureView::mousePressEvent(QMouseEvent* event) {
    mouse_ = event->position();
    if (event->button() == Qt::LeftButton && view_.factor() > 1)
        setCursor(Qt::ClosedHandCursor);
}

void PictureView::mouseMoveEvent(QMouseEvent* event) {
    if (!(event->buttons() & Qt::LeftButton))
        return;
    view_.move(event->position() - mouse_);
    mouse_ = event->position();
    update();
}

void PictureView::mouseReleaseEvent(QMouseEvent*) {
    updateView();
}

void PictureView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        showAll();
}

void PictureView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), theme::tile);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(pictureRect(), picture_);
    if (mask_)
        mask_->paint(painter, pictureRect());
    if (view_.factor() > 1)
        paintFactor(painter);
}

// "2.5×" in the upper right corner.
void PictureView::paintFactor(QPainter& painter) const {
    const QString text = QString::number(view_.factor(), 'f', 1) + QStringLiteral("×");
    QRect badge = painter.fontMetrics().boundingRect(text);
    badge.adjust(-badgeMargin, -badgeMargin / 2, badgeMargin, badgeMargin / 2);
    badge.moveTopRight(rect().topRight() + QPoint(-badgeMargin, badgeMargin));
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme::caption);
    painter.drawRoundedRect(badge, badgeMargin / 2.0, badgeMargin / 2.0);
    painter.setPen(theme::text);
    painter.drawText(badge, Qt::AlignCenter, text);
}

}  // namespace pylon::viewer
