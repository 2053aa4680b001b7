#include "host/formats/dxf/dxfplan.h"

#include "host/formats/dxf/dxfidentity.h"
#include "host/formats/dxf/dxftables.h"
#include "host/formats/goneobjects.h"

#include <algorithm>

namespace dxf
{

SavePlan::SavePlan(const AcDbDatabase &database, const DxfSource &source)
    : m_database(database), m_source(source), m_layout(source.layout()), m_encoder(source),
      m_objects(database, source, m_encoder), m_nextHandle(database.handseed().value)
{
    if (!database.hasChanges())
        return;
    m_changed = database.changedStubs();
    m_gone = goneObjects(database);
    removeGone();
    writeChanged();
    writeNew();
    writeTableCounts();
    writeNewTables();
    writeClasses();
    writeMissingHandles();
    writeVariables();
    writeHandseed();
    writeMissingEnds();
    writeNewSections();
    writeKept();
    sortEdits();
}

void SavePlan::insert(std::uint64_t offset, Rank rank, const QByteArray &bytes)
{
    m_insertions[{offset, rank}].append(bytes);
}

void SavePlan::replace(Place place, QByteArray bytes)
{
    m_edits.push_back({place.begin, place.end - place.begin, std::move(bytes)});
}

void SavePlan::insertIntoSection(const QByteArray &section, const QByteArray &bytes, Rank rank)
{
    if (const Section *const known = m_layout.section(section))
        insert(known->end, rank, bytes);
    else
        m_newSections[section].append(bytes);
}

/// For block ends and table heads that the database has no objects for.
std::uint64_t SavePlan::newHandle()
{
    const std::uint64_t given = m_database.freeHandle(m_nextHandle);
    m_nextHandle = given + 1;
    return given;
}

static Place placeOf(const AcDbStub &stub)
{
    return {stub.begin, stub.begin + stub.size};
}

// Objects ----------------------------------------------------------------------------------------

void SavePlan::removeGone()
{
    for (std::uint32_t index = 1; index < m_gone.size(); ++index) {
        const AcDbStub &stub = *m_database.stub(index);
        if (!m_gone[index] || !stub.has(AcDbStub::kHasSource))
            continue;
        replace(placeOf(stub), {});
        if (const auto table = tableOfRecord(stub))
            m_tablesTouched[*table] = true;
    }
}

void SavePlan::writeChanged()
{
    const auto recordCountOf = [this](const AcDbStub *stub) -> std::optional<std::int64_t> {
        for (const Table &table : m_layout.tables) {
            if (table.stub == stub && table.kind)
                return recordCount(*table.kind);
        }
        return {};
    };
    for (const AcDbStub *const stub : m_changed) {
        if (stub->has(AcDbStub::kHasSource) && !isGone(*stub))
            replace(placeOf(*stub), m_objects.encode(*stub, recordCountOf(stub)));
    }
}

void SavePlan::writeNew()
{
    static const AcDbKind kTable = acdbKind("TABLE");
    std::vector<const AcDbStub *> added;
    for (const AcDbStub *const stub : m_changed) {
        if (!stub->has(AcDbStub::kHasSource) && !isGone(*stub))
            added.push_back(stub);
    }
    m_handlesWritten = !added.empty();
    // Many readers take the first dictionary of the file for the root.
    const AcDbStub *const root = m_database.namedObjectsDictionaryId().stub();
    std::ranges::sort(added, {},
                      [root](const AcDbStub *stub) { return std::pair(stub != root, stub->index); });
    for (const AcDbStub *const stub : added) {
        if (stub->has(AcDbStub::kSubEntity))
            m_newParts[stub->owner].push_back(stub);
    }
    for (const AcDbStub *const stub : added) {
        if (stub->has(AcDbStub::kEntity))
            writeNewEntity(*stub);
        else if (const auto table = tableOfRecord(*stub))
            writeNewRecord(*stub, *table);
        else if (stub->kind != kTable) // Table heads are written with their tables.
            insertIntoSection("OBJECTS", m_objects.encode(*stub));
    }
    for (const auto &[owner, parts] : m_newParts) {
        if (!m_database.stub(owner)->has(AcDbStub::kHasSource))
            continue; // Written with their new owner.
        for (const AcDbStub *const part : parts)
            insert(subEntityPlace(*m_database.stub(owner)), kContents, m_objects.encode(*part));
    }
}

/// New attributes and vertices stand before the sequence's end, else behind their owner.
std::uint64_t SavePlan::subEntityPlace(const AcDbStub &owner) const
{
    static const AcDbKind kSequenceEnd = acdbKind("SEQEND");
    std::uint64_t place = owner.begin + owner.size;
    for (std::uint32_t index = owner.index + 1; index < m_database.stubCount(); ++index) {
        const AcDbStub &part = *m_database.stub(index);
        if (part.owner != owner.index || !part.has(AcDbStub::kSubEntity) || !part.has(AcDbStub::kHasSource))
            break;
        if (part.kind == kSequenceEnd && !isGone(part))
            return part.begin;
        place = part.begin + part.size;
    }
    return place;
}

QByteArray SavePlan::entityWithParts(const AcDbStub &entity) const
{
    QByteArray bytes = m_objects.encode(entity);
    const auto parts = m_newParts.find(entity.index);
    if (parts != m_newParts.end()) {
        for (const AcDbStub *const part : parts->second)
            bytes.append(m_objects.encode(*part));
    }
    return bytes;
}

void SavePlan::writeNewEntity(const AcDbStub &stub)
{
    static const AcDbKind kBlock = acdbKind("BLOCK");
    static const AcDbKind kBlockEnd = acdbKind("ENDBLK");
    if (stub.has(AcDbStub::kSubEntity) || stub.kind == kBlock || stub.kind == kBlockEnd)
        return; // Written with their owners.
    const AcDbStub &record = *m_database.stub(stub.owner);
    const bool inNewBlock = !record.has(AcDbStub::kHasSource) && !record.has(AcDbStub::kNoFileForm);
    if (record.index == 0 || !inNewBlock)
        insertIntoBlock(record, entityWithParts(stub));
}

void SavePlan::insertIntoBlock(const AcDbStub &blockRecord, const QByteArray &bytes)
{
    const AcDbObjectId id(const_cast<AcDbStub *>(&blockRecord));
    const BlockContents *const contents = m_database.blockContents(id);
    const bool inEntities = id == m_database.modelSpaceId() || id == m_database.paperSpaceId();
    if (!contents || !contents->blockBegin || inEntities) {
        insertIntoSection("ENTITIES", bytes);
        return;
    }
    if (contents->blockEnd) {
        insert(contents->blockEnd->begin, kContents, bytes);
        return;
    }
    const auto unended =
        std::ranges::find(m_layout.unendedBlocks, contents->blockBegin, &UnendedBlock::begin);
    if (unended != m_layout.unendedBlocks.end())
        insert(unended->end, kContents, bytes);
    else
        insertIntoSection("ENTITIES", bytes);
}

/// A new block record's definition. The ends of the block get objects of their own only in the file.
QByteArray SavePlan::newBlock(const AcDbStub &record)
{
    const BlockContents *const contents =
        m_database.blockContents(AcDbObjectId(const_cast<AcDbStub *>(&record)));
    const ResbufList recordGroups = m_database.fileGroups(record);
    const resbuf *const name = findGroup(recordGroups, 2);
    const bool r12 = m_source.version() <= DrawingVersion::r12;
    QByteArray bytes;
    const auto begin = [&](QByteArrayView kind) {
        m_encoder.marker(bytes, kind);
        m_encoder.handle(bytes, 5, newHandle());
        if (!r12) {
            m_encoder.handle(bytes, 330, record.handle);
            m_encoder.plainText(bytes, 100, "AcDbEntity");
        }
        m_encoder.plainText(bytes, 8, "0");
        if (!r12)
            m_encoder.plainText(bytes, 100,
                                kind == QByteArrayView("BLOCK") ? "AcDbBlockBegin" : "AcDbBlockEnd");
    };
    if (contents && contents->blockBegin) {
        bytes.append(m_objects.encode(*contents->blockBegin));
    } else {
        begin("BLOCK");
        m_encoder.text(bytes, 2, name ? name->text() : QString());
        m_encoder.integer(bytes, 70, 0);
        for (const int code : {10, 20, 30})
            m_encoder.real(bytes, code, 0.0);
        m_encoder.text(bytes, 3, name ? name->text() : QString());
        m_encoder.plainText(bytes, 1, "");
    }
    for (const std::uint32_t index : contents ? contents->entities : std::vector<std::uint32_t>()) {
        if (!isGone(*m_database.stub(index)))
            bytes.append(entityWithParts(*m_database.stub(index)));
    }
    if (contents && contents->blockEnd)
        bytes.append(m_objects.encode(*contents->blockEnd));
    else
        begin("ENDBLK");
    return bytes;
}

void SavePlan::writeNewRecord(const AcDbStub &stub, SymbolTable table)
{
    m_tablesTouched[table] = true;
    if (table == SymbolTable::block)
        insertIntoSection("BLOCKS", newBlock(stub), kContainer);
    if (table == SymbolTable::block && m_source.version() <= DrawingVersion::r12)
        return;
    const QByteArray bytes = m_objects.encode(stub);
    const auto known = std::ranges::find(m_layout.tables, std::optional(table), &Table::kind);
    if (known != m_layout.tables.end())
        insert(known->end, kContents, bytes);
    else
        m_newTables[table].append(bytes);
}

// Tables and classes -----------------------------------------------------------------------------

std::int64_t SavePlan::recordCount(SymbolTable table) const
{
    return std::ranges::count_if(m_database.tableRecords(table), [this](std::uint32_t index) {
        const AcDbStub &record = *m_database.stub(index);
        return !record.has(AcDbStub::kErased) && !record.has(AcDbStub::kNoFileForm) && !isGone(record);
    });
}

void SavePlan::writeTableCounts()
{
    for (const Table &table : m_layout.tables) {
        if (!table.kind || !m_tablesTouched.contains(*table.kind))
            continue;
        if (table.stub && std::ranges::find(m_changed, table.stub) != m_changed.end())
            continue; // Written with the table's other changes.
        m_source.visitGroups(m_source.bytes(table.head), [&](const Group &group) {
            if (group.code != 70)
                return true;
            QByteArray count;
            m_encoder.integer(count, 70, recordCount(*table.kind));
            const std::uint64_t begin = m_source.offsetOf(group.begin);
            replace({begin, begin + std::uint64_t(group.end - group.begin)}, count);
            return false;
        });
    }
}

void SavePlan::writeNewTables()
{
    for (const auto &[kind, records] : m_newTables) {
        QByteArray bytes;
        if (const AcDbObjectId head = m_database.symbolTableId(kind); head.isValid()) {
            bytes = m_objects.encode(*head.stub(), recordCount(kind));
        } else {
            m_encoder.marker(bytes, "TABLE");
            m_encoder.plainText(bytes, 2, tableName(kind));
            if (m_source.version() > DrawingVersion::r12) {
                m_encoder.handle(bytes, 5, newHandle());
                m_encoder.handle(bytes, 330, 0);
                m_encoder.plainText(bytes, 100, "AcDbSymbolTable");
            }
            m_encoder.integer(bytes, 70, recordCount(kind));
        }
        bytes.append(records);
        m_encoder.marker(bytes, "ENDTAB");
        insertIntoSection("TABLES", bytes, kContainer);
    }
}

void SavePlan::writeClasses()
{
    const bool counted = m_source.version() >= DrawingVersion::r2004;
    std::unordered_map<AcDbKind, std::int64_t> instances; // Of the kinds among the changed objects.
    for (const AcDbStub *const stub : m_changed) {
        if (!stub->has(AcDbStub::kHasSource) || stub->has(AcDbStub::kErased))
            instances.try_emplace(stub->kind, 0);
    }
    for (std::uint32_t index = 1; counted && !instances.empty() && index < m_database.stubCount(); ++index) {
        const AcDbStub &stub = *m_database.stub(index);
        const auto known = instances.find(stub.kind);
        if (known != instances.end() && !stub.has(AcDbStub::kErased) && !isGone(stub))
            ++known->second;
    }
    const auto countOf = [&](const QByteArray &dxfName) {
        const auto known = instances.find(acdbKnownKind(dxfName));
        return known == instances.end() ? std::optional<std::int64_t>() : known->second;
    };
    for (const ClassRecord &record : m_layout.classes) {
        if (const auto count = counted ? countOf(record.dxfName) : std::nullopt)
            writeInstanceCount(record, *count);
    }
    for (const DrawingClass &added : m_database.classes()) {
        if (added.fromSource)
            continue;
        QByteArray bytes;
        m_encoder.marker(bytes, "CLASS");
        m_encoder.plainText(bytes, 1, added.dxfName);
        m_encoder.text(bytes, 2, added.className);
        m_encoder.text(bytes, 3, added.application);
        m_encoder.integer(bytes, 90, added.proxyFlags);
        if (counted)
            m_encoder.integer(bytes, 91, countOf(added.dxfName).value_or(0));
        m_encoder.integer(bytes, 280, added.wasProxy);
        m_encoder.integer(bytes, 281, added.isEntity);
        insertIntoSection("CLASSES", bytes);
    }
}

void SavePlan::writeInstanceCount(const ClassRecord &record, std::int64_t count)
{
    m_source.visitGroups(m_source.bytes(record.place), [&](const Group &group) {
        if (group.code != 91)
            return true;
        QByteArray bytes;
        m_encoder.integer(bytes, 91, count);
        const std::uint64_t begin = m_source.offsetOf(group.begin);
        replace({begin, begin + std::uint64_t(group.end - group.begin)}, bytes);
        return false;
    });
}

// Variables and handles --------------------------------------------------------------------------

void SavePlan::writeVariable(const QByteArray &name, const ResbufList &groups)
{
    QByteArray bytes;
    m_encoder.plainText(bytes, 9, name);
    m_encoder.append(bytes, groups);
    const auto known = std::ranges::find(m_layout.variables, name, &Variable::name);
    if (known != m_layout.variables.end())
        replace(known->place, bytes);
    else
        insertIntoSection("HEADER", bytes);
}

void SavePlan::writeVariables()
{
    for (const QByteArray &name : m_database.changedHeaderNames()) {
        const ResbufList *const groups = m_database.headerVariable(name);
        if (groups && name != "$HANDSEED")
            writeVariable(name, *groups);
    }
}

/// A stale seed would make the next program give handles that are in use.
void SavePlan::writeHandseed()
{
    const ResbufList *const stored = m_database.headerVariable("$HANDSEED");
    const std::uint64_t value = stored && !stored->empty() ? stored->front().handle().value : 0;
    const std::uint64_t next = m_database.freeHandle(m_nextHandle);
    if (m_handlesWritten && value < next && m_layout.section("HEADER"))
        writeVariable("$HANDSEED", {resbuf(5, AcDbHandle{next})});
}

void SavePlan::writeHandle(const AcDbStub &stub)
{
    const HandleGroup known = findHandleGroup(m_source, m_source.bytes(placeOf(stub)));
    QByteArray bytes;
    m_encoder.handle(bytes, handleCode(stub.kind), stub.handle);
    const std::string_view place =
        known.bytes.empty() ? known.firstGroup.substr(known.firstGroup.size()) : known.bytes;
    const std::uint64_t begin = m_source.offsetOf(place.data());
    replace({begin, begin + place.size()}, bytes);
    m_handlesWritten = true;
}

/// Objects without a handle are numbered by their order at each opening, so when one of them goes the
/// others must say which they are. Handles that were replaced at opening are written too.
void SavePlan::writeMissingHandles()
{
    std::vector<bool> rewritten(m_database.stubCount());
    bool numberedGoes = false;
    for (const AcDbStub *const stub : m_changed)
        rewritten[stub->index] = true;
    for (std::uint32_t index = 1; index < m_gone.size(); ++index) {
        const AcDbStub &stub = *m_database.stub(index);
        numberedGoes |= m_gone[index] && stub.has(AcDbStub::kNoFileHandle) && stub.has(AcDbStub::kHasSource);
    }
    for (std::uint32_t index = 1; numberedGoes && index < m_database.stubCount(); ++index) {
        const AcDbStub &stub = *m_database.stub(index);
        const bool isNumbered = stub.has(AcDbStub::kNoFileHandle) && stub.has(AcDbStub::kHasSource);
        if (isNumbered && !rewritten[index] && !isGone(stub))
            writeHandle(stub);
    }
    for (const std::uint32_t index : m_layout.renumbered) {
        if (!rewritten[index] && !isGone(*m_database.stub(index)))
            writeHandle(*m_database.stub(index));
    }
}

// Structure --------------------------------------------------------------------------------------

void SavePlan::writeMissingEnds()
{
    const auto mark = [this](std::uint64_t offset, Rank rank, QByteArrayView kind) {
        QByteArray bytes;
        m_encoder.marker(bytes, kind);
        insert(offset, rank, bytes);
    };
    for (const UnendedBlock &block : m_layout.unendedBlocks) {
        if (!isGone(*block.begin))
            mark(block.end, kInnerEnd, "ENDBLK");
    }
    for (const Table &table : m_layout.tables) {
        if (!table.closed)
            mark(table.end, kInnerEnd, "ENDTAB");
    }
    for (const Section &section : m_layout.sections) {
        if (!section.closed)
            mark(section.end, kSectionEnd, "ENDSEC");
    }
    if (!m_layout.hasEof)
        mark(m_layout.eof, kFileEnd, "EOF"); // What could not be read stays behind it.
}

void SavePlan::writeNewSections()
{
    static constexpr QByteArrayView kOrder[] = {"HEADER", "CLASSES",  "TABLES",
                                                "BLOCKS", "ENTITIES", "OBJECTS"};
    const auto orderOf = [](const QByteArray &name) {
        return std::ranges::find(kOrder, QByteArrayView(name));
    };
    for (const QByteArrayView name : kOrder) {
        const auto added = m_newSections.find(name.toByteArray());
        if (added == m_newSections.end())
            continue;
        QByteArray bytes;
        m_encoder.marker(bytes, "SECTION");
        m_encoder.plainText(bytes, 2, name);
        bytes.append(added->second);
        m_encoder.marker(bytes, "ENDSEC");
        const bool kept = m_source.keepsInComments() && standsInComments(name);
        const auto later = std::ranges::find_if(m_layout.sections, [&](const Section &section) {
            return m_source.isKept(section.begin) == kept && orderOf(section.name) > orderOf(added->first);
        });
        const std::uint64_t end = kept ? m_source.keptEnd() : m_layout.eof;
        insert(later != m_layout.sections.end() ? later->begin : end, kNewSection, bytes);
    }
}

/// At one offset insertions come before what replaces the bytes behind it.
static void sortByPlace(std::vector<Edit> &edits)
{
    std::ranges::stable_sort(edits, [](const Edit &a, const Edit &b) {
        return a.offset != b.offset ? a.offset < b.offset : (a.removed != 0) < (b.removed != 0);
    });
}

/// Something besides empty sections; what cannot be read is something too.
static bool holdsAnything(const DxfSource &source, std::string_view text)
{
    bool found = false;
    const char *end = text.data();
    source.visitGroups(text, [&](const Group &group) {
        const std::string_view value = trimmed(group.value);
        const bool isFrame = group.code == 0 && (value == "SECTION" || value == "ENDSEC");
        const bool isName = group.code == 2 && standsInComments({value.data(), qsizetype(value.size())});
        found = !isFrame && !isName;
        end = group.end;
        return !found;
    });
    return found || end != text.data() + text.size();
}

/// What the edits make of the kept text; they are edits of the file no more.
QByteArray SavePlan::takeKeptText()
{
    std::vector<Edit> edits;
    const auto firstInsertion = m_insertions.lower_bound({m_source.keptBegin(), kContents});
    for (auto insertion = firstInsertion; insertion != m_insertions.end(); ++insertion)
        edits.push_back({insertion->first.first, 0, std::move(insertion->second)});
    m_insertions.erase(firstInsertion, m_insertions.end());
    const auto firstKept = std::stable_partition(
        m_edits.begin(), m_edits.end(), [this](const Edit &edit) { return !m_source.isKept(edit.offset); });
    std::move(firstKept, m_edits.end(), std::back_inserter(edits));
    m_edits.erase(firstKept, m_edits.end());
    sortByPlace(edits);

    QByteArray text;
    std::uint64_t at = m_source.keptBegin();
    const auto append = [&text](std::string_view part) { text.append(part.data(), qsizetype(part.size())); };
    for (const Edit &edit : edits) {
        append(m_source.bytes({at, edit.offset}));
        text.append(edit.bytes);
        at = edit.offset + edit.removed;
    }
    append(m_source.bytes({at, m_source.keptEnd()}));
    return text;
}

/// The old comments go, the new ones come to stand right before the file's end.
void SavePlan::writeKept()
{
    const QByteArray text = takeKeptText();
    // Damage may have put comments into an object's stretch, which leaves them out when it is written.
    sortByPlace(m_edits);
    std::vector<Edit> removals;
    auto rewritten = m_edits.begin();
    for (const Place comment : m_source.kept().comments) {
        while (rewritten != m_edits.end() && rewritten->offset + rewritten->removed <= comment.begin)
            ++rewritten;
        if (rewritten == m_edits.end() || rewritten->offset >= comment.end)
            removals.push_back({comment.begin, comment.end - comment.begin, {}});
    }
    std::ranges::move(removals, std::back_inserter(m_edits));
    const std::string_view whole(text.constData(), std::size_t(text.size()));
    if (!holdsAnything(m_source, whole))
        return;
    QByteArray comments;
    appendKept(comments, m_encoder, whole, m_source.lineEnd());
    insert(m_layout.eof, kKept, comments);
}

void SavePlan::sortEdits()
{
    std::vector<Edit> all;
    all.reserve(m_insertions.size() + m_edits.size());
    for (auto &[key, bytes] : m_insertions)
        all.push_back({key.first, 0, std::move(bytes)});
    std::ranges::move(m_edits, std::back_inserter(all));
    sortByPlace(all);
    m_edits = std::move(all);

    // A last line without an end must not run into what is added behind it.
    const std::string_view bytes = m_source.bytes();
    const auto behindAll =
        std::ranges::find_if(m_edits, [&](const Edit &edit) { return edit.offset == bytes.size(); });
    if (behindAll == m_edits.end())
        return;
    const bool endRewritten = behindAll != m_edits.begin() &&
                              std::prev(behindAll)->offset + std::prev(behindAll)->removed == bytes.size();
    if (!endRewritten)
        behindAll->bytes.prepend(m_encoder.missingLineEnd(bytes));
}

} // namespace dxf
