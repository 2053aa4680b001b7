#include "host/acdb/dbviewport.h"

#include "host/acdb/owngroups.h"

#include <algorithm>
#include <set>

enum ViewportFlag : std::int64_t { kClippedByEntity = 0x10000, kOff = 0x20000 };

/// Drawings without the groups of the view keep them in extended data, in a fixed order.
static void readOldView(const AcDbEntity &entity, AcDbViewportData &data)
{
    const ResbufList extended = entity.xData(QStringLiteral("ACAD"));
    auto at = std::ranges::find_if(extended, [](const resbuf &group) {
        return group.restype == 1000 && group.text() == QLatin1String("MVIEW");
    });
    std::vector<AcGePoint3d> points;
    std::vector<double> reals;
    for (; at != extended.end(); ++at) {
        if (at->restype == 1010)
            points.push_back(at->point());
        else if (at->restype == 1040)
            reals.push_back(at->real());
        else if (at->restype == 1003 && entity.database())
            data.frozenLayers.push_back(entity.database()->tableRecord(SymbolTable::layer, at->text()));
    }
    if (points.size() < 2 || reals.size() < 4)
        return;
    data.target = points[0];
    data.direction = points[1].asVector();
    data.twist = radians(reals[0]);
    data.viewHeight = reals[1];
    data.viewCentre = {reals[2], reals[3]};
}

static void readView(const AcDbEntity &entity, const OwnGroups &groups, AcDbViewportData &data)
{
    const AcGePoint3d centre = groups.point(12);
    data.viewCentre = {centre.x, centre.y};
    data.direction = groups.vector(16, AcGeVector3d::kZAxis);
    data.target = groups.point(17);
    data.viewHeight = groups.real(45);
    data.twist = radians(groups.real(51));
    for (const resbuf &group : groups) {
        if ((group.restype == 331 || group.restype == 341) && entity.database())
            data.frozenLayers.push_back(entity.database()->getAcDbObjectId(group.handle()));
    }
}

AcDbViewportData acdbViewportData(const AcDbEntity &viewport)
{
    const OwnGroups groups(viewport, u"AcDbViewport");
    AcDbViewportData data;
    data.centre = groups.point(10);
    data.width = groups.real(40);
    data.height = groups.real(41);
    data.isOn = groups.integer(68, 1) != 0 && !(groups.integer(90) & kOff);
    if (const resbuf *const boundary = groups.find(340); boundary && groups.integer(90) & kClippedByEntity)
        data.boundary = boundary->handle();
    if (groups.has(45))
        readView(viewport, groups, data);
    else
        readOldView(viewport, data);
    if (data.direction.isZeroLength())
        data.direction = AcGeVector3d::kZAxis;
    return data;
}

static bool isViewport(const AcDbStub &stub)
{
    static const AcDbKind kViewport = acdbKind("VIEWPORT");
    return stub.kind == kViewport;
}

/// Viewports that can be read, in the sheet's order, with what they state as their number (69).
static std::vector<std::pair<int, AcDbObjectId>> statedNumbers(const AcDbDatabase &database,
                                                               AcDbObjectId sheet)
{
    std::vector<std::pair<int, AcDbObjectId>> found;
    const BlockContents *const contents = database.blockContents(sheet);
    if (!contents)
        return found;
    for (const std::uint32_t index : contents->entities) {
        if (!isViewport(*database.stub(index)))
            continue;
        const AcDbObjectId id(database.stub(index));
        if (const AcDbObjectPointer<AcDbEntity> viewport(id, AcDb::kForRead); viewport)
            found.emplace_back(int(OwnGroups(*viewport, u"AcDbViewport").integer(69)), id);
    }
    return found;
}

std::vector<std::pair<int, AcDbObjectId>> acdbSheetViewports(const AcDbDatabase &database, AcDbObjectId sheet)
{
    auto viewports = statedNumbers(database, sheet);
    const auto number = &std::pair<int, AcDbObjectId>::first;
    const bool mayBeFirst = !viewports.empty() && viewports.front().first < 1;
    if (mayBeFirst && std::ranges::find(viewports, 1, number) == viewports.end())
        viewports.front().first = 1;
    std::set<int> taken;
    for (auto &[stated, id] : viewports) {
        if (stated < 1 || !taken.insert(stated).second)
            stated = 0;
    }
    int next = 2;
    for (auto &[stated, id] : viewports) {
        if (stated != 0)
            continue;
        while (!taken.insert(next).second)
            ++next;
        stated = next;
    }
    return viewports;
}

bool acdbIsSheetItself(const AcDbEntity &viewport)
{
    const AcDbDatabase *const database = viewport.database();
    if (!database)
        return OwnGroups(viewport, u"AcDbViewport").integer(69) == 1;
    for (const auto &[number, id] : acdbSheetViewports(*database, viewport.blockId())) {
        if (id == viewport.objectId())
            return number == 1;
    }
    return false;
}
