#include "host/acgi/geometry.h"

#include "host/acgi/wide_line.h"
#include "host/base/assert.h"

#include <algorithm>
#include <cmath>

namespace acgi
{

static constexpr double kTurn = 2.0 * kGePi;

bool Arc::covers(double t) const
{
    if (isWhole())
        return true;
    const double along = std::fmod(sweep >= 0.0 ? t - start : start - t, kTurn);
    const double wrapped = along < 0.0 ? along + kTurn : along;
    constexpr double kRounding = 1e-12;
    return wrapped <= std::abs(sweep) + kRounding || wrapped >= kTurn - kRounding;
}

Arc Arc::transformed(const AcGeMatrix3d &matrix) const
{
    return {matrix * centre, matrix * u, matrix * v, start, sweep};
}

std::vector<double> Arc::sampleParameters(int perTurn) const
{
    const int count = std::clamp(int(std::ceil(std::abs(sweep) / kTurn * perTurn)), 1, perTurn);
    std::vector<double> offsets;
    offsets.reserve(std::size_t(count) + 5);
    for (int i = 0; i <= count; ++i)
        offsets.push_back(sweep * i / count);
    for (const double extreme : {std::atan2(v.x, u.x), std::atan2(v.y, u.y)}) {
        for (const double t : {extreme, extreme + kGePi}) {
            const double forward = std::fmod(std::fmod(t - start, kTurn) + kTurn, kTurn);
            const double offset = sweep >= 0.0 ? forward : forward - kTurn;
            if (std::abs(offset) < std::abs(sweep))
                offsets.push_back(offset);
        }
    }
    std::ranges::sort(offsets, [](double a, double b) { return std::abs(a) < std::abs(b); });
    for (double &offset : offsets)
        offset += start;
    return offsets;
}

void Arc::appendSamples(std::vector<AcGePoint3d> &points, int perTurn) const
{
    for (const double t : sampleParameters(perTurn))
        points.push_back(at(t));
}

Arc bulgeArc(const AcGePoint3d &from, const AcGePoint3d &to, double bulge)
{
    const AcGeVector3d chord = to - from;
    const double toCentre = (1.0 - bulge * bulge) / (4.0 * bulge);
    Arc arc;
    arc.centre = from + chord * 0.5 + AcGeVector3d(-chord.y, chord.x, 0.0) * toCentre;
    arc.u = from - arc.centre;
    arc.u.z = 0.0;
    arc.v = {-arc.u.y, arc.u.x, 0.0};
    arc.sweep = 4.0 * std::atan(bulge);
    return arc;
}

// The centre is equally far from the three points: two linear equations in the plane of the points.
std::optional<Arc> arcThrough(const AcGePoint3d &start, const AcGePoint3d &through, const AcGePoint3d &end)
{
    const AcGeVector3d a = through - start;
    const AcGeVector3d b = end - start;
    const AcGeVector3d normal = a.crossProduct(b);
    const double area = normal.dotProduct(normal);
    if (!(area > 1e-18 * a.dotProduct(a) * b.dotProduct(b)))
        return std::nullopt;
    const AcGeVector3d toCentre =
        (normal.crossProduct(a) * b.dotProduct(b) + b.crossProduct(normal) * a.dotProduct(a)) / (2.0 * area);
    const AcGePoint3d centre = start + toCentre;
    const AcGeVector3d u = -toCentre;
    const AcGeVector3d v = normal.normal().crossProduct(u);
    const AcGeVector3d last = end - centre;
    double sweep = std::atan2(last.dotProduct(v), last.dotProduct(u));
    if (sweep <= 0.0)
        sweep += kTurn;
    return Arc{centre, u, v, 0.0, sweep};
}

AcGeMatrix3d BlockPlacement::instance(int column, int row) const
{
    if (column == 0 && row == 0)
        return placement;
    return AcGeMatrix3d::translation(columnStep * column + rowStep * row) * placement;
}

} // namespace acgi

void AcGiGeometry::pushModelTransform(const AcGeMatrix3d &matrix)
{
    m_stack.push_back(m_toWorld);
    m_toWorld = m_isWorld ? matrix : m_toWorld * matrix;
    m_isWorld = m_toWorld.isIdentity();
}

void AcGiGeometry::popModelTransform()
{
    QUILL_ASSERT(!m_stack.empty());
    m_toWorld = m_stack.back();
    m_stack.pop_back();
    m_isWorld = m_toWorld.isIdentity();
}

void AcGiGeometry::pline(std::span<const acgi::Vertex> vertices, bool closed)
{
    if (vertices.size() == 1) {
        polyline(1, &vertices.front().point);
        return;
    }
    std::vector<AcGePoint3d> chain;
    const auto flush = [&] {
        if (chain.size() > 1)
            polyline(std::uint32_t(chain.size()), chain.data());
        chain.clear();
    };
    const std::size_t segments = vertices.size() - (closed || vertices.empty() ? 0 : 1);
    for (std::size_t i = 0; i < segments; ++i) {
        const acgi::Vertex &from = vertices[i];
        const acgi::Vertex &to = vertices[(i + 1) % vertices.size()];
        const bool wide = from.startWidth > 0.0 || from.endWidth > 0.0;
        if (!wide && from.bulge == 0.0) {
            if (chain.empty())
                chain.push_back(from.point);
            chain.push_back(to.point);
            continue;
        }
        flush();
        if (const acgi::Loop area = acgi::wideSegmentArea(vertices, i, closed); !area.empty())
            fill(std::span(&area, 1));
        else if (!wide && !from.point.isEqualTo(to.point))
            arc(acgi::bulgeArc(from.point, to.point, from.bulge));
    }
    flush();
}

void AcGiGeometry::marker(const AcGePoint3d &point, int, double, double)
{
    polyline(1, &point);
}

void AcGiGeometry::image(const acgi::Image &image)
{
    acgi::Loop frame = image.clip;
    if (frame.empty())
        frame = {image.origin, image.origin + image.u, image.origin + image.u + image.v,
                 image.origin + image.v};
    frame.push_back(frame.front());
    polyline(std::uint32_t(frame.size()), frame.data());
}

void AcGiGeometry::polygon(std::uint32_t count, const AcGePoint3d *points)
{
    acgi::Loop loop(points, points + count);
    if (m_traits.fillType() == kAcGiFillAlways)
        return fill(std::span(&loop, 1));
    if (count > 0)
        loop.push_back(loop.front());
    polyline(std::uint32_t(loop.size()), loop.data());
}

void AcGiGeometry::circularArc(const AcGePoint3d &start, const AcGePoint3d &through, const AcGePoint3d &end)
{
    if (const auto curve = acgi::arcThrough(start, through, end))
        return arc(*curve);
    const AcGePoint3d chain[] = {start, through, end};
    polyline(3, chain);
}

void AcGiGeometry::circle(const AcGePoint3d &centre, double radius, const AcGeVector3d &normal)
{
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(normal);
    arc({centre, plane * AcGeVector3d(radius, 0.0, 0.0), plane * AcGeVector3d(0.0, radius, 0.0)});
}

void AcGiGeometry::circularArc(const AcGePoint3d &centre, double radius, const AcGeVector3d &normal,
                               const AcGeVector3d &startVector, double sweep)
{
    const AcGeVector3d u = startVector.normal() * radius;
    arc({centre, u, normal.normal().crossProduct(u), 0.0, sweep});
}

bool AcGiGeometry::enterBlock(AcDbObjectId record)
{
    return m_nesting.enter(record.stub());
}
