// Clipping of lines and polygons to a rectangle. Whatever the input, results are finite and within it.
#pragma once

#include <QPolygonF>
#include <QRectF>

namespace acgi
{

/// Cuts the line down to its part inside; false when there is none or an end is not a number.
bool clipLine(QPointF &from, QPointF &to, const QRectF &box);
/// The part of base + t * direction inside, for t from `first` (minus infinity for both ways) on.
bool clipRay(QPointF base, QPointF direction, double first, const QRectF &box, QPointF &from, QPointF &to);
/// The polygon inside; edges along the box join its parts. Empty when it has points that are not numbers.
QPolygonF clipPolygon(const QPolygonF &polygon, const QRectF &box);

} // namespace acgi
