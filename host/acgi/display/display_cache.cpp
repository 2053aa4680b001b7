#include "host/acgi/display/display_cache.h"

#include "host/acdb/dbdict.h"
#include "host/acdb/dbxref.h"
#include "host/acdb/owngroups.h"
#include "host/acgi/kinds/draw_entity.h"

#include <algorithm>
#include <limits>

namespace acgi
{

DisplayCache::DisplayCache(AcDbDatabase &database, std::function<void()> changes)
    : m_database(database), m_changes(std::move(changes))
{
    m_database.addReactor(this);
}

DisplayCache::~DisplayCache()
{
    m_database.removeReactor(this);
}

static bool looksTheSame(const AcGiViewport &a, const AcGiViewport &b)
{
    return a.height == b.height && a.twist == b.twist && a.direction == b.direction &&
           a.pixelWidth == b.pixelWidth && a.pixelHeight == b.pixelHeight && a.pixelRatio == b.pixelRatio &&
           a.paperSpace == b.paperSpace;
}

// Changes ----------------------------------------------------------------------------------------

/// Keeps what the entity looked like, for takeChanges().
void DisplayCache::noteChanged(std::uint32_t index)
{
    const auto progress = m_progress.find(m_database.stub(index)->owner);
    if (progress == m_progress.end())
        return;
    progress->second.dropped.insert(index);
    if (progress->second.grid)
        progress->second.outdated.insert(index);
    constexpr std::size_t kMost = 2000;
    auto &changed = progress->second.changed;
    if (m_everythingChanged || changed.contains(index))
        return;
    const bool wasDrawn = index < m_lists.size() && m_lists[index].has(DisplayList::kBuilt);
    const DisplayList *const was = wasDrawn ? list(index, 0) : nullptr;
    m_everythingChanged = changed.size() >= kMost || (wasDrawn && !was);
    if (was && m_lists[index].has(DisplayList::kViewDependent)) {
        const AcGiViewport &view = m_slots[0].view;
        m_everythingChanged = m_everythingChanged || (m_changedIn && !looksTheSame(*m_changedIn, view));
        m_changedIn = view;
    }
    changed.emplace(index, was ? *was : DisplayList());
}

void DisplayCache::drop(AcDbObjectId entity)
{
    if (!entity.isNull())
        drop(entity.stub()->index);
}

void DisplayCache::drop(std::uint32_t index)
{
    m_changes();
    noteChanged(index);
    if (index < m_lists.size())
        m_lists[index] = {};
    m_notes.erase(index);
    m_viewports.erase(index);
    m_reaches.erase(index);
    m_parts.erase(index);
    for (auto &[number, slot] : m_slots)
        slot.lists.erase(index);
}

void DisplayCache::dropViewDependent()
{
    m_changes();
    m_everythingChanged = true;
    m_slots.clear();
    m_reaches.clear();
}

void DisplayCache::dropAll()
{
    m_changes();
    m_everythingChanged = true;
    m_progress.clear();
    m_lists.clear();
    m_store.clear();
    m_slots.clear();
    m_reaches.clear();
    m_notes.clear();
    m_viewports.clear();
    m_orders.clear();
    m_parts.clear();
    m_foreign = {};
    m_tables = ListTables();
}

/// Lists of other drawings, and all that refers to them.
void DisplayCache::dropForeign()
{
    m_changes();
    const auto isForeign = [](const auto &entry) { return entry.first >= kForeign; };
    std::erase_if(m_notes, isForeign);
    std::erase_if(m_viewports, isForeign);
    std::erase_if(m_reaches, isForeign);
    std::erase_if(m_parts, isForeign);
    for (auto &[number, slot] : m_slots)
        std::erase_if(slot.lists, isForeign);
    m_foreign = {};
    m_names.clear();
    m_lastNames = {};
    dropReferences();
}

void DisplayCache::xrefsChanged(const AcDbDatabase *)
{
    dropForeign();
}

// Numbers ----------------------------------------------------------------------------------------

std::uint32_t DisplayCache::knownNumber(const AcDbStub &stub) const
{
    if (stub.database == &m_database)
        return stub.index;
    const auto first = std::ranges::find(m_foreign.firsts, stub.database,
                                         &std::pair<const AcDbDatabase *, std::uint32_t>::first);
    return first == m_foreign.firsts.end() ? 0 : first->second + stub.index;
}

/// Drawings that are referred to do not change: their runs never grow.
std::uint32_t DisplayCache::numberOf(const AcDbStub &stub)
{
    if (const std::uint32_t known = knownNumber(stub); known != 0)
        return known;
    const std::size_t first = m_foreign.lists.size();
    if (first + stub.database->stubCount() >= kForeign)
        return 0;
    m_foreign.lists.resize(first + stub.database->stubCount());
    m_foreign.firsts.emplace_back(stub.database, kForeign + std::uint32_t(first));
    return knownNumber(stub);
}

AcDbStub *DisplayCache::stubOf(std::uint32_t number) const
{
    if (number < kForeign)
        return m_database.stub(number);
    const auto behind = std::ranges::upper_bound(m_foreign.firsts, number, {},
                                                 &std::pair<const AcDbDatabase *, std::uint32_t>::second);
    const auto &[database, first] = *std::prev(behind);
    return database->stub(number - first);
}

/// Lists hold how far the blocks reach that they show.
void DisplayCache::dropReferences()
{
    for (std::uint32_t index = 0; index < m_lists.size(); ++index) {
        if (m_lists[index].has(DisplayList::kReferences))
            drop(index);
    }
}

void DisplayCache::noteChange(const AcDbObject &object)
{
    if (object.objectId().isNull())
        return;
    if (!object.objectId().isEntity()) {
        const QByteArray kind = object.dxfName();
        if (kind == "SPATIAL_FILTER")
            dropReferences();
        for (const char *const resolved : {"LAYER", "LTYPE", "SORTENTSTABLE"})
            m_everythingChanged = m_everythingChanged || kind == resolved;
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
    if (block < m_lists.size() && m_lists[block].has(DisplayList::kBuilt)) {
        drop(block);
        dropReferences();
    }
}

void DisplayCache::headerSysVarChanged(const AcDbDatabase *, const char *name)
{
    for (const char *const shaping : {"$PDMODE", "$PDSIZE", "$FILLMODE", "$ATTMODE", "$WIPEOUTFRAME",
                                      "$IMAGEFRAME", "$FRAME", "$XCLIPFRAME", "$TEXTSTYLE"}) {
        if (qstrcmp(name, shaping) == 0)
            dropAll();
    }
    for (const char *const resolved : {"$LTSCALE", "$PSLTSCALE", "$LWDEFAULT"})
        m_everythingChanged = m_everythingChanged || qstrcmp(name, resolved) == 0;
}

// Names ------------------------------------------------------------------------------------------

void DisplayCache::refreshNames()
{
    if (m_namesChangeCount == m_database.changeCount())
        return;
    m_namesChangeCount = m_database.changeCount();
    m_names.clear();
    m_lastNames = {};
}

/// Entities that stand in no drawing name records of the one that is shown.
DisplayCache::Names &DisplayCache::namesOf(const AcDbEntity &entity)
{
    const AcDbDatabase *const database = entity.database() ? entity.database() : &m_database;
    if (m_lastNames.first != database)
        m_lastNames = {database, &m_names[database]};
    return *m_lastNames.second;
}

AcDbObjectId DisplayCache::layer(const AcDbEntity &entity, const QString &name)
{
    QHash<QString, AcDbObjectId> &layers = namesOf(entity).layers;
    const auto known = layers.constFind(name);
    return known != layers.constEnd() ? *known
                                      : *layers.insert(name, acdbShownLayer(*m_lastNames.first, name));
}

AcDbObjectId DisplayCache::linetype(const AcDbEntity &entity, const QString &name)
{
    QHash<QString, AcDbObjectId> &linetypes = namesOf(entity).linetypes;
    const auto known = linetypes.constFind(name);
    return known != linetypes.constEnd()
               ? *known
               : *linetypes.insert(name, m_lastNames.first->tableRecord(SymbolTable::linetype, name));
}

void DisplayCache::noteUndrawn(std::uint32_t entity, const QString &reason)
{
    if (entity == 0)
        return;
    m_notes[entity].push_back(reason);
}

void DisplayCache::noteUndrawnOf(AcDbObjectId record, std::uint32_t entity)
{
    if (record.stub())
        passNotes(knownNumber(*record.stub()), entity);
}

/// Each reason once: a block may hold thousands.
void DisplayCache::passNotes(std::uint32_t from, std::uint32_t to)
{
    const auto known = m_notes.find(from);
    if (known == m_notes.end() || from == to || to == 0)
        return;
    const std::vector<QString> passed = known->second;
    std::vector<QString> &notes = m_notes[to];
    for (const QString &reason : passed) {
        if (std::ranges::find(notes, reason) == notes.end())
            notes.push_back(reason);
    }
}

/// The box that the list lies in as every plan view sees it; null when there is none.
static const float *fixedBox(const DisplayList &list)
{
    const bool isFixed = list.has(DisplayList::kBuilt) && list.hasBox() && !list.has(DisplayList::kEndless) &&
                         !list.has(DisplayList::kViewDependent);
    return isFixed ? list.box : nullptr;
}

// Making lists -----------------------------------------------------------------------------------

DisplayList DisplayCache::keep(std::uint32_t index, ListBuilder &builder, std::uint32_t viewportsBefore)
{
    for (std::uint32_t number = viewportsBefore; number < m_tables.viewportCount(); ++number)
        m_viewports[index].push_back(number);
    if (!builder.isViewDependent())
        return listAt(index) = builder.finish(m_store);
    Slot &slot = m_slots[m_slot];
    const DisplayList list = builder.finish(slot.store);
    slot.lists[index] = list;
    const auto progress = index < kForeign ? m_progress.find(stubOf(index)->owner) : m_progress.end();
    if (progress != m_progress.end())
        progress->second.perSlot.insert(index);
    DisplayList &placeholder = listAt(index);
    placeholder = {};
    placeholder.flags = list.flags;
    return list;
}

const DisplayList *DisplayCache::list(std::uint32_t index, int slot) const
{
    const std::vector<DisplayList> &lists = index < kForeign ? m_lists : m_foreign.lists;
    const std::uint32_t place = index < kForeign ? index : index - kForeign;
    if (place >= lists.size())
        return nullptr;
    const DisplayList &list = lists[place];
    if (!list.has(DisplayList::kViewDependent))
        return &list;
    const auto view = m_slots.find(slot);
    if (view == m_slots.end())
        return nullptr;
    const auto found = view->second.lists.find(index);
    return found == view->second.lists.end() ? nullptr : &found->second;
}

/// The list of an entity; its memory is that of the cache.
const DisplayList &DisplayCache::ensure(std::uint32_t index)
{
    if (listAt(index).has(DisplayList::kBuilt)) {
        if (const DisplayList *const known = list(index, m_slot))
            return *known;
    }
    m_changes();
    const std::uint32_t viewports = m_tables.viewportCount();
    ListBuilder builder(m_tables, *this, &m_slots[m_slot].view);
    builder.begin(index);
    m_notes.erase(index);
    m_viewports.erase(index);
    AcDbExtents filed;
    readEntity(AcDbObjectId(stubOf(index)), [&](const AcDbEntity &entity) {
        if (builder.wants(entity))
            drawEntity(entity, builder);
        if (builder.isViewDependent())
            entity.getGeomExtents(filed);
    });
    keep(index, builder, viewports);
    const DisplayList &made = *list(index, m_slot);
    if (made.has(DisplayList::kViewDependent))
        noteReach(index, made, filed);
    return made;
}

// How far what looks different in each view reaches ----------------------------------------------

/// Of a list that was made for a view from as far or farther; null when there is none.
const DisplayCache::Reach *DisplayCache::reachIn(std::uint32_t index, const AcGiViewport &view) const
{
    const auto known = view.isPlan() ? m_reaches.find(index) : m_reaches.end();
    const bool holds = known != m_reaches.end() && known->second.twist == view.twist &&
                       known->second.paperSpace == view.paperSpace &&
                       known->second.pixelSize >= view.countedPixelSize();
    return holds ? &known->second : nullptr;
}

/// A custom entity shows things of a size on the screen beside what it is filed with; the nearer one looks,
/// the less far they reach into the world.
void DisplayCache::noteReach(std::uint32_t index, const DisplayList &list, const AcDbExtents &filed)
{
    constexpr double kMargin = 32.0; // Counted pixels: for what is left out of small ones, such as waves.
    const AcGiViewport &view = m_slots[m_slot].view;
    if (!view.isPlan() || !filed.isValid() || list.has(DisplayList::kEndless) || reachIn(index, view))
        return;
    AcDbExtents box = filed;
    if (list.hasBox()) {
        box.addPoint({list.box[0], list.box[1], 0.0});
        box.addPoint({list.box[2], list.box[3], 0.0});
    }
    const double margin = kMargin * view.countedPixelSize();
    m_reaches[index] = {{float(box.minPoint().x - margin), float(box.minPoint().y - margin),
                         float(box.maxPoint().x + margin), float(box.maxPoint().y + margin)},
                        view.countedPixelSize(),
                        view.twist,
                        view.paperSpace};
}

DisplayList DisplayCache::blockList(AcDbObjectId record)
{
    const std::uint32_t index = record.stub() ? numberOf(*record.stub()) : 0;
    if (index == 0 || (index < kForeign && index >= m_lists.size()))
        return {};
    if (listAt(index).has(DisplayList::kBuilt)) {
        if (const DisplayList *const known = list(index, m_slot))
            return *known;
    }
    if (!m_nesting.enter(record.stub()))
        return {};
    m_changes();
    listAt(index).flags = DisplayList::kBuilt;
    m_notes.erase(index);
    const std::uint32_t viewports = m_tables.viewportCount();
    ListBuilder builder(m_tables, *this, &m_slots[m_slot].view);
    builder.begin(index);
    constexpr std::size_t kLarge = 500;
    const BlockContents *const contents = record.database()->blockContents(record);
    if (contents && contents->entities.size() >= kLarge)
        addParts(record, index, builder);
    else
        drawBlock(record, builder);
    m_nesting.leave();
    return keep(index, builder, viewports);
}

/// Each entity of a large block gets a list of its own: pictures look only at those that are near.
void DisplayCache::addParts(AcDbObjectId record, std::uint32_t number, ListBuilder &builder)
{
    constexpr std::size_t kWorthAGrid = 2000;
    const AcDbDatabase &database = *record.database();
    BlockParts parts;
    for (const std::uint32_t index : database.blockContents(record)->entities) {
        if (database.stub(index)->has(AcDbStub::kErased))
            continue;
        const std::uint32_t part = numberOf(*database.stub(index));
        const DisplayList &list = ensure(part);
        passNotes(part, number);
        if (list.size == 0)
            continue;
        builder.reachPart(list);
        parts.lists.push_back(part);
    }
    if (parts.lists.empty())
        return;
    if (parts.lists.size() >= kWorthAGrid) {
        std::vector<BoxGrid::Entry> entries;
        for (const std::uint32_t part : parts.lists)
            entries.push_back({std::uint32_t(entries.size()), fixedBox(listAt(part))});
        parts.grid.emplace(entries);
    }
    m_parts.insert_or_assign(number, std::move(parts));
    builder.parts(number);
}

const BlockParts *DisplayCache::parts(std::uint32_t number) const
{
    const auto known = m_parts.find(number);
    return known == m_parts.end() ? nullptr : &known->second;
}

// Showing ----------------------------------------------------------------------------------------

void DisplayCache::openSlot(AcDbObjectId space, const AcGiViewport &view, int number)
{
    m_slot = number;
    const auto known = m_slots.find(number);
    if (known == m_slots.end() || known->second.space != space || !looksTheSame(known->second.view, view)) {
        m_changes();
        Slot &slot = m_slots[number];
        slot.lists.clear();
        slot.store.clear();
        const std::unordered_set<std::uint32_t> &entities = m_progress[space.stub()->index].perSlot;
        slot.missing.assign(entities.begin(), entities.end());
    }
    Slot &slot = m_slots[number];
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

const std::vector<std::uint32_t> &DisplayCache::order(AcDbObjectId space,
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

/// The part of the world's plane that a plan view shows there.
DisplayCache::Plane DisplayCache::visiblePlane(const AcGiViewport &view, const QRectF &part)
{
    const AcGeMatrix3d toWorld = view.worldToPixel().inverse();
    AcDbExtents box;
    for (const double x : {part.left(), part.right()}) {
        for (const double y : {part.top(), part.bottom()})
            box.addPoint(toWorld * AcGePoint3d(x, y, 0.0));
    }
    return {box.minPoint().x, box.minPoint().y, box.maxPoint().x, box.maxPoint().y};
}

/// All lists of the space are made. Few entities are looked at one by one as quickly.
void DisplayCache::makeGrid(Progress &progress, const std::vector<std::uint32_t> &entities)
{
    constexpr std::size_t kWorthAGrid = 2000;
    constexpr std::size_t kMostOutdated = 2000;
    const std::size_t outdated = progress.outdated.size() + entities.size() - progress.inGrid;
    if (entities.size() < kWorthAGrid || (progress.inGrid > 0 && outdated <= kMostOutdated))
        return;
    progress.grid.reset();
    progress.outdated.clear();
    progress.inGrid = entities.size();
    // What the grid finds has to come in drawing order.
    if (!std::ranges::is_sorted(entities))
        return;
    std::vector<BoxGrid::Entry> entries;
    entries.reserve(entities.size());
    for (const std::uint32_t index : entities)
        entries.push_back({index, fixedBox(m_lists[index])});
    progress.grid.emplace(entries);
}

/// The entities that can be seen there, and some more; none when all have to be looked at.
std::optional<std::vector<std::uint32_t>>
DisplayCache::near(const Progress &progress, const std::vector<std::uint32_t> &entities, const Plane &plane)
{
    auto found =
        progress.grid ? progress.grid->find(plane.left, plane.bottom, plane.right, plane.top) : std::nullopt;
    if (!found)
        return found;
    const auto inGrid = std::ptrdiff_t(found->size());
    found->insert(found->end(), progress.outdated.begin(), progress.outdated.end());
    found->insert(found->end(), entities.begin() + std::ptrdiff_t(progress.inGrid), entities.end());
    std::sort(found->begin() + inGrid, found->end());
    std::inplace_merge(found->begin(), found->begin() + inGrid, found->end());
    found->erase(std::unique(found->begin(), found->end()), found->end());
    return found;
}

/// The same by what the picture itself asks.
std::optional<std::vector<std::uint32_t>> DisplayCache::asked(AcDbObjectId space,
                                                              const std::vector<std::uint32_t> &entities,
                                                              const Plane &plane,
                                                              const PaintOptions &options) const
{
    const auto ids =
        options.near
            ? options.near(space, AcDbExtents({plane.left, plane.bottom, 0.0}, {plane.right, plane.top, 0.0}))
            : std::nullopt;
    if (!ids)
        return std::nullopt;
    std::vector<bool> isNear(m_lists.size());
    for (const AcDbObjectId id : *ids)
        isNear[id.stub()->index] = true;
    std::vector<std::uint32_t> found;
    std::ranges::copy_if(entities, std::back_inserter(found),
                         [&](std::uint32_t each) { return isNear[each]; });
    return found;
}

ShownSpace DisplayCache::show(AcDbObjectId space, const AcGiViewport &view, const QRectF &part, int slot,
                              const PaintOptions &options, PaintReport &report)
{
    ShownSpace shown;
    shown.isPlan = view.isPlan();
    shown.slot = slot;
    const BlockContents *const contents = m_database.blockContents(space);
    if (!contents)
        return shown;
    grow();
    openSlot(space, view, slot);
    const Plane plane = visiblePlane(view, part);
    const auto isSeen = [&](const DisplayList &list) {
        const float *const box = fixedBox(list);
        return !shown.isPlan || !box || plane.meets(box);
    };
    Progress &progress = m_progress[space.stub()->index];
    const std::vector<std::uint32_t> &all = order(space, contents->entities);
    const bool isSorted = &all != &contents->entities;
    auto some = shown.isPlan ? asked(space, all, plane, options) : std::nullopt;
    const bool makesAll = !some && !options.leavesOut;
    if (!some && shown.isPlan && !isSorted)
        some = near(progress, all, plane);
    constexpr unsigned kBetweenQuestions = 4096;
    unsigned count = 0;
    for (const std::uint32_t index : some ? *some : all) {
        if (++count % kBetweenQuestions == 0 && options.isCancelled && options.isCancelled()) {
            report.cancelled = true;
            return shown;
        }
        if (options.leavesOut && options.leavesOut(AcDbObjectId(m_database.stub(index))))
            continue;
        // Erased ones have lost their list.
        if (!m_lists[index].has(DisplayList::kBuilt) && m_database.stub(index)->has(AcDbStub::kErased))
            continue;
        if (const Reach *const reach = reachIn(index, view); reach && !plane.meets(reach->box))
            continue;
        const DisplayList &list = ensure(index);
        const bool seen = isSeen(list);
        if (list.size > 0 && seen)
            shown.lists.push_back(&list);
        if (const auto notes = m_notes.empty() ? m_notes.end() : m_notes.find(index);
            seen && notes != m_notes.end()) {
            for (const QString &reason : notes->second)
                ++report.undrawn[reason];
        }
    }
    if (makesAll) {
        progress.made = contents->entities.size();
        progress.dropped.clear();
        m_slots[slot].missing.clear();
    }
    return shown;
}

void DisplayCache::grow()
{
    refreshNames();
    if (m_lists.size() == m_database.stubCount())
        return;
    m_changes();
    m_lists.resize(m_database.stubCount());
}

bool DisplayCache::prepare(AcDbObjectId space, const AcGiViewport &view, int slot,
                           const QDeadlineTimer &until)
{
    const BlockContents *const contents = m_database.blockContents(space);
    if (!contents)
        return true;
    grow();
    openSlot(space, view, slot);
    Progress &progress = m_progress[space.stub()->index];
    const auto make = [&](std::uint32_t index) {
        if (!m_database.stub(index)->has(AcDbStub::kErased))
            ensure(index);
        return !until.hasExpired();
    };
    while (progress.made < contents->entities.size()) {
        if (!make(contents->entities[progress.made++]))
            return false;
    }
    while (!progress.dropped.empty()) {
        if (!make(progress.dropped.extract(progress.dropped.begin()).value()))
            return false;
    }
    std::vector<std::uint32_t> &missing = m_slots[slot].missing;
    while (!missing.empty()) {
        const std::uint32_t index = missing.back();
        missing.pop_back();
        if (!make(index))
            return false;
    }
    makeGrid(progress, contents->entities);
    return true;
}

// What changed -----------------------------------------------------------------------------------

ChangedBoxes DisplayCache::takeChanges(AcDbObjectId space, const AcGiViewport &view)
{
    ChangedBoxes taken;
    const std::optional<AcGiViewport> changedIn = std::exchange(m_changedIn, std::nullopt);
    taken.everything =
        std::exchange(m_everythingChanged, false) || (changedIn && !looksTheSame(*changedIn, view));
    const auto add = [&](const DisplayList &list) {
        if (list.size == 0)
            return;
        taken.everything = taken.everything || !list.hasBox() || list.has(DisplayList::kEndless);
        taken.boxes.push_back({list.box[0], list.box[1], list.box[2], list.box[3]});
    };
    for (auto &[spaceIndex, progress] : m_progress) {
        const auto changed = std::exchange(progress.changed, {});
        if (changed.empty() || taken.everything)
            continue;
        for (const std::uint32_t number : viewportsOf(space)) {
            const ViewportPicture &picture = m_tables.viewport(number);
            const float halfWidth = float(picture.width / 2.0);
            const float halfHeight = float(picture.height / 2.0);
            const float x = float(picture.centre.x);
            const float y = float(picture.centre.y);
            if (picture.space.stub() && picture.space.stub()->index == spaceIndex)
                taken.boxes.push_back({x - halfWidth, y - halfHeight, x + halfWidth, y + halfHeight});
        }
        if (spaceIndex != space.stub()->index)
            continue;
        grow();
        openSlot(space, view, 0);
        for (const auto &[index, was] : changed) {
            add(was);
            if (!m_database.stub(index)->has(AcDbStub::kErased))
                add(ensure(index));
        }
    }
    return taken;
}

/// That of the shown space when it is seen in the same way: its lists do. Else one for what is drawn over it.
int DisplayCache::slotFor(const AcGiViewport &view) const
{
    const auto shown = m_slots.find(0);
    return shown != m_slots.end() && looksTheSame(shown->second.view, view) ? 0 : kOver;
}

const DisplayList *DisplayCache::entity(AcDbObjectId id, const AcGiViewport &view)
{
    if (!id.isValid() || !id.isEntity())
        return nullptr;
    grow();
    openSlot(AcDbObjectId(m_database.stub(id.stub()->owner)), view, slotFor(view));
    return &ensure(id.stub()->index);
}

DisplayList DisplayCache::transient(const AcDbEntity &entity, const AcGiViewport &view, ListTables &tables,
                                    ListStore &store)
{
    grow();
    const auto known = m_slots.find(0);
    openSlot(known == m_slots.end() ? m_database.modelSpaceId() : known->second.space, view, slotFor(view));
    ListBuilder builder(tables, *this, &view);
    builder.begin(0);
    drawEntity(entity, builder);
    return builder.finish(store);
}

std::vector<std::uint32_t> DisplayCache::viewportsOf(AcDbObjectId space) const
{
    std::vector<std::uint32_t> numbers;
    for (const auto &[entity, viewports] : m_viewports) {
        if (entity < kForeign && m_database.stub(entity)->owner == space.stub()->index)
            numbers.insert(numbers.end(), viewports.begin(), viewports.end());
    }
    return numbers;
}

std::size_t DisplayCache::memory() const
{
    std::size_t bytes =
        m_store.memory() + (m_lists.capacity() + m_foreign.lists.capacity()) * sizeof(DisplayList);
    for (const auto &[number, slot] : m_slots)
        bytes += slot.store.memory();
    return bytes;
}

} // namespace acgi
