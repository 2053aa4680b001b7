#include "host/acdb/dbdatabase.h"

#include "host/acdb/dbdict.h"
#include "host/acdb/dbfieldsource.h"
#include "host/acdb/dbreactor.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbtransient.h"
#include "host/acdb/dbundo.h"
#include "host/acdb/dbxref.h"
#include "host/acdb/dwgcarrier.h"
#include "host/base/assert.h"

#include <QFileInfo>

#include <algorithm>
#include <limits>
#include <optional>
#include <set>
#include <span>

// Never destroyed: databases that live to the end of the process leave it later than a static would.
static std::set<AcDbDatabase *> &openDatabases()
{
    static auto *const all = new std::set<AcDbDatabase *>;
    return *all;
}

/// Objects of a class that leaves go back to groups.
class ClassObserver : public AcRxClassObserver
{
public:
    static void install()
    {
        static ClassObserver observer;
        static const bool installed = (acrxClassDictionary().addObserver(&observer), true);
        (void)installed;
    }
    void classToBeDeleted(AcRxClass *doomed) override
    {
        for (AcDbDatabase *database : openDatabases())
            database->classRemoved(doomed);
    }
};

AcDbDatabase::AcDbDatabase() : m_undo(std::make_unique<AcDbUndo>(*this))
{
    acdbRegisterClasses();
    ClassObserver::install();
    openDatabases().insert(this);
    newStub(); // Index 0 means "none".
}

AcDbDatabase::~AcDbDatabase()
{
    m_attachments.dropAll();
    m_reactors.tell([this](AcDbDatabaseReactor &reactor) { reactor.goodbye(this); });
    openDatabases().erase(this);
    for (std::uint32_t i = 0; i < m_stubCount; ++i)
        delete stub(i)->object;
}

AcDbXrefs &AcDbDatabase::xrefs() const
{
    if (!m_xrefs)
        m_xrefs = std::make_unique<AcDbXrefs>(const_cast<AcDbDatabase &>(*this));
    return *m_xrefs;
}

void AcDbDatabase::setFile(const QString &file)
{
    m_file = file;
    m_folder = file.isEmpty() ? QString() : QFileInfo(file).absolutePath();
}

DrawingVersion AcDbDatabase::version() const
{
    return m_source ? m_source->version() : DrawingVersion::unknown;
}

AcDbStub *AcDbDatabase::newStub()
{
    if (m_stubCount % kChunk == 0)
        m_chunks.push_back(std::make_unique<AcDbStub[]>(kChunk));
    AcDbStub *const added = stub(m_stubCount);
    added->database = this;
    added->index = m_stubCount++;
    return added;
}

AcDbObjectId AcDbDatabase::getAcDbObjectId(AcDbHandle handle) const
{
    const auto place = std::ranges::lower_bound(m_byHandle, handle.value, {},
                                                [this](std::uint32_t index) { return stub(index)->handle; });
    if (handle.isNull() || place == m_byHandle.end() || stub(*place)->handle != handle.value)
        return {};
    return AcDbObjectId(stub(*place));
}

// Handles above the limit are a file's own affair: who counts on from them soon has none left.
std::uint64_t AcDbDatabase::freeHandle(std::uint64_t from) const
{
    constexpr std::uint64_t kHighestGiven = std::numeric_limits<std::int64_t>::max();
    const auto firstFree = [this](std::uint64_t wanted) {
        auto used = std::ranges::lower_bound(m_byHandle, wanted, {},
                                             [this](std::uint32_t index) { return stub(index)->handle; });
        for (; used != m_byHandle.end() && stub(*used)->handle == wanted; ++used)
            ++wanted;
        return wanted;
    };
    const std::uint64_t above = from == 0 || from > kHighestGiven ? 0 : firstFree(from);
    return above == 0 || above > kHighestGiven ? firstFree(1) : above;
}

std::uint64_t AcDbDatabase::takeHandle()
{
    const std::uint64_t taken = freeHandle(m_nextHandle);
    m_nextHandle = taken + 1;
    return taken;
}

void AcDbDatabase::indexHandle(AcDbStub *added)
{
    const auto place = std::ranges::lower_bound(m_byHandle, added->handle, {},
                                                [this](std::uint32_t index) { return stub(index)->handle; });
    m_byHandle.insert(place, added->index);
}

// Objects in memory ------------------------------------------------------------------------------

