// Drawing of points, lines, circles and ellipses.
#include "host/acgi/kinds/draw_tools.h"
#include "host/acgi/kinds/kinds.h"

#include <array>
#include <cmath>

namespace acgi
{

void drawLine(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    const AcGePoint3d ends[] = {groups.point(10), groups.point(11)};
    drawExtruded(groups, ends, sink, [&] { sink.polyline(2, ends); });
}

/// The definition points of a dimension stand in the anonymous block that is its picture. They are dots
/// whatever the symbol of the drawing's points is.
static bool isDefinitionPoint(const AcDbEntity &entity)
{
    bool isOne = false;
    readObject(entity.blockId(), [&](const AcDbObject &record) {
        isOne = EntityGroups(record).text(2).startsWith(QLatin1String("*D"), Qt::CaseInsensitive);
    });
    return isOne;
}

void drawPoint(const AcDbEntity &entity, AcGiGeometry &sink)
{
    static const QByteArray kMode = QByteArrayLiteral("$PDMODE");
    static const QByteArray kSize = QByteArrayLiteral("$PDSIZE");
    const EntityGroups groups(entity);
    const AcDbDatabase *const database = entity.database();
    const AcGePoint3d position = groups.point(10);
    const int mode = database ? int(database->headerInteger(kMode)) : 0;
    drawExtruded(groups, std::span(&position, 1), sink, [&] {
        sink.marker(position, mode != 0 && isDefinitionPoint(entity) ? 0 : mode,
                    database ? database->headerReal(kSize) : 0.0, radians(groups.real(50)));
    });
}

static void drawArcOfCircle(const EntityGroups &groups, double startAngle, double sweep, AcGiGeometry &sink)
{
    const double radius = std::abs(groups.real(40));
    Arc arc{groups.point(10), {radius, 0.0, 0.0}, {0.0, radius, 0.0}, startAngle, sweep};
    const AcGeVector3d normal = groups.normal();
    if (!isZAxis(normal))
        arc = arc.transformed(AcGeMatrix3d::planeToWorld(normal));
    constexpr int kWalls = 4;
    std::array<AcGePoint3d, kWalls> corners;
    const int intervals = arc.isWhole() ? kWalls : kWalls - 1;
    for (int i = 0; i < kWalls; ++i)
        corners[std::size_t(i)] = arc.at(startAngle + sweep * i / intervals);
    drawExtruded(groups, corners, sink, [&] { sink.arc(arc); });
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
