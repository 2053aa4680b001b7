#include "host/acdb/dbapi.h"

#include "host/acdb/dbdict.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dwgcarrier.h"
#include "host/acdb/entgetdefaults.h"
#include "host/base/wildcard.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <span>

static bool isAngleCode(int code)
{
    return code >= 50 && code <= 58;
}

static bool isEntityNameCode(int code)
{
    return code >= 330 && code <= 369;
}

static QString handleText(AcDbHandle handle)
{
    return QString::number(handle.value, 16).toUpper();
}

// Angles are degrees in files and radians in data lists; references are entity names; handles are texts.
static resbuf dataGroup(const AcDbDatabase &database, resbuf &group)
{
    const bool isHandle = std::holds_alternative<AcDbHandle>(group.resval);
    if (isHandle && isEntityNameCode(group.restype))
        return {group.restype, database.getAcDbObjectId(group.handle())};
    if (isHandle)
        return {group.restype, handleText(group.handle())};
    if (isAngleCode(group.restype) && std::holds_alternative<double>(group.resval))
        return {group.restype, group.real() * kGePi / 180.0};
    return {group.restype, std::move(group.resval)};
}

/// What the list of an entity says of the block that it stands in.
static ResbufList spaceGroups(AcDbObjectId block)
{
    AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
    const bool paper = record && record->isPaperSpace();
    const bool isLayout = record && record->isLayout();
    ResbufList groups;
    groups.emplace_back(67, std::int64_t(paper ? 1 : 0));
    groups.emplace_back(410, isLayout ? acdbLayoutName(block) : QStringLiteral("Model"));
    return groups;
}

static AcDbObjectId owningBlock(const AcDbStub &stub)
{
    const AcDbStub *owner = stub.database->stub(stub.owner);
    while (owner->has(AcDbStub::kEntity))
        owner = stub.database->stub(owner->owner);
    return AcDbObjectId(stub.database->stub(owner->index));
}

static void appendExtendedData(ResbufList &data, const ResbufList &groups, const QString &applications)
{
    const base::Wildcard wanted(applications);
    bool inWanted = false;
    bool any = false;
    for (std::size_t i = extendedDataBegin(groups); i < groups.size(); ++i) {
        if (groups[i].restype == 1001)
            inWanted = wanted.matches(groups[i].text());
        if (!inWanted)
            continue;
        if (!std::exchange(any, true))
            data.emplace_back(-3, resbuf::Value());
        data.emplace_back(groups[i].restype, std::holds_alternative<AcDbHandle>(groups[i].resval)
                                                 ? resbuf::Value(handleText(groups[i].handle()))
                                                 : groups[i].resval);
    }
}

// Owner before handle, unless braces follow the handle: then the handle, the braces, the owner.
static void appendIdentity(ResbufList &data, const AcDbStub &stub, const ResbufList &braces)
{
    // The name of an entity's kind is not asked for: other threads may not.
    const bool isDimensionStyle = !stub.has(AcDbStub::kEntity) && acdbKindName(stub.kind) == "DIMSTYLE";
    const int handleCode = isDimensionStyle ? 105 : 5;
    const resbuf owner(330, stub.owner ? AcDbObjectId(stub.database->stub(stub.owner)) : AcDbObjectId());
    const resbuf handle(handleCode, handleText({stub.handle}));
    if (braces.empty())
        data.push_back(owner);
    data.push_back(handle);
    data.insert(data.end(), braces.begin(), braces.end());
    if (!braces.empty())
        data.push_back(owner);
}

/// The list without extended data; uses up the groups before it. `space` is for entities.
static ResbufList dataList(const AcDbStub &stub, std::span<resbuf> groups, const ResbufList &space)
{
    const AcDbDatabase &database = *stub.database;
    ResbufList braces;
    ResbufList content;
    content.reserve(groups.size());
    ApplicationGroups braced;
    bool ownerSeen = false;
    for (resbuf &group : groups.subspan(groups.empty() ? 0 : 1)) {
        if (content.empty() && braced.holds(group)) {
            braces.push_back(dataGroup(database, group));
        } else if (content.empty() && (group.restype == 5 || group.restype == 105)) {
            continue;
        } else if (content.empty() && group.restype == 330 && !std::exchange(ownerSeen, true)) {
            continue;
        } else if (stub.has(AcDbStub::kEntity) && (group.restype == 67 || group.restype == 410)) {
            continue;
        } else {
            content.push_back(dataGroup(database, group));
        }
    }

    ResbufList data;
    data.reserve(content.size() + braces.size() + 16);
    data.emplace_back(-1, AcDbObjectId(database.stub(stub.index)));
    data.emplace_back(0, groups.empty() ? QString() : groups.front().text());
    appendIdentity(data, stub, braces);
    if (stub.has(AcDbStub::kEntity)) {
        data.emplace_back(100, QStringLiteral("AcDbEntity"));
        if (!content.empty() && content.front().restype == 100 && content.front().text() == u"AcDbEntity")
            content.erase(content.begin());
        data.insert(data.end(), space.begin(), space.end());
        acdbSettleDefaults(stub.kind, content);
    }
    data.insert(data.end(), std::move_iterator(content.begin()), std::move_iterator(content.end()));
    return data;
}

