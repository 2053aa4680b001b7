#include "host/acdb/dbdict.h"

#include "host/acdb/dbentity.h"

#include <algorithm>

AcDbDictionary::AcDbDictionary() : AcDbObject("DICTIONARY")
{
    ResbufList &groups = editGroups();
    groups.emplace_back(100, QStringLiteral("AcDbDictionary"));
    groups.emplace_back(281, std::int64_t(1));
}

// An entry is a key (3) and, right behind it, the object (350 owned softly, 360 owned).
static bool isEntryValue(const resbuf &group)
{
    return group.restype == 350 || group.restype == 360;
}

std::vector<AcDbDictionary::Entry> AcDbDictionary::entries() const
{
    std::vector<Entry> found;
    const ResbufList &list = groups();
    for (std::size_t i = 0; i + 1 < list.size(); ++i) {
        if (list[i].restype == 3 && isEntryValue(list[i + 1]))
            found.push_back({list[i].text(), database()->getAcDbObjectId(list[i + 1].handle())});
    }
    return found;
}

AcDbObjectId AcDbDictionary::getAt(const QString &key) const
{
    for (const Entry &entry : entries()) {
        if (entry.key.compare(key, Qt::CaseInsensitive) == 0)
            return entry.id.isValid() ? entry.id : AcDbObjectId();
    }
    return {};
}

static ResbufList::iterator entryOf(ResbufList &list, const QString &key)
{
    for (auto group = list.begin(); group != list.end(); ++group) {
        if (group->restype == 3 && group->text().compare(key, Qt::CaseInsensitive) == 0 &&
            group + 1 != list.end() && isEntryValue(*(group + 1)))
            return group;
    }
    return list.end();
}

bool acdbIsOwned(AcDbObjectId object, AcDbObjectId owner, const AcRxClass *asClass)
{
    if (!object.isValid() || owner.isNull() || !object.objectClass()->isDerivedFrom(asClass))
        return false;
    const std::uint32_t stated = object.stub()->owner;
    return stated == owner.stub()->index ||
           (stated == 0 && object != owner && object != object.database()->namedObjectsDictionaryId());
}

Acad::ErrorStatus AcDbDictionary::setAt(const QString &key, AcDbObject *object, AcDbObjectId &id)
{
    assertWriteEnabled();
    const auto entry = entryOf(editGroups(), key);
    const AcDbObjectId known =
        entry == editGroups().end() ? AcDbObjectId() : database()->getAcDbObjectId((entry + 1)->handle());
    if (acdbIsOwned(known, objectId(), object->isA())) {
        AcDbObjectPointer<AcDbObject> old(known, AcDb::kForWrite);
        const Acad::ErrorStatus refused = old ? old->erase() : Acad::eOk;
        if (refused != Acad::eOk)
            return refused;
    }
    const Acad::ErrorStatus status = database()->addAcDbObject(object, objectId(), &id);
    if (status == Acad::eOk)
        link(key, id);
    return status;
}

void AcDbDictionary::link(const QString &key, AcDbObjectId id)
{
    ResbufList &list = editGroups();
    if (const auto entry = entryOf(list, key); entry != list.end()) {
        (entry + 1)->assign(id.handle());
        return;
    }
    const resbuf *const hard = findGroup(list, 280);
    const int code = hard && hard->integer() == 1 ? 360 : 350;
    // Entries end where a derived class's marker or the extended data begins.
    const auto behind = list.begin() + std::ptrdiff_t(subclassBegin(list, u"AcDbDictionary"));
    const auto end = std::find_if(behind, list.end(),
                                  [](const resbuf &g) { return g.restype == 100 || g.restype == 1001; });
    list.insert(end, {resbuf(3, key), resbuf(code, id.handle())});
}

void AcDbDictionary::unlink(const QString &key)
{
    ResbufList &list = editGroups();
    if (const auto entry = entryOf(list, key); entry != list.end())
        list.erase(entry, entry + 2);
}

Acad::ErrorStatus AcDbDictionary::remove(const QString &key)
{
    assertWriteEnabled();
    ResbufList &list = editGroups();
    const auto entry = entryOf(list, key);
    if (entry == list.end())
        return Acad::eKeyNotFound;
    const AcDbObjectId known = database()->getAcDbObjectId((entry + 1)->handle());
    if (acdbIsOwned(known, objectId(), AcDbObject::desc())) {
        AcDbObjectPointer<AcDbObject> old(known, AcDb::kForWrite);
        const Acad::ErrorStatus refused = old ? old->erase() : Acad::eOk;
        if (refused != Acad::eOk)
            return refused;
    }
    unlink(key);
    return Acad::eOk;
}

AcDbXrecord::AcDbXrecord() : AcDbObject("XRECORD")
{
    ResbufList &groups = editGroups();
    groups.emplace_back(100, QStringLiteral("AcDbXrecord"));
    groups.emplace_back(280, std::int64_t(1));
}

// The record's data begins behind its marker and the duplicate-record flag (280), which old versions lack.
static std::size_t dataBegin(const ResbufList &list)
{
    const std::size_t begin = subclassBegin(list, u"AcDbXrecord");
    return begin < list.size() && list[begin].restype == 280 ? begin + 1 : begin;
}

ResbufList AcDbXrecord::rbChain() const
{
    return {groups().begin() + std::ptrdiff_t(dataBegin(groups())), groups().end()};
}

Acad::ErrorStatus AcDbXrecord::setFromRbChain(const ResbufList &chain)
{
    assertWriteEnabled();
    ResbufList &list = editGroups();
    list.resize(dataBegin(list));
    list.insert(list.end(), chain.begin(), chain.end());
    return Acad::eOk;
}

AcDbObjectId acdbEnsureNamedObjects(AcDbDatabase &database)
{
    if (database.namedObjectsDictionaryId().isValid())
        return database.namedObjectsDictionaryId();
    auto *const root = new AcDbDictionary;
    AcDbObjectId id;
    database.addAcDbObject(root, {}, &id);
    database.setNamedObjectsDictionary(id);
    root->close();
    return id;
}
