#include "helpers/ink_relay/ink_icons.h"

#include <QGuiApplication>
#include <QPainterPath>
#include <QPixmap>

#include <algorithm>
#include <cmath>

namespace ink
{

// Pixels on the screen for the widths 1 to 4, nearly the millimetres that the drawing gives them.
static double screenWidth(int penWidth)
{
    static constexpr double kWidths[] = {1.0, 1.5, 2.0, 3.0};
    return kWidths[std::clamp(penWidth, 1, 4) - 1];
}

static QPainterPath outline(const Shape &shape)
{
    QPainterPath path(shape.points.front());
    if (shape.kind == Kind::line) {
        if (shape.points.size() == 1)
            path.lineTo(shape.points.front() + QPointF(1.0, 0.0));
        for (const QPointF &point : shape.points)
            path.lineTo(point);
        return path;
    }
    const QRectF box = QRectF(shape.points.front(), shape.points.back()).normalized();
    QPainterPath figure;
    if (shape.kind == Kind::rectangle || shape.kind == Kind::filledRectangle) {
        figure.addRect(box);
    } else if (shape.kind == Kind::ellipse || shape.kind == Kind::filledEllipse) {
        figure.addEllipse(box);
    } else {
        const double radius = std::min(box.width(), box.height()) / 6.0;
        figure.addRoundedRect(box, radius, radius);
    }
    return figure;
}

void paint(QPainter &painter, const Shape &shape)
{
    const QPainterPath path = outline(shape);
    if (isFilled(shape.kind)) {
        painter.fillPath(path, QColor::fromRgb(shape.color));
        return;
    }
    painter.strokePath(path, QPen(QColor::fromRgb(shape.color), screenWidth(shape.penWidth), Qt::SolidLine,
                                  Qt::RoundCap, Qt::RoundJoin));
}

QRectF bounds(const Shape &shape)
{
    const double margin = screenWidth(shape.penWidth) + 1.0;
    return outline(shape).boundingRect().adjusted(-margin, -margin, margin, margin);
}

// Icons -------------------------------------------------------------------------------------------

static constexpr int kIconSize = 20;
static constexpr QRgb kIconColor = 0xFFE8EAED;
static constexpr QRgb kFadedColor = 0xFF6B7078;

/// Draws on a square of 20 by 20, once for buttons that can be pressed and once for those that cannot.
template <class Draw>
static QIcon icon(Draw draw)
{
    QIcon result;
    for (const auto &[mode, color] :
         {std::pair(QIcon::Normal, kIconColor), std::pair(QIcon::Disabled, kFadedColor)}) {
        const double ratio = qGuiApp->devicePixelRatio();
        QPixmap picture(QSize(kIconSize, kIconSize) * ratio);
        picture.setDevicePixelRatio(ratio);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor::fromRgb(color), 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        draw(painter);
        painter.end();
        result.addPixmap(picture, mode);
    }
    return result;
}

static QIcon pathIcon(const QPainterPath &path)
{
    return icon([&](QPainter &painter) { painter.drawPath(path); });
}

QIcon shapeIcon(Kind kind)
{
    const bool isLine = kind == Kind::line;
    return pathIcon(
        outline({.kind = kind, .points = {{3.0, isLine ? 16.5 : 4.5}, {17.0, isLine ? 3.5 : 15.5}}}));
}

QIcon freehandIcon()
{
    QPainterPath path(QPointF(2.5, 13.0));
    path.cubicTo(5.0, 2.0, 9.0, 3.0, 8.5, 9.0);
    path.cubicTo(8.0, 17.0, 12.0, 18.0, 13.0, 11.0);
    path.cubicTo(13.5, 7.0, 16.0, 6.5, 17.5, 9.0);
    return pathIcon(path);
}

QIcon fillIcon()
{
    return icon([](QPainter &painter) {
        const QRectF box(3.0, 4.5, 14.0, 11.0);
        painter.drawRect(box);
        painter.setBrush(painter.pen().color());
        painter.drawPolygon(QPolygonF{box.bottomLeft(), box.topRight(), box.bottomRight()});
    });
}

QIcon colorIcon(QRgb color)
{
    return icon([&](QPainter &painter) {
        painter.setPen(QPen(QColor(255, 255, 255, 110), 1.0));
        painter.setBrush(QColor::fromRgb(color));
        painter.drawEllipse(QRectF(2.5, 2.5, 15.0, 15.0));
    });
}

QIcon penWidthIcon(int penWidth)
{
    return icon([&](QPainter &painter) {
        QPen pen = painter.pen();
        pen.setWidthF(screenWidth(penWidth) * 1.3);
        painter.setPen(pen);
        painter.drawLine(QPointF(4.0, 10.0), QPointF(16.0, 10.0));
    });
}

static QPainterPath backArrow()
{
    QPainterPath path(QPointF(7.0, 3.5));
    path.lineTo(3.5, 7.0);
    path.lineTo(7.0, 10.5);
    path.moveTo(3.5, 7.0);
    path.lineTo(12.0, 7.0);
    path.arcTo(QRectF(7.5, 7.0, 9.0, 9.0), 90.0, -180.0);
    path.lineTo(7.0, 16.0);
    return path;
}

QIcon undoIcon()
{
    return pathIcon(backArrow());
}

QIcon redoIcon()
{
    return pathIcon(QTransform(-1, 0, 0, 1, kIconSize, 0).map(backArrow()));
}

QIcon clearIcon()
{
    QPainterPath path;
    path.addRect(QRectF(5.0, 6.5, 10.0, 10.5));
    path.moveTo(3.0, 6.0);
    path.lineTo(17.0, 6.0);
    path.moveTo(8.0, 6.0);
    path.lineTo(8.0, 3.5);
    path.lineTo(12.0, 3.5);
    path.lineTo(12.0, 6.0);
    path.moveTo(8.3, 9.5);
    path.lineTo(8.3, 14.0);
    path.moveTo(11.7, 9.5);
    path.lineTo(11.7, 14.0);
    return pathIcon(path);
}

QIcon cancelIcon()
{
    QPainterPath path(QPointF(4.5, 4.5));
    path.lineTo(15.5, 15.5);
    path.moveTo(15.5, 4.5);
    path.lineTo(4.5, 15.5);
    return pathIcon(path);
}

QIcon doneIcon()
{
    QPainterPath path(QPointF(3.5, 10.5));
    path.lineTo(8.0, 15.0);
    path.lineTo(16.5, 5.0);
    return pathIcon(path);
}

} // namespace ink
