#include "host/acgi/gidraw.h"

#include "host/acgi/giextents.h"
#include "host/acgi/gikinds.h"
#include "host/acgi/giproxygraphics.h"
#include "host/acgi/giread.h"
#include "host/acgi/giworlddraw.h"

namespace
{

struct KindRow {
    const char *dxfName;
    acgi::DrawFunction draw;
};

// clang-format off
constexpr KindRow kKinds[] = {
    {"3DFACE", acgi::drawFace},
    {"ACAD_TABLE", acgi::drawTable},
    {"ARC", acgi::drawArc},
    {"ARC_DIMENSION", acgi::drawDimension},
    {"ATTDEF", acgi::drawAttributeDefinition},
    {"ATTRIB", acgi::drawAttribute},
    {"CAMERA", acgi::drawNothing},
    {"CIRCLE", acgi::drawCircle},
    {"DIMENSION", acgi::drawDimension},
    {"DGNUNDERLAY", acgi::drawUnderlay},
    {"DWFUNDERLAY", acgi::drawUnderlay},
    {"ELLIPSE", acgi::drawEllipse},
    {"GEOPOSITIONMARKER", acgi::drawNothing},
    {"HATCH", acgi::drawHatch},
    {"HELIX", acgi::drawSpline},
    {"IMAGE", acgi::drawImage},
    {"INSERT", acgi::drawInsert},
    {"LARGE_RADIAL_DIMENSION", acgi::drawDimension},
    {"LEADER", acgi::drawLeader},
    {"LIGHT", acgi::drawNothing},
    {"LINE", acgi::drawLine},
    {"LWPOLYLINE", acgi::drawLightPolyline},
    {"MESH", acgi::drawSubdivisionMesh},
    {"MLINE", acgi::drawMultiline},
    {"MPOLYGON", acgi::drawPolygonHatch},
    {"MTEXT", acgi::drawMText},
    {"MULTILEADER", acgi::drawMultileader},
    {"OLE2FRAME", acgi::drawOleFrame},
    {"OLEFRAME", acgi::drawOleFrame},
    {"PDFUNDERLAY", acgi::drawUnderlay},
    {"POINT", acgi::drawPoint},
    {"POLYLINE", acgi::drawPolyline},
    {"RAY", acgi::drawRay},
    {"SEQEND", acgi::drawNothing},
    {"SHAPE", acgi::drawShape},
    {"SOLID", acgi::drawSolid},
    {"SPLINE", acgi::drawSpline},
    {"TEXT", acgi::drawText},
    {"TOLERANCE", acgi::drawTolerance},
    {"TRACE", acgi::drawSolid},
    {"VIEWPORT", acgi::drawViewport},
    {"WIPEOUT", acgi::drawWipeout},
    {"XLINE", acgi::drawConstructionLine},
};
// clang-format on

} // namespace

/// Indexed by kind number: a million entities look their function up.
static acgi::DrawFunction drawFunction(AcDbKind kind)
{
    static const std::vector<acgi::DrawFunction> functions = [] {
        std::vector<acgi::DrawFunction> table;
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

static bool drawByKind(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const AcDbStub *const stub = entity.objectId().stub();
    const acgi::DrawFunction draw = drawFunction(stub ? stub->kind : acdbKnownKind(entity.dxfName()));
    if (draw) {
        draw(entity, sink);
        return true;
    }
    if (entity.isCustom() && drawCustom(entity, sink))
        return true;
    const QByteArray graphics = acgiProxyGraphicsOf(entity);
    if (!graphics.isEmpty() && acgiDrawProxyGraphics(std::as_bytes(std::span(graphics)), entity, sink))
        return true;
    sink.noteUndrawn(QString::fromLatin1(entity.dxfName()));
    return false;
}

bool acgiDrawEntity(const AcDbEntity &entity, AcGiGeometry &sink)
{
    sink.beginEntity(entity);
    const bool drawn = drawByKind(entity, sink);
    sink.endEntity();
    return drawn;
}

void acgiDrawBlock(AcDbObjectId blockRecord, AcGiGeometry &sink)
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
                acgiDrawEntity(entity, sink);
        });
    }
    sink.leaveBlock();
}

AcGePoint3d acgiBlockOrigin(AcDbObjectId blockRecord)
{
    AcGePoint3d origin;
    AcDbDatabase *const database = blockRecord.database();
    const BlockContents *const contents = database ? database->blockContents(blockRecord) : nullptr;
    if (contents && contents->blockBegin)
        readEntity(AcDbObjectId(contents->blockBegin),
                   [&](const AcDbEntity &begin) { origin = EntityGroups(begin).point(10); });
    return origin;
}

void acgiInstall()
{
    acdbSetNativeExtents(
        [](const AcDbEntity &entity, AcDbExtents &extents) { return acgiExtents(entity, extents); });
    acdbSetProxyGraphics(acgiMakeProxyGraphics);
}
