#include "host/acdb/dbload.h"

#include "host/acdb/dbobject.h"
#include "host/base/assert.h"
#include "host/base/host_text.h"

#include <algorithm>

ResbufList DrawingSource::readSome(const AcDbStub &stub, std::span<const int> codes) const
{
    ResbufList list = read(stub);
    std::erase_if(list, [codes](const resbuf &group) {
        return std::ranges::find(codes, group.restype) == codes.end();
    });
    return list;
}

AcDbLoader::AcDbLoader(AcDbDatabase &database, std::unique_ptr<DrawingSource> source) : m_database(database)
{
    QUILL_ASSERT(!database.m_source && database.m_stubCount == 1);
    database.m_source = std::move(source);
}

void AcDbLoader::reserve(std::size_t objects)
{
    m_database.m_chunks.reserve(objects / AcDbDatabase::kChunk + 1);
    m_database.m_byHandle.reserve(objects + 1);
}

AcDbStub *AcDbLoader::addObject(AcDbKind kind, std::uint64_t handle, std::uint64_t begin, std::uint32_t size,
                                std::uint16_t flags)
{
    AcDbStub *const added = m_database.newStub();
    added->kind = kind;
    added->handle = handle;
    added->begin = begin;
    added->size = size;
    added->flags = std::uint16_t(flags | AcDbStub::kHasSource | (handle == 0 ? AcDbStub::kNoFileHandle : 0));
    return added;
}

AcDbStub *AcDbLoader::addSynthetic(AcDbKind kind, ResbufList groups, std::uint16_t flags)
{
    AcDbStub *const added = m_database.newStub();
    added->kind = kind;
    added->flags =
        std::uint16_t(flags | AcDbStub::kNoFileForm | AcDbStub::kNoFileHandle | AcDbStub::kChanged);
    added->object = m_database.materialise(*added, std::move(groups)).release();
    return added;
}

void AcDbLoader::setTableHead(SymbolTable table, AcDbStub *head)
{
    m_database.table(table).head = head;
}

void AcDbLoader::addRecord(SymbolTable table, AcDbStub *record)
{
    setOwner(record, m_database.table(table).head);
    m_database.registerRecord(table, record);
}

BlockContents &AcDbLoader::block(AcDbStub *blockRecord)
{
    return m_database.m_blocks[blockRecord->index];
}

void AcDbLoader::addEntity(AcDbStub *blockRecord, AcDbStub *entity)
{
    setOwner(entity, blockRecord);
    block(blockRecord).entities.push_back(entity->index);
}

void AcDbLoader::setNamedObjects(AcDbStub *dictionary)
{
    m_database.m_namedObjects = AcDbObjectId(dictionary);
}

void AcDbLoader::setOwnerHandle(AcDbStub *stub, std::uint64_t ownerHandle)
{
    m_ownerHandles.emplace_back(stub->index, ownerHandle);
}

void AcDbLoader::addHeaderVariable(const QByteArray &name, ResbufList groups)
{
    if (!m_database.m_header.contains(name))
        m_database.m_headerNames.push_back(name);
    m_database.m_header[name].groups = std::move(groups);
}

void AcDbLoader::addClass(DrawingClass added)
{
    added.fromSource = true;
    m_database.m_classes.push_back(std::move(added));
}

void AcDbLoader::addRepair(const QString &sentence)
{
    m_database.m_repairs.append(sentence);
}

void AcDbLoader::finish()
{
    AcDbDatabase &db = m_database;
    for (std::uint32_t i = 1; i < db.m_stubCount; ++i) {
        if (db.stub(i)->handle != 0)
            db.m_byHandle.push_back(i);
    }
    const auto byHandle = [&db](std::uint32_t index) { return db.stub(index)->handle; };
    if (!std::ranges::is_sorted(db.m_byHandle, {}, byHandle))
        std::ranges::stable_sort(db.m_byHandle, {}, byHandle);
    const std::uint64_t highest = db.m_byHandle.empty() ? 0 : db.stub(db.m_byHandle.back())->handle;
    const ResbufList *const seed = db.headerVariable("$HANDSEED");
    db.m_nextHandle = std::max(highest == UINT64_MAX ? highest : highest + 1,
                               seed && !seed->empty() ? seed->front().handle().value : 1);
    settleDuplicates();
    giveMissingHandles();
    resolveOwners();
}

void AcDbLoader::settleDuplicates()
{
    AcDbDatabase &db = m_database;
    std::vector<std::uint32_t> unique;
    unique.reserve(db.m_byHandle.size());
    std::vector<std::uint32_t> doubles;
    for (const std::uint32_t index : db.m_byHandle) {
        const bool isDouble = !unique.empty() && db.stub(unique.back())->handle == db.stub(index)->handle;
        (isDouble ? doubles : unique).push_back(index);
    }
    db.m_byHandle = std::move(unique);
    std::ranges::sort(doubles);
    constexpr std::size_t kMostTold = 100;
    std::size_t told = 0;
    for (const std::uint32_t index : doubles) {
        AcDbStub &stub = *db.stub(index);
        const std::uint64_t given = std::exchange(stub.handle, db.takeHandle());
        if (++told <= kMostTold)
            addRepair(Host::tr("%1: handle %2 is used twice; the second one is known as %3")
                          .arg(QString::fromLatin1(acdbKindName(stub.kind)),
                               QString::number(given, 16).toUpper(),
                               QString::number(stub.handle, 16).toUpper()));
    }
    if (told > kMostTold)
        addRepair(Host::tr("%1 more handles are used twice.").arg(told - kMostTold));
    addByHandle(doubles);
}

/// Indexes of objects that got their handles just now; those of one call ascend, unless they were counted
/// from the beginning again.
void AcDbLoader::addByHandle(std::vector<std::uint32_t> &given)
{
    const auto byHandle = [this](std::uint32_t index) { return m_database.stub(index)->handle; };
    std::ranges::sort(given, {}, byHandle);
    std::vector<std::uint32_t> all;
    all.reserve(m_database.m_byHandle.size() + given.size());
    std::ranges::merge(m_database.m_byHandle, given, std::back_inserter(all), {}, byHandle, byHandle);
    m_database.m_byHandle = std::move(all);
}

void AcDbLoader::giveMissingHandles()
{
    AcDbDatabase &db = m_database;
    auto used = db.m_byHandle.begin();
    std::uint64_t next = 1;
    std::vector<std::uint32_t> given;
    for (std::uint32_t i = 1; i < db.m_stubCount; ++i) {
        if (db.stub(i)->handle != 0)
            continue;
        while (used != db.m_byHandle.end() && db.stub(*used)->handle <= next) {
            if (db.stub(*used)->handle == next)
                ++next;
            ++used;
        }
        db.stub(i)->handle = next++;
        given.push_back(i);
    }
    if (given.empty())
        return;
    addByHandle(given);
    db.m_nextHandle = std::max(db.m_nextHandle, next);
}

void AcDbLoader::resolveOwners()
{
    AcDbDatabase &db = m_database;
    for (const auto &[index, handle] : m_ownerHandles)
        setOwner(db.stub(index), db.getAcDbObjectId({handle}).stub());
    m_ownerHandles = {};
}
