#include "quillnote/aids/recolouring.h"

#include "quillnote/entity/mark_class.h"

#include "host/acdb/dbsymtb.h"

#include <algorithm>
#include <functional>

static constexpr int kByLayer = 256;
/// Of a colour from before: a true colour, or that the index 256 stood there in so many words.
static constexpr int kMoreThanIndex = 1071;
static constexpr int kIndexIsStated = -1;
static constexpr int kName = 1000; ///< Of a colour book.
static constexpr int kIndex = 1070;

// One entity --------------------------------------------------------------------------------------

// An index alone is what every program understands; what it does not say follows the first one.
static ResbufList colorToKeep(const AcDbStatedColor &color)
{
    ResbufList data{{1001, kColorApplication.toString()},
                    {kIndex, std::int64_t(color.index.value_or(kByLayer))}};
    if (color.rgb)
        data.emplace_back(kMoreThanIndex, std::int64_t(*color.rgb));
    else if (color.index == kByLayer)
        data.emplace_back(kMoreThanIndex, std::int64_t(kIndexIsStated));
    if (!color.name.isEmpty())
        data.emplace_back(kName, color.name);
    return data;
}

static AcDbStatedColor keptColor(const ResbufList &data)
{
    const auto value = [&data](int code) { return std::ranges::find(data, code, &resbuf::restype); };
    AcDbStatedColor color;
    const auto index = value(kIndex);
    if (index != data.end() && index->integer() >= 0 && index->integer() < kByLayer)
        color.index = int(index->integer());
    if (const auto more = value(kMoreThanIndex); more != data.end()) {
        if (more->integer() == kIndexIsStated)
            color.index = kByLayer;
        else
            color.rgb = int(more->integer());
    }
    if (const auto name = value(kName); name != data.end())
        color.name = name->text();
    return color;
}

static bool paint(AcDbObjectId id, int colorIndex)
{
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
    if (!entity)
        return false;
    const AcDbStatedColor before = entity->statedColor();
    // Room for all that is added, at once: a drawing may have a million of them.
    constexpr std::size_t kAdded = 4;
    entity->editGroups().reserve(entity->groups().size() + kAdded);
    ResbufList data = entity->xData(kColorApplication.toString());
    if (data.empty())
        data = colorToKeep(before);
    else
        data.emplace_back(kIndex, std::int64_t(before.index.value_or(kByLayer)));
    entity->setXData(data);
    return entity->setColorIndex(colorIndex) == Acad::eOk;
}

enum class Restored { not_, yes, refused };

static Restored restore(AcDbObjectId id)
{
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (!entity)
        return Restored::refused;
    const ResbufList data = entity->xData(kColorApplication.toString());
    if (data.empty())
        return Restored::not_;
    const AcDbStatedColor color = keptColor(data);
    if (entity->statedColor() == color)
        return Restored::not_;
    if (entity->upgradeOpen() != Acad::eOk)
        return Restored::refused;
    entity->setStatedColor(color);
    return Restored::yes;
}

// All of them -------------------------------------------------------------------------------------

static std::vector<const BlockContents *> visitedBlocks(const AcDbDatabase &database)
{
    std::vector<const BlockContents *> blocks;
    for (const std::uint32_t index : database.tableRecords(SymbolTable::block)) {
        const AcDbObjectPointer<AcDbBlockTableRecord> record(AcDbObjectId(database.stub(index)),
                                                             AcDb::kForRead);
        if (!record || record->getName().contains(u"Quillnote"))
            continue;
        if (const BlockContents *const contents = database.blockContents(record->objectId()))
            blocks.push_back(contents);
    }
    return blocks;
}

/// False when the user stopped it.
static bool visit(AcDbDatabase &database, const QString &what, const base::ProgressTeller::Listener &listener,
                  const std::function<void(AcDbObjectId)> &work)
{
    const AcDbKind marks = acdbKind(kMarkDxfName);
    const AcDbKind inserts = acdbKind("INSERT");
    const AcDbKind attributes = acdbKind("ATTRIB");
    const std::vector<const BlockContents *> blocks = visitedBlocks(database);
    std::size_t total = 0;
    for (const BlockContents *const block : blocks)
        total += block->entities.size();
    base::ProgressTeller teller(listener, what);
    std::size_t done = 0;
    for (const BlockContents *const block : blocks) {
        for (const std::uint32_t index : block->entities) {
            AcDbStub *const stub = database.stub(index);
            if (!teller.goesOn(double(++done) / double(total)))
                return false;
            if (stub->has(AcDbStub::kErased) || stub->kind == marks)
                continue;
            const AcDbObjectId id(stub);
            work(id);
            if (stub->kind != inserts)
                continue;
            for (const AcDbObjectId owned : acdbSubEntities(id)) {
                if (owned.stub()->kind == attributes)
                    work(owned);
            }
        }
    }
    return true;
}

Recoloured paintEverything(AcDbDatabase &database, int colorIndex,
                           const base::ProgressTeller::Listener &listener)
{
    AcDbSymbolTable::ensureApplicationId(database, kColorApplication.toString());
    Recoloured result;
    result.isStopped = !visit(database, QStringLiteral("改变颜色"), listener, [&](AcDbObjectId id) {
        ++(paint(id, colorIndex) ? result.changed : result.skipped);
    });
    return result;
}

Recoloured restoreColors(AcDbDatabase &database, const base::ProgressTeller::Listener &listener)
{
    Recoloured result;
    result.isStopped = !visit(database, QStringLiteral("恢复颜色"), listener, [&](AcDbObjectId id) {
        const Restored restored = restore(id);
        if (restored != Restored::not_)
            ++(restored == Restored::yes ? result.changed : result.skipped);
    });
    return result;
}
