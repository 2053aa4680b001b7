#include "host/acgi/query/spatial_index.h"

#include "host/acdb/dbreactor.h"
#include "host/acdb/owngroups.h"
#include "host/acgi/display/display.h"
#include "host/acgi/query/visibility.h"

// One of its headers names an old header of its own library.
#define BOOST_ALLOW_DEPRECATED_HEADERS
#include <boost/geometry.hpp>
#include <boost/geometry/index/rtree.hpp>

#include <QDeadlineTimer>
#include <QHash>

#include <algorithm>
#include <future>
#include <unordered_set>

namespace acgi
{

namespace
{

namespace bg = boost::geometry;
using TreePoint = bg::model::point<double, 2, bg::cs::cartesian>;
using TreeBox = bg::model::box<TreePoint>;
using TreeEntry = std::pair<TreeBox, std::uint32_t>; ///< The box of the entity with that stub index.
using Tree = bg::index::rtree<TreeEntry, bg::index::rstar<16>>;

TreeBox treeBox(const AcDbExtents &box)
{
    return {{box.minPoint().x, box.minPoint().y}, {box.maxPoint().x, box.maxPoint().y}};
}

AcDbExtents plainBox(const TreeBox &box)
{
    return {{box.min_corner().get<0>(), box.min_corner().get<1>(), 0.0},
            {box.max_corner().get<0>(), box.max_corner().get<1>(), 0.0}};
}

} // namespace

/// An entity that a question is about, with its box unless it reaches without end.
struct SpatialIndex::Found {
    std::uint32_t entity;
    AcDbExtents box;
};

/// The layers of the entities that were placed, as numbers, so that nobody has to be opened to tell whether
/// it is visible.
class SpatialIndex::EntityLayers
{
public:
    void note(std::uint32_t index, const AcDbEntity &entity)
    {
        if (index >= m_ofEntity.size())
            m_ofEntity.resize(std::max<std::size_t>(index + 1, entity.database()->stubCount()));
        m_ofEntity[index] = isSwitchedOff(entity) ? kSwitchedOff : number(entity.layer());
    }
    void dropInvisible(const AcDbDatabase &database, std::vector<Found> &found) const
    {
        Visibility visibility;
        std::vector<std::optional<bool>> isShown(m_names.size()); // Drawings may have thousands of layers.
        isShown[kSwitchedOff] = false;
        std::erase_if(found, [&](const Found &one) {
            const std::uint32_t layer = m_ofEntity[one.entity];
            if (!isShown[layer])
                isShown[layer] = visibility.layerShows(database, m_names[layer]);
            return !*isShown[layer];
        });
    }

private:
    static constexpr std::uint32_t kSwitchedOff = 0;

    std::uint32_t number(const QString &layer)
    {
        const auto known = m_numbers.constFind(layer);
        if (known != m_numbers.cend())
            return *known;
        m_names.push_back(layer);
        return *m_numbers.insert(layer, std::uint32_t(m_names.size() - 1));
    }

    QHash<QString, std::uint32_t> m_numbers;
    std::vector<QString> m_names{QString()}; ///< By number; none for kSwitchedOff.
    std::vector<std::uint32_t> m_ofEntity;   ///< By stub index.
};

/// One space. The tree built at first use stays as it is; entities that changed since its building began are
/// taken out of account there and stand in a second, small tree. When that one has grown, all is built anew.
class SpatialIndex::Space
{
public:
    Space(AcDbObjectId record, BlockExtents &blocks, EntityLayers &layers)
        : m_record(record), m_blocks(blocks), m_layers(layers)
    {
        begin();
    }

    /// Goes on building until then; true when all is built.
    bool build(const QDeadlineTimer &until)
    {
        if (!m_isBuilding)
            return true;
        if (!m_packing.valid()) {
            if (!placeEntities(until))
                return false;
            // The tree of a large drawing takes a while, and all that it is made from is at hand.
            m_packing = std::async(std::launch::async, [entries = std::exchange(m_entries, {})] {
                return Tree(entries.begin(), entries.end());
            });
        }
        if (!until.isForever()) {
            const std::chrono::nanoseconds left = until.remainingTimeAsDuration();
            if (m_packing.wait_for(left) != std::future_status::ready)
                return false;
        }
        m_built = m_packing.get();
        m_isBuilding = false;
        return true;
    }