ResbufList acdbEntGetX(AcDbObjectId id, const QString &applications)
{
    if (!id.isValid())
        return {};
    const AcDbStub &stub = *id.stub();
    ResbufList groups = stub.database->fileGroups(stub);
    const std::span own = std::span(groups).first(extendedDataBegin(groups));
    ResbufList data = dataList(stub, own, id.isEntity() ? spaceGroups(owningBlock(stub)) : ResbufList());
    if (!applications.isEmpty())
        appendExtendedData(data, groups, applications);
    return data;
}

AcDbFiledData::AcDbFiledData(AcDbObjectId block) : m_block(block), m_space(spaceGroups(block))
{
    // Tables that are made at first use number kinds, which no other thread may do.
    ResbufList none;
    acdbSettleDefaults(0, none);
}

// Custom entities tell their groups themselves.
bool AcDbFiledData::holds(AcDbObjectId entity) const
{
    const AcDbStub &stub = *entity.stub();
    return stub.has(AcDbStub::kEntity) && stub.has(AcDbStub::kHasSource) && !stub.has(AcDbStub::kChanged) &&
           stub.owner == m_block.stub()->index && !entity.objectClass()->application();
}

ResbufList AcDbFiledData::of(AcDbObjectId entity) const
{
    const AcDbStub &stub = *entity.stub();
    ResbufList groups = stub.database->source()->read(stub);
    return dataList(stub, std::span(groups).first(extendedDataBegin(groups)), m_space);
}

/// Copies objects with everything they own; references among the copied ones point to the copies.
class ObjectCopier
{
public:
    explicit ObjectCopier(AcDbDatabase &database) : m_database(database) {}

    AcDbObjectId copyEntity(AcDbObjectId entity, AcDbBlockTableRecord &block)
    {
        AcDbObjectId copy;
        const auto begin = std::ptrdiff_t(m_made.size());
        if (block.appendAcDbEntity(copy, static_cast<AcDbEntity *>(duplicate(entity))) != Acad::eOk)
            return {};
        remember(entity, copy);
        for (const AcDbObjectId owned : acdbSubEntities(entity)) {
            AcDbObjectId part;
            m_database.addAcDbObject(duplicate(owned), copy, &part);
            part.stub()->set(AcDbStub::kSubEntity);
            remember(owned, part);
        }
        copyExtensionDictionary(entity, copy);
        std::reverse(m_made.begin() + begin, m_made.end());
        return copy;
    }

    /// Settles the references and closes the copies in their order, each entity after what it owns.
    void finish()
    {
        for (const AcDbObjectId made : m_made) {
            AcDbObject *const object = made.stub()->object;
            for (resbuf &group : object->m_groups)
                redirect(group);
            object->close();
        }
        m_made.clear();
        m_copies.clear();
    }

private:
    AcDbObject *duplicate(AcDbObjectId id)
    {
        const AcDbStub &stub = *id.stub();
        AcDbObjectPointer<AcDbObject> original(id, AcDb::kForRead);
        const bool asProxy = original && original->m_isProxy;
        AcRxClass *const kept = id.isEntity() ? AcDbEntity::desc() : AcDbObject::desc();
        AcRxClass *const known = asProxy ? kept : id.objectClass();
        auto *const copy = static_cast<AcDbObject *>(known->create());
        copy->m_groups = original ? original->m_groups : m_database.fileGroups(stub);
        copy->m_isProxy = asProxy;
        acdbDropApplicationGroups(copy->m_groups);
        std::erase_if(copy->m_groups, [](const resbuf &g) { return g.restype == 67; });
        if (original && original->isCustom() && !original->m_isProxy) {
            AcDbMemoryFiler out(AcDb::kDeepCloneFiler, &m_database);
            original->dwgOutFields(&out);
            AcDbMemoryFiler in(AcDb::kDeepCloneFiler, &m_database, out.stream());
            copy->dwgInFields(&in);
        }
        return copy;
    }

    void remember(AcDbObjectId original, AcDbObjectId copy)
    {
        m_copies.emplace(original.handle(), copy.handle());
        m_made.push_back(copy);
    }

    void copyExtensionDictionary(AcDbObjectId original, AcDbObjectId copy)
    {
        AcDbObjectId dictionaryId;
        if (AcDbObjectPointer<AcDbObject> object(original, AcDb::kForRead); object)
            dictionaryId = object->extensionDictionary();
        if (!dictionaryId.isValid())
            return;
        const AcDbObjectId dictionaryCopy = copyTree(dictionaryId, copy);
        copy.stub()->object->linkExtensionDictionary(dictionaryCopy.handle());
    }

