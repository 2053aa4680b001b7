#include "host/acdb/dbundo.h"

#include "host/acdb/dbobject.h"
#include "host/acdb/dbreactor.h"
#include "host/base/assert.h"

#include <algorithm>
#include <utility>

namespace
{

/// Files what undo keeps. Long bytes are not copied: the image shares them with the object, so a step that
/// touches ten thousand pictures holds none of them twice.
class UndoFiler : public AcDbMemoryFiler
{
public:
    UndoFiler(AcDbDatabase *database, std::vector<QByteArray> &longBytes)
        : AcDbMemoryFiler(AcDb::kUndoFiler, database), m_long(longBytes)
    {
    }
    UndoFiler(AcDbDatabase *database, const QByteArray &stream, std::vector<QByteArray> longBytes)
        : AcDbMemoryFiler(AcDb::kUndoFiler, database, stream), m_read(std::move(longBytes)), m_long(m_read)
    {
    }

    Acad::ErrorStatus writeBytes(const QByteArray &value) override
    {
        if (value.size() < kLong)
            return AcDbMemoryFiler::writeBytes(value);
        m_long.push_back(value);
        return filerStatus();
    }
    Acad::ErrorStatus readBytes(QByteArray &value, std::uint32_t size) override
    {
        if (size < kLong)
            return AcDbMemoryFiler::readBytes(value, size);
        QUILL_ASSERT(m_next < m_long.size() && m_long[m_next].size() == qsizetype(size));
        value = m_long[m_next++];
        return filerStatus();
    }

private:
    static constexpr qsizetype kLong = 256;

    std::vector<QByteArray> m_read;
    std::vector<QByteArray> &m_long;
    std::size_t m_next = 0;
};

} // namespace

void AcDbUndo::beginGroup(const QString &label)
{
    if (m_depth++ > 0)
        return;
    // What changed between commands is a step of its own.
    if (m_current)
        closeCurrent();
    m_current = newGroup(label);
}

AcDbUndo::Group AcDbUndo::newGroup(const QString &label) const
{
    return {.label = label, .objects = {}, .header = {}, .state = m_database.m_editState};
}

void AcDbUndo::endGroup()
{
    QUILL_ASSERT(m_depth > 0);
    if (--m_depth == 0)
        closeCurrent();
}

bool AcDbUndo::attempt(const std::function<bool()> &work)
{
    QUILL_ASSERT(m_depth > 0);
    forgetRecorded();
    Group before = std::exchange(*m_current, newGroup(m_current->label));
    const bool isDone = work();
    forgetRecorded();
    if (!isDone)
        swap(*m_current);
    Group tried = std::exchange(*m_current, std::move(before));
    for (const ObjectChange &change : m_current->objects)
        change.stub->set(AcDbStub::kRecorded);
    if (isDone)
        append(std::move(tried));
    return isDone;
}

// What both have changed was in the open group as it was first.
void AcDbUndo::append(Group later)
{
    for (ObjectChange &change : later.objects) {
        if (change.stub->has(AcDbStub::kRecorded))
            continue;
        change.stub->set(AcDbStub::kRecorded);
        m_current->objects.push_back(std::move(change));
    }
    for (HeaderChange &change : later.header) {
        if (!m_current->has(change.name))
            m_current->header.push_back(std::move(change));
    }
}

bool AcDbUndo::Group::has(const QByteArray &name) const
{
    return std::ranges::any_of(header, [&](const HeaderChange &change) { return change.name == name; });
}

void AcDbUndo::forgetRecorded()
{
    for (const ObjectChange &change : m_current->objects)
        change.stub->set(AcDbStub::kRecorded, false);
}

void AcDbUndo::closeCurrent()
{
    forgetRecorded();
    if (!m_current->isEmpty()) {
        m_done.push_back(std::move(*m_current));
        m_undone.clear();
    }
    m_current.reset();
}

AcDbUndo::Group *AcDbUndo::openGroup()
{
    if (!m_recording)
        return nullptr;
    if (!m_current)
        m_current = newGroup({});
    return &*m_current;
}

void AcDbUndo::recordObject(AcDbStub &stub)
{
    if (stub.has(AcDbStub::kRecorded))
        return;
    if (Group *const group = openGroup()) {
        group->objects.push_back({&stub, capture(stub)});
        stub.set(AcDbStub::kRecorded);
    }
}

// Before it was added an object was not there: its image is only that.
void AcDbUndo::recordAppended(AcDbStub &stub)
{
    if (Group *const group = openGroup()) {
        Image image;
        image.erased = true;
        image.owner = stub.owner;
        group->objects.push_back({&stub, std::move(image)});
        stub.set(AcDbStub::kRecorded);
    }
}

void AcDbUndo::recordHeader(const QByteArray &name)
{
    Group *const group = openGroup();
    if (!group || group->has(name))
        return;
    const auto known = m_database.m_header.find(name);
    HeaderChange change{name, {}};
    if (known == m_database.m_header.end())
        change.value.present = false;
    else
        change.value = known->second;
    group->header.push_back(std::move(change));
}

