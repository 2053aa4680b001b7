// DisplayCache: the display lists of one drawing, made when first needed and dropped when what they show
// changes.
#pragma once

#include "host/acdb/dbreactor.h"
#include "host/acgi/display/box_grid.h"
#include "host/acgi/display/display_list.h"
#include "host/acgi/display/painter.h"

#include <QDeadlineTimer>
#include <QHash>

#include <array>
#include <optional>
#include <unordered_set>

namespace acgi
{

/// Boxes of what looks different, in the world's plane.
struct ChangedBoxes {
    bool everything = false;
    std::vector<std::array<float, 4>> boxes;
};

class DisplayCache : public AcDbDatabaseReactor, private BlockLists
{
public:
    /// `changes` is called before anything changes that the const
    /// members show: nobody may be reading them on another thread afterwards.
    DisplayCache(AcDbDatabase &database, std::function<void()> changes);
    ~DisplayCache() override;

    /// Makes the lists of the space that are missing, and gives those that the view has to do with. Views
    /// that are shown at the same time have different slots; lists that depend on the view are made again
    /// when the view of their slot changes. `part` is the part of the view that counts, pixels.
    ShownSpace show(AcDbObjectId space, const AcGiViewport &view, const QRectF &part, int slot,
                    const PaintOptions &options, PaintReport &report);
    /// Makes lists of the space that are missing, until the time is over. True when none is missing.
    bool prepare(AcDbObjectId space, const AcGiViewport &view, int slot, const QDeadlineTimer &until);
    /// Objects have numbers: their index in the drawing; those of drawings that it refers to come behind
    /// kForeign. 0: it was never asked for.
    std::uint32_t knownNumber(const AcDbStub &stub) const;
    const DisplayList *list(std::uint32_t number, int slot) const;
    /// Of the block with that number; null when it is painted as a whole.
    const BlockParts *parts(std::uint32_t number) const;
    /// The list of one entity as the view sees it, null for what can be none.
    const DisplayList *entity(AcDbObjectId id, const AcGiViewport &view);
    /// The slot whose lists entity() gives and transient() refers to.
    int slotFor(const AcGiViewport &view) const;
    /// The list of an entity that stands in no drawing.
    DisplayList transient(const AcDbEntity &entity, const AcGiViewport &view, ListTables &tables,
                          ListStore &store);
    /// Numbers of the viewport pictures of the space.
    std::vector<std::uint32_t> viewportsOf(AcDbObjectId space) const;
    const ListTables &tables() const { return m_tables; }

    void dropViewDependent();
    void dropAll();
    void drop(AcDbObjectId entity);
    /// What changed in the space since the last call, and before it in any space. Lists are made for it.
    ChangedBoxes takeChanges(AcDbObjectId space, const AcGiViewport &view);
    std::size_t memory() const;