    /// Perhaps larger than the extents; none until the index is ready.
    std::optional<AcDbExtents> roughBox() const
    {
        if (m_isBuilding)
            return std::nullopt;
        AcDbExtents box;
        for (const Tree *const tree : {&m_built, &m_changed}) {
            if (!tree->empty())
                box.addExt(plainBox(bg::return_envelope<TreeBox>(tree->bounds())));
        }
        return box;
    }
    void noteChange(std::uint32_t entity) { m_dirty.insert(entity); }

    std::vector<Found> find(const AcDbExtents &box)
    {
        update();
        std::vector<Found> found;
        if (!box.isValid())
            return found;
        const auto query = bg::index::intersects(treeBox(box));
        const auto add = [&](const TreeEntry &entry) {
            found.push_back({entry.second, plainBox(entry.first)});
        };
        for (auto entry = m_built.qbegin(query); entry != m_built.qend(); ++entry) {
            if (!m_superseded.contains(entry->second))
                add(*entry);
        }
        std::for_each(m_changed.qbegin(query), m_changed.qend(), add);
        for (const std::uint32_t entity : m_endless)
            found.push_back({entity, AcDbExtents()});
        std::ranges::sort(found, {}, &Found::entity);
        return found;
    }

    AcDbExtents extents()
    {
        update();
        if (!m_builtExtents)
            m_builtExtents = builtExtents();
        AcDbExtents all = *m_builtExtents;
        if (!m_changed.empty())
            all.addExt(plainBox(bg::return_envelope<TreeBox>(m_changed.bounds())));
        return all;
    }

    const std::unordered_set<std::uint32_t> &withoutExtents()
    {
        update();
        return m_withoutExtents;
    }

    /// Custom entities whose extents the box does not meet.
    std::vector<Found> customBeside(const AcDbExtents &box)
    {
        update();
        std::vector<Found> found;
        for (const auto &[entity, itsBox] : m_custom) {
            if (!bg::intersects(itsBox, treeBox(box)))
                found.push_back({entity, plainBox(itsBox)});
        }
        return found;
    }

    std::vector<Found> custom()
    {
        update();
        std::vector<Found> found;
        for (const auto &[entity, itsBox] : m_custom)
            found.push_back({entity, plainBox(itsBox)});
        return found;
    }

private:
    void begin()
    {
        m_built.clear();
        m_changed.clear();
        m_changedBoxes.clear();
        m_superseded.clear();
        m_builtExtents.reset();
        m_endless.clear();
        m_withoutExtents.clear();
        m_custom.clear();
        m_dirty.clear();
        m_entries.clear();
        m_placed = 0;
        // As they stand now: whatever happens to them from here on counts as a change.
        const BlockContents *const contents = m_record.database()->blockContents(m_record);
        m_entities = contents ? contents->entities : std::vector<std::uint32_t>();
        m_entries.reserve(m_entities.size());
        m_firstLater = m_record.database()->stubCount();
        m_isBuilding = true;
    }

    AcDbExtents builtExtents() const
    {
        AcDbExtents all;
        if (m_superseded.empty()) {
            if (!m_built.empty())
                all.addExt(plainBox(bg::return_envelope<TreeBox>(m_built.bounds())));
            return all;
        }
        for (const TreeEntry &entry : m_built) {
            if (!m_superseded.contains(entry.second))
                all.addExt(plainBox(entry.first));
        }
        return all;
    }

    void supersede(std::uint32_t entity)
    {
        if (entity < m_firstLater && m_superseded.insert(entity).second)
            m_builtExtents.reset();
    }

    bool placeEntities(const QDeadlineTimer &until)
    {
        constexpr std::size_t kBetweenLooks = 32;
        while (m_placed < m_entities.size()) {
            const std::uint32_t index = m_entities[m_placed++];
            place(index, [&](const TreeBox &box) { m_entries.emplace_back(box, index); });
            if (m_placed % kBetweenLooks == 0 && until.hasExpired())
                return false;
        }
        m_entities = {};
        m_placed = 0;
        return true;
    }

