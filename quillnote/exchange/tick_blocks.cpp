#include "quillnote/exchange/tick_blocks.h"

#include "host/acdb/dbents.h"
#include "host/acdb/dbsymtb.h"

#include <array>
#include <numbers>

static constexpr std::array kTickBlocks = std::to_array<QStringView>(
    {u"QuillnoteYesRed", u"QuillnoteYesGreen", u"QuillnoteErrRed", u"QuillnoteQRed"});
static constexpr QStringView kInsertClass = u"AcDbBlockReference";
static constexpr double kDegrees = 180.0 / std::numbers::pi;

bool isTickBlock(const QString &name)
{
    return std::ranges::any_of(
        kTickBlocks, [&](QStringView tick) { return tick.compare(name, Qt::CaseInsensitive) == 0; });
}

static double realOf(const ResbufList &groups, int code, double fallback)
{
    const resbuf *const group = findGroup(groups, code, subclassBegin(groups, kInsertClass));
    return group ? group->real() : fallback;
}

// In the file an insert's point counts in the plane of its normal.
static TickRecord tickOf(const AcDbBlockReference &insert)
{
    const ResbufList &groups = insert.groups();
    const std::size_t begin = subclassBegin(groups, kInsertClass);
    TickRecord tick;
    tick.block = insert.blockName();
    if (const resbuf *const normal = findGroup(groups, 210, begin))
        tick.normal = normal->point().asVector();
    if (const resbuf *const at = findGroup(groups, 10, begin))
        tick.position = AcGeMatrix3d::planeToWorld(tick.normal) * at->point();
    tick.rotation = realOf(groups, 50, 0.0) / kDegrees;
    tick.scale = {realOf(groups, 41, 1.0), realOf(groups, 42, 1.0), realOf(groups, 43, 1.0)};
    return tick;
}

std::vector<TickRecord> ticksOf(const AcDbDatabase &database)
{
    std::vector<TickRecord> ticks;
    const AcDbKind insertKind = acdbKind("INSERT");
    for (const AcDbObjectId layout : acdbLayoutBlocks(database)) {
        for (const std::uint32_t index : database.blockContents(layout)->entities) {
            AcDbStub *const stub = database.stub(index);
            if (stub->kind != insertKind || stub->has(AcDbStub::kErased))
                continue;
            const AcDbObjectPointer<AcDbBlockReference> insert(AcDbObjectId(stub), AcDb::kForRead);
            if (insert && isTickBlock(insert->blockName()))
                ticks.push_back(tickOf(*insert));
        }
    }
    return ticks;
}

AcDbObjectId insertTick(AcDbDatabase &database, const TickRecord &tick)
{
    if (!database.tableRecord(SymbolTable::block, tick.block).isValid())
        return {};
    const AcGePoint3d inPlane = AcGeMatrix3d::planeToWorld(tick.normal).inverse() * tick.position;
    std::unique_ptr<AcDbEntity> insert =
        acdbNewEntity("INSERT", {{100, kInsertClass.toString()},
                                 {2, tick.block},
                                 {10, inPlane},
                                 {41, tick.scale.x},
                                 {42, tick.scale.y},
                                 {43, tick.scale.z},
                                 {50, tick.rotation * kDegrees},
                                 {210, AcGePoint3d(tick.normal.x, tick.normal.y, tick.normal.z)}});
    AcDbObjectPointer<AcDbBlockTableRecord> space(database.currentSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    if (!space || space->appendAcDbEntity(id, insert.get()) != Acad::eOk)
        return {};
    insert.release()->close();
    return id;
}
