#include "placeholder.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>

#include "theme.h"

namespace pylon::viewer {

namespace {

constexpr qreal symbolSize = 44;
constexpr qreal lineHeight = 22;

// Symbols are drawn around (0, 0) in a square of symbolSize.
void paintLock(QPainter& painter) {
    QPainterPath shackle(QPointF(-10, 0));
    shackle.lineTo(-10, -8);
    shackle.arcTo(QRectF(-10, -18, 20, 20), 180, -180);
    shackle.lineTo(10, 0);
    painter.drawPath(shackle);
    const QColor colour = painter.pen().color();
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRoundedRect(QRectF(-16, -2, 32, 24), 4, 4);
    painter.setBrush(theme::tile);
    painter.drawEllipse(QPointF(0, 8), 3, 3);
    painter.drawRect(QRectF(-1.5, 8, 3, 8));
}

void paintEye(QPainter& painter) {
    QPainterPath outline(QPointF(-22, 0));
    outline.quadTo(0, -24, 22, 0);
    outline.quadTo(0, 24, -22, 0);
    painter.drawPath(outline);
    painter.drawEllipse(QPointF(0, 0), 6, 6);
    painter.drawLine(QPointF(-18, 16), QPointF(18, -16));
}

void paintSpeaker(QPainter& painter) {
    const QPolygonF speaker{{-16, -6}, {-8, -6}, {1, -14}, {1, 14}, {-8, 6}, {-16, 6}};
    painter.setBrush(painter.pen().color());
    painter.drawPolygon(speaker);
    constexpr int degree = 16;
    painter.drawArc(QRectF(-7, -9, 18, 18), -45 * degree, 90 * degree);
    painter.drawArc(QRectF(-15, -17, 34, 34), -45 * degree, 90 * degree);
}

void paintSymbol(QPainter& painter, const QPointF& centre, Symbol symbol) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(centre);
    painter.setPen(QPen(theme::dimText, 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    if (symbol == Symbol::Lock)
        paintLock(painter);
    else if (symbol == Symbol::Eye)
        paintEye(painter);
    else
        paintSpeaker(painter);
    painter.restore();
}

}  // namespace

void paintPlaceholder(QPainter& painter, const QRectF& area, Symbol symbol, const QString& title,
                      const QString& detail) {
    const qreal symbolHeight = symbol == Symbol::None ? 0 : symbolSize + 12;
    qreal y = area.center().y() - (symbolHeight + 2 * lineHeight) / 2;
    if (symbol != Symbol::None)
        paintSymbol(painter, QPointF(area.center().x(), y + symbolSize / 2), symbol);
    y += symbolHeight;

    QFont font = painter.font();
    const QFont plain = font;
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(theme::text);
    painter.drawText(QRectF(area.left(), y, area.width(), lineHeight), Qt::AlignCenter, title);
    painter.setFont(plain);
    painter.setPen(theme::dimText);
    painter.drawText(QRectF(area.left(), y + lineHeight, area.width(), lineHeight), Qt::AlignCenter,
                     detail);
}

}  // namespace pylon::viewer