    /// Hands the box of the entity to `keep`, or notes why it has none; notes its layer.
    template <class Keep>
    void place(std::uint32_t index, Keep keep)
    {
        readEntity(AcDbObjectId(m_record.database()->stub(index)), [&](const AcDbEntity &entity) {
            m_layers.note(index, entity);
            const Reach reach = reachOf(entity, m_blocks);
            if (reach.endless)
                m_endless.insert(index);
            else if (reach.box.isValid())
                keep(treeBox(reach.box));
            else
                m_withoutExtents.insert(index);
            if (reach.box.isValid() && entity.isCustom())
                m_custom.emplace(index, treeBox(reach.box));
        });
    }

    void update()
    {
        build(QDeadlineTimer(QDeadlineTimer::Forever));
        if (m_dirty.empty())
            return;
        constexpr std::size_t kMostChanges = 5000;
        if (m_changedBoxes.size() + m_dirty.size() > std::max(kMostChanges, m_built.size() / 4)) {
            begin();
            build(QDeadlineTimer(QDeadlineTimer::Forever));
            return;
        }
        for (const std::uint32_t index : std::exchange(m_dirty, {})) {
            supersede(index);
            m_endless.erase(index);
            m_withoutExtents.erase(index);
            m_custom.erase(index);
            if (const auto old = m_changedBoxes.find(index); old != m_changedBoxes.end()) {
                m_changed.remove(TreeEntry(old->second, index));
                m_changedBoxes.erase(old);
            }
            place(index, [&](const TreeBox &box) {
                m_changed.insert(TreeEntry(box, index));
                m_changedBoxes.emplace(index, box);
            });
        }
    }

