#include "host/acgi/gidisplaycache.h"

#include "host/acdb/dbdict.h"
#include "host/acgi/gidraw.h"
#include "host/acgi/giread.h"

#include <algorithm>
#include <limits>

AcGiDisplayCache::AcGiDisplayCache(AcDbDatabase &database, std::function<void()> ended)
    : m_database(database), m_ended(std::move(ended))
{
    m_database.addReactor(this);
}

AcGiDisplayCache::~AcGiDisplayCache()
{
    if (m_ended)
        m_database.removeReactor(this);
}

void AcGiDisplayCache::goodbye(const AcDbDatabase *)
{
    const std::function<void()> ended = std::exchange(m_ended, nullptr);
    ended(); // Deletes this.
}

// Changes ----------------------------------------------------------------------------------------

void AcGiDisplayCache::drop(std::uint32_t index)
{
    if (index < m_lists.size())
        m_lists[index] = {};
    m_notes.erase(index);
    m_viewports.erase(index);
    for (auto &[number, slot] : m_slots)
        slot.lists.erase(index);
}

void AcGiDisplayCache::dropAll()
{
    m_lists.clear();
    m_store.clear();
    m_slots.clear();
    m_notes.clear();
    m_viewports.clear();
    m_orders.clear();
    m_tables = {};
}

/// Lists hold how far the blocks reach that they show.
void AcGiDisplayCache::dropReferences()
{
    for (std::uint32_t index = 0; index < m_lists.size(); ++index) {
        if (m_lists[index].has(AcGiDisplayList::kReferences))
            drop(index);
    }
}

void AcGiDisplayCache::noteChange(const AcDbObject &object)
{
    if (object.objectId().isNull())
        return;
    if (!object.objectId().isEntity()) {
        const QByteArray kind = object.dxfName();
        if (kind == "SPATIAL_FILTER")
            dropReferences();
        for (const char *const shaping : {"STYLE", "DIMSTYLE", "IMAGEDEF", "MLINESTYLE", "MLEADERSTYLE"}) {
            if (kind == shaping)
                dropAll();
        }
        return;
    }
    // Attributes and vertices change what they belong to.
    const AcDbStub *changed = object.objectId().stub();
    while (changed->has(AcDbStub::kSubEntity) && changed->owner != 0)
        changed = m_database.stub(changed->owner);
    drop(changed->index);
    const std::uint32_t block = changed->owner;
    if (block < m_lists.size() && m_lists[block].has(AcGiDisplayList::kBuilt)) {
        drop(block);
        dropReferences();
    }
}

void AcGiDisplayCache::headerSysVarChanged(const AcDbDatabase *, const char *name)
{
    for (const char *const shaping : {"$PDMODE", "$PDSIZE", "$FILLMODE", "$ATTMODE", "$WIPEOUTFRAME",
                                      "$IMAGEFRAME", "$FRAME", "$XCLIPFRAME", "$TEXTSTYLE"}) {
        if (qstrcmp(name, shaping) == 0)
            dropAll();
    }
}

// Names ------------------------------------------------------------------------------------------

void AcGiDisplayCache::refreshNames()
{
    if (m_namesChangeCount == m_database.changeCount())
        return;
    m_namesChangeCount = m_database.changeCount();
    m_layers.clear();
    m_linetypes.clear();
}

AcDbObjectId AcGiDisplayCache::layer(const QString &name)
{
    const auto known = m_layers.constFind(name);
    return known != m_layers.constEnd()
               ? *known
               : *m_layers.insert(name, m_database.tableRecord(SymbolTable::layer, name));
}

AcDbObjectId AcGiDisplayCache::linetype(const QString &name)
{
    const auto known = m_linetypes.constFind(name);
    return known != m_linetypes.constEnd()
               ? *known
               : *m_linetypes.insert(name, m_database.tableRecord(SymbolTable::linetype, name));
}

void AcGiDisplayCache::noteUndrawn(std::uint32_t entity, const QString &reason)
{
    m_notes[entity].push_back(reason);
}

// Making lists -----------------------------------------------------------------------------------

AcGiDisplayList AcGiDisplayCache::keep(std::uint32_t index, AcGiListBuilder &builder,
                                       std::uint32_t viewportsBefore)
{
    for (std::uint32_t number = viewportsBefore; number < m_tables.viewportCount(); ++number)
        m_viewports[index].push_back(number);
    if (!builder.isViewDependent())
        return m_lists[index] = builder.finish(m_store);
    Slot &slot = m_slots[m_slot];
    const AcGiDisplayList list = builder.finish(slot.store);
    slot.lists[index] = list;
    AcGiDisplayList &placeholder = m_lists[index];
    placeholder = {};
    placeholder.flags = list.flags;
    return list;
}

