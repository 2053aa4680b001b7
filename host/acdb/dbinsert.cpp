#include "host/acdb/dbinsert.h"

#include "host/acdb/dbdict.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbxref.h"
#include "host/acdb/dbxrefedit.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace
{

constexpr std::array<std::pair<std::string_view, SymbolTable>, kSymbolTableCount> kRecordKinds{{
    {"VPORT", SymbolTable::viewport},
    {"LTYPE", SymbolTable::linetype},
    {"LAYER", SymbolTable::layer},
    {"STYLE", SymbolTable::textStyle},
    {"VIEW", SymbolTable::view},
    {"UCS", SymbolTable::ucs},
    {"APPID", SymbolTable::appId},
    {"DIMSTYLE", SymbolTable::dimStyle},
    {"BLOCK_RECORD", SymbolTable::block},
}};

constexpr int kName = 2;

/// Which table a group names a record of, in an entity of that kind.
std::optional<SymbolTable> namedTable(const QByteArray &kind, int code)
{
    switch (code) {
    case kName:
        return kind == "INSERT" || kind == "DIMENSION" || kind == "ACAD_TABLE"
                   ? std::optional(SymbolTable::block)
                   : std::nullopt;
    case 3:
        return kind == "DIMENSION" || kind == "LEADER" || kind == "TOLERANCE"
                   ? std::optional(SymbolTable::dimStyle)
                   : std::nullopt;
    case 6:
        return SymbolTable::linetype;
    case 7:
        return SymbolTable::textStyle;
    case 8:
    case 1003:
        return SymbolTable::layer;
    case 1001:
        return SymbolTable::appId;
    default:
        return std::nullopt;
    }
}

/// Of a record, or of what shows a block.
QString recordName(const ResbufList &groups)
{
    const resbuf *const name = findGroup(groups, kName);
    return name ? name->text() : QString();
}

/// Copies what entities use along with them, each once. Blocks wait in a queue: files may nest them as deep
/// as they like.
class DrawingCopier
{
public:
    DrawingCopier(AcDbDatabase &target, const AcDbDatabase &from, const QString &prefix = {})
        : m_target(target), m_from(from), m_prefix(prefix), m_blocks(target)
    {
        noteNamedObjects();
    }

    AcDbInsertedDrawing copy(const QString &name)
    {
        const AcDbObjectId known = m_target.tableRecord(SymbolTable::block, name);
        const AcGePoint3d base = m_from.headerPoint("$INSBASE");
        AcDbInsertedDrawing inserted;
        inserted.holdsItself = m_prefix.isEmpty() && wouldHoldItself(name, known);
        if (inserted.holdsItself)
            return inserted;
        inserted.block = known.isValid() ? emptied(known, base) : added(name, base);
        if (inserted.block.isNull())
            return inserted;
        setUnits(inserted.block);
        m_waiting.push_back({m_from.modelSpaceId(), inserted.block});
        while (!m_waiting.empty()) {
            const auto [source, block] = m_waiting.back();
            m_waiting.pop_back();
            copyContents(source, block);
        }
        inserted.leftOut = m_leftOut;
        return inserted;
    }

private:
    /// A place under the named objects: key of the dictionary, key within it.
    struct Place {
        QString dictionary;
        QString key;
    };

    void noteNamedObjects()
    {
        const auto entriesOf = [](AcDbObjectId id) {
            const AcDbObjectPointer<AcDbDictionary> dictionary(id, AcDb::kForRead);
            return dictionary ? dictionary->entries() : std::vector<AcDbDictionary::Entry>();
        };
        for (const AcDbDictionary::Entry &outer : entriesOf(m_from.namedObjectsDictionaryId())) {
            for (const AcDbDictionary::Entry &inner : entriesOf(outer.id))
                m_places.try_emplace(inner.id.handle().value, Place{outer.key, inner.key});
        }
    }

    // Blocks ---------------------------------------------------------------------------------------

    /// The block records that a block of the target shows.
    std::vector<AcDbObjectId> shownBy(AcDbObjectId block) const
    {
        std::vector<AcDbObjectId> shown;
        const BlockContents *const contents = m_target.blockContents(block);
        for (const std::uint32_t index : contents ? contents->entities : std::vector<std::uint32_t>()) {
            const AcDbStub &stub = *m_target.stub(index);
            if (stub.has(AcDbStub::kErased) || !namedTable(acdbKindName(stub.kind), kName))
                continue;
            const AcDbObjectId record =
                m_target.tableRecord(SymbolTable::block, recordName(m_target.fileGroups(stub)));
            if (record.isValid())
                shown.push_back(record);
        }
        return shown;
    }

    /// True when a block that the drawing brings or uses is the block itself, or shows it.
    bool wouldHoldItself(const QString &name, AcDbObjectId known) const
    {
        if (m_from.tableRecord(SymbolTable::block, name).isValid())
            return true;
        std::vector<AcDbObjectId> waiting;
        std::unordered_set<AcDbObjectId> seen;
        const auto wait = [&](AcDbObjectId block) {
            if (block.isValid() && seen.insert(block).second)
                waiting.push_back(block);
        };
        if (!known.isValid())
            return false;
        for (const std::uint32_t index : m_from.tableRecords(SymbolTable::block)) {
            const QString used = recordName(m_from.fileGroups(*m_from.stub(index)));
            if (!used.startsWith(u'*'))
                wait(m_target.tableRecord(SymbolTable::block, used));
        }
        while (!waiting.empty()) {
            const AcDbObjectId block = waiting.back();
            waiting.pop_back();
            if (block == known)
                return true;
            std::ranges::for_each(shownBy(block), wait);
        }
        return false;
    }

    AcDbObjectId emptied(AcDbObjectId block, const AcGePoint3d &base)
    {
        const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
        if (!record || record->isLayout())
            return {};
        for (const AcDbObjectId id : record->entities()) {
            if (const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite); entity)
                entity->erase();
        }
        if (const AcDbStub *const begin = m_target.blockContents(block)->blockBegin) {
            const AcDbObjectPointer<AcDbEntity> opened(AcDbObjectId(m_target.stub(begin->index)),
                                                       AcDb::kForWrite);
            if (opened)
                opened->setGroup(10, base);
        }
        return block;
    }

    void setUnits(AcDbObjectId block)
    {
        if (m_target.version() <= DrawingVersion::r12)
            return;
        if (const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForWrite); record)
            record->setGroup(70, m_from.headerInteger("$INSUNITS"), u"AcDbBlockTableRecord");
    }

    /// An empty block with a name of its own.
    AcDbObjectId added(const QString &name, const AcGePoint3d &base)
    {
        const AcDbObjectId block =
            name.startsWith(u'*') ? m_blocks.addAnonymous(base) : m_blocks.add(name, base);
        if (!block.isNull())
            block.stub()->object->close();
        return block;
    }

    /// The name that the block has in the target; its contents come later.
    QString blockName(const QString &name)
    {
        const QString folded = name.toCaseFolded();
        if (const auto known = m_blockNames.find(folded); known != m_blockNames.end())
            return known->second;
        const AcDbObjectId source = m_from.tableRecord(SymbolTable::block, name);
        const bool isAnonymous = name.startsWith(u'*');
        const AcDbXref *const xref = m_from.xrefs().find(source);
        QString &taken = m_blockNames[folded] = isAnonymous || xref ? name : renamed(name);
        if (!source.isValid() || (!isAnonymous && m_target.tableRecord(SymbolTable::block, taken).isValid()))
            return taken;
        if (xref) {
            takeXref(*xref);
            return taken;
        }
        const AcDbObjectPointer<AcDbBlockTableRecord> record(source, AcDb::kForRead);
        if (!record || record->isLayout())
            return taken;
        const AcDbObjectId copy = added(taken, record->origin());
        if (copy.isNull())
            return taken;
        taken = recordName(m_target.fileGroups(*copy.stub()));
        m_waiting.push_back({source, copy});
        return taken;
    }

    void takeXref(const AcDbXref &xref)
    {
        if (!m_prefix.isEmpty() && xref.database)
            m_leftOut +=
                acdbBindDrawing(m_target, xref.name, *xref.database, acdbBindPrefix(m_target, xref.name))
                    .leftOut;
        else
            acdbAttachXref(m_target, xref.name, xref.file.isEmpty() ? xref.path : xref.file, xref.isOverlay);
    }

    /// What a record is called in the target.
    QString renamed(const QString &name) const
    {
        if (m_prefix.isEmpty() || name.isEmpty() || AcDbXrefs::isEverywhere(name))
            return name;
        // Of a reference further on: its own prefix is like this one.
        const qsizetype bar = name.indexOf(u'|');
        return bar < 0 ? m_prefix + name : name.left(bar) + QStringLiteral("$0$") + name.mid(bar + 1);
    }

    void copyContents(AcDbObjectId source, AcDbObjectId block)
    {
        AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForWrite);
        const BlockContents *const contents = m_from.blockContents(source);
        if (!record || !contents)
            return;
        for (const std::uint32_t index : contents->entities) {
            if (const AcDbObjectId id(m_from.stub(index)); id.isValid())
                copyEntity(id, *record);
        }
    }

    // Entities -------------------------------------------------------------------------------------

    /// Classes file in ways of their own, and refer to what is not here.
    bool canCopy(AcDbObjectId id) const
    {
        const QByteArray &kind = acdbKindName(id.stub()->kind);
        const auto isKind = [&kind](const DrawingClass &each) { return each.dxfName == kind; };
        return !acdbKindClass(id.stub()->kind, true)->application() && kind != "ACAD_PROXY_ENTITY" &&
               kind != "VIEWPORT" &&
               (std::ranges::none_of(m_from.classes(), isKind) ||
                std::ranges::any_of(m_target.classes(), isKind));
    }

    void copyEntity(AcDbObjectId id, AcDbBlockTableRecord &block)
    {
        if (!canCopy(id)) {
            ++m_leftOut;
            return;
        }
        auto *const entity = static_cast<AcDbEntity *>(copyOf(id));
        AcDbObjectId copy;
        if (block.appendAcDbEntity(copy, entity) != Acad::eOk) {
            delete entity;
            ++m_leftOut;
            return;
        }
        for (const AcDbObjectId owned : acdbSubEntities(id)) {
            AcDbObjectId part;
            AcDbObject *const made = copyOf(owned);
            m_target.addAcDbObject(made, copy, &part);
            part.stub()->set(AcDbStub::kSubEntity);
            made->close();
        }
        entity->close();
    }

    AcDbObject *copyOf(AcDbObjectId id)
    {
        const QByteArray &name = acdbKindName(id.stub()->kind);
        auto *const copy =
            static_cast<AcDbObject *>(acdbKindClass(m_target.kindNamed(name), id.isEntity())->create());
        copy->editGroups() = translated(*id.stub());
        return copy;
    }

    // Groups ---------------------------------------------------------------------------------------

    /// The groups of an object of `from` as the target may have them: nothing refers to `from` any more.
    ResbufList translated(const AcDbStub &stub)
    {
        ResbufList groups = m_from.fileGroups(stub);
        acdbDropApplicationGroups(groups);
        const bool isEntity = stub.has(AcDbStub::kEntity);
        const bool isOld = m_target.version() <= DrawingVersion::r12;
        std::erase_if(groups, [&](const resbuf &group) {
            return (isEntity && (group.restype == 67 || group.restype == 410)) ||
                   (isOld && group.restype == 100);
        });
        const QByteArray &kind = acdbKindName(stub.kind);
        for (resbuf &group : groups) {
            group.source = {};
            if (std::holds_alternative<AcDbHandle>(group.resval) && group.restype != 5 &&
                group.restype != 105)
                group.assign(handleInTarget(group.handle()));
            else if (const auto table = isEntity || group.restype > 1000 || group.restype == 6
                                            ? namedTable(kind, group.restype)
                                            : std::nullopt)
                group.assign(nameInTarget(*table, group.text()));
        }
        if (kind == "HATCH")
            forgetBoundaryObjects(groups);
        // Records do without what they refer to; entities may count it.
        if (!isEntity)
            std::erase_if(groups, [](const resbuf &group) {
                return group.restype != 330 && std::holds_alternative<AcDbHandle>(group.resval) &&
                       group.handle().value == 0;
            });
        return groups;
    }

    /// The entities that a hatch follows are not known in the target.
    static void forgetBoundaryObjects(ResbufList &groups)
    {
        const std::size_t own = subclassBegin(groups, u"AcDbHatch");
        if (resbuf *const isAssociative = findGroup(groups, 71, own))
            isAssociative->assign(std::int64_t(0));
        for (std::size_t i = own; i + 1 < groups.size(); ++i) {
            if (groups[i].restype == 97 && groups[i + 1].restype == 330)
                groups[i].assign(std::int64_t(0));
        }
        std::size_t position = 0;
        std::erase_if(groups, [&](const resbuf &group) { return position++ >= own && group.restype == 330; });
    }

    QString nameInTarget(SymbolTable table, const QString &name)
    {
        if (table == SymbolTable::block)
            return blockName(name);
        if (table == SymbolTable::appId)
            AcDbSymbolTable::ensureApplicationId(m_target, name);
        else
            record(table, name);
        return table == SymbolTable::appId ? name : renamed(name);
    }

    /// The target's record of that name, brought along when there is none.
    AcDbObjectId record(SymbolTable table, const QString &name)
    {
        const QString there = renamed(name);
        if (const AcDbObjectId known = m_target.tableRecord(table, there); known.isValid() || name.isEmpty())
            return known;
        const AcDbObjectId source = m_from.tableRecord(table, name);
        if (!source.isValid() || !enter())
            return {};
        ResbufList groups = translated(*source.stub());
        leave();
        groups.resize(extendedDataBegin(groups));
        if (resbuf *const own = findGroup(groups, kName); own && there != name)
            own->assign(there);
        AcDbObjectId made;
        if (AcDbSymbolTable(m_target, table).add(std::move(groups), made) == Acad::eOk)
            made.stub()->object->close();
        return made;
    }

    AcDbHandle handleInTarget(AcDbHandle handle)
    {
        const AcDbObjectId source = m_from.getAcDbObjectId(handle);
        if (!source.isValid() || source.isEntity())
            return {0};
        const QByteArray &kind = acdbKindName(source.stub()->kind);
        const auto table =
            std::ranges::find(kRecordKinds, std::string_view(kind.constData(), std::size_t(kind.size())),
                              &decltype(kRecordKinds)::value_type::first);
        if (table == kRecordKinds.end())
            return namedObject(source).handle();
        const QString name = recordName(m_from.fileGroups(*source.stub()));
        return table->second == SymbolTable::block
                   ? m_target.tableRecord(SymbolTable::block, blockName(name)).handle()
                   : record(table->second, name).handle();
    }

    /// The object that the target keeps in the same place under its named objects; brought along when there
    /// is none.
    AcDbObjectId namedObject(AcDbObjectId source)
    {
        const auto place = m_places.find(source.handle().value);
        if (place == m_places.end())
            return {};
        const auto dictionaryAt = [this](const QString &key) {
            const AcDbObjectPointer<AcDbDictionary> all(m_target.namedObjectsDictionaryId(), AcDb::kForRead);
            return all ? all->getAt(key) : AcDbObjectId();
        };
        const AcDbObjectId dictionary = dictionaryAt(place->second.dictionary);
        if (const AcDbObjectPointer<AcDbDictionary> known(dictionary, AcDb::kForRead); known) {
            if (const AcDbObjectId same = known->getAt(place->second.key); same.isValid())
                return same;
        }
        if (!dictionary.isValid() || !enter())
            return {};
        AcDbObject *const copy = copyOf(source);
        leave();
        AcDbObjectId id;
        const AcDbObjectPointer<AcDbDictionary> open(dictionary, AcDb::kForWrite);
        if (!open || open->setAt(place->second.key, copy, id) != Acad::eOk) {
            delete copy;
            return {};
        }
        copy->close();
        return id;
    }

    /// Objects refer to objects; files may make that as deep as they like, or go round in circles.
    bool enter() { return m_depth < kDeepest && ++m_depth > 0; }
    void leave() { --m_depth; }

    static constexpr int kDeepest = 16;

    AcDbDatabase &m_target;
    const AcDbDatabase &m_from;
    QString m_prefix; ///< Of all names that are brought along.
    AcDbNewBlocks m_blocks;
    std::unordered_map<std::uint64_t, Place> m_places;
    std::unordered_map<QString, QString> m_blockNames; ///< In the target, by folded name in `from`.
    std::vector<std::pair<AcDbObjectId, AcDbObjectId>> m_waiting; ///< Blocks of `from` and their copies.
    std::size_t m_leftOut = 0;
    int m_depth = 0;
};

} // namespace

AcDbInsertedDrawing acdbInsertDrawing(AcDbDatabase &target, const QString &name, const AcDbDatabase &from)
{
    return DrawingCopier(target, from).copy(name);
}

AcDbInsertedDrawing acdbBindDrawing(AcDbDatabase &target, const QString &name, const AcDbDatabase &from,
                                    const QString &prefix)
{
    return DrawingCopier(target, from, prefix).copy(name);
}
