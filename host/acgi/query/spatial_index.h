// Where the entities of a drawing are: an R-tree of their extents for each space, built on first use and
// kept up by changes. Questions cost what they touch, not what the drawing holds.
#pragma once

#include "host/acdb/dbreactor.h"
#include "host/acgi/query/extents.h"
#include "host/acgi/query/region.h"

#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace acgi
{

/// The index of one drawing; see spatialIndexOf(). Results are in drawing order: the newest entity,
/// which lies on top, comes last. Erased entities are never found.
class SpatialIndex : private AcDbDatabaseReactor
{
public:
    ~SpatialIndex() override;
    SpatialIndex(const SpatialIndex &) = delete;
    SpatialIndex &operator=(const SpatialIndex &) = delete;

    /// Works on the index of the space for about so long. True when it is ready; until then every question
    /// about the space first has to finish it.
    bool prepare(AcDbObjectId blockRecord, int milliseconds);
    /// For pictures: what may be seen in the box, in no order, visible or not, and custom entities around it,
    /// which may show more than their extents. None until the index is ready, and when much of the space is
    /// there: going through it as it stands is quicker then.
    std::optional<std::vector<AcDbObjectId>> near(AcDbObjectId blockRecord, const AcDbExtents &box);

    /// Entities of the space whose box meets `box` in x and y, visible or not. Boxes of turned inserts may be
    /// larger than what they show. Entities with lines without end are always among them; entities without
    /// extents never are.
    std::vector<AcDbObjectId> query(AcDbObjectId blockRecord, const AcDbExtents &box);

    /// Entities that liesInside() and crosses() say yes to, as far as they are
    /// visible: neither switched off nor on a layer that is off or frozen.
    std::vector<AcDbObjectId> insideWindow(AcDbObjectId blockRecord, const Window &window);
    std::vector<AcDbObjectId> crossingWindow(AcDbObjectId blockRecord, const Window &window);
    /// The same of the first windows: as many as have some hundred thousand entities together, at least one;
    /// the size of the result says how many. Each entity is opened once for all of them, so neighbours should
    /// come one after the other.
    std::vector<std::vector<AcDbObjectId>> crossingWindows(AcDbObjectId blockRecord,
                                                           std::span<const Window> windows);
    /// At a point also what custom entities show beside their extents in the view on the screen, such as
    /// flags.
    std::vector<AcDbObjectId> atPoint(AcDbObjectId blockRecord, const AcGePoint3d &point, double aperture);

    /// The box around all entities of the space; not valid when none has extents.
    AcDbExtents extents(AcDbObjectId blockRecord);
    /// The visible custom entities of the space, which may show more than their extents.
    std::vector<AcDbObjectId> customEntities(AcDbObjectId blockRecord);
    /// Entities that no box or window can find: kinds that draw nothing, empty inserts.
    std::vector<AcDbObjectId> withoutExtents(AcDbObjectId blockRecord);

private:
    friend base::Attachments;
    class Space;
    struct Found;
    struct Doubt;
    class EntityLayers;

    explicit SpatialIndex(AcDbDatabase &database);
    void objectAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectUnAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectReAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectModified(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectErased(const AcDbDatabase *, const AcDbObject *object, bool) override { noteChange(*object); }
    void xrefsChanged(const AcDbDatabase *) override { forgetBlocks(); }
    Space &space(AcDbObjectId blockRecord);
    std::vector<Found> visibleNear(AcDbObjectId blockRecord, const Window &window);
    void settle(std::vector<Doubt> &doubts, std::span<const Window> windows,
                std::vector<std::vector<AcDbObjectId>> &crossing);
    void addShownBeside(AcDbObjectId blockRecord, const Window &window, std::vector<AcDbObjectId> &ids);
    void noteChange(const AcDbObject &object);
    void forgetBlocks();

    AcDbDatabase &m_database;
    BlockExtents m_blocks;
    std::unique_ptr<EntityLayers> m_layers;
    std::unordered_map<AcDbObjectId, std::unique_ptr<Space>> m_spaces;
};

/// The index of a drawing, made when first asked for; it ends with the drawing.
SpatialIndex &spatialIndexOf(AcDbDatabase &database);

} // namespace acgi
