#include "host/acgi/giclip.h"

#include <cmath>
#include <limits>

bool acgiClipRay(QPointF base, QPointF direction, double first, const QRectF &box, QPointF &from, QPointF &to)
{
    double low = first;
    double high = std::numeric_limits<double>::infinity();
    // Parallel to two sides, the ray lies between them or outside; else they cut it.
    const auto cut = [&](double at, double step, double lower, double upper) {
        if (step == 0.0)
            return at >= lower && at <= upper;
        const double a = (lower - at) / step;
        const double b = (upper - at) / step;
        low = std::max(low, std::min(a, b));
        high = std::min(high, std::max(a, b));
        return low <= high;
    };
    if (!cut(base.x(), direction.x(), box.left(), box.right()) ||
        !cut(base.y(), direction.y(), box.top(), box.bottom()))
        return false;
    from = base + direction * low;
    to = base + direction * high;
    return std::isfinite(from.x() + from.y() + to.x() + to.y());
}

bool acgiClipLine(QPointF &from, QPointF &to, const QRectF &box)
{
    const auto isInside = [&](QPointF p) {
        return p.x() >= box.left() && p.x() <= box.right() && p.y() >= box.top() && p.y() <= box.bottom();
    };
    if (isInside(from) && isInside(to))
        return true;
    if ((from.x() < box.left() && to.x() < box.left()) || (from.x() > box.right() && to.x() > box.right()) ||
        (from.y() < box.top() && to.y() < box.top()) || (from.y() > box.bottom() && to.y() > box.bottom()))
        return false;
    const QPointF direction = to - from;
    if (!std::isfinite(direction.x()) || !std::isfinite(direction.y()))
        return false;
    double low = 0.0;
    double high = 1.0;
    const auto cut = [&](double at, double step, double lower, double upper) {
        if (step == 0.0)
            return at >= lower && at <= upper;
        const double a = (lower - at) / step;
        const double b = (upper - at) / step;
        low = std::max(low, std::min(a, b));
        high = std::min(high, std::max(a, b));
        return low <= high;
    };
    if (!cut(from.x(), direction.x(), box.left(), box.right()) ||
        !cut(from.y(), direction.y(), box.top(), box.bottom()))
        return false;
    const QPointF start = from;
    const auto at = [&](double t) {
        const QPointF p = start + direction * t;
        return QPointF(std::clamp(p.x(), box.left(), box.right()),
                       std::clamp(p.y(), box.top(), box.bottom()));
    };
    from = low > 0.0 ? at(low) : from;
    to = high < 1.0 ? at(high) : to;
    return true;
}

QPolygonF acgiClipPolygon(const QPolygonF &polygon, const QRectF &box)
{
    bool inside = true;
    for (const QPointF &point : polygon) {
        if (!std::isfinite(point.x()) || !std::isfinite(point.y()))
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
        point = {std::clamp(point.x(), box.left(), box.right()),
                 std::clamp(point.y(), box.top(), box.bottom())};
    return kept;
}
