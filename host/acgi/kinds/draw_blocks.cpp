// Drawing of what shows a block: inserts and tables.
#include "host/acgi/kinds/draw_blocks.h"

#include "host/acdb/dbxref.h"
#include "host/acgi/kinds/draw_entity.h"
#include "host/acgi/kinds/draw_tools.h"
#include "host/acgi/kinds/kinds.h"
#include "host/acgi/text/font.h"
#include "host/base/host_text.h"

#include <algorithm>

namespace acgi
{

AcDbObjectId namedBlock(const AcDbEntity &entity, const OwnGroups &groups)
{
    return entity.database() ? entity.database()->tableRecord(SymbolTable::block, groups.text(2))
                             : AcDbObjectId();
}

void drawReference(const BlockPlacement &reference, AcGiGeometry &sink)
{
    if (!reference.record.isValid() || sink.blockReference(reference))
        return;
    // Nobody sees more instances than that one by one; numbers in a file may be anything.
    constexpr int kMostInstances = 1 << 20;
    const int rows = std::clamp(kMostInstances / reference.columns, 1, reference.rows);
    for (int row = 0; row < rows && !sink.isDone(); ++row) {
        for (int column = 0; column < reference.columns && !sink.isDone(); ++column) {
            const ModelTransform placed(sink, reference.instance(column, row));
            drawBlock(reference.record, sink);
        }
    }
}

static void drawAttributes(std::span<const AcDbObjectId> attributes, AcGiGeometry &sink)
{
    for (const AcDbObjectId id : attributes) {
        readEntity(id, [&](const AcDbEntity &attribute) {
            if (!sink.isDone() && attribute.dxfName() == "ATTRIB" && sink.wants(attribute))
                drawEntity(attribute, sink);
        });
    }
}

/// Every instance of a multiple insert shows the attributes, which stand at the first one.
static void drawAttributes(const AcDbEntity &entity, const BlockPlacement &reference, AcGiGeometry &sink)
{
    static const QByteArray kVariable = QByteArrayLiteral("$ATTMODE");
    if (entity.database() && entity.database()->headerInteger(kVariable, 1) == 0)
        return;
    const std::vector<AcDbObjectId> attributes = acdbSubEntities(entity.objectId());
    if (attributes.empty())
        return;
    constexpr int kMostInstances = 1 << 12;
    const int rows = std::clamp(kMostInstances / reference.columns, 1, reference.rows);
    const int columns = std::min(kMostInstances, reference.columns);
    for (int row = 0; row < rows && !sink.isDone(); ++row) {
        for (int column = 0; column < columns && !sink.isDone(); ++column) {
            const AcGeVector3d step = reference.columnStep * column + reference.rowStep * row;
            const ModelTransform placed(sink, AcGeMatrix3d::translation(step));
            drawAttributes(attributes, sink);
        }
    }
    if (rows < reference.rows || columns < reference.columns)
        sink.noteUndrawn(Host::tr("INSERT: attributes of the first %1 instances only").arg(rows * columns));
}

/// Shows an external reference that is not there as what it is: its name at its place.
static void drawMissing(const AcDbXref &xref, const BlockPlacement &reference, double height,
                        AcGiGeometry &sink)
{
    if (xref.state == AcDbXrefState::unloaded)
        return;
    sink.noteUndrawn(Host::tr("INSERT: xref %1: %2").arg(xref.name, acdbXrefTrouble(xref)));
    TextLine line;
    line.text = Host::tr("Xref %1").arg(xref.path.isEmpty() ? xref.name : xref.path);
    line.font = &defaultFont();
    line.width = line.font->width(line.text);
    const ModelTransform placed(sink, reference.placement);
    line.direction = AcGeVector3d::kXAxis * height;
    line.up = AcGeVector3d::kYAxis * height;
    sink.text(line);
}

/// The outline of an inverted clip, which a record beside the filter keeps: the filter itself has an
/// imitation for programs that know no inverted ones.
static Loop invertedBoundary(const AcDbObject &filter)
{
    Loop points;
    readObject(dictionaryEntry(filter.extensionDictionary(), QStringLiteral("ACAD_XREC_ROUNDTRIP")),
               [&](const AcDbObject &record) {
                   bool inside = false;
                   for (const resbuf &group : OwnGroups(record, u"AcDbXrecord")) {
                       if (group.restype == 102)
                           inside = group.text() == QLatin1String("ACAD_INVERTEDCLIP_ROUNDTRIP");
                       else if (inside && group.restype == 10)
                           points.push_back(group.point());
                   }
               });
    return points;
}

// The boundary stands in the coordinates of the space as the insert was when it was clipped; the inverse of
// the insert's placement at that time brings it into the block.
static InsertClip readClip(const AcDbObject &filter)
{
    const OwnGroups groups(filter, u"AcDbSpatialFilter");
    std::vector<double> entries;
    for (const resbuf &group : groups) {
        if (group.restype == 40)
            entries.push_back(group.real());
    }
    constexpr std::size_t kMatrices = 24; // With a front clip its distance comes before them.
    if (groups.integer(71, 1) == 0 || entries.size() < kMatrices)
        return {};
    AcGeMatrix3d toBlock;
    const auto inverse = std::span(entries).last(kMatrices).first(12);
    for (std::size_t i = 0; i < inverse.size(); ++i)
        toBlock.entry[i / 4][i % 4] = inverse[i];
    InsertClip clip{invertedBoundary(filter), true};
    if (clip.boundary.size() < 2)
        clip = {groups.points(10), false};
    Loop &corners = clip.boundary;
    if (corners.size() == 2)
        corners = {
            corners[0], {corners[1].x, corners[0].y, 0.0}, corners[1], {corners[0].x, corners[1].y, 0.0}};
    if (corners.size() < 3)
        return {};
    const AcGeMatrix3d matrix = toBlock * AcGeMatrix3d::planeToWorld(groups.normal());
    for (AcGePoint3d &corner : corners)
        corner.transformBy(matrix);
    return clip;
}

InsertClip insertClip(const AcDbEntity &insert)
{
    InsertClip clip;
    const AcDbObjectId extensions = insert.extensionDictionary();
    if (!extensions.isNull())
        readObject(dictionaryEntry(extensions, QStringLiteral("ACAD_FILTER"), QStringLiteral("SPATIAL")),
                   [&](const AcDbObject &filter) { clip = readClip(filter); });
    return clip;
}

void drawInsert(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const OwnGroups groups(entity);
    BlockPlacement reference;
    const AcDbObjectId named = namedBlock(entity, groups);
    reference.record = acdbShownBlock(named);
    const AcGeMatrix3d turned = AcGeMatrix3d::planeToWorld(groups.normal()) *
                                AcGeMatrix3d::translation(groups.vector(10)) *
                                AcGeMatrix3d::rotation(radians(groups.real(50)), AcGeVector3d::kZAxis);
    reference.placement =
        turned * AcGeMatrix3d::scaling(groups.real(41, 1.0), groups.real(42, 1.0), groups.real(43, 1.0)) *
        AcGeMatrix3d::translation(-acdbBasePoint(named).asVector());
    constexpr std::int64_t kMostRepetitions = 32767;
    reference.columns = int(std::clamp<std::int64_t>(groups.integer(70, 1), 1, kMostRepetitions));
    reference.rows = int(std::clamp<std::int64_t>(groups.integer(71, 1), 1, kMostRepetitions));
    reference.columnStep = turned * AcGeVector3d(groups.real(44), 0.0, 0.0);
    reference.rowStep = turned * AcGeVector3d(0.0, groups.real(45), 0.0);
    InsertClip clip = insertClip(entity);
    for (AcGePoint3d &corner : clip.boundary)
        corner.transformBy(reference.placement);
    if (!clip.boundary.empty())
        sink.pushClip(std::span(&clip.boundary, 1), clip.inverted);
    drawReference(reference, sink);
    if (!clip.boundary.empty())
        sink.popClip();
    if (const AcDbXref *const xref = named.isNull() ? nullptr : named.database()->xrefs().find(named);
        xref && !xref->database)
        drawMissing(*xref, reference, entity.database()->headerReal("$TEXTSIZE", 2.5), sink);
    drawAttributes(entity, reference, sink);
}

/// The grid of a table whose picture is missing: rows run down from the insertion point.
static void drawTableGrid(const OwnGroups &table, const AcGeMatrix3d &placement, AcGiGeometry &sink)
{
    std::vector<double> rows{0.0};
    std::vector<double> columns{0.0};
    for (const resbuf &group : table) {
        if (group.restype == 141)
            rows.push_back(rows.back() - group.real());
        else if (group.restype == 142)
            columns.push_back(columns.back() + group.real());
    }
    if (rows.size() == 1 || columns.size() == 1)
        return sink.noteUndrawn(Host::tr("ACAD_TABLE: no picture"));
    const ModelTransform placed(sink, placement);
    const auto line = [&](AcGePoint3d from, AcGePoint3d to) {
        const AcGePoint3d ends[] = {from, to};
        sink.polyline(2, ends);
    };
    for (const double y : rows)
        line({0.0, y, 0.0}, {columns.back(), y, 0.0});
    for (const double x : columns)
        line({x, 0.0, 0.0}, {x, rows.back(), 0.0});
    sink.noteUndrawn(Host::tr("ACAD_TABLE: only its grid"));
}

// A table keeps what it looks like in an anonymous block.
void drawTable(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const OwnGroups groups(entity, u"AcDbBlockReference");
    const OwnGroups table(entity, u"AcDbTable");
    BlockPlacement reference;
    reference.record = namedBlock(entity, groups);
    const AcGeVector3d along = table.vector(11, AcGeVector3d::kXAxis).normal();
    const AcGeVector3d normal = groups.normal().normal();
    reference.placement = AcGeMatrix3d::fromAxes(groups.point(10), along, normal.crossProduct(along), normal);
    if (reference.record.isValid())
        drawReference(reference, sink);
    else
        drawTableGrid(table, reference.placement, sink);
}

} // namespace acgi
