#include "host/acdb/dbsymtb.h"

#include "host/acdb/dbtransient.h"
#include "host/acdb/dbundo.h"

#include <algorithm>

QString AcDbSymbolTableRecord::getName() const
{
    const resbuf *const name = findGroup(groups(), 2);
    return name ? name->text() : QString();
}

int AcDbSymbolTableRecord::flags() const
{
    const resbuf *const flags = findGroup(groups(), 70);
    return flags ? int(flags->integer()) : 0;
}

// The flags follow the name in every kind of record.
void AcDbSymbolTableRecord::setFlags(int flags)
{
    ResbufList &list = editGroups();
    if (resbuf *const known = findGroup(list, 70)) {
        if (known->integer() != flags)
            known->assign(std::int64_t(flags));
        return;
    }
    const auto name = std::ranges::find(list, 2, &resbuf::restype);
    list.insert(name == list.end() ? name : name + 1, resbuf(70, std::int64_t(flags)));
}

static void setFlag(AcDbSymbolTableRecord &record, int flag, bool on)
{
    record.setFlags(on ? record.flags() | flag : record.flags() & ~flag);
}

std::vector<AcDbObjectId> AcDbSymbolTable::records() const
{
    std::vector<AcDbObjectId> valid;
    for (const std::uint32_t index : m_database.tableRecords(m_kind)) {
        const AcDbObjectId id(m_database.stub(index));
        if (id.isValid())
            valid.push_back(id);
    }
    return valid;
}

/// A record's groups without what belongs to it alone.
static ResbufList modelGroups(const AcDbDatabase &database, AcDbObjectId record)
{
    ResbufList groups = database.fileGroups(*record.stub());
    groups.resize(extendedDataBegin(groups));
    acdbDropApplicationGroups(groups);
    return groups;
}

// A record made like an existing one carries whatever this file version expects of its kind.
Acad::ErrorStatus AcDbSymbolTable::addLike(const QString &model, const QString &name, AcDbObjectId &added)
{
    if (has(name))
        return Acad::eDuplicateKey;
    const AcDbObjectId modelId = getAt(model);
    if (modelId.isNull())
        return Acad::eKeyNotFound;
    ResbufList groups = modelGroups(m_database, modelId);
    if (resbuf *const known = findGroup(groups, 2))
        known->assign(name);
    return add(std::move(groups), added);
}

Acad::ErrorStatus AcDbSymbolTable::add(ResbufList groups, AcDbObjectId &added)
{
    const resbuf *const name = findGroup(groups, 2);
    if (!name || has(name->text()))
        return name ? Acad::eDuplicateKey : Acad::eInvalidInput;
    const AcDbKind kind = m_database.kindNamed(groups.front().text().toLatin1());
    auto *const record = static_cast<AcDbObject *>(acdbKindClass(kind, false)->create());
    record->editGroups() = std::move(groups);
    const Acad::ErrorStatus status =
        m_database.addAcDbObject(record, m_database.symbolTableId(m_kind), &added);
    if (status == Acad::eOk)
        m_database.registerRecord(m_kind, added.stub());
    return status;
}

AcDbObjectId AcDbSymbolTable::ensureApplicationId(AcDbDatabase &database, const QString &name)
{
    AcDbSymbolTable table(database, SymbolTable::appId);
    if (const AcDbObjectId known = table.getAt(name); known.isValid())
        return known;
    ResbufList groups{{0, QStringLiteral("APPID")}};
    if (database.version() > DrawingVersion::r12) {
        groups.emplace_back(100, QStringLiteral("AcDbSymbolTableRecord"));
        groups.emplace_back(100, QStringLiteral("AcDbRegAppTableRecord"));
    }
    groups.emplace_back(2, name);
    groups.emplace_back(70, std::int64_t(0));
    AcDbObjectId added;
    if (table.add(std::move(groups), added) == Acad::eOk)
        added.stub()->object->close();
    return added;
}

static constexpr QStringView kAnonymous = u"*U";

