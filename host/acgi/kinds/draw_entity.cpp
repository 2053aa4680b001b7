#include "host/acgi/kinds/draw_entity.h"

#include "host/acdb/owngroups.h"
#include "host/acgi/kinds/kinds.h"
#include "host/acgi/proxy/proxy_graphics.h"
#include "host/acgi/world_draw.h"

#include <algorithm>

namespace acgi
{

namespace
{

struct KindRow {
    const char *dxfName;
    DrawFunction draw;
};

// clang-format off
constexpr KindRow kKinds[] = {
    {"3DFACE", drawFace},
    {"ACAD_TABLE", drawTable},
    {"ARC", drawArc},
    {"ARC_DIMENSION", drawDimension},
    {"ATTDEF", drawAttributeDefinition},
    {"ATTRIB", drawAttribute},
    {"CAMERA", drawNothing},
    {"CIRCLE", drawCircle},
    {"DIMENSION", drawDimension},
    {"DGNUNDERLAY", drawUnderlay},
    {"DWFUNDERLAY", drawUnderlay},
    {"ELLIPSE", drawEllipse},
    {"GEOPOSITIONMARKER", drawNothing},
    {"HATCH", drawHatch},
    {"HELIX", drawSpline},
    {"IMAGE", drawImage},
    {"INSERT", drawInsert},
    {"LARGE_RADIAL_DIMENSION", drawDimension},
    {"LEADER", drawLeader},
    {"LIGHT", drawNothing},
    {"LINE", drawLine},
    {"LWPOLYLINE", drawLightPolyline},
    {"MESH", drawSubdivisionMesh},
    {"MLINE", drawMultiline},
    {"MPOLYGON", drawPolygonHatch},
    {"MTEXT", drawMText},
    {"MULTILEADER", drawMultileader},
    {"OLE2FRAME", drawOleFrame},
    {"OLEFRAME", drawOleFrame},
    {"PDFUNDERLAY", drawUnderlay},
    {"POINT", drawPoint},
    {"POLYLINE", drawPolyline},
    {"RAY", drawRay},
    {"SEQEND", drawNothing},
    {"SHAPE", drawShape},
    {"SOLID", drawSolid},
    {"SPLINE", drawSpline},
    {"TEXT", drawText},
    {"TOLERANCE", drawTolerance},
    {"TRACE", drawSolid},
    {"VIEWPORT", drawViewport},
    {"WIPEOUT", drawWipeout},
    {"XLINE", drawConstructionLine},
};
// clang-format on

} // namespace

/// Indexed by kind number: a million entities look their function up.
static DrawFunction drawFunction(AcDbKind kind)
{
    static const std::vector<DrawFunction> functions = [] {
        std::vector<DrawFunction> table;
        for (const KindRow &row : kKinds) {
            const AcDbKind number = acdbKind(row.dxfName);
            table.resize(std::max(table.size(), std::size_t(number) + 1));
            table[number] = row.draw;
        }
        return table;
    }();
    return kind < functions.size() ? functions[kind] : nullptr;
}

static void drawCustomForView(const AcDbEntity &entity, const AcGiViewport &view, AcGiGeometry &sink)
{
    const AcGiRegenType type = sink.isDisplay() ? kAcGiStandardDisplay : kAcGiForExtents;
    AcGiWorldDraw world(sink, type);
    if (entity.subWorldDraw(&world))
        return;
    sink.beginViewDependent();
    AcGiViewportDraw context(sink, type, view);
    entity.subViewportDraw(&context);
}

static bool drawCustom(const AcDbEntity &entity, AcGiGeometry &sink)
{
    if (const AcGiViewport *const view = sink.view()) {
        drawCustomForView(entity, *view, sink);
        return true;
    }
    AcDbExtents box;
    if (entity.subGetGeomExtents(box) != Acad::eOk || !box.isValid())
        return false;
    const AcGePoint3d &low = box.minPoint();
    const AcGePoint3d &high = box.maxPoint();
    const AcGePoint3d corners[] = {low, {high.x, low.y, low.z}, high, {low.x, high.y, high.z}, low};
    sink.polyline(5, corners);
    return true;
}

/// Kept as its bits under its own name, an entity has none of the groups that its kind is drawn from.
static bool isKeptAsIs(const AcDbEntity &entity)
{
    const ResbufList &groups = entity.groups();
    const auto own = std::ranges::find(groups.begin() + std::ptrdiff_t(subclassBegin(groups, u"AcDbEntity")),
                                       groups.end(), 100, &resbuf::restype);
    return own != groups.end() && own->text() == u"AcDbProxyEntity";
}

static bool drawByKind(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const AcDbStub *const stub = entity.objectId().stub();
    const DrawFunction draw = drawFunction(stub ? stub->kind : acdbKnownKind(entity.dxfName()));
    if (draw && !isKeptAsIs(entity)) {
        draw(entity, sink);
        return true;
    }
    if (entity.isCustom() && drawCustom(entity, sink))
        return true;
    const QByteArray graphics = proxyGraphicsOf(entity);
    if (!graphics.isEmpty() && drawProxyGraphics(std::as_bytes(std::span(graphics)), entity, sink))
        return true;
    sink.noteUndrawn(QString::fromLatin1(entity.dxfName()));
    return false;
}

bool drawEntity(const AcDbEntity &entity, AcGiGeometry &sink)
{
    sink.beginEntity(entity);
    const bool drawn = drawByKind(entity, sink);
    sink.endEntity();
    return drawn;
}

void drawBlock(AcDbObjectId blockRecord, AcGiGeometry &sink)
{
    AcDbDatabase *const database = blockRecord.database();
    const BlockContents *const contents = database ? database->blockContents(blockRecord) : nullptr;
    if (!contents || !sink.enterBlock(blockRecord))
        return;
    for (const std::uint32_t index : contents->entities) {
        if (sink.isDone())
            break;
        readEntity(AcDbObjectId(database->stub(index)), [&](const AcDbEntity &entity) {
            if (sink.wants(entity))
                drawEntity(entity, sink);
        });
    }
    sink.leaveBlock();
}

AcGePoint3d blockOrigin(AcDbObjectId blockRecord)
{
    AcGePoint3d origin;
    AcDbDatabase *const database = blockRecord.database();
    const BlockContents *const contents = database ? database->blockContents(blockRecord) : nullptr;
    if (contents && contents->blockBegin)
        readEntity(AcDbObjectId(contents->blockBegin),
                   [&](const AcDbEntity &begin) { origin = OwnGroups(begin).point(10); });
    return origin;
}

} // namespace acgi