    AcDbObjectId copyOne(AcDbObjectId original, AcDbObjectId owner)
    {
        AcDbObjectId copy;
        m_database.addAcDbObject(duplicate(original), owner, &copy);
        remember(original, copy);
        return copy;
    }

    /// Every object that the first one owns, however deep, each once.
    AcDbObjectId copyTree(AcDbObjectId first, AcDbObjectId owner)
    {
        const AcDbObjectId firstCopy = copyOne(first, owner);
        std::vector<std::pair<AcDbObjectId, AcDbObjectId>> waiting{{first, firstCopy}};
        std::set<AcDbHandle> seen{first.handle()};
        while (!waiting.empty()) {
            const auto [original, copy] = waiting.back();
            waiting.pop_back();
            AcDbObjectPointer<AcDbDictionary> dictionary(original, AcDb::kForRead);
            if (!dictionary)
                continue;
            for (const AcDbDictionary::Entry &entry : dictionary->entries()) {
                // The carrier is made anew when the drawing is saved.
                if (entry.key == kDwgCarrierKey) {
                    static_cast<AcDbDictionary *>(copy.stub()->object)->unlink(entry.key);
                } else if (entry.id.isValid() && !entry.id.isEntity() &&
                           entry.id.stub()->owner == original.stub()->index &&
                           seen.insert(entry.id.handle()).second) {
                    waiting.emplace_back(entry.id, copyOne(entry.id, copy));
                }
            }
        }
        return firstCopy;
    }

    void redirect(resbuf &group)
    {
        if (group.restype == 5 || group.restype == 105 || !std::holds_alternative<AcDbHandle>(group.resval))
            return;
        if (const auto copied = m_copies.find(group.handle()); copied != m_copies.end())
            group.assign(copied->second);
    }

    AcDbDatabase &m_database;
    std::map<AcDbHandle, AcDbHandle> m_copies;
    std::vector<AcDbObjectId> m_made;
};

static QString freePictureName(const AcDbSymbolTable &blocks)
{
    for (int number = 1;; ++number) {
        const QString name = QStringLiteral("*D%1").arg(number);
        if (!blocks.has(name))
            return name;
    }
}

/// With the pictures of dimensions, or without: a dimension that stands in a picture shares its own with its
/// copies, or pictures in pictures would grow without bound.
static Acad::ErrorStatus cloneEntities(const std::vector<AcDbObjectId> &entities, AcDbObjectId blockRecord,
                                       std::vector<AcDbObjectId> &copies, bool withPictures);

/// A dimension shows an anonymous block of its own; two that share one would move it for each other.
static void copyPicture(AcDbObjectId dimension)
{
    AcDbDatabase &database = *dimension.database();
    AcDbSymbolTable blocks(database, SymbolTable::block);
    AcDbObjectPointer<AcDbEntity> copy(dimension, AcDb::kForWrite);
    const resbuf *const name = copy ? findGroup(copy->groups(), 2) : nullptr;
    const AcDbObjectId shared = name ? blocks.getAt(name->text()) : AcDbObjectId();
    if (shared.isNull() || !name->text().startsWith(QLatin1Char('*')))
        return;
    std::vector<AcDbObjectId> shown;
    if (AcDbObjectPointer<AcDbBlockTableRecord> picture(shared, AcDb::kForRead); picture)
        shown = picture->entities();
    const QString ownName = freePictureName(blocks);
    AcDbObjectId own;
    if (blocks.addLike(name->text(), ownName, own) != Acad::eOk)
        return;
    own.stub()->object->close();
    std::vector<AcDbObjectId> copies;
    cloneEntities(shown, own, copies, false);
    findGroup(copy->editGroups(), 2)->assign(ownName);
}

static Acad::ErrorStatus cloneEntities(const std::vector<AcDbObjectId> &entities, AcDbObjectId blockRecord,
                                       std::vector<AcDbObjectId> &copies, bool withPictures)
{
    AcDbObjectPointer<AcDbBlockTableRecord> block(blockRecord, AcDb::kForWrite);
    if (!block)
        return block.openStatus();
    ObjectCopier copier(*blockRecord.database());
    const std::size_t begin = copies.size();
    for (const AcDbObjectId entity : entities) {
        if (!entity.isValid() || !entity.isEntity())
            continue;
        if (const AcDbObjectId copy = copier.copyEntity(entity, *block); !copy.isNull())
            copies.push_back(copy);
    }
    copier.finish();
    for (const AcDbObjectId copy : std::span(copies).subspan(begin)) {
        if (withPictures && acdbKindName(copy.stub()->kind) == "DIMENSION")
            copyPicture(copy);
    }
    return Acad::eOk;
}

Acad::ErrorStatus acdbDeepCloneEntities(const std::vector<AcDbObjectId> &entities, AcDbObjectId blockRecord,
                                        std::vector<AcDbObjectId> &copies)
{
    return cloneEntities(entities, blockRecord, copies, true);
}
