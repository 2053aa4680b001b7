#include "host/formats/dwg/dwgsaveplan.h"

#include "host/acdb/dbobject.h"
#include "host/base/host_text.h"
#include "host/formats/dwg/dwgfiler.h"
#include "host/formats/dwg/dwgheader.h"
#include "host/formats/dwg/dwgmap.h"
#include "host/formats/dwg/dwgspecials.h"
#include "host/formats/goneobjects.h"

#include <algorithm>

namespace dwg
{

static bool isKind(const AcDbStub &stub, const char *dxfName)
{
    return acdbKindName(stub.kind) == dxfName;
}

SavePlan::SavePlan(const AcDbDatabase &database, const DwgSource &source)
    : m_database(database), m_source(source), m_facts(source.facts()), m_names{database, source.neighbours()},
      m_contents{source.container(), {}, {}, 0}, m_changed(database.changedStubs()),
      m_gone(goneObjects(database)), m_classes(source.classes()), m_nextHandle(database.handseed().value)
{
}

base::Result<std::unique_ptr<SavePlan>, QString> SavePlan::make(const AcDbDatabase &database,
                                                                const DwgSource &source)
{
    if (const QString reason = whyNotPacked(source.container()); !reason.isEmpty())
        return base::Failure{reason};
    std::unique_ptr<SavePlan> plan(new SavePlan(database, source));
    if (const auto made = plan->run(); !made)
        return base::Failure{made.error()};
    return plan;
}

base::Result<void, QString> SavePlan::run()
{
    findTouched();
    settleBlocks();
    for (const std::uint32_t owner : m_owners)
        settleParts(*m_database.stub(owner));
    for (const SymbolTable table : m_tables)
        settleTable(table);
    settleClasses();
    encodeAll();
    settleRecords();
    settleVariables();
    if (!m_failure.isEmpty())
        return base::Failure{m_failure};
    return {};
}

void SavePlan::fail(const QString &sentence)
{
    if (m_failure.isEmpty())
        m_failure = sentence;
}

bool SavePlan::isLive(const AcDbStub &stub) const
{
    return !isGone(stub) && !stub.has(AcDbStub::kErased) && !stub.has(AcDbStub::kNoFileForm);
}

/// For ends of blocks that the database has no objects for.
std::uint64_t SavePlan::newHandle()
{
    const std::uint64_t given = m_database.freeHandle(m_nextHandle);
    m_nextHandle = given + 1;
    return given;
}

/// The table whose head owns the object.
static std::optional<SymbolTable> tableOfRecord(const AcDbDatabase &database, const AcDbStub &stub)
{
    for (std::size_t i = 0; i < kSymbolTableCount; ++i) {
        const AcDbObjectId head = database.symbolTableId(SymbolTable(i));
        if (stub.owner != 0 && !head.isNull() && head.stub()->index == stub.owner)
            return SymbolTable(i);
    }
    return {};
}

// Who is touched ---------------------------------------------------------------------------------

void SavePlan::touchOwner(const AcDbStub &stub)
{
    if (const auto table = tableOfRecord(m_database, stub)) {
        m_tables.insert(*table);
        if (*table == SymbolTable::block && isLive(stub))
            m_blocks.insert(stub.index);
        return;
    }
    const AcDbStub *const owner = stub.owner != 0 ? m_database.stub(stub.owner) : nullptr;
    if (!stub.has(AcDbStub::kEntity) || !owner || !isLive(*owner))
        return;
    if (stub.has(AcDbStub::kSubEntity))
        m_owners.insert(owner->index);
    else
        m_blocks.insert(owner->index);
}

void SavePlan::findTouched()
{
    for (std::uint32_t index = 1; index < m_gone.size(); ++index) {
        const AcDbStub &stub = *m_database.stub(index);
        if (m_gone[index] && !isNew(stub))
            touchOwner(stub);
    }
    for (const AcDbStub *const stub : m_changed) {
        if (!isLive(*stub))
            continue;
        touch(*stub);
        const bool hasHeader = isKind(*stub, "BLOCK") && stub->owner != 0;
        if (isNew(*stub) || hasHeader)
            touchOwner(*stub); // A block's header holds what its BLOCK says.
        if (isNew(*stub) && stub->has(AcDbStub::kEntity) &&
            m_database.stub(stub->owner)->has(AcDbStub::kEntity))
            touch(*m_database.stub(stub->owner));
    }
    noteInserts();
}

/// Blocks that another INSERT shows now.
void SavePlan::noteInserts()
{
    for (const AcDbStub *const stub : m_changed) {
        if (!isKind(*stub, "INSERT") || !isLive(*stub))
            continue;
        const ResbufList groups = m_database.fileGroups(*stub);
        const resbuf *const name = findGroup(groups, 2);
        const AcDbObjectId record =
            name ? m_database.tableRecord(SymbolTable::block, name->text()) : AcDbObjectId();
        if (record.isNull())
            continue;
        if (!isNew(*stub)) {
            const ResbufList before = m_source.read(*stub);
            const resbuf *const old = findGroup(before, 2);
            if (old && old->text().compare(name->text(), Qt::CaseInsensitive) == 0)
                continue;
        }
        m_newInserts[record.handle().value].push_back(stub->handle);
        m_blocks.insert(record.stub()->index);
    }
}

// Lists ------------------------------------------------------------------------------------------

SavePlan::Stubs SavePlan::live(const Stubs &all) const
{
    Stubs living;
    std::ranges::copy_if(all, std::back_inserter(living),
                         [this](const AcDbStub *stub) { return isLive(*stub); });
    return living;
}

/// In AC1015 entities name those before and after them; only those whose neighbours are others now are
/// written.
void SavePlan::link(const Stubs &before, const Stubs &after)
{
    if (m_facts.since(DrawingVersion::r2004))
        return;
    const auto neighbours = [](const Stubs &stubs, std::size_t i) {
        return std::pair(i > 0 ? stubs[i - 1]->handle : 0, i + 1 < stubs.size() ? stubs[i + 1]->handle : 0);
    };
    std::unordered_map<std::uint32_t, std::pair<std::uint64_t, std::uint64_t>> old;
    for (std::size_t i = 0; i < before.size(); ++i)
        old[before[i]->index] = neighbours(before, i);
    for (std::size_t i = 0; i < after.size(); ++i) {
        const auto now = neighbours(after, i);
        const auto was = old.find(after[i]->index);
        if (was == old.end() || was->second != now)
            touch(*after[i]).chain = now;
    }
}

void SavePlan::settleBlocks()
{
    for (const std::uint32_t index : std::set(m_blocks))
        settleBlock(*m_database.stub(index));
}

void SavePlan::settleBlock(const AcDbStub &record)
{
    const BlockContents *const contents =
        m_database.blockContents(AcDbObjectId(const_cast<AcDbStub *>(&record)));
    Stubs all, before;
    for (const std::uint32_t index : contents ? contents->entities : std::vector<std::uint32_t>()) {
        const AcDbStub *const entity = m_database.stub(index);
        all.push_back(entity);
        if (!isNew(*entity))
            before.push_back(entity);
    }
    const Stubs after = live(all);
    link(before, after);
    Place &place = touch(record);
    place.block = listsOf(record, after);
    if (contents && contents->blockBegin)
        place.blockBegin = &m_groups.emplace_back(m_database.fileGroups(*contents->blockBegin));
}

BlockLists SavePlan::listsOf(const AcDbStub &record, const Stubs &entities)
{
    const BlockContents *const contents =
        m_database.blockContents(AcDbObjectId(const_cast<AcDbStub *>(&record)));
    BlockLists lists;
    std::vector<std::uint64_t> inserts;
    if (!isNew(record)) {
        ObjectReader reader(m_facts, m_source.record(record));
        reader.readCommon(false);
        const BlockHeader old = readBlockHeader(reader);
        lists.begin = old.begin;
        lists.end = old.end;
        inserts = old.inserts;
    }
    const auto endOf = [&](const AcDbStub *known, std::uint64_t stored, const char *kind) {
        return known ? known->handle : stored != 0 ? stored : blockEnd(record, kind);
    };
    lists.begin = endOf(contents ? contents->blockBegin : nullptr, lists.begin, "BLOCK");
    lists.end = endOf(contents ? contents->blockEnd : nullptr, lists.end, "ENDBLK");
    const ResbufList groups = m_database.fileGroups(record);
    if (const resbuf *const layout = findGroup(groups, 340))
        lists.layout = layout->handle().value;
    if (!entities.empty()) {
        lists.first = entities.front()->handle;
        lists.last = entities.back()->handle;
    }
    for (const AcDbStub *const entity : entities)
        lists.owned.push_back(entity->handle);
    lists.inserts = insertsOf(record, std::move(inserts));
    return lists;
}

std::vector<std::uint64_t> SavePlan::insertsOf(const AcDbStub &record, std::vector<std::uint64_t> known)
{
    std::erase_if(known, [this](std::uint64_t handle) {
        const AcDbObjectId id = m_database.getAcDbObjectId({handle});
        return !id.isNull() && isGone(*id.stub());
    });
    if (const auto added = m_newInserts.find(record.handle); added != m_newInserts.end()) {
        for (const std::uint64_t handle : added->second) {
            if (std::ranges::find(known, handle) == known.end())
                known.push_back(handle);
        }
    }
    return known;
}

/// BLOCK or ENDBLK of a new block, which only the file has.
std::uint64_t SavePlan::blockEnd(const AcDbStub &record, const char *kind)
{
    const ResbufList recordGroups = m_database.fileGroups(record);
    const resbuf *const name = findGroup(recordGroups, 2);
    const bool isBegin = QByteArrayView(kind) == "BLOCK";
    EncodePlace place;
    place.handle = newHandle();
    place.type = isBegin ? kBlockBegin : kBlockEnd;
    place.old.kindName = kind;
    place.old.kind = kindOfType(place.type);
    place.old.isEntity = true;
    place.old.owner = record.handle;
    place.owner = record.handle;
    place.entityMode = 0;
    ResbufList groups{{0, QString::fromLatin1(kind)},
                      {5, AcDbHandle{place.handle}},
                      {330, AcDbHandle{record.handle}},
                      {100, QStringLiteral("AcDbEntity")},
                      {8, QStringLiteral("0")},
                      {100, isBegin ? QStringLiteral("AcDbBlockBegin") : QStringLiteral("AcDbBlockEnd")}};
    if (isBegin) {
        const QString text = name ? name->text() : QString();
        for (resbuf &group :
             ResbufList{{2, text}, {70, std::int64_t(0)}, {10, AcGePoint3d()}, {3, text}, {1, QString()}})
            groups.push_back(std::move(group));
    }
    addRecord(place.handle, encodeObject(m_facts, m_names, place, groups));
    return place.handle;
}

/// Attributes and vertices with their end.
void SavePlan::settleParts(const AcDbStub &owner)
{
    Stubs before, after;
    OwnedParts parts;
    for (std::uint32_t index = owner.index + 1; index < m_database.stubCount(); ++index) {
        const AcDbStub *const part = m_database.stub(index);
        if (part->owner != owner.index || !part->has(AcDbStub::kSubEntity))
            continue;
        if (isKind(*part, "SEQEND")) {
            parts.end = isLive(*part) ? part->handle : parts.end;
            continue;
        }
        if (!isNew(*part))
            before.push_back(part);
        if (isLive(*part))
            after.push_back(part);
    }
    link(before, after);
    for (const AcDbStub *const part : after)
        parts.owned.push_back(part->handle);
    if (!after.empty()) {
        parts.first = after.front()->handle;
        parts.last = after.back()->handle;
    }
    touch(owner).parts = parts;
}

/// The table's list with its gaps, without what is gone, with what is new.
void SavePlan::settleTable(SymbolTable table)
{
    const AcDbObjectId head = m_database.symbolTableId(table);
    if (head.isNull() || isNew(*head.stub()))
        return fail(Host::tr("the file lacks a table that new records would go to"));
    ObjectReader reader(m_facts, m_source.record(*head.stub()));
    reader.readCommon(false);
    const std::int32_t count = reader.data.bitLong();
    std::vector<std::uint64_t> entries;
    for (std::int32_t i = 0; i < count && !reader.handles.failed(); ++i) {
        const std::uint64_t entry = reader.reference().handle;
        const AcDbObjectId id = m_database.getAcDbObjectId({entry});
        if (id.isNull() || !isGone(*id.stub()))
            entries.push_back(entry);
    }
    for (const std::uint32_t index : m_database.tableRecords(table)) {
        const AcDbStub &record = *m_database.stub(index);
        if (isLive(record) && isNew(record))
            entries.push_back(record.handle);
    }
    touch(*head.stub()).entries = std::move(entries);
}

// Classes ----------------------------------------------------------------------------------------

void SavePlan::settleClasses()
{
    static const std::map<DrawingVersion, int> kProgramVersions{
        {DrawingVersion::r2000, 23}, {DrawingVersion::r2004, 25}, {DrawingVersion::r2007, 27},
        {DrawingVersion::r2010, 29}, {DrawingVersion::r2013, 31}, {DrawingVersion::r2018, 33}};
    int next = kFirstClass;
    for (const DwgClass &known : m_classes)
        next = std::max(next, known.number + 1);
    for (const DrawingClass &added : m_database.classes()) {
        if (added.fromSource ||
            std::ranges::find(m_classes, added.dxfName, &DwgClass::dxfName) != m_classes.end())
            continue;
        DwgClass made;
        made.number = next++;
        made.proxyFlags = added.proxyFlags;
        made.application = added.application;
        made.className = added.className;
        made.dxfName = added.dxfName;
        made.isEntity = added.isEntity;
        made.version = kProgramVersions.at(m_facts.version);
        m_classes.push_back(std::move(made));
    }
    // Counts of kinds that came or went.
    std::unordered_map<AcDbKind, int> counts;
    for (const AcDbStub *const stub : m_changed) {
        if (isNew(*stub) || isGone(*stub))
            counts.try_emplace(stub->kind, 0);
    }
    for (std::uint32_t index = 1; !counts.empty() && index < m_database.stubCount(); ++index) {
        const AcDbStub &stub = *m_database.stub(index);
        const auto counted = counts.find(stub.kind);
        if (counted != counts.end() && isLive(stub))
            ++counted->second;
    }
    for (DwgClass &each : m_classes) {
        const auto counted = counts.find(acdbKnownKind(each.dxfName));
        if (counted != counts.end() && m_facts.since(DrawingVersion::r2004))
            each.instances = counted->second;
    }
    if (m_classes == m_source.classes())
        return;
    auto section = encodeClasses(m_facts, m_source.container(), m_classes);
    if (!section)
        return fail(section.error());
    m_contents.sections["AcDb:Classes"] = *std::move(section);
}

// Records ----------------------------------------------------------------------------------------

void SavePlan::addRecord(std::uint64_t handle, base::Result<QByteArray, QString> record)
{
    if (record)
        m_records[handle] = *std::move(record);
    else
        fail(withWayOut(record.error()));
}

void SavePlan::encode(const AcDbStub &stub)
{
    const Place &where = m_places[stub.index];
    // Who is only somebody's neighbour stays as the file has it, whatever class has opened it.
    const bool isOwn = isNew(stub) || stub.has(AcDbStub::kChanged);
    const ResbufList groups = isOwn ? m_database.fileGroups(stub) : m_source.read(stub);
    EncodePlace place = encodePlace(m_database, m_source, stub, groups);
    if (place.type == 0) {
        const auto known = std::ranges::find(m_classes, acdbKindName(stub.kind), &DwgClass::dxfName);
        place.type = known == m_classes.end() ? 0 : known->number;
    }
    const AcDbStub *const owner = stub.owner != 0 ? m_database.stub(stub.owner) : nullptr;
    if (isNew(stub) && stub.has(AcDbStub::kEntity) && owner) {
        const AcDbObjectId block(const_cast<AcDbStub *>(owner));
        place.entityMode = block == m_database.modelSpaceId()   ? 2
                           : block == m_database.paperSpaceId() ? 1
                                                                : 0;
    }
    place.chain = where.chain;
    place.parts = where.parts;
    place.block = where.block;
    place.entries = where.entries;
    place.blockBegin = where.blockBegin;
    const bool isCustom = stub.object && stub.has(AcDbStub::kChanged) && stub.object->isCustom();
    const auto fields = isCustom ? filedFields(m_facts, AcDbObjectId(const_cast<AcDbStub *>(&stub)))
                                 : base::Result<FiledFields, Acad::ErrorStatus>(FiledFields());
    if (!fields)
        return addRecord(stub.handle, base::Failure{QStringLiteral("%1 %2: %3")
                                                        .arg(QString::fromLatin1(acdbKindName(stub.kind)),
                                                             QString::number(stub.handle, 16).toUpper(),
                                                             acadErrorStatusText(fields.error()))});
    if (isCustom)
        place.fields = &*fields;
    addRecord(stub.handle, encodeObject(m_facts, m_names, place, groups));
}

void SavePlan::encodeAll()
{
    std::vector<std::uint32_t> order;
    for (const auto &[index, place] : m_places) {
        if (isLive(*m_database.stub(index)))
            order.push_back(index);
    }
    std::ranges::sort(order); // So that the same failure is told each time.
    for (const std::uint32_t index : order)
        encode(*m_database.stub(index));
}

/// Objects of the file that no stub stands for stay as well.
void SavePlan::settleRecords()
{
    Container container = m_source.container();
    std::vector<PackedObject> &objects = m_contents.objects;
    for (const PackedObject &stored : storedObjects(container)) {
        const AcDbObjectId id = m_database.getAcDbObjectId({stored.handle});
        const bool isLeftOut = !id.isNull() && !id.stub()->has(AcDbStub::kNoFileForm) && !isLive(*id.stub());
        if (!isLeftOut && !m_records.contains(stored.handle))
            objects.push_back(stored);
    }
    if (container.damage != m_source.container().damage)
        return fail(container.damage);
    for (const auto &[handle, record] : m_records)
        objects.push_back({handle, viewOf(record)});
    std::ranges::sort(objects, {}, &PackedObject::handle);
}

/// Stands in a section of its own, behind a text.
void SavePlan::settleMeasurement(const ResbufList &groups)
{
    const std::string_view section = m_source.container().section("AcDb:Template");
    const std::size_t at = 2 + std::size_t(numberAt<std::uint16_t>(section, 0));
    if (section.size() < at + 2)
        return fail(Host::tr("the file has no place for the variable %1").arg(QLatin1String("$MEASUREMENT")));
    QByteArray bytes(section.data(), qsizetype(section.size()));
    putNumber(bytes, at, std::uint16_t(groups.front().integer()));
    m_contents.sections["AcDb:Template"] = std::move(bytes);
}

void SavePlan::settleVariables()
{
    HeaderChanges changes;
    for (const QByteArray &name : m_database.changedHeaderNames()) {
        const ResbufList *const groups = m_database.headerVariable(name);
        if (groups && !groups->empty() && name != "$HANDSEED")
            changes.variables.push_back({name, *groups});
    }
    Container container = m_source.container();
    changes.handleSeed =
        std::max(readHeader(m_facts, container).handleSeed, m_database.freeHandle(m_nextHandle));
    m_contents.handleSeed = changes.handleSeed;
    auto header = encodeHeader(m_facts, m_source.container(), m_names, changes);
    if (!header)
        return fail(header.error());
    m_contents.sections["AcDb:Header"] = std::move(header->section);
    for (const QByteArray &name : header->notStored) {
        if (name == "$MEASUREMENT")
            settleMeasurement(*m_database.headerVariable(name));
        else
            fail(Host::tr("the variable %1 has no place in a DWG file of this version")
                     .arg(QString::fromLatin1(name)));
    }
}

} // namespace dwg