// The fields of a custom class stand between the host's own groups and the extended data; the class's
// marker begins them.
static std::size_t ownFieldsBegin(const ResbufList &groups, bool isEntity)
{
    std::size_t i = 0;
    while (i < groups.size() && groups[i].restype != 1001 &&
           (groups[i].restype != 100 || (isEntity && groups[i].text() == u"AcDbEntity")))
        ++i;
    return i;
}

// What DXF does not carry comes from the carrier; then the DXF fields have the last word. Only a carrier of a
// newer program is the last word itself: such an object would lose what is new in it.
Acad::ErrorStatus AcDbDatabase::readCarried(AcDbObject &object) const
{
    const QByteArray carried = acdbCarriedFields(*this, object.m_groups);
    if (carried.isEmpty())
        return Acad::eOk;
    AcDbMemoryFiler filer(AcDb::kFileFiler, const_cast<AcDbDatabase *>(this), carried);
    return object.dwgInFields(&filer);
}

/// What the class filed, where the source shows that and nothing else of an object.
static std::unique_ptr<AcDbDwgFiler> filedFields(const DrawingSource *source, const AcDbStub &stub,
                                                 std::span<const resbuf> own)
{
    const auto *const filed = dynamic_cast<const AcDbFieldSource *>(source);
    const bool isShownAsBits = !own.empty() && own.front().restype == 100 &&
                               own.front().text().startsWith(QStringLiteral("AcDbProxy"));
    return filed && isShownAsBits ? filed->fieldsOf(stub) : nullptr;
}

std::unique_ptr<AcDbObject> AcDbDatabase::materialise(AcDbStub &stub, ResbufList groups) const
{
    const bool isEntity = stub.has(AcDbStub::kEntity);
    AcRxClass *const known = acdbKindClass(stub.kind, isEntity);
    const auto asKept = [&](bool isProxy) {
        std::unique_ptr<AcDbObject> kept(isProxy ? (isEntity ? new AcDbEntity : new AcDbObject)
                                                 : static_cast<AcDbObject *>(known->create()));
        kept->m_stub = &stub;
        kept->m_isProxy = isProxy;
        kept->m_proxySince = acrxClassDictionary().generation();
        kept->m_groups = std::move(groups);
        return kept;
    };
    // An unknown kind may turn out to be a custom class that comes later.
    if (!known->application())
        return asKept(known->dxfName().isEmpty());

    const auto own = groups.begin() + std::ptrdiff_t(ownFieldsBegin(groups, isEntity));
    const auto extended = groups.begin() + std::ptrdiff_t(extendedDataBegin(groups));
    std::unique_ptr<AcDbObject> object(static_cast<AcDbObject *>(known->create()));
    object->m_stub = &stub;
    object->m_writing = true;
    object->m_groups.assign(groups.begin(), own);
    object->m_groups.insert(object->m_groups.end(), extended, groups.end());

    stub.set(AcDbStub::kBeingMade);
    const auto fields = filedFields(m_source.get(), stub, std::span(own, extended));
    Acad::ErrorStatus status = fields ? object->dwgInFields(fields.get()) : readCarried(*object);
    if (!fields && status != Acad::eMakeMeProxy) {
        AcDbDxfFiler filer(const_cast<AcDbDatabase *>(this), ResbufList(own, extended));
        status = object->dxfInFields(&filer);
    }
    stub.set(AcDbStub::kBeingMade, false);
    object->m_writing = false;
    return status == Acad::eOk ? std::move(object) : asKept(true);
}

// A proxy is tried again when classes came or went since it was made.
AcDbObject *AcDbDatabase::resident(AcDbStub &stub)
{
    AcDbObject *const kept = stub.object;
    if (!kept) {
        stub.object = materialise(stub, m_source->read(stub)).release();
    } else if (kept->m_isProxy && kept->isIdle() &&
               kept->m_proxySince != acrxClassDictionary().generation()) {
        replaceObject(stub, materialise(stub, kept->m_groups));
    }
    return stub.object;
}