AcDbNewBlocks::AcDbNewBlocks(AcDbDatabase &database) : m_database(database)
{
    // Erased ones count too: undo may bring them back.
    for (const std::uint32_t index : database.tableRecords(SymbolTable::block)) {
        const ResbufList groups = database.fileGroups(*database.stub(index));
        const resbuf *const name = findGroup(groups, 2);
        const QString text = name ? name->text() : QString();
        if (text.startsWith(kAnonymous, Qt::CaseInsensitive))
            m_next = std::max<std::uint64_t>(m_next, text.sliced(kAnonymous.size()).toULongLong() + 1);
    }
    if (const AcDbObjectId modelSpace = database.modelSpaceId(); !modelSpace.isNull())
        m_model = modelGroups(database, modelSpace);
    // A layout and a preview picture are model space's own.
    std::erase_if(m_model, [](const resbuf &group) { return group.restype == 310; });
    if (resbuf *const layout = findGroup(m_model, 340))
        layout->assign(AcDbHandle{0});
}

AcDbObjectId AcDbNewBlocks::addAnonymous(const AcGePoint3d &origin)
{
    constexpr std::int64_t kIsAnonymous = 1;
    const AcDbObjectId record = make(kAnonymous.toString() + QString::number(m_next), kIsAnonymous, origin);
    if (!record.isNull())
        ++m_next;
    return record;
}

AcDbObjectId AcDbNewBlocks::add(const QString &name, const AcGePoint3d &origin)
{
    return make(name, 0, origin);
}

AcDbObjectId AcDbNewBlocks::make(const QString &text, std::int64_t flags, const AcGePoint3d &origin)
{
    resbuf *const name = findGroup(m_model, 2);
    if (!name)
        return {};
    name->assign(text);
    AcDbObjectId record;
    AcDbSymbolTable table(m_database, SymbolTable::block);
    if (table.add(m_model, record) != Acad::eOk)
        return {};
    AcDbObjectId begin;
    AcDbEntity *const block = acdbNewEntity("BLOCK", {{100, QStringLiteral("AcDbBlockBegin")},
                                                      {2, text},
                                                      {70, flags},
                                                      {10, origin},
                                                      {3, text},
                                                      {1, QString()}})
                                  .release();
    m_database.addAcDbObject(block, record, &begin);
    block->close();
    m_database.m_blocks[record.stub()->index].blockBegin = begin.stub();
    return record;
}

void AcDbLayerTableRecord::setIsFrozen(bool on)
{
    setFlag(*this, 1, on);
}

void AcDbLayerTableRecord::setIsFrozenInNewViewports(bool on)
{
    setFlag(*this, 2, on);
}

void AcDbLayerTableRecord::setIsLocked(bool on)
{
    setFlag(*this, 4, on);
}

static int layerColor(const AcDbLayerTableRecord &layer)
{
    const resbuf *const color = findGroup(layer.groups(), 62);
    return color ? int(color->integer()) : 7;
}

bool AcDbLayerTableRecord::isOff() const
{
    return layerColor(*this) < 0;
}

void AcDbLayerTableRecord::setIsOff(bool on)
{
    setGroup(62, std::int64_t(on ? -colorIndex() : colorIndex()), u"AcDbLayerTableRecord");
}

int AcDbLayerTableRecord::colorIndex() const
{
    return std::abs(layerColor(*this));
}

void AcDbLayerTableRecord::setColorIndex(int index)
{
    const bool off = isOff();
    std::erase_if(editGroups(), [](const resbuf &g) { return g.restype == 420 || g.restype == 430; });
    setGroup(62, std::int64_t(off ? -index : index), u"AcDbLayerTableRecord");
}

QString AcDbLayerTableRecord::linetype() const
{
    const resbuf *const name = findGroup(groups(), 6);
    return name ? name->text() : QStringLiteral("CONTINUOUS");
}

void AcDbLayerTableRecord::setLinetype(const QString &name)
{
    setGroup(6, name, u"AcDbLayerTableRecord");
}

bool AcDbLayerTableRecord::isPlottable() const
{
    const resbuf *const plot = findGroup(groups(), 290);
    return !plot || plot->integer() != 0;
}

void AcDbLayerTableRecord::setIsPlottable(bool on)
{
    if (isPlottable() == on)
        return;
    ResbufList &list = editGroups();
    if (resbuf *const known = findGroup(list, 290)) {
        known->assign(std::int64_t(on));
        return;
    }
    const auto linetype = std::ranges::find(list, 6, &resbuf::restype);
    list.insert(linetype == list.end() ? linetype : linetype + 1, resbuf(290, std::int64_t(on)));
}

static bool isModelSpaceName(const QString &name)
{
    return name.compare(u"*Model_Space", Qt::CaseInsensitive) == 0;
}

static bool isLayoutName(const QString &name)
{
    return isModelSpaceName(name) || name.startsWith(u"*Paper_Space", Qt::CaseInsensitive);
}

