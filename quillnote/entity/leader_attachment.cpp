#include "quillnote/entity/leader_attachment.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

AcGePoint3d nearest(std::span<const AcGePoint3d> candidates, const AcGePoint3d &reference)
{
    const auto distance = [&](const AcGePoint3d &p) {
        return std::hypot(p.x - reference.x, p.y - reference.y);
    };
    return *std::ranges::min_element(candidates, {}, distance);
}

AcGePoint3d along(const AcGePoint3d &a, const AcGePoint3d &b, double share)
{
    return a + (b - a) * share;
}

AcGePoint3d onRectangle(const MarkCorners &target, const AcGePoint3d &reference)
{
    constexpr double shares[] = {1.0 / 5.0, 1.0 / 3.0, 1.0 / 2.0};
    std::array<AcGePoint3d, 12> candidates;
    for (std::size_t i = 0; i < 3; ++i) {
        candidates[i] = along(target.corner1, target.corner4, shares[i]);
        candidates[3 + i] = along(target.corner4, target.corner2, shares[i]);
        candidates[6 + i] = along(target.corner3, target.corner2, shares[i]);
        candidates[9 + i] = along(target.corner1, target.corner3, shares[i]);
    }
    return nearest(candidates, reference);
}

AcGePoint3d onEllipse(const MarkCorners &box, const AcGePoint3d &reference)
{
    const std::array<AcGePoint3d, 4> candidates{
        along(box.corner1, box.corner4, 0.5), along(box.corner4, box.corner2, 0.5),
        along(box.corner3, box.corner2, 0.5), along(box.corner1, box.corner3, 0.5)};
    return nearest(candidates, reference);
}

AcGePoint3d middleOfDistinct(std::span<const AcGePoint3d> vertices)
{
    AcGeVector3d sum;
    double count = 0.0;
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const auto same = [&](const AcGePoint3d &earlier) { return earlier.isEqualTo(vertices[i]); };
        if (std::ranges::any_of(vertices.first(i), same))
            continue;
        sum = sum + vertices[i].asVector();
        count += 1.0;
    }
    return AcGePoint3d() + sum / count;
}

/// The line that is followed from the middle of a mark to its text box.
class Sight
{
public:
    Sight(const AcGePoint3d &from, const AcGePoint3d &to) : m_from(from), m_way(to - from) {}

    /// Above 0 to the left of the line; 0 everywhere for a line without length.
    double side(const AcGePoint3d &p) const
    {
        return m_way.x * (p.y - m_from.y) - m_way.y * (p.x - m_from.x);
    }
    /// 0 at the beginning, 1 at the end.
    double along(const AcGePoint3d &p) const
    {
        const double square = m_way.x * m_way.x + m_way.y * m_way.y;
        return ((p.x - m_from.x) * m_way.x + (p.y - m_from.y) * m_way.y) / square;
    }
    /// Keeps the crossing when it lies on the line before all others.
    void meet(const AcGePoint3d &crossing)
    {
        const double place = along(crossing);
        constexpr double kRounding = 1e-9;
        if (place >= -kRounding && place <= 1.0 + kRounding && !(m_first && m_place <= place)) {
            m_first = AcGePoint3d(crossing.x, crossing.y, 0.0);
            m_place = place;
        }
    }
    const std::optional<AcGePoint3d> &first() const { return m_first; }

private:
    AcGePoint3d m_from;
    AcGeVector3d m_way;
    std::optional<AcGePoint3d> m_first;
    double m_place = 0.0;
};

void meetSegment(Sight &sight, const AcGePoint3d &a, const AcGePoint3d &b)
{
    const double before = sight.side(a);
    const double after = sight.side(b);
    if (before == 0.0)
        sight.meet(a);
    if (after == 0.0)
        sight.meet(b);
    if ((before < 0.0 && after > 0.0) || (before > 0.0 && after < 0.0))
        sight.meet(a + (b - a) * (before / (before - after)));
}

/// Halves the piece of the curve around the crossing until it is a point.
void meetCurvePiece(Sight &sight, const AcGeCurve3d &curve, double from, double to)
{
    const double before = sight.side(curve.getPointAtParam(from));
    const double after = sight.side(curve.getPointAtParam(to));
    if (before == 0.0)
        sight.meet(curve.getPointAtParam(from));
    if (!(before < 0.0 && after > 0.0) && !(before > 0.0 && after < 0.0))
        return;
    constexpr int kHalvings = 50;
    for (int i = 0; i < kHalvings; ++i) {
        const double middle = 0.5 * (from + to);
        ((sight.side(curve.getPointAtParam(middle)) < 0.0) == (before < 0.0) ? from : to) = middle;
    }
    sight.meet(curve.getPointAtParam(0.5 * (from + to)));
}

void meetSpline(Sight &sight, const AcGeFitSpline3d &spline, std::size_t vertices)
{
    constexpr std::size_t kPiecesBySpan = 32;
    const double end = *spline.getEndParam();
    const std::size_t pieces = vertices * kPiecesBySpan;
    for (std::size_t i = 0; i < pieces; ++i)
        meetCurvePiece(sight, spline, end * double(i) / double(pieces), end * double(i + 1) / double(pieces));
}

std::optional<AcGePoint3d> onFreeOutline(std::span<const AcGePoint3d> vertices, bool isSpline,
                                         const AcGePoint3d &reference)
{
    if (vertices.size() < 2)
        return std::nullopt;
    Sight sight(middleOfDistinct(vertices), reference);
    if (isSpline && vertices.size() > 2) {
        if (const auto spline = closedSpline(vertices))
            meetSpline(sight, *spline, vertices.size());
        return sight.first();
    }
    for (std::size_t i = 0; i < vertices.size(); ++i)
        meetSegment(sight, vertices[i], vertices[(i + 1) % vertices.size()]);
    return sight.first();
}

} // namespace

std::optional<AcGePoint3d> attachLeaders(TargetStyle targetStyle, TargetStyle drawnStyle,
                                         const OutlineRecord &mark, bool hasUsedLeader,
                                         const AcGePoint3d &reference)
{
    if ((!fillsRectangle(targetStyle) && !hasVertices(targetStyle)) || !hasUsedLeader)
        return std::nullopt;
    if (hasVertices(drawnStyle))
        return onFreeOutline(mark.vertices, isSpline(drawnStyle), reference);
    return isEllipse(drawnStyle) ? onEllipse(mark.target, reference) : onRectangle(mark.target, reference);
}

AcGePoint3d snapLeaderEnd(const AcGePoint3d &end, const WaveMiddles &middles)
{
    for (std::size_t i = 0; i + 1 < middles.count(); ++i) {
        const AcGePoint3d &here = middles.slots()[i];
        const AcGePoint3d &next = middles.slots()[i + 1];
        if (end.distanceTo(here) < middles.chord())
            return end.distanceTo(next) < end.distanceTo(here) ? next : here;
    }
    return end;
}