static std::optional<SymbolTable> tableOfKind(AcDbKind kind)
{
    static const std::pair<AcDbKind, SymbolTable> kKinds[] = {
        {acdbKind("VPORT"), SymbolTable::viewport},    {acdbKind("LTYPE"), SymbolTable::linetype},
        {acdbKind("LAYER"), SymbolTable::layer},       {acdbKind("STYLE"), SymbolTable::textStyle},
        {acdbKind("VIEW"), SymbolTable::view},         {acdbKind("UCS"), SymbolTable::ucs},
        {acdbKind("APPID"), SymbolTable::appId},       {acdbKind("DIMSTYLE"), SymbolTable::dimStyle},
        {acdbKind("BLOCK_RECORD"), SymbolTable::block}};
    const auto found = std::ranges::find(kKinds, kind, &std::pair<AcDbKind, SymbolTable>::first);
    return found == std::end(kKinds) ? std::optional<SymbolTable>() : found->second;
}

// Custom objects stay: making them again costs more than keeping them, and a class that refused a record
// would say so each time. So do records of symbol tables, which every entity asks for, while they are few.
// Other native objects are made in a blink.
void AcDbDatabase::releaseIdle(AcDbStub &stub)
{
    const AcDbObject *const object = stub.object;
    if (!object || !object->isIdle())
        return;
    if (stub.has(AcDbStub::kChanged) || !stub.has(AcDbStub::kHasSource))
        return;
    if (acdbKindClass(stub.kind, stub.has(AcDbStub::kEntity))->application())
        return;
    constexpr std::size_t kFew = 5000;
    const auto names = tableOfKind(stub.kind);
    if (!stub.has(AcDbStub::kEntity) && names && table(*names).records.size() <= kFew)
        return;
    delete std::exchange(stub.object, nullptr);
}

void AcDbDatabase::replaceObject(AcDbStub &stub, std::unique_ptr<AcDbObject> object)
{
    QUILL_ASSERT(!stub.object || stub.object->isIdle());
    delete std::exchange(stub.object, object.release());
}

