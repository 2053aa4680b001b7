#include "host/acgi/display/clip.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace acgi
{

/// Narrows t from low to high to where base + t * direction is in the box; false when nothing is left.
static bool narrow(QPointF base, QPointF direction, const QRectF &box, double &low, double &high)
{
    // Parallel to two sides, the line lies between them or outside; else they cut it.
    const auto cut = [&](double at, double step, double lower, double upper) {
        if (step == 0.0)
            return at >= lower && at <= upper;
        const double a = (lower - at) / step;
        const double b = (upper - at) / step;
        low = std::max(low, std::min(a, b));
        high = std::min(high, std::max(a, b));
        return low <= high;
    };
    return cut(base.x(), direction.x(), box.left(), box.right()) &&
           cut(base.y(), direction.y(), box.top(), box.bottom());
}

static QPointF bounded(QPointF point, const QRectF &box)
{
    return {std::clamp(point.x(), box.left(), box.right()), std::clamp(point.y(), box.top(), box.bottom())};
}

static bool isFinite(QPointF point)
{
    return std::isfinite(point.x()) && std::isfinite(point.y());
}

bool clipRay(QPointF base, QPointF direction, double first, const QRectF &box, QPointF &from, QPointF &to)
{
    double low = first;
    double high = std::numeric_limits<double>::infinity();
    if (!narrow(base, direction, box, low, high))
        return false;
    from = base + direction * low;
    to = base + direction * high;
    return isFinite(from) && isFinite(to);
}

bool clipLine(QPointF &from, QPointF &to, const QRectF &box)
{
    const auto isInside = [&](QPointF p) {
        return p.x() >= box.left() && p.x() <= box.right() && p.y() >= box.top() && p.y() <= box.bottom();
    };
    if (isInside(from) && isInside(to))
        return true;
    const QPointF start = from;
    const QPointF direction = to - from;
    double low = 0.0;
    double high = 1.0;
    if (!isFinite(direction) || !narrow(start, direction, box, low, high))
        return false;
    if (low > 0.0)
        from = bounded(start + direction * low, box);
    if (high < 1.0)
        to = bounded(start + direction * high, box);
    return true;
}

QPolygonF clipPolygon(const QPolygonF &polygon, const QRectF &box)
{
    bool inside = true;
    for (const QPointF &point : polygon) {
        if (!isFinite(point))
            return {};
        inside = inside && point.x() >= box.left() && point.x() <= box.right() && point.y() >= box.top() &&
                 point.y() <= box.bottom();
    }
    if (inside)
        return polygon;
    // Side by side: distances inside are positive.
    QPolygonF kept = polygon;
    const auto cutSide = [&kept](auto distance) {
        QPolygonF next;
        next.reserve(kept.size() + 4);
        for (qsizetype i = 0; i < kept.size(); ++i) {
            const QPointF from = kept[i];
            const QPointF to = kept[(i + 1) % kept.size()];
            const double a = distance(from);
            const double b = distance(to);
            if (a >= 0.0)
                next.push_back(from);
            if ((a >= 0.0) != (b >= 0.0))
                next.push_back(from + (to - from) * (a / (a - b)));
        }
        kept = std::move(next);
    };
    cutSide([&](QPointF p) { return p.x() - box.left(); });
    cutSide([&](QPointF p) { return box.right() - p.x(); });
    cutSide([&](QPointF p) { return p.y() - box.top(); });
    cutSide([&](QPointF p) { return box.bottom() - p.y(); });
    for (QPointF &point : kept)
        point = bounded(point, box);
    return kept;
}

} // namespace acgi