const AcGiDisplayList *AcGiDisplayCache::list(std::uint32_t index, int slot) const
{
    if (index >= m_lists.size())
        return nullptr;
    const AcGiDisplayList &list = m_lists[index];
    if (!list.has(AcGiDisplayList::kViewDependent))
        return &list;
    const auto view = m_slots.find(slot);
    if (view == m_slots.end())
        return nullptr;
    const auto found = view->second.lists.find(index);
    return found == view->second.lists.end() ? nullptr : &found->second;
}

/// The list of an entity; its memory is that of the cache.
const AcGiDisplayList &AcGiDisplayCache::ensure(std::uint32_t index)
{
    if (m_lists[index].has(AcGiDisplayList::kBuilt)) {
        if (const AcGiDisplayList *const known = list(index, m_slot))
            return *known;
    }
    const std::uint32_t viewports = m_tables.viewportCount();
    AcGiListBuilder builder(m_tables, *this, &m_slots[m_slot].view);
    builder.begin(index);
    m_notes.erase(index);
    m_viewports.erase(index);
    readEntity(AcDbObjectId(m_database.stub(index)), [&](const AcDbEntity &entity) {
        if (builder.wants(entity))
            acgiDrawEntity(entity, builder);
    });
    keep(index, builder, viewports);
    return *list(index, m_slot);
}

AcGiDisplayList AcGiDisplayCache::blockList(AcDbObjectId record)
{
    const std::uint32_t index = record.stub() ? record.stub()->index : 0;
    if (index == 0 || index >= m_lists.size())
        return {};
    if (m_lists[index].has(AcGiDisplayList::kBuilt)) {
        if (const AcGiDisplayList *const known = list(index, m_slot))
            return *known;
    }
    // What stands here meanwhile ends the repetition of a block that contains itself.
    m_lists[index].flags = AcGiDisplayList::kBuilt;
    m_notes.erase(index);
    const std::uint32_t viewports = m_tables.viewportCount();
    AcGiListBuilder builder(m_tables, *this, &m_slots[m_slot].view);
    builder.begin(index);
    acgiDrawBlock(record, builder);
    return keep(index, builder, viewports);
}

// Showing ----------------------------------------------------------------------------------------

static bool looksTheSame(const AcGiViewport &a, const AcGiViewport &b)
{
    return a.height == b.height && a.twist == b.twist && a.direction == b.direction &&
           a.pixelWidth == b.pixelWidth && a.pixelHeight == b.pixelHeight && a.paperSpace == b.paperSpace;
}

void AcGiDisplayCache::openSlot(AcDbObjectId space, const AcGiViewport &view, int number)
{
    m_slot = number;
    Slot &slot = m_slots[number];
    if (slot.space != space || !looksTheSame(slot.view, view)) {
        slot.lists.clear();
        slot.store.clear();
    }
    slot.space = space;
    slot.view = view;
}

/// Pairs of an entity and the handle that it is sorted by, from the extension dictionary of the space.
static std::unordered_map<std::uint64_t, std::uint64_t> sortHandles(AcDbObjectId space)
{
    std::unordered_map<std::uint64_t, std::uint64_t> handles;
    const AcDbObjectPointer<AcDbObject> record(space, AcDb::kForRead);
    const AcDbObjectPointer<AcDbDictionary> dictionary(
        record ? record->extensionDictionary() : AcDbObjectId(), AcDb::kForRead);
    if (!dictionary)
        return handles;
    const AcDbObjectPointer<AcDbObject> table(dictionary->getAt(QStringLiteral("ACAD_SORTENTS")),
                                              AcDb::kForRead);
    if (!table)
        return handles;
    std::uint64_t entity = 0;
    for (const resbuf &group : table->groups()) {
        if (group.restype == 331)
            entity = group.handle().value;
        else if (group.restype == 5 && entity != 0)
            handles[std::exchange(entity, 0)] = group.handle().value;
    }
    return handles;
}