    AcDbObjectId m_record;
    BlockExtents &m_blocks;
    EntityLayers &m_layers;
    bool m_isBuilding = false;
    std::vector<std::uint32_t> m_entities; ///< Of the space when building began, until all are placed.
    std::size_t m_placed = 0;              ///< Of these.
    std::vector<TreeEntry> m_entries;      ///< What m_built will hold.
    std::future<Tree> m_packing;
    Tree m_built;
    Tree m_changed;
    std::unordered_map<std::uint32_t, TreeBox> m_changedBoxes; ///< What stands in m_changed.
    std::unordered_set<std::uint32_t> m_superseded;            ///< Entries of m_built that no longer hold.
    std::uint32_t m_firstLater = 0;            ///< Entities from this number on came after building began.
    std::optional<AcDbExtents> m_builtExtents; ///< Of m_built; none until asked for.
    std::unordered_set<std::uint32_t> m_endless;
    std::unordered_set<std::uint32_t> m_withoutExtents;
    std::unordered_map<std::uint32_t, TreeBox> m_custom; ///< Entities that may look different in each view.
    std::unordered_set<std::uint32_t> m_dirty;           ///< Changed since the last question.
};

SpatialIndex::SpatialIndex(AcDbDatabase &database)
    : m_database(database), m_layers(std::make_unique<EntityLayers>())
{
    m_database.addReactor(this);
}

SpatialIndex::~SpatialIndex()
{
    m_database.removeReactor(this);
}

SpatialIndex &spatialIndexOf(AcDbDatabase &database)
{
    return database.attachments().get<SpatialIndex>(database);
}

SpatialIndex::Space &SpatialIndex::space(AcDbObjectId blockRecord)
{
    std::unique_ptr<Space> &space = m_spaces[blockRecord];
    if (!space)
        space = std::make_unique<Space>(blockRecord, m_blocks, *m_layers);
    return *space;
}

bool SpatialIndex::prepare(AcDbObjectId blockRecord, int milliseconds)
{
    return space(blockRecord).build(QDeadlineTimer(milliseconds));
}

/// How much of `all` the box covers; without width or height the other side counts.
static double coverage(const AcDbExtents &box, const AcDbExtents &all)
{
    const auto ofSide = [](double low, double high, double allLow, double allHigh) {
        const double common = std::min(high, allHigh) - std::max(low, allLow);
        return allHigh > allLow ? std::max(0.0, common) / (allHigh - allLow) : 1.0;
    };
    return ofSide(box.minPoint().x, box.maxPoint().x, all.minPoint().x, all.maxPoint().x) *
           ofSide(box.minPoint().y, box.maxPoint().y, all.minPoint().y, all.maxPoint().y);
}

std::optional<std::vector<AcDbObjectId>> SpatialIndex::near(AcDbObjectId blockRecord, const AcDbExtents &box)
{
    constexpr double kMuch = 0.25;
    const auto known = m_spaces.find(blockRecord);
    const auto all = known == m_spaces.end() ? std::nullopt : known->second->roughBox();
    if (!all || !all->isValid() || coverage(box, *all) > kMuch)
        return std::nullopt;
    std::vector<AcDbObjectId> ids = query(blockRecord, box);
    // Flags are some letters high; a picture of less than that is of no use.
    constexpr double kReach = 3.0;
    const AcGeVector3d size = box.maxPoint() - box.minPoint();
    const double reach = kReach * std::max(size.x, size.y);
    const Window around = Window::fromCorners(box.minPoint() - AcGeVector3d(reach, reach, 0),
                                              box.maxPoint() + AcGeVector3d(reach, reach, 0));
    for (const Found &custom : known->second->custom()) {
        if (around.mayMeet(custom.box))
            ids.emplace_back(m_database.stub(custom.entity));
    }
    return ids;
}

void SpatialIndex::noteChange(const AcDbObject &object)
{
    if (!object.objectId().isEntity())
        return;
    // Attributes and vertices change what they belong to.
    const AcDbStub *changed = object.objectId().stub();
    while (changed->has(AcDbStub::kSubEntity) && changed->owner != 0)
        changed = m_database.stub(changed->owner);
    const AcDbObjectId block(m_database.stub(changed->owner));
    if (const auto known = m_spaces.find(block); known != m_spaces.end())
        known->second->noteChange(changed->index);
    // Inserts of that block look different now; only blocks that were looked into are shown.
    if (m_blocks.knows(block))
        forgetBlocks();
}

void SpatialIndex::forgetBlocks()
{
    m_blocks.clear();
    m_spaces.clear();
}

/// The visible entities whose box the window may have to do with.
std::vector<SpatialIndex::Found> SpatialIndex::visibleNear(AcDbObjectId blockRecord, const Window &window)
{
    if (window.isEmpty())
        return {};
    std::vector<Found> found = space(blockRecord).find(window.extents());
    m_layers->dropInvisible(m_database, found);
    return found;
}

std::vector<AcDbObjectId> SpatialIndex::query(AcDbObjectId blockRecord, const AcDbExtents &box)
{
    std::vector<AcDbObjectId> ids;
    for (const Found &found : space(blockRecord).find(box))
        ids.emplace_back(m_database.stub(found.entity));
    return ids;
}

std::vector<AcDbObjectId> SpatialIndex::insideWindow(AcDbObjectId blockRecord, const Window &window)
{
    std::vector<AcDbObjectId> ids;
    for (const Found &found : visibleNear(blockRecord, window)) {
        const AcDbObjectId id(m_database.stub(found.entity));
        bool inside = window.contains(found.box);
        // The boxes of turned inserts are larger than the inserts.
        if (!inside && found.box.isValid())
            readEntity(id, [&](const AcDbEntity &e) { inside = liesInside(e, window, &m_blocks); });
        if (inside)
            ids.push_back(id);
    }
    return ids;
}

std::vector<AcDbObjectId> SpatialIndex::crossingWindow(AcDbObjectId blockRecord, const Window &window)
{
    return std::move(crossingWindows(blockRecord, std::span(&window, 1)).front());
}

/// An entity whose box does not tell whether it crosses a window.
struct SpatialIndex::Doubt {
    std::uint32_t entity;
    std::uint32_t window; ///< Its place among those asked about.

