// Drawing of what shows a block: inserts, tables, dimensions.
#include "host/acgi/gidraw.h"
#include "host/acgi/gikinds.h"
#include "host/acgi/giread.h"

#include <algorithm>

namespace acgi
{

static AcDbObjectId namedBlock(const AcDbEntity &entity, const EntityGroups &groups)
{
    return entity.database() ? entity.database()->tableRecord(SymbolTable::block, groups.text(2))
                             : AcDbObjectId();
}

static void drawReference(const AcGiBlockPlacement &reference, AcGiGeometry &sink)
{
    if (!reference.record.isValid() || sink.blockReference(reference))
        return;
    for (int row = 0; row < reference.rows && !sink.isDone(); ++row) {
        for (int column = 0; column < reference.columns && !sink.isDone(); ++column) {
            const AcGiModelTransform placed(sink, reference.instance(column, row));
            acgiDrawBlock(reference.record, sink);
        }
    }
}

static void drawAttributes(const AcDbEntity &entity, AcGiGeometry &sink)
{
    for (const AcDbObjectId id : acdbSubEntities(entity.objectId())) {
        readEntity(id, [&](const AcDbEntity &attribute) {
            if (!sink.isDone() && sink.wants(attribute))
                acgiDrawEntity(attribute, sink);
        });
    }
}

void drawInsert(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    AcGiBlockPlacement reference;
    reference.record = namedBlock(entity, groups);
    const AcGeMatrix3d turned = AcGeMatrix3d::planeToWorld(groups.normal()) *
                                AcGeMatrix3d::translation(groups.vector(10)) *
                                AcGeMatrix3d::rotation(radians(groups.real(50)), AcGeVector3d::kZAxis);
    reference.placement =
        turned * AcGeMatrix3d::scaling(groups.real(41, 1.0), groups.real(42, 1.0), groups.real(43, 1.0)) *
        AcGeMatrix3d::translation(-acgiBlockOrigin(reference.record).asVector());
    constexpr std::int64_t kMostRepetitions = 32767;
    reference.columns = int(std::clamp<std::int64_t>(groups.integer(70, 1), 1, kMostRepetitions));
    reference.rows = int(std::clamp<std::int64_t>(groups.integer(71, 1), 1, kMostRepetitions));
    reference.columnStep = turned * AcGeVector3d(groups.real(44), 0.0, 0.0);
    reference.rowStep = turned * AcGeVector3d(0.0, groups.real(45), 0.0);
    drawReference(reference, sink);
    drawAttributes(entity, sink);
}

// A table keeps what it looks like in an anonymous block.
void drawTable(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity, u"AcDbBlockReference");
    const EntityGroups table(entity, u"AcDbTable");
    AcGiBlockPlacement reference;
    reference.record = namedBlock(entity, groups);
    const AcGeVector3d along = table.vector(11, AcGeVector3d::kXAxis).normal();
    const AcGeVector3d normal = groups.normal().normal();
    reference.placement = AcGeMatrix3d::fromAxes(groups.point(10), along, normal.crossProduct(along), normal);
    drawReference(reference, sink);
}

// The picture block of a dimension stands in world coordinates. Without it the measured points remain.
void drawDimension(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity);
    AcGiBlockPlacement reference;
    reference.record = namedBlock(entity, groups);
    if (!reference.record.isValid()) {
        std::vector<AcGePoint3d> points;
        for (const int code : {13, 10, 14}) {
            if (groups.has(code))
                points.push_back(groups.point(code));
        }
        if (!points.empty())
            sink.polyline(std::uint32_t(points.size()), points.data());
        return;
    }
    const AcGeMatrix3d plane = AcGeMatrix3d::planeToWorld(groups.normal());
    reference.placement = AcGeMatrix3d::translation(plane * groups.vector(12));
    drawReference(reference, sink);
}

} // namespace acgi
