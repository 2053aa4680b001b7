// Drawing of hatches: the area inside their boundary paths, filled evenly, with a pattern or a gradient.
#include "host/acgi/kinds/draw_tools.h"
#include "host/acgi/kinds/hatch_boundary.h"
#include "host/acgi/kinds/hatch_gradient.h"
#include "host/acgi/kinds/hatch_pattern.h"
#include "host/acgi/kinds/kinds.h"
#include "host/base/host_text.h"

#include <optional>

namespace acgi
{

/// The colour behind the pattern.
static std::optional<AcCmEntityColor> patternBackground(const AcDbEntity &entity)
{
    for (const resbuf &group : entity.xData(QStringLiteral("HATCHBACKGROUNDCOLOR"))) {
        if (group.restype == 1071)
            return colorOfRaw(group.integer());
    }
    return std::nullopt;
}

static void drawPattern(const AcDbEntity &entity, const EntityGroups &groups, const std::vector<Loop> &loops,
                        AcGiGeometry &sink)
{
    if (const auto background = patternBackground(entity)) {
        PenScope scope(sink);
        scope.setColor(*background);
        sink.fill(loops);
    }
    PenScope scope(sink);
    scope.pen().setLineType(AcDbObjectId()); // The pattern has the only gaps.
    const bool isDrawn =
        cutHatchPattern(readHatchPattern(groups), loops, [&](const AcGePoint3d &from, const AcGePoint3d &to) {
            const AcGePoint3d ends[] = {from, to};
            sink.polyline(from == to ? 1 : 2, ends);
        });
    if (isDrawn)
        return;
    sink.fill(loops);
    sink.noteUndrawn(Host::tr("HATCH: pattern too dense"));
}

static void fillArea(const AcDbEntity &entity, const EntityGroups &groups, bool isSolid,
                     const std::vector<Loop> &loops, AcGiGeometry &sink)
{
    if (!sink.isDisplay())
        return sink.fill(loops);
    PenScope scope(sink);
    if (const auto gradient = readHatchGradient(groups))
        fillGradient(*gradient, loops, sink);
    else if (isSolid)
        sink.fill(loops);
    else
        drawPattern(entity, groups, loops, sink);
}

/// Calls `draw` with what bounds the area, in the plane of the entity.
template <class Draw>
static void inPlane(const EntityGroups &groups, AcGiGeometry &sink, Draw draw)
{
    HatchLoops read = readHatchLoops(groups);
    const std::vector<Loop> loops = loopsForStyle(std::move(read.bounds), hatchStyle(groups));
    if (loops.empty())
        return;
    const AcGeVector3d normal = groups.normal();
    std::optional<ModelTransform> plane;
    if (!isZAxis(normal))
        plane.emplace(sink, AcGeMatrix3d::planeToWorld(normal));
    if (!read.textBoxes.empty())
        sink.pushClip(read.textBoxes, true);
    draw(loops);
    if (!read.textBoxes.empty())
        sink.popClip();
}

void drawHatch(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity, u"AcDbHatch");
    inPlane(groups, sink, [&](const std::vector<Loop> &loops) {
        fillArea(entity, groups, groups.integer(70) != 0, loops, sink);
    });
}

// A polygon shows its outline beside what fills it, which has a colour of its own.
void drawPolygonHatch(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity, u"AcDbMPolygon");
    inPlane(groups, sink, [&](const std::vector<Loop> &loops) {
        {
            PenScope scope(sink);
            if (groups.has(63))
                scope.setColor(groups.integer(63));
            fillArea(entity, groups, groups.integer(71) != 0, loops, sink);
        }
        for (const Loop &loop : loops)
            drawClosed(loop, sink);
    });
}

} // namespace acgi