bool AcDbBlockTableRecord::isModelSpace() const
{
    return isModelSpaceName(getName());
}

bool AcDbBlockTableRecord::isLayout() const
{
    return isLayoutName(getName());
}

AcDbObjectId AcDbBlockTableRecord::layoutId() const
{
    const resbuf *const layout = findGroup(groups(), 340);
    return layout && database() ? database()->getAcDbObjectId(layout->handle()) : AcDbObjectId();
}

AcGePoint3d AcDbBlockTableRecord::origin() const
{
    const BlockContents *const contents = database()->blockContents(objectId());
    if (!contents || !contents->blockBegin)
        return {};
    const ResbufList block = database()->fileGroups(*contents->blockBegin);
    const resbuf *const base = findGroup(block, 10);
    return base ? base->point() : AcGePoint3d();
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbObjectId &id, AcDbEntity *entity)
{
    assertWriteEnabled();
    if (!entity)
        return Acad::eNullObjectPointer;
    if (isPaperSpace())
        entity->setGroup(67, std::int64_t(1), u"AcDbEntity");
    const Acad::ErrorStatus status = database()->addAcDbObject(entity, objectId(), &id);
    if (status == Acad::eOk)
        database()->m_blocks[objectId().stub()->index].entities.push_back(id.stub()->index);
    return status;
}

std::vector<AcDbObjectId> AcDbBlockTableRecord::entities() const
{
    std::vector<AcDbObjectId> valid;
    if (const BlockContents *const contents = database()->blockContents(objectId())) {
        valid.reserve(contents->entities.size());
        for (const std::uint32_t index : contents->entities) {
            const AcDbObjectId id(database()->stub(index));
            if (id.isValid())
                valid.push_back(id);
        }
    }
    return valid;
}

// A record may be open for write while somebody asks, as when an entity is being appended to it.
std::vector<AcDbObjectId> acdbLayoutBlocks(const AcDbDatabase &database)
{
    std::vector<AcDbObjectId> layouts;
    for (const std::uint32_t index : database.tableRecords(SymbolTable::block)) {
        const AcDbObjectId id(database.stub(index));
        const ResbufList groups = database.fileGroups(*id.stub());
        const resbuf *const name = findGroup(groups, 2);
        if (id.isValid() && name && isLayoutName(name->text()))
            layouts.push_back(id);
    }
    return layouts;
}

std::vector<AcDbObjectId> acdbEntitiesOfKind(const AcDbDatabase &database, AcDbKind kind)
{
    std::vector<AcDbObjectId> ids;
    for (const AcDbObjectId layout : acdbLayoutBlocks(database)) {
        for (const std::uint32_t index : database.blockContents(layout)->entities) {
            AcDbStub *const stub = database.stub(index);
            if (stub->kind == kind && !stub->has(AcDbStub::kErased))
                ids.emplace_back(stub);
        }
    }
    return ids;
}

QString acdbLayoutName(AcDbObjectId blockRecord)
{
    AcDbObjectPointer<AcDbBlockTableRecord> record(blockRecord, AcDb::kForRead);
    if (!record || !record->isLayout())
        return {};
    if (record->isModelSpace())
        return QStringLiteral("Model");
    AcDbObjectPointer<AcDbObject> layout(record->layoutId(), AcDb::kForRead);
    if (!layout)
        return QStringLiteral("Layout1");
    const resbuf *const name = findGroup(layout->groups(), 1, subclassBegin(layout->groups(), u"AcDbLayout"));
    return name ? name->text() : QString();
}

std::vector<AcDbObjectId> acdbSubEntities(AcDbObjectId entity)
{
    std::vector<AcDbObjectId> owned;
    const AcDbStub *const owner = entity.stub();
    if (!owner || !owner->has(AcDbStub::kEntity))
        return owned;
    if (AcDbTransient::isCopy(*owner))
        return AcDbTransient::partsOf(*owner);
    for (std::uint32_t i = owner->index + 1; i < owner->database->stubCount(); ++i) {
        AcDbStub *const next = owner->database->stub(i);
        if (!next->has(AcDbStub::kSubEntity) || next->owner != owner->index)
            break;
        owned.emplace_back(next);
    }
    return owned;
}

void acdbDropApplicationGroups(ResbufList &groups)
{
    ApplicationGroups applications;
    std::erase_if(groups, [&](const resbuf &group) { return applications.holds(group); });
}
