#include "host/acgi/wide_line.h"

#include <algorithm>

namespace acgi
{

/// A corner reaches at most so many half widths away from its vertex.
static constexpr double kLongestMiter = 4.0;
/// How far, in half widths, a segment reaches into one that it runs into without a corner: enough to leave no
/// seam, too little to be seen beside an arc.
static constexpr double kOverlap = 0.1;

namespace
{

/// One end of a segment, seen along the polyline.
struct End {
    AcGePoint3d point;
    AcGeVector3d along; ///< Length 1.
    double half = 0.0;  ///< Half the width.

    AcGeVector3d left() const { return {-along.y, along.x, 0.0}; }
};

class WideSegment
{
public:
    WideSegment(std::span<const Vertex> vertices, std::size_t index)
        : m_from(vertices[index]), m_to(vertices[(index + 1) % vertices.size()])
    {
        if (m_from.bulge != 0.0 && hasLength())
            m_arc = bulgeArc(m_from.point, m_to.point, m_from.bulge);
    }
    bool hasLength() const { return !(m_to.point - m_from.point).isZeroLength(); }
    bool isWide() const { return m_from.startWidth > 0.0 || m_from.endWidth > 0.0; }

    End start() const { return {m_from.point, tangent(0.0), m_from.startWidth / 2.0}; }
    End end() const { return {m_to.point, tangent(1.0), m_from.endWidth / 2.0}; }

    void addBorders(Loop &left, Loop &right) const
    {
        const auto add = [&](const AcGePoint3d &middle, const AcGeVector3d &across, double share) {
            const double half = 0.5 * (m_from.startWidth + (m_from.endWidth - m_from.startWidth) * share);
            left.push_back(middle + across * half);
            right.push_back(middle - across * half);
        };
        if (!m_arc) {
            add(m_from.point, start().left(), 0.0);
            add(m_to.point, end().left(), 1.0);
            return;
        }
        const double turn = m_arc->sweep > 0.0 ? -1.0 : 1.0; // The centre is on the left of a left turn.
        for (const double t : m_arc->sampleParameters())
            add(m_arc->at(t), (m_arc->at(t) - m_arc->centre).normal() * turn,
                (t - m_arc->start) / m_arc->sweep);
    }

private:
    AcGeVector3d tangent(double share) const
    {
        if (!m_arc) {
            const AcGeVector3d chord = m_to.point - m_from.point;
            return AcGeVector3d(chord.x, chord.y, 0.0).normal();
        }
        const double t = m_arc->start + m_arc->sweep * share;
        const AcGeVector3d along = m_arc->v * std::cos(t) - m_arc->u * std::sin(t);
        return (m_arc->sweep > 0.0 ? along : -along).normal();
    }

    const Vertex &m_from;
    const Vertex &m_to;
    std::optional<Arc> m_arc;
};

/// The outer side of a corner between two ends at one vertex: the corner of the one, the point where the
/// borders meet (unless too far), the corner of the other. Empty when nothing is open between them.
Loop cornerOf(const End &before, const End &after, bool &onLeft)
{
    const double turn = before.along.x * after.along.y - before.along.y * after.along.x;
    const double cosine = before.along.dotProduct(after.along);
    const double tolerance = 1e-6 * before.half;
    if (std::abs(turn) < 1e-9 || std::abs(before.half - after.half) > tolerance)
        return {};
    onLeft = turn < 0.0;
    const double side = onLeft ? before.half : -before.half;
    Loop corner{before.point + before.left() * side};
    const double sharpness = std::sqrt(std::max(0.0, (1.0 + cosine) / 2.0)); // Cosine of half the turn.
    if (sharpness * kLongestMiter >= 1.0)
        corner.push_back(before.point +
                         (before.left() + after.left()).normal() * (side / std::max(sharpness, 1e-9)));
    corner.push_back(before.point + after.left() * side);
    return corner;
}

/// True when the line goes straight on with the same width.
bool goesOn(const End &before, const End &after)
{
    return before.along.dotProduct(after.along) > 0.0 &&
           std::abs(before.half - after.half) <= 1e-6 * before.half;
}

} // namespace

/// The next segment with a length in the direction `step`; nothing at an open end.
static std::optional<WideSegment> neighbour(std::span<const Vertex> vertices, std::size_t segment,
                                            bool closed, bool forward)
{
    const std::size_t segments = closed ? vertices.size() : vertices.size() - 1;
    std::size_t index = segment;
    for (std::size_t tried = 1; tried < segments; ++tried) {
        if (!closed && index == (forward ? segments - 1 : 0))
            break;
        index = (index + (forward ? 1 : segments - 1)) % segments;
        const WideSegment found(vertices, index);
        if (found.hasLength())
            return found.isWide() ? std::optional(found) : std::nullopt;
    }
    return std::nullopt;
}

Loop wideSegmentArea(std::span<const Vertex> vertices, std::size_t segment, bool closed)
{
    const WideSegment wide(vertices, segment);
    if (!wide.isWide() || !wide.hasLength())
        return {};
    Loop left;
    Loop right;
    bool onLeft = false;
    // Both neighbours cover the whole corner, so that no seam shows between them.
    if (const auto previous = neighbour(vertices, segment, closed, false)) {
        const Loop corner = cornerOf(previous->end(), wide.start(), onLeft);
        if (!corner.empty()) {
            Loop &side = onLeft ? left : right;
            side.push_back(wide.start().point);
            side.insert(side.end(), corner.begin(), corner.end() - 1);
        }
    }
    wide.addBorders(left, right);
    if (const auto next = neighbour(vertices, segment, closed, true)) {
        const Loop corner = cornerOf(wide.end(), next->start(), onLeft);
        if (!corner.empty()) {
            Loop &side = onLeft ? left : right;
            side.insert(side.end(), corner.begin() + 1, corner.end());
            side.push_back(wide.end().point);
        } else if (goesOn(wide.end(), next->start())) {
            const AcGeVector3d overlap = wide.end().along * (kOverlap * wide.end().half);
            left.push_back(left.back() + overlap);
            right.push_back(right.back() + overlap);
        }
    }
    left.insert(left.end(), right.rbegin(), right.rend());
    return left;
}

/// Moves the border points of an end to where the borders of two segments meet.
static void cutCorner(const End &before, const End &after, AcGePoint3d &left, AcGePoint3d &right)
{
    bool onLeft = false;
    const Loop corner = cornerOf(before, after, onLeft);
    if (corner.size() != 3)
        return;
    const AcGeVector3d outward = corner[1] - before.point;
    (onLeft ? left : right) = before.point + outward;
    (onLeft ? right : left) = before.point - outward;
}

Loop wideSegmentOutline(std::span<const Vertex> vertices, std::size_t segment, bool closed)
{
    const WideSegment wide(vertices, segment);
    if (!wide.isWide() || !wide.hasLength())
        return {};
    Loop left;
    Loop right;
    wide.addBorders(left, right);
    if (const auto previous = neighbour(vertices, segment, closed, false))
        cutCorner(previous->end(), wide.start(), left.front(), right.front());
    if (const auto next = neighbour(vertices, segment, closed, true))
        cutCorner(wide.end(), next->start(), left.back(), right.back());
    left.insert(left.end(), right.rbegin(), right.rend());
    return left;
}

} // namespace acgi