    void objectAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectUnAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectReAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectModified(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectErased(const AcDbDatabase *, const AcDbObject *object, bool) override { noteChange(*object); }
    void headerSysVarChanged(const AcDbDatabase *, const char *name) override;
    void xrefsChanged(const AcDbDatabase *) override;

private:
    /// Lists that are good for one view.
    struct Slot {
        AcDbObjectId space;
        AcGiViewport view;
        std::unordered_map<std::uint32_t, DisplayList> lists;
        ListStore store;
        std::vector<std::uint32_t> missing; ///< Entities whose list may have to be made for the view.
    };
    /// How far the lists of a space are made.
    struct Progress {
        std::size_t made = 0;                                   ///< Of the entities as they stand.
        std::unordered_set<std::uint32_t> dropped;              ///< Among these.
        std::unordered_set<std::uint32_t> perSlot;              ///< That look different in each view, or did.
        std::unordered_map<std::uint32_t, DisplayList> changed; ///< With the list as it was, for its box.
        std::optional<BoxGrid> grid; ///< Of the first entities, as they were when it was made.
        std::size_t inGrid = 0;
        std::unordered_set<std::uint32_t> outdated; ///< What stands in the grid for them no longer holds.
    };
    /// A rectangle of the world's plane.
    struct Plane {
        double left, bottom, right, top;
        bool meets(const float *box) const
        {
            return box[0] <= right && box[2] >= left && box[1] <= top && box[3] >= bottom;
        }
    };
    /// The box that an entity stays within where it is seen from as near or nearer.
    struct Reach {
        float box[4];
        double pixelSize; ///< Counted.
        double twist;
        bool paperSpace;
    };
    /// The drawing order of a space.
    struct Order {
        std::uint64_t changeCount = 0;
        std::vector<std::uint32_t> sorted; ///< Empty when the entities come as they stand.
    };

    /// Of what is drawn over a space that is shown in another way.
    static constexpr int kOver = -1;

    /// The drawings that are referred to: each has a run of numbers.
    struct Foreign {
        std::vector<std::pair<const AcDbDatabase *, std::uint32_t>> firsts;
        std::vector<DisplayList> lists; ///< By number from kForeign on.
    };
    /// Records by name.
    struct Names {
        QHash<QString, AcDbObjectId> layers;
        QHash<QString, AcDbObjectId> linetypes;
    };
    static constexpr std::uint32_t kForeign = 0x80000000u;

    DisplayList blockList(AcDbObjectId record) override;
    AcDbObjectId layer(const AcDbEntity &entity, const QString &name) override;
    AcDbObjectId linetype(const AcDbEntity &entity, const QString &name) override;
    void noteUndrawn(std::uint32_t entity, const QString &reason) override;
    void noteUndrawnOf(AcDbObjectId record, std::uint32_t entity) override;
    void passNotes(std::uint32_t from, std::uint32_t to);

    void noteChange(const AcDbObject &object);
    void dropReferences();
    void drop(std::uint32_t index);
    void noteChanged(std::uint32_t index);
    std::uint32_t numberOf(const AcDbStub &stub);
    AcDbStub *stubOf(std::uint32_t number) const;
    DisplayList &listAt(std::uint32_t number)
    {
        return number < kForeign ? m_lists[number] : m_foreign.lists[number - kForeign];
    }
    Names &namesOf(const AcDbEntity &entity);
    void addParts(AcDbObjectId record, std::uint32_t number, ListBuilder &builder);
    void dropForeign();
    void grow();
    void refreshNames();
    void openSlot(AcDbObjectId space, const AcGiViewport &view, int slot);
    const DisplayList &ensure(std::uint32_t index);
    DisplayList keep(std::uint32_t index, ListBuilder &builder, std::uint32_t viewportsBefore);
    const Reach *reachIn(std::uint32_t index, const AcGiViewport &view) const;
    void noteReach(std::uint32_t index, const DisplayList &list, const AcDbExtents &filed);
    void makeGrid(Progress &progress, const std::vector<std::uint32_t> &entities);
    static std::optional<std::vector<std::uint32_t>>
    near(const Progress &progress, const std::vector<std::uint32_t> &entities, const Plane &plane);
    std::optional<std::vector<std::uint32_t>> asked(AcDbObjectId space,
                                                    const std::vector<std::uint32_t> &entities,
                                                    const Plane &plane, const PaintOptions &options) const;
    static Plane visiblePlane(const AcGiViewport &view, const QRectF &part);
    const std::vector<std::uint32_t> &order(AcDbObjectId space, const std::vector<std::uint32_t> &entities);

    AcDbDatabase &m_database;
    std::function<void()> m_changes;
    AcDbNesting m_nesting;                                  ///< Of the block whose list is being made.
    std::unordered_map<std::uint32_t, Progress> m_progress; ///< By the index of the space.
    bool m_everythingChanged = false;
    std::optional<AcGiViewport>
        m_changedIn; ///< The view that changed lists were made for, when that matters.
    ListTables m_tables;
    ListStore m_store;
    std::vector<DisplayList> m_lists; ///< By stub index, of entities and of block records.
    Foreign m_foreign;
    std::unordered_map<std::uint32_t, BlockParts> m_parts; ///< By the number of the block.
    std::map<int, Slot> m_slots;
    std::unordered_map<std::uint32_t, Reach> m_reaches; ///< Of entities that look different in each view.
    int m_slot = 0;                                     ///< Whose view is being drawn for.
    std::unordered_map<std::uint32_t, std::vector<QString>> m_notes;
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> m_viewports;
    std::unordered_map<AcDbObjectId, Order> m_orders;
    std::uint64_t m_namesChangeCount = 0;
    std::unordered_map<const AcDbDatabase *, Names> m_names;
    std::pair<const AcDbDatabase *, Names *> m_lastNames{nullptr, nullptr};
};

} // namespace acgi
