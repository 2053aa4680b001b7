// Drawing of solids and faces, and of kinds without a picture.
#include "host/acgi/kinds/draw_tools.h"
#include "host/acgi/kinds/kinds.h"
#include "host/base/host_text.h"

namespace acgi
{

// The third and fourth corner of a SOLID are filed crosswise.
void drawSolid(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    const AcGePoint3d third = groups.point(12, groups.point(11));
    Loop corners{groups.point(10), groups.point(11), groups.point(13, third), third};
    const AcGeVector3d normal = groups.normal();
    if (!isZAxis(normal)) {
        const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(normal);
        for (AcGePoint3d &corner : corners)
            corner.transformBy(plane);
    }
    drawExtruded(groups, corners, sink, [&] { drawArea(entity, corners, sink); });
}

void drawFace(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    const AcGePoint3d third = groups.point(12, groups.point(11));
    const AcGePoint3d corners[] = {groups.point(10), groups.point(11), third, groups.point(13, third),
                                   groups.point(10)};
    const std::int64_t hidden = groups.integer(70);
    if ((hidden & 15) == 0)
        return sink.polyline(5, corners);
    for (int edge = 0; edge < 4; ++edge) {
        if (!(hidden & (1 << edge)))
            sink.polyline(2, corners + edge);
    }
}

void drawNothing(const AcDbEntity &, AcGiGeometry &) {}

// The strokes stand in a file that drawings do not carry along.
void drawShape(const AcDbEntity &entity, AcGiGeometry &sink)
{
    sink.noteUndrawn(Host::tr("SHAPE: no shape file for %1").arg(EntityGroups(entity).text(2)));
}

} // namespace acgi