Acad::ErrorStatus AcDbDatabase::openObject(AcDbObject *&object, AcDbObjectId id, AcDb::OpenMode mode,
                                           bool openErased)
{
    object = nullptr;
    if (id.isNull())
        return Acad::eNullObjectId;
    if (id.database() != this)
        return Acad::eWrongDatabase;
    AcDbStub &stub = *id.stub();
    if (AcDbTransient::isCopy(stub)) {
        object = stub.object;
        return Acad::eOk;
    }
    if (stub.has(AcDbStub::kErased) && !openErased)
        return Acad::eWasErased;
    if (stub.has(AcDbStub::kBeingMade))
        return Acad::eWasOpenForWrite;
    AcDbObject *const opened = resident(stub);
    if (opened->m_writing)
        return Acad::eWasOpenForWrite;
    if (mode == AcDb::kForRead) {
        ++opened->m_readers;
    } else {
        if (opened->m_readers > 0)
            return Acad::eWasOpenForRead;
        if (opened->m_notifying)
            return Acad::eWasOpenForNotify;
        if (const Acad::ErrorStatus refused = mayChange(*opened); refused != Acad::eOk) {
            releaseIdle(stub);
            return refused;
        }
        m_undo->recordObject(stub);
        opened->m_writing = true;
    }
    object = opened;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDatabase::mayChange(const AcDbObject &object) const
{
    if (!object.m_stub->has(AcDbStub::kEntity) || object.m_isNew)
        return Acad::eOk;
    if (onLockedLayer(object))
        return Acad::eOnLockedLayer;
    return isProtectedProxy(object) ? Acad::eNotAllowedForThisProxy : Acad::eOk;
}

// What may be done to an entity without its class is said by the class when it is there and refused the
// entity, else by the drawing's record of the class.
bool AcDbDatabase::isProtectedProxy(const AcDbObject &object) const
{
    constexpr int kOperations = 0xFF; // Erasing, transforming, colours, layers ... copying.
    if (!object.m_isProxy)
        return false;
    const AcRxClass *const known = acdbKindClass(object.m_stub->kind, true);
    if (const auto *const application = known->application())
        return (application->proxyFlags & kOperations) == 0;
    const auto record = std::ranges::find(m_classes, object.dxfName(), &DrawingClass::dxfName);
    return record != m_classes.end() && (record->proxyFlags & kOperations) == 0;
}

bool AcDbDatabase::onLockedLayer(const AcDbObject &object) const
{
    const resbuf *const layer = findGroup(object.m_groups, 8);
    const AcDbObjectId record = layer ? tableRecord(SymbolTable::layer, layer->text()) : AcDbObjectId();
    if (record.isNull())
        return false;
    const ResbufList groups = fileGroups(*record.stub());
    const resbuf *const flags = findGroup(groups, 70);
    return flags && (flags->integer() & 4);
}

Acad::ErrorStatus AcDbDatabase::addAcDbObject(AcDbObject *object, AcDbObjectId owner, AcDbObjectId *id)
{
    if (!object)
        return Acad::eNullObjectPointer;
    if (object->m_stub)
        return Acad::eAlreadyInDb;
    AcDbStub *const added = newStub();
    added->kind = kindNamed(object->dxfName());
    added->handle = takeHandle();
    added->owner = owner.isNull() ? 0 : owner.stub()->index;
    added->set(AcDbStub::kEntity, object->isKindOf(AcDbEntity::desc()));
    added->object = object;
    indexHandle(added);
    object->m_stub = added;
    object->m_writing = true;
    object->m_isNew = true;
    object->stampIdentity();
    m_undo->recordAppended(*added);
    if (object->isCustom())
        ensureClass(*object->isA());
    noteChange(*added);
    if (id)
        *id = AcDbObjectId(added);
    return Acad::eOk;
}

void AcDbDatabase::countChange()
{
    ++m_changeCount;
    if (m_undo->isRecording())
        m_editState = ++m_lastEditState;
}

void AcDbDatabase::noteChange(AcDbStub &stub)
{
    stub.set(AcDbStub::kChanged);
    countChange();
    if (!stub.has(AcDbStub::kInChangeList)) {
        stub.set(AcDbStub::kInChangeList);
        m_changed.push_back(stub.index);
    }
    if (!stub.has(AcDbStub::kEntity))
        noteRecordName(stub);
}

// Only a record that has another name now makes the names of its table be read again.
void AcDbDatabase::noteRecordName(const AcDbStub &stub)
{
    const auto kind = tableOfKind(stub.kind);
    Table *const names = kind ? &table(*kind) : nullptr;
    const bool isComing = stub.index + 1 == m_stubCount &&
                          (!names || names->records.empty() || names->records.back() != stub.index);
    if (!names || !names->named || isComing)
        return;
    const auto known = names->byName.find(recordName(stub));
    names->named = known != names->byName.end() && known->second == stub.index;
}

/// Folded; null for a record that states none.
QString AcDbDatabase::recordName(const AcDbStub &stub) const
{
    if (stub.object) {
        const resbuf *const name = findGroup(stub.object->m_groups, 2);
        return name ? name->text().toCaseFolded() : QString();
    }
    const ResbufList groups = fileGroups(stub);
    const resbuf *const name = findGroup(groups, 2);
    return name ? name->text().toCaseFolded() : QString();
}

// A reactor that upgraded the object to write has it closed for it.
void AcDbDatabase::notifyWhileOpen(AcDbStub &stub,
                                   const std::function<void(AcDbDatabaseReactor &, AcDbObject &)> &event)
{
    AcDbObject *const object = stub.object;
    const bool wasNotifying = std::exchange(object->m_notifying, true);
    m_reactors.tell([&](AcDbDatabaseReactor &reactor) {
        event(reactor, *object);
        if (std::exchange(object->m_writing, false))
            noteChange(stub);
    });
    object->m_notifying = wasNotifying;
}

void AcDbDatabase::finishWriting(AcDbStub &stub)
{
    AcDbObject *const object = stub.object;
    object->m_writing = false;
    noteChange(stub);
    if (object->m_notifying)
        return; // The change of a reactor is part of what is being told already.
    // Until it was told of, a new object may be changed whatever its layer.
    const bool isNew = object->m_isNew;
    notifyWhileOpen(stub, [this, isNew](AcDbDatabaseReactor &reactor, AcDbObject &changed) {
        if (isNew)
            reactor.objectAppended(this, &changed);
        else
            reactor.objectModified(this, &changed);
    });
    object->m_isNew = false;
}

void AcDbDatabase::setErased(AcDbStub &stub, bool erased)
{
    for (const AcDbObjectId owned : acdbSubEntities(AcDbObjectId(&stub))) {
        m_undo->recordObject(*owned.stub());
        resident(*owned.stub());
        owned.stub()->set(AcDbStub::kErased, erased);
        noteChange(*owned.stub());
    }
    stub.set(AcDbStub::kErased, erased);
    noteChange(stub);
    AcDbObject *const object = resident(stub);
    const bool wasWriting = std::exchange(object->m_writing, false);
    notifyWhileOpen(stub, [this, erased](AcDbDatabaseReactor &reactor, AcDbObject &changed) {
        reactor.objectErased(this, &changed, erased);
    });
    object->m_writing = wasWriting;
}

static AcDbProxyGraphics s_proxyGraphics = nullptr;

void acdbSetProxyGraphics(AcDbProxyGraphics provider)
{
    s_proxyGraphics = provider;
}

/// The groups that the host knows of a custom entity, with its present proxy graphics as the last of them.
/// R12 has no place for graphics.
static ResbufList withProxyGraphics(const AcDbObject &object, DrawingVersion version)
{
    ResbufList groups = object.groups();
    if (!object.isKindOf(AcDbEntity::desc()))
        return groups;
    std::erase_if(groups, [](const resbuf &group) {
        return group.restype == 92 || group.restype == 160 || group.restype == 310;
    });
    if (!s_proxyGraphics || version < DrawingVersion::r13)
        return groups;
    const QByteArray graphics = s_proxyGraphics(static_cast<const AcDbEntity &>(object));
    if (graphics.isEmpty())
        return groups;
    const resbuf added[] = {{version < DrawingVersion::r2010 ? 92 : 160, std::int64_t(graphics.size())},
                            {310, graphics}};
    groups.insert(groups.begin() + std::ptrdiff_t(extendedDataBegin(groups)), std::begin(added),
                  std::end(added));
    return groups;
}

ResbufList AcDbDatabase::fileGroups(const AcDbStub &stub) const
{
    AcDbObject *const object = stub.object;
    if (!object)
        return m_source->read(stub);
    if (object->m_isProxy || !object->isCustom())
        return object->m_groups;
    ++object->m_readers;
    AcDbDxfFiler filer(const_cast<AcDbDatabase *>(this));
    object->dxfOutFields(&filer);
    --object->m_readers;
    ResbufList groups = withProxyGraphics(*object, version());
    groups.insert(groups.begin() + std::ptrdiff_t(extendedDataBegin(groups)), filer.groups().begin(),
                  filer.groups().end());
    return groups;
}

// Classes that come and go ------------------------------------------------------------------------

void AcDbDatabase::classRemoved(const AcRxClass *doomed)
{
    AcDbDwgCarriers carriers(*this);
    bool any = false;
    for (std::uint32_t i = 1; i < m_stubCount; ++i) {
        AcDbStub &leaving = *stub(i);
        if (!leaving.object || leaving.object->m_isProxy || leaving.object->isA() != doomed)
            continue;
        any = true;
        std::unique_ptr<AcDbObject> kept;
        if (leaving.has(AcDbStub::kChanged) || !leaving.has(AcDbStub::kHasSource)) {
            kept.reset(leaving.has(AcDbStub::kEntity) ? new AcDbEntity : new AcDbObject);
            kept->m_stub = &leaving;
            kept->m_isProxy = true;
            kept->m_groups = fileGroups(leaving);
        }
        replaceObject(leaving, std::move(kept));
    }
    if (!any)
        return;
    carriers.leave();
    m_carriers.clear();
    // Before-images hold fields that nobody can read any more.
    m_undo->clear();
}

void AcDbDatabase::ensureClass(const AcRxClass &added)
{
    const auto sameNames = [&](const DrawingClass &c) {
        return c.dxfName == added.dxfName() && c.className == added.name();
    };
    if (std::ranges::any_of(m_classes, sameNames))
        return;
    m_classes.push_back({added.dxfName(), added.name(), added.application()->description,
                         added.application()->proxyFlags, false, added.isDerivedFrom(AcDbEntity::desc()),
                         false});
}

// Structure ---------------------------------------------------------------------------------------

AcDbObjectId AcDbDatabase::symbolTableId(SymbolTable kind) const
{
    return AcDbObjectId(table(kind).head);
}

const std::vector<std::uint32_t> &AcDbDatabase::tableRecords(SymbolTable kind) const
{
    return table(kind).records;
}

void AcDbDatabase::registerRecord(SymbolTable kind, AcDbStub *record)
{
    Table &names = table(kind);
    names.records.push_back(record->index);
    if (names.named)
        names.byName.try_emplace(recordName(*record), record->index);
    if (kind == SymbolTable::block)
        m_blocks.try_emplace(record->index);
}

AcDbObjectId AcDbDatabase::tableRecord(SymbolTable kind, const QString &name) const
{
    Table &names = table(kind);
    const QString folded = name.toCaseFolded();
    auto found = names.byName.find(folded);
    // An erased record may hide another one of its name.
    if (!names.named || (found != names.byName.end() && stub(found->second)->has(AcDbStub::kErased))) {
        names.byName.clear();
        for (const std::uint32_t index : names.records) {
            const QString own = stub(index)->has(AcDbStub::kErased) ? QString() : recordName(*stub(index));
            if (!own.isEmpty())
                names.byName.try_emplace(own, index);
        }
        names.named = true;
        found = names.byName.find(folded);
    }
    return found == names.byName.end() ? AcDbObjectId() : AcDbObjectId(stub(found->second));
}

AcDbObjectId AcDbDatabase::modelSpaceId() const
{
    return tableRecord(SymbolTable::block, QStringLiteral("*Model_Space"));
}

AcDbObjectId AcDbDatabase::paperSpaceId() const
{
    return tableRecord(SymbolTable::block, QStringLiteral("*Paper_Space"));
}

AcDbObjectId AcDbDatabase::currentSpaceId() const
{
    if (m_currentSpace.isValid())
        return m_currentSpace;
    return headerInteger("$TILEMODE", 1) != 0 ? modelSpaceId() : paperSpaceId();
}

const BlockContents *AcDbDatabase::blockContents(AcDbObjectId blockRecord) const
{
    const auto found = blockRecord.isNull() ? m_blocks.end() : m_blocks.find(blockRecord.stub()->index);
    return found == m_blocks.end() ? nullptr : &found->second;
}

// Drawing variables -------------------------------------------------------------------------------

const ResbufList *AcDbDatabase::headerVariable(const QByteArray &name) const
{
    const auto found = m_header.find(name);
    return found == m_header.end() || !found->second.present ? nullptr : &found->second.groups;
}

static const resbuf *firstValue(const ResbufList *groups)
{
    return groups && !groups->empty() ? &groups->front() : nullptr;
}

QString AcDbDatabase::headerText(const QByteArray &name, const QString &fallback) const
{
    const resbuf *const value = firstValue(headerVariable(name));
    return value ? value->text() : fallback;
}

std::int64_t AcDbDatabase::headerInteger(const QByteArray &name, std::int64_t fallback) const
{
    const resbuf *const value = firstValue(headerVariable(name));
    return value ? value->integer() : fallback;
}

double AcDbDatabase::headerReal(const QByteArray &name, double fallback) const
{
    const resbuf *const value = firstValue(headerVariable(name));
    return value ? value->real() : fallback;
}

AcGePoint3d AcDbDatabase::headerPoint(const QByteArray &name, AcGePoint3d fallback) const
{
    const resbuf *const value = firstValue(headerVariable(name));
    return value ? value->point() : fallback;
}

void AcDbDatabase::setHeaderVariable(const QByteArray &name, ResbufList groups)
{
    const auto known = m_header.find(name);
    if (known != m_header.end() && known->second.present && known->second.groups == groups)
        return;
    m_undo->recordHeader(name);
    if (known == m_header.end())
        m_headerNames.push_back(name);
    HeaderValue &value = m_header[name];
    value.groups = std::move(groups);
    value.present = true;
    value.changed = true;
    countChange();
    m_reactors.tell(
        [&](AcDbDatabaseReactor &reactor) { reactor.headerSysVarChanged(this, name.constData()); });
}

std::vector<QByteArray> AcDbDatabase::changedHeaderNames() const
{
    std::vector<QByteArray> changed;
    std::ranges::copy_if(m_headerNames, std::back_inserter(changed), [this](const QByteArray &name) {
        const HeaderValue &value = m_header.at(name);
        return value.changed && value.present;
    });
    return changed;
}

// Changes -----------------------------------------------------------------------------------------

std::vector<AcDbStub *> AcDbDatabase::changedStubs() const
{
    std::vector<AcDbStub *> changed;
    for (const std::uint32_t index : m_changed) {
        AcDbStub *const candidate = stub(index);
        const bool inFile = candidate->has(AcDbStub::kHasSource);
        const bool erased = candidate->has(AcDbStub::kErased);
        if (candidate->has(AcDbStub::kNoFileForm))
            continue;
        if (inFile ? erased || candidate->has(AcDbStub::kChanged) : !erased)
            changed.push_back(candidate);
    }
    return changed;
}

bool AcDbDatabase::hasChanges() const
{
    return !changedStubs().empty() || !changedHeaderNames().empty();
}