AcDbUndo::Image AcDbUndo::capture(const AcDbStub &stub) const
{
    Image image;
    image.erased = stub.has(AcDbStub::kErased);
    image.owner = stub.owner;
    image.fromSource = stub.has(AcDbStub::kHasSource) && !stub.has(AcDbStub::kChanged);
    if (image.fromSource)
        return image;
    AcDbObject *const object = stub.object;
    image.groups = object->m_groups;
    image.isProxy = object->m_isProxy;
    if (object->isCustom()) {
        UndoFiler filer(&m_database, image.longBytes);
        ++object->m_readers;
        object->dwgOutFields(&filer);
        --object->m_readers;
        image.filed = filer.stream();
    }
    return image;
}

void AcDbUndo::restoreContent(AcDbStub &stub, const Image &image)
{
    if (image.fromSource) {
        m_database.replaceObject(stub, nullptr);
        stub.set(AcDbStub::kChanged, false);
        return;
    }
    if (image.groups.empty())
        return; // It was not there; its content does not matter.
    AcRxClass *const known = acdbKindClass(stub.kind, stub.has(AcDbStub::kEntity));
    const bool asProxy = image.isProxy;
    AcRxClass *const made =
        asProxy ? acrxClassDictionary().at(stub.has(AcDbStub::kEntity) ? QStringLiteral("AcDbEntity")
                                                                       : QStringLiteral("AcDbObject"))
                : known;
    std::unique_ptr<AcDbObject> object(static_cast<AcDbObject *>(made->create()));
    object->m_stub = &stub;
    object->m_isProxy = asProxy;
    object->m_groups = image.groups;
    if (!image.filed.isEmpty()) {
        object->m_writing = true;
        UndoFiler filer(&m_database, image.filed, image.longBytes);
        object->dwgInFields(&filer);
        object->m_writing = false;
    }
    m_database.replaceObject(stub, std::move(object));
    stub.set(AcDbStub::kChanged);
}

void AcDbUndo::restore(AcDbStub &stub, Image image)
{
    const bool wasErased = stub.has(AcDbStub::kErased);
    const bool neverWas = !stub.has(AcDbStub::kHasSource);
    restoreContent(stub, image);
    stub.owner = image.owner;
    const bool stillChanged = stub.has(AcDbStub::kChanged);
    m_database.noteChange(stub);
    stub.set(AcDbStub::kChanged, stillChanged);
    stub.set(AcDbStub::kErased, image.erased);
    m_database.resident(stub);
    m_database.notifyWhileOpen(stub, [&](AcDbDatabaseReactor &reactor, AcDbObject &object) {
        if (wasErased == image.erased)
            reactor.objectModified(&m_database, &object);
        else if (!neverWas)
            reactor.objectErased(&m_database, &object, image.erased);
        else if (image.erased)
            reactor.objectUnAppended(&m_database, &object);
        else
            reactor.objectReAppended(&m_database, &object);
    });
    m_database.releaseIdle(stub);
}

// Every object stands once in a group, so the order matters only to those who are told: undoing tells
// backwards.
void AcDbUndo::swap(Group &group)
{
    const bool wasRecording = std::exchange(m_recording, false);
    for (auto change = group.objects.rbegin(); change != group.objects.rend(); ++change) {
        Image now = capture(*change->stub);
        restore(*change->stub, std::exchange(change->image, std::move(now)));
    }
    std::ranges::reverse(group.objects);
    for (HeaderChange &change : group.header) {
        AcDbDatabase::HeaderValue &value = m_database.m_header[change.name];
        std::swap(value, change.value);
        ++m_database.m_changeCount;
        m_database.m_reactors.tell([&](AcDbDatabaseReactor &reactor) {
            reactor.headerSysVarChanged(&m_database, change.name.constData());
        });
    }
    std::swap(group.state, m_database.m_editState);
    m_recording = wasRecording;
}

bool AcDbUndo::move(std::vector<Group> &from, std::vector<Group> &to)
{
    if (m_depth > 0)
        return false;
    if (m_current)
        closeCurrent();
    if (from.empty())
        return false;
    Group group = std::move(from.back());
    from.pop_back();
    swap(group);
    to.push_back(std::move(group));
    return true;
}

AcDbUncountedChange::AcDbUncountedChange(AcDbDatabase &database)
    : m_database(database), m_changeCount(database.m_changeCount),
      m_wasRecording(database.undo().isRecording())
{
    m_database.undo().setRecording(false);
}

AcDbUncountedChange::~AcDbUncountedChange()
{
    m_database.undo().setRecording(m_wasRecording);
    m_database.m_changeCount = m_changeCount;
}

bool AcDbUndo::undo()
{
    return move(m_done, m_undone);
}

bool AcDbUndo::redo()
{
    return move(m_undone, m_done);
}

QStringList AcDbUndo::labels(const std::vector<Group> &groups)
{
    QStringList all;
    for (auto group = groups.rbegin(); group != groups.rend(); ++group)
        all.append(group->label);
    return all;
}

QStringList AcDbUndo::undoLabels() const
{
    return labels(m_done);
}

QStringList AcDbUndo::redoLabels() const
{
    return labels(m_undone);
}

void AcDbUndo::clear()
{
    if (m_current) {
        forgetRecorded();
        m_current->objects.clear();
        m_current->header.clear();
    }
    m_done.clear();
    m_undone.clear();
}