const std::vector<std::uint32_t> &AcGiDisplayCache::order(AcDbObjectId space,
                                                          const std::vector<std::uint32_t> &entities)
{
    const auto [place, isNew] = m_orders.try_emplace(space);
    Order &order = place->second;
    if (isNew || order.changeCount != m_database.changeCount()) {
        order.changeCount = m_database.changeCount();
        order.sorted.clear();
        if (const auto handles = sortHandles(space); !handles.empty()) {
            order.sorted = entities;
            const auto key = [&](std::uint32_t index) {
                const std::uint64_t handle = m_database.stub(index)->handle;
                const auto found = handles.find(handle);
                return found == handles.end() ? handle : found->second;
            };
            std::ranges::stable_sort(order.sorted, {}, key);
        }
    }
    return order.sorted.empty() ? entities : order.sorted;
}

/// The part of the world's plane that a plan view shows, with room for the width of lines.
static AcDbExtents visiblePlane(const AcGiViewport &view)
{
    constexpr double kMargin = 16.0;
    const AcGeMatrix3d toWorld = view.worldToPixel().inverse();
    AcDbExtents box;
    for (const double x : {-kMargin, view.pixelWidth + kMargin}) {
        for (const double y : {-kMargin, view.pixelHeight + kMargin})
            box.addPoint(toWorld * AcGePoint3d(x, y, 0.0));
    }
    return box;
}

AcGiShownSpace AcGiDisplayCache::show(AcDbObjectId space, const AcGiViewport &view, int slot,
                                      const std::function<bool()> &isCancelled, AcGiPaintReport &report)
{
    AcGiShownSpace shown;
    shown.isPlan = view.isPlan();
    const BlockContents *const contents = m_database.blockContents(space);
    if (!contents)
        return shown;
    refreshNames();
    m_lists.resize(m_database.stubCount());
    openSlot(space, view, slot);
    const AcDbExtents plane = visiblePlane(view);
    const AcGePoint3d &low = plane.minPoint();
    const AcGePoint3d &high = plane.maxPoint();
    const auto isSeen = [&](const AcGiDisplayList &list) {
        return !shown.isPlan || !list.hasBox() || list.has(AcGiDisplayList::kEndless) ||
               list.has(AcGiDisplayList::kViewDependent) ||
               (list.box[0] <= high.x && list.box[2] >= low.x && list.box[1] <= high.y &&
                list.box[3] >= low.y);
    };
    constexpr unsigned kBetweenQuestions = 4096;
    unsigned count = 0;
    for (const std::uint32_t index : order(space, contents->entities)) {
        if (++count % kBetweenQuestions == 0 && isCancelled && isCancelled()) {
            report.cancelled = true;
            return shown;
        }
        if (m_database.stub(index)->has(AcDbStub::kErased))
            continue;
        const AcGiDisplayList &list = ensure(index);
        const bool seen = isSeen(list);
        if (list.size > 0 && seen)
            shown.lists.push_back(&list);
        if (const auto notes = m_notes.empty() ? m_notes.end() : m_notes.find(index);
            seen && notes != m_notes.end()) {
            for (const QString &reason : notes->second)
                ++report.undrawn[reason];
        }
    }
    return shown;
}

const AcGiDisplayList *AcGiDisplayCache::entity(AcDbObjectId id, const AcGiViewport &view)
{
    if (!id.isValid() || !id.isEntity())
        return nullptr;
    refreshNames();
    m_lists.resize(m_database.stubCount());
    openSlot(AcDbObjectId(m_database.stub(id.stub()->owner)), view, 0);
    return &ensure(id.stub()->index);
}

AcGiDisplayList AcGiDisplayCache::transient(const AcDbEntity &entity, const AcGiViewport &view,
                                            AcGiListStore &store)
{
    refreshNames();
    m_lists.resize(m_database.stubCount());
    openSlot(m_slots[0].space, view, 0);
    AcGiListBuilder builder(m_tables, *this, &m_slots[0].view);
    builder.begin(0);
    acgiDrawEntity(entity, builder);
    return builder.finish(store);
}

std::vector<std::uint32_t> AcGiDisplayCache::viewportsOf(AcDbObjectId space) const
{
    std::vector<std::uint32_t> numbers;
    for (const auto &[entity, viewports] : m_viewports) {
        if (m_database.stub(entity)->owner == space.stub()->index)
            numbers.insert(numbers.end(), viewports.begin(), viewports.end());
    }
    return numbers;
}

std::size_t AcGiDisplayCache::memory() const
{
    std::size_t bytes = m_store.memory() + m_lists.capacity() * sizeof(AcGiDisplayList);
    for (const auto &[number, slot] : m_slots)
        bytes += slot.store.memory();
    return bytes;
}
