// How shapes look, in the overlay and on the buttons that choose them.
#pragma once

#include "helpers/ink_relay/ink_document.h"

#include <QIcon>
#include <QPainter>
#include <QRectF>

namespace ink
{

/// As the drawing will show it: rounded corners of a sixth of the shorter side, filled kinds without an edge.
void paint(QPainter &painter, const Shape &shape);
/// What paint() touches.
QRectF bounds(const Shape &shape);

/// Icons of the tool strip, in its light text colour.
QIcon shapeIcon(Kind kind);
QIcon freehandIcon();
QIcon fillIcon();
QIcon colorIcon(QRgb color);
QIcon penWidthIcon(int penWidth);
QIcon undoIcon();
QIcon redoIcon();
QIcon clearIcon();
QIcon cancelIcon();
QIcon doneIcon();

} // namespace ink
