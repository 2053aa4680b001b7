// Drawing of points, lines, arcs and splines.
#include "host/acgi/gikinds.h"
#include "host/acgi/ginurbs.h"
#include "host/acgi/giread.h"

#include <cmath>

namespace acgi
{

void drawLine(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    const AcGePoint3d ends[] = {groups.point(10), groups.point(11)};
    sink.polyline(2, ends);
}

void drawPoint(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const AcGePoint3d position = EntityGroups(entity).point(10);
    sink.polyline(1, &position);
}

static void drawArcOfCircle(const EntityGroups &groups, double startAngle, double sweep, AcGiGeometry &sink)
{
    const double radius = std::abs(groups.real(40));
    AcGiArc arc{groups.point(10), {radius, 0.0, 0.0}, {0.0, radius, 0.0}, startAngle, sweep};
    const AcGeVector3d normal = groups.normal();
    sink.arc(isZAxis(normal) ? arc : arc.transformed(AcGeMatrix3d::planeToWorld(normal)));
}

void drawCircle(const AcDbEntity &entity, AcGiGeometry &sink)
{
    drawArcOfCircle(EntityGroups(entity), 0.0, 2.0 * kGePi, sink);
}

// Counter-clockwise from the start to the end; equal angles are a whole circle.
static double sweepBetween(double start, double end)
{
    const double sweep = std::fmod(end - start, 2.0 * kGePi);
    return sweep > 1e-12 ? sweep : sweep + 2.0 * kGePi;
}

void drawArc(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    const double start = radians(groups.real(50));
    drawArcOfCircle(groups, start, sweepBetween(start, radians(groups.real(51, 360.0))), sink);
}

void drawEllipse(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    const AcGeVector3d major = groups.vector(11);
    const double start = groups.real(41);
    sink.arc({groups.point(10), major, groups.normal().normal().crossProduct(major) * groups.real(40, 1.0),
              start, sweepBetween(start, groups.real(42, 2.0 * kGePi))});
}

void drawSpline(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity, u"AcDbSpline");
    NurbsCurve curve;
    curve.degree = int(groups.integer(71, 3));
    std::vector<AcGePoint3d> fitPoints;
    for (const resbuf &group : groups) {
        if (group.restype == 10)
            curve.controlPoints.push_back(group.point());
        else if (group.restype == 11)
            fitPoints.push_back(group.point());
        else if (group.restype == 40)
            curve.knots.push_back(group.real());
        else if (group.restype == 41)
            curve.weights.push_back(group.real());
    }
    std::vector<AcGePoint3d> points = curve.samples();
    if (points.empty())
        points = fitPoints.empty() ? curve.controlPoints : fitPoints;
    if (!points.empty())
        sink.polyline(std::uint32_t(points.size()), points.data());
}

static void drawInfinite(const AcDbEntity &entity, AcGiGeometry &sink, bool bothWays)
{
    const EntityGroups groups(entity);
    const AcGeVector3d direction = groups.vector(11);
    if (!direction.isZeroLength())
        sink.infiniteLine(groups.point(10), direction, bothWays);
}

void drawRay(const AcDbEntity &entity, AcGiGeometry &sink)
{
    drawInfinite(entity, sink, false);
}

void drawConstructionLine(const AcDbEntity &entity, AcGiGeometry &sink)
{
    drawInfinite(entity, sink, true);
}

} // namespace acgi
