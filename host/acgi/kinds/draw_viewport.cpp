// Drawing of viewports of a sheet: the frame, and what the viewport shows.
#include "host/acgi/kinds/draw_tools.h"
#include "host/acgi/kinds/kinds.h"

#include <algorithm>

namespace acgi
{

namespace
{

enum ViewportFlag : std::int64_t { kClippedByEntity = 0x10000, kOff = 0x20000 };

} // namespace

/// The first viewport of a layout stands for the sheet itself. Viewports have no numbers in old files and in
/// layouts that nobody has looked at yet; the order tells then.
static bool isSheet(const AcDbEntity &entity, const EntityGroups &groups)
{
    if (const std::int64_t number = groups.integer(69); number != 0)
        return number == 1;
    const AcDbDatabase *const database = entity.database();
    const BlockContents *const space = database ? database->blockContents(entity.blockId()) : nullptr;
    if (!space)
        return false;
    static const AcDbKind kViewport = acdbKind("VIEWPORT");
    const auto isViewport = [&](std::uint32_t index) { return database->stub(index)->kind == kViewport; };
    const auto first = std::ranges::find_if(space->entities, isViewport);
    return first != space->entities.end() && AcDbObjectId(database->stub(*first)) == entity.objectId();
}

/// Drawings without the groups of the view keep them in extended data, in a fixed order.
static bool readOldView(const AcDbEntity &entity, ViewportPicture &picture)
{
    const ResbufList data = entity.xData(QStringLiteral("ACAD"));
    auto at = std::ranges::find_if(data, [](const resbuf &group) {
        return group.restype == 1000 && group.text() == QLatin1String("MVIEW");
    });
    std::vector<AcGePoint3d> points;
    std::vector<double> reals;
    for (; at != data.end(); ++at) {
        if (at->restype == 1010)
            points.push_back(at->point());
        else if (at->restype == 1040)
            reals.push_back(at->real());
        else if (at->restype == 1003 && entity.database())
            picture.frozenLayers.push_back(entity.database()->tableRecord(SymbolTable::layer, at->text()));
    }
    if (points.size() < 2 || reals.size() < 4)
        return false;
    picture.target = points[0];
    picture.direction = points[1].asVector();
    picture.twist = radians(reals[0]);
    picture.viewHeight = reals[1];
    picture.viewCentre = {reals[2], reals[3]};
    return true;
}

static void readView(const AcDbEntity &entity, const EntityGroups &groups, ViewportPicture &picture)
{
    if (!groups.has(45)) {
        readOldView(entity, picture);
    } else {
        const AcGePoint3d centre = groups.point(12);
        picture.viewCentre = {centre.x, centre.y};
        picture.direction = groups.vector(16, AcGeVector3d::kZAxis);
        picture.target = groups.point(17);
        picture.viewHeight = groups.real(45);
        picture.twist = radians(groups.real(51));
        for (const resbuf &group : groups) {
            if (group.restype == 331 || group.restype == 341)
                picture.frozenLayers.push_back(objectOf(entity, group.handle()));
        }
    }
    if (picture.direction.isZeroLength())
        picture.direction = AcGeVector3d::kZAxis;
}

static Loop clipOf(const AcDbEntity &entity, const EntityGroups &groups)
{
    Loop outline;
    const resbuf *const boundary = groups.find(340);
    if (!(groups.integer(90) & kClippedByEntity) || !boundary)
        return outline;
    const AcDbObjectId id = objectOf(entity, boundary->handle());
    static const AcDbKind kViewport = acdbKind("VIEWPORT");
    if (id.isEntity() && id.stub()->kind != kViewport)
        readEntity(id, [&](const AcDbEntity &other) { outline = outlineOf(other); });
    if (outline.size() < 3)
        outline.clear();
    return outline;
}

void drawViewport(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity, u"AcDbViewport");
    if (isSheet(entity, groups))
        return;
    ViewportPicture picture;
    picture.centre = groups.point(10);
    picture.width = groups.real(40);
    picture.height = groups.real(41);
    picture.clip = clipOf(entity, groups);
    // The boundary entity is a frame by itself.
    if (picture.clip.empty()) {
        const AcGeVector3d right(picture.width / 2.0, 0.0, 0.0);
        const AcGeVector3d up(0.0, picture.height / 2.0, 0.0);
        drawClosed({picture.centre - right - up, picture.centre + right - up, picture.centre + right + up,
                    picture.centre - right + up},
                   sink);
    }
    const bool isOff = groups.integer(68, 1) == 0 || groups.integer(90) & kOff;
    if (isOff || !entity.database())
        return;
    readView(entity, groups, picture);
    picture.space = entity.database()->modelSpaceId();
    if (picture.viewHeight > 0.0 && picture.width > 0.0 && picture.height > 0.0)
        sink.viewport(picture);
}

} // namespace acgi