    friend auto operator<=>(const Doubt &, const Doubt &) = default;
};

std::vector<std::vector<AcDbObjectId>> SpatialIndex::crossingWindows(AcDbObjectId blockRecord,
                                                                     std::span<const Window> windows)
{
    constexpr std::size_t kMostFound = 200'000;
    std::vector<std::vector<AcDbObjectId>> crossing;
    std::vector<Doubt> doubts;
    std::size_t count = 0;
    while (crossing.size() < windows.size() && count < kMostFound) {
        const Window &window = windows[crossing.size()];
        std::vector<AcDbObjectId> certain;
        for (const Found &found : visibleNear(blockRecord, window)) {
            ++count;
            if (window.contains(found.box))
                certain.emplace_back(m_database.stub(found.entity));
            else if (!found.box.isValid() || window.mayMeet(found.box))
                doubts.push_back({found.entity, std::uint32_t(crossing.size())});
        }
        crossing.push_back(std::move(certain));
    }
    settle(doubts, windows, crossing);
    for (std::vector<AcDbObjectId> &ids : crossing)
        std::ranges::sort(ids, {}, [](AcDbObjectId id) { return id.stub()->index; });
    return crossing;
}

void SpatialIndex::settle(std::vector<Doubt> &doubts, std::span<const Window> windows,
                          std::vector<std::vector<AcDbObjectId>> &crossing)
{
    std::ranges::sort(doubts);
    std::vector<const Window *> asked;
    for (auto first = doubts.begin(); first != doubts.end();) {
        const auto isOther = [&](const Doubt &doubt) { return doubt.entity != first->entity; };
        const auto last = std::find_if(first, doubts.end(), isOther);
        asked.clear();
        for (auto doubt = first; doubt != last; ++doubt)
            asked.push_back(&windows[doubt->window]);
        const AcDbObjectId id(m_database.stub(first->entity));
        readEntity(id, [&](const AcDbEntity &entity) {
            const std::vector<bool> answers = crossesEach(entity, asked, m_blocks);
            for (auto doubt = first; doubt != last; ++doubt) {
                if (answers[std::size_t(doubt - first)])
                    crossing[doubt->window].push_back(id);
            }
        });
        first = last;
    }
}

/// The display knows the boxes of what is on the screen, so that few entities have to be drawn for it.
void SpatialIndex::addShownBeside(AcDbObjectId blockRecord, const Window &window,
                                  std::vector<AcDbObjectId> &ids)
{
    const std::optional<AcGiViewport> view = screenView(m_database);
    if (!view || window.isEmpty())
        return;
    std::vector<Found> beside = space(blockRecord).customBeside(window.extents());
    m_layers->dropInvisible(m_database, beside);
    for (const Found &found : beside) {
        const AcDbObjectId id(m_database.stub(found.entity));
        const AcDbExtents shown = displayOf(m_database).shownBox(id, *view);
        bool crosses = false;
        if (shown.isValid() && window.mayMeet(shown))
            readEntity(id, [&](const AcDbEntity &e) { crosses = acgi::crosses(e, window, &m_blocks); });
        if (crosses)
            ids.push_back(id);
    }
    std::ranges::sort(ids, {}, [](AcDbObjectId id) { return id.stub()->index; });
}

std::vector<AcDbObjectId> SpatialIndex::atPoint(AcDbObjectId blockRecord, const AcGePoint3d &point,
                                                double aperture)
{
    const Window window = Window::aroundPoint(point, aperture);
    std::vector<AcDbObjectId> ids = crossingWindow(blockRecord, window);
    addShownBeside(blockRecord, window, ids);
    return ids;
}

AcDbExtents SpatialIndex::extents(AcDbObjectId blockRecord)
{
    return space(blockRecord).extents();
}

std::vector<AcDbObjectId> SpatialIndex::customEntities(AcDbObjectId blockRecord)
{
    std::vector<Found> found = space(blockRecord).custom();
    m_layers->dropInvisible(m_database, found);
    std::vector<AcDbObjectId> ids;
    ids.reserve(found.size());
    for (const Found &each : found)
        ids.emplace_back(m_database.stub(each.entity));
    return ids;
}

std::vector<AcDbObjectId> SpatialIndex::withoutExtents(AcDbObjectId blockRecord)
{
    std::vector<AcDbObjectId> ids;
    for (const std::uint32_t index : space(blockRecord).withoutExtents())
        ids.emplace_back(m_database.stub(index));
    std::ranges::sort(ids, {}, [](AcDbObjectId id) { return id.stub()->index; });
    return ids;
}

} // namespace acgi
