// XCLIP: the part of a block or of an external reference that shows.
#include "host/acdb/dbclip.h"
#include "host/acdb/owngroups.h"
#include "host/aced/commands/insertion.h"
#include "host/aced/commands/support.h"
#include "host/aced/edcommands.h"
#include "host/acgi/kinds/draw_blocks.h"
#include "host/acgi/kinds/draw_tools.h"
#include "host/base/host_text.h"

#include <algorithm>

namespace hostcommands
{

namespace
{

struct Boundary {
    std::vector<AcGePoint3d> corners; ///< World.
    bool isInverted = false;
};

} // namespace

static bool isReference(AcDbObjectId id)
{
    return acdbKindName(id.stub()->kind) == "INSERT";
}

static bool isClipped(AcDbObjectId id)
{
    bool is = false;
    readEntity(id, [&](const AcDbEntity &entity) { is = !acdbClipOf(entity).isNull(); });
    return is;
}

/// Does it to each, and says what cannot be changed.
template <class Work>
static void forEach(const AcEdSelectionSet &references, Work work)
{
    Refusals refused;
    for (const AcDbObjectId id : references)
        refused.note(work(id));
    refused.report();
}

// Asking for a boundary ----------------------------------------------------------------------------

/// None when cancelled, or when it has no area.
static std::optional<std::vector<AcGePoint3d>> askRectangle()
{
    const auto first = askPoint(nullptr, Host::tr("\n指定第一个角点: "));
    AcGePoint3d other;
    if (!first || acedGetCorner(*first, Host::tr("\n指定对角点: "), other) != RTNORM)
        return std::nullopt;
    if (first->x == other.x || first->y == other.y) {
        acedRefuse(Host::tr("边界没有面积。"));
        return std::nullopt;
    }
    std::vector<AcGePoint3d> corners{
        *first, {other.x, first->y, first->z}, {other.x, other.y, first->z}, {first->x, other.y, first->z}};
    for (AcGePoint3d &corner : corners)
        corner = toWorld(corner);
    return corners;
}

static std::optional<std::vector<AcGePoint3d>> askPolygon()
{
    std::vector<AcGePoint3d> corners; // UCS.
    for (;;) {
        const bool isFirst = corners.empty();
        acedInitGet(0, isFirst ? QString() : QStringLiteral("Undo"));
        AcGePoint3d point;
        const int result = acedGetPoint(
            isFirst ? nullptr : &corners.back(),
            isFirst ? Host::tr("\n指定第一点: ") : Host::tr("\n指定下一点或 [放弃(U)]: "), point);
        if (result == RTKWORD)
            corners.pop_back();
        else if (result == RTNORM)
            corners.push_back(point);
        else if (result != RTNONE)
            return std::nullopt;
        else if (corners.size() >= 3)
            break;
        else
            acutPrintf(Host::tr("\n至少需要三个点。"));
    }
    for (AcGePoint3d &corner : corners)
        corner = toWorld(corner);
    return corners;
}

static std::optional<std::vector<AcGePoint3d>> askPolyline()
{
    AcDbObjectId picked;
    AcGePoint3d at;
    if (acedEntSel(Host::tr("\n选择多段线: "), picked, at) != RTNORM)
        return std::nullopt;
    std::vector<AcGePoint3d> corners;
    const QByteArray kind = acdbKindName(picked.stub()->kind);
    if (kind == "LWPOLYLINE" || kind == "POLYLINE")
        readEntity(picked, [&](const AcDbEntity &entity) { corners = acgi::outlineOf(entity); });
    if (corners.size() > 1 && corners.front().isEqualTo(corners.back()))
        corners.pop_back();
    if (corners.size() >= 3)
        return corners;
    acedRefuse(Host::tr("这不是至少有三个顶点的多段线。"));
    return std::nullopt;
}

static std::optional<Boundary> askBoundary()
{
    Boundary boundary;
    for (;;) {
        const auto choice =
            askKeyword(QStringLiteral("Select Polygonal Rectangular Invert"),
                       Host::tr("\n指定剪裁边界 [选择多段线(S)/多边形(P)/矩形(R)/反向剪裁(I)] <矩形>: "),
                       QStringLiteral("Rectangular"));
        if (!choice)
            return std::nullopt;
        if (*choice == QLatin1String("Invert")) {
            boundary.isInverted = !boundary.isInverted;
            acutPrintf(boundary.isInverted ? Host::tr("\n边界内部将被隐藏。")
                                           : Host::tr("\n边界外部将被隐藏。"));
            continue;
        }
        const auto corners = *choice == QLatin1String("Select")      ? askPolyline()
                             : *choice == QLatin1String("Polygonal") ? askPolygon()
                                                                     : askRectangle();
        if (!corners)
            return std::nullopt;
        boundary.corners = *corners;
        return boundary;
    }
}

// Options ------------------------------------------------------------------------------------------

static void makeNew(const AcEdSelectionSet &references)
{
    if (acdbCurDwg()->version() <= DrawingVersion::r12) {
        acedRefuse(Host::tr("此版本的图形文件不能保存剪裁。"));
        return;
    }
    if (std::ranges::any_of(references, isClipped) &&
        !askYes(Host::tr("\n是否删除旧边界?"), true).value_or(false))
        return;
    const auto boundary = askBoundary();
    if (boundary)
        forEach(references, [&](AcDbObjectId id) {
            return acdbSetClip(id, boundary->corners, ucsNormal(), boundary->isInverted);
        });
}

static void switchTo(const AcEdSelectionSet &references, bool on)
{
    AcEdSelectionSet clipped = references;
    std::erase_if(clipped, [](AcDbObjectId id) { return !isClipped(id); });
    if (clipped.empty())
        acedRefuse(Host::tr("所选对象没有剪裁。"));
    forEach(clipped, [on](AcDbObjectId id) { return acdbSwitchClip(id, on); });
}

static void remove(const AcEdSelectionSet &references)
{
    AcEdSelectionSet clipped = references;
    std::erase_if(clipped, [](AcDbObjectId id) { return !isClipped(id); });
    if (clipped.empty())
        acedRefuse(Host::tr("所选对象没有剪裁。"));
    forEach(clipped, acdbRemoveClip);
}

/// Draws the boundaries as polylines.
static void drawBoundaries(const AcEdSelectionSet &references)
{
    for (const AcDbObjectId id : references) {
        std::vector<AcGePoint3d> corners;
        readEntity(id, [&](const AcDbEntity &entity) { corners = acgi::shownBoundary(entity); });
        if (corners.empty())
            continue;
        ResbufList groups{
            {100, QStringLiteral("AcDbPolyline")}, {90, std::int64_t(corners.size())}, {70, std::int64_t(1)}};
        for (const AcGePoint3d &corner : corners)
            groups.emplace_back(10, AcGePoint2d(corner.x, corner.y));
        drawEntity("LWPOLYLINE", std::move(groups));
    }
}

void xclip()
{
    AcEdSelectionSet references = askSelection();
    std::erase_if(references, [](AcDbObjectId id) { return !isReference(id); });
    dropUnchangeable(references);
    if (references.empty()) {
        if (!acedEditor()->isCancelled())
            acedRefuse(Host::tr("没有选择块参照。"));
        return;
    }
    const auto choice =
        askKeyword(QStringLiteral("ON OFF Delete Polyline New"),
                   Host::tr("\n输入剪裁选项 [开(ON)/关(OFF)/删除(D)/生成多段线(P)/新建边界(N)] <新建边界>: "),
                   QStringLiteral("New"));
    if (!choice)
        return;
    if (*choice == QLatin1String("New"))
        makeNew(references);
    else if (*choice == QLatin1String("Delete"))
        remove(references);
    else if (*choice == QLatin1String("Polyline"))
        drawBoundaries(references);
    else
        switchTo(references, *choice == QLatin1String("ON"));
}

} // namespace hostcommands
