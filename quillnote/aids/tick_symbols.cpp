#include "quillnote/aids/tick_symbols.h"

#include "quillnote/frame/settings/install_folder.h"

#include "host/acap/docfile.h"
#include "host/acdb/dbents.h"
#include "host/acdb/dbinsert.h"
#include "host/acdb/dbsymtb.h"

#include <QFileInfo>

#include <algorithm>
#include <array>
#include <memory>
#include <numbers>

static constexpr std::array<QStringView, kTickSymbols> kTickBlocks{u"QuillnoteYesRed", u"QuillnoteYesGreen",
                                                                   u"QuillnoteErrRed", u"QuillnoteQRed"};
static constexpr QStringView kInsertClass = u"AcDbBlockReference";
static constexpr double kDegrees = 180.0 / std::numbers::pi;

QString tickBlock(TickSymbol symbol)
{
    return kTickBlocks[std::size_t(symbol)].toString();
}

bool isTickBlock(const QString &name)
{
    return std::ranges::any_of(
        kTickBlocks, [&](QStringView tick) { return tick.compare(name, Qt::CaseInsensitive) == 0; });
}

// Any format that the program reads will do, under the same title.
QString tickFile(const QString &block)
{
    const QString drawing = installedFile(block + QStringLiteral(".dwg"));
    const QString text = installedFile(block + QStringLiteral(".dxf"));
    return !QFileInfo(drawing).isFile() && QFileInfo(text).isFile() ? text : drawing;
}

ResbufList tickFilter()
{
    ResbufList filter{{-4, QStringLiteral("<or")}};
    for (const QStringView block : kTickBlocks) {
        filter.emplace_back(-4, QStringLiteral("<and"));
        filter.emplace_back(0, QStringLiteral("INSERT"));
        filter.emplace_back(2, block.toString());
        filter.emplace_back(-4, QStringLiteral("and>"));
    }
    filter.emplace_back(-4, QStringLiteral("or>"));
    return filter;
}

// Of a drawing
// -----------------------------------------------------------------------------------------------

/// Drawings of R12 have no subclasses.
static std::size_t ownBegin(const ResbufList &groups)
{
    const std::size_t begin = subclassBegin(groups, kInsertClass);
    return begin == groups.size() ? 0 : begin;
}

static double realOf(const ResbufList &groups, int code, double fallback)
{
    const resbuf *const group = findGroup(groups, code, ownBegin(groups));
    return group ? group->real() : fallback;
}

void multiplyTickScale(AcDbEntity &tick, double factor)
{
    const bool hasSubclass = ownBegin(tick.groups()) > 0;
    for (const int code : {41, 42, 43})
        tick.setGroup(code, realOf(tick.groups(), code, 1.0) * factor,
                      hasSubclass ? kInsertClass : QStringView());
}

// In the file an insert's point counts in the plane of its normal.
static TickRecord tickOf(const AcDbBlockReference &insert)
{
    const ResbufList &groups = insert.groups();
    const std::size_t begin = ownBegin(groups);
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

std::vector<AcDbObjectId> findTicks(const AcDbDatabase &database)
{
    std::vector<AcDbObjectId> ticks;
    const AcDbKind insertKind = acdbKind("INSERT");
    for (const AcDbObjectId layout : acdbLayoutBlocks(database)) {
        for (const std::uint32_t index : database.blockContents(layout)->entities) {
            AcDbStub *const stub = database.stub(index);
            if (stub->kind != insertKind || stub->has(AcDbStub::kErased))
                continue;
            const AcDbObjectPointer<AcDbBlockReference> insert(AcDbObjectId(stub), AcDb::kForRead);
            if (insert && isTickBlock(insert->blockName()))
                ticks.emplace_back(stub);
        }
    }
    return ticks;
}

std::vector<TickRecord> ticksOf(const AcDbDatabase &database)
{
    std::vector<TickRecord> ticks;
    for (const AcDbObjectId id : findTicks(database)) {
        if (const AcDbObjectPointer<AcDbBlockReference> insert(id, AcDb::kForRead); insert)
            ticks.push_back(tickOf(*insert));
    }
    return ticks;
}

void eraseTicks(const std::vector<AcDbObjectId> &ticks)
{
    for (const AcDbObjectId id : ticks) {
        if (const AcDbObjectPointer<AcDbEntity> tick(id, AcDb::kForWrite); tick)
            tick->erase();
    }
}

static bool hasBlock(AcDbDatabase &database, const QString &block)
{
    if (database.tableRecord(SymbolTable::block, block).isValid())
        return true;
    const QString file = tickFile(block);
    if (!QFileInfo(file).isFile())
        return false;
    const auto symbol = acapReadDrawing(file);
    return symbol &&
           acdbInsertDrawing(database, QFileInfo(file).completeBaseName(), **symbol).block.isValid();
}

AcDbObjectId insertTick(AcDbDatabase &database, const TickRecord &tick)
{
    if (!isTickBlock(tick.block) || !hasBlock(database, tick.block))
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
    if (database.version() <= DrawingVersion::r12)
        std::erase_if(insert->editGroups(), [](const resbuf &group) { return group.restype == 100; });
    AcDbObjectPointer<AcDbBlockTableRecord> space(database.currentSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    if (!space || space->appendAcDbEntity(id, insert.get()) != Acad::eOk)
        return {};
    insert.release()->close();
    return id;
}
