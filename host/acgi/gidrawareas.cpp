// Drawing of filled shapes, frames and images.
#include "host/acgi/gikinds.h"
#include "host/acgi/giread.h"

#include <algorithm>

namespace acgi
{

// The third and fourth corner of a SOLID are filed crosswise.
void drawSolid(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    const AcGePoint3d third = groups.point(12, groups.point(11));
    AcGePoint3d corners[] = {groups.point(10), groups.point(11), groups.point(13, third), third};
    const AcGeVector3d normal = groups.normal();
    if (!isZAxis(normal)) {
        const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(normal);
        for (AcGePoint3d &corner : corners)
            corner.transformBy(plane);
    }
    const AcGiLoop loop(corners, corners + 4);
    sink.fill(std::span(&loop, 1));
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

/// The visible part of an image: its pixels, or the clip boundary inside them. Pixel coordinates run
/// down from the upper left corner of the first pixel, whose middle is (0 0).
static std::vector<AcGePoint3d> imageFrame(const EntityGroups &groups)
{
    const AcGeVector3d u = groups.vector(11);
    const AcGeVector3d v = groups.vector(12);
    const AcGePoint3d size = groups.point(13, {1.0, 1.0, 0.0});
    std::vector<AcGePoint3d> clip;
    if (groups.integer(280, 1) != 0)
        clip = groups.points(14);
    if (clip.size() < 2)
        clip = {{-0.5, -0.5, 0.0}, {size.x - 0.5, size.y - 0.5, 0.0}};
    if (clip.size() == 2)
        clip = {clip[0], {clip[1].x, clip[0].y, 0.0}, clip[1], {clip[0].x, clip[1].y, 0.0}};
    for (AcGePoint3d &corner : clip)
        corner = groups.point(10) + u * (corner.x + 0.5) + v * (size.y - corner.y - 0.5);
    clip.push_back(clip.front());
    return clip;
}

void drawImage(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const std::vector<AcGePoint3d> frame = imageFrame(EntityGroups(entity));
    sink.polyline(std::uint32_t(frame.size()), frame.data());
}

void drawWipeout(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const AcGiLoop frame = imageFrame(EntityGroups(entity));
    sink.fill(std::span(&frame, 1));
}

static void drawRectangle(const AcGePoint3d &low, const AcGePoint3d &high, AcGiGeometry &sink)
{
    const AcGePoint3d corners[] = {
        low, {high.x, low.y, low.z}, {high.x, high.y, low.z}, {low.x, high.y, low.z}, low};
    sink.polyline(5, corners);
}

void drawViewport(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    if (groups.integer(69) == 1)
        return; // The sheet itself.
    const AcGePoint3d centre = groups.point(10);
    const AcGeVector3d half(groups.real(40) / 2.0, groups.real(41) / 2.0, 0.0);
    drawRectangle(centre - half, centre + half, sink);
}

void drawOleFrame(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    drawRectangle(groups.point(10), groups.point(11), sink);
}

} // namespace acgi
