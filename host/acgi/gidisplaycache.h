// AcGiDisplayCache: the display lists of one drawing, made when first needed and dropped when what they show
// changes.
#pragma once

#include "host/acdb/dbreactor.h"
#include "host/acgi/gidisplaylist.h"
#include "host/acgi/gipainter.h"

#include <QHash>

/// The drawing whose end `ended` is to be told of.
class AcGiDisplayCache : public AcDbDatabaseReactor, private AcGiBlockLists
{
public:
    AcGiDisplayCache(AcDbDatabase &database, std::function<void()> ended);
    ~AcGiDisplayCache() override;

    /// Makes the lists of the space that are missing, and gives those that the view has to do with. Views
    /// that are shown at the same time have different slots; lists that depend on the view are made again
    /// when the view of their slot changes. `isCancelled` may end this early.
    AcGiShownSpace show(AcDbObjectId space, const AcGiViewport &view, int slot,
                        const std::function<bool()> &isCancelled, AcGiPaintReport &report);
    const AcGiDisplayList *list(std::uint32_t index, int slot) const;
    /// The list of one entity as the view sees it, null for what can be none.
    const AcGiDisplayList *entity(AcDbObjectId id, const AcGiViewport &view);
    /// The list of an entity that stands in no drawing.
    AcGiDisplayList transient(const AcDbEntity &entity, const AcGiViewport &view, AcGiListStore &store);
    /// Numbers of the viewport pictures of the space.
    std::vector<std::uint32_t> viewportsOf(AcDbObjectId space) const;
    const AcGiListTables &tables() const { return m_tables; }

    void dropViewDependent() { m_slots.clear(); }
    void dropAll();
    void dropOne(std::uint32_t index) { drop(index); }
    std::size_t memory() const;

    void objectAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectUnAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectReAppended(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectModified(const AcDbDatabase *, const AcDbObject *object) override { noteChange(*object); }
    void objectErased(const AcDbDatabase *, const AcDbObject *object, bool) override { noteChange(*object); }
    void headerSysVarChanged(const AcDbDatabase *, const char *name) override;
    void goodbye(const AcDbDatabase *) override;

private:
    /// Lists that are good for one view.
    struct Slot {
        AcDbObjectId space;
        AcGiViewport view;
        std::unordered_map<std::uint32_t, AcGiDisplayList> lists;
        AcGiListStore store;
    };
    /// The drawing order of a space.
    struct Order {
        std::uint64_t changeCount = 0;
        std::vector<std::uint32_t> sorted; ///< Empty when the entities come as they stand.
    };

    AcGiDisplayList blockList(AcDbObjectId record) override;
    AcDbObjectId layer(const QString &name) override;
    AcDbObjectId linetype(const QString &name) override;
    void noteUndrawn(std::uint32_t entity, const QString &reason) override;

    void noteChange(const AcDbObject &object);
    void dropReferences();
    void drop(std::uint32_t index);
    void refreshNames();
    void openSlot(AcDbObjectId space, const AcGiViewport &view, int slot);
    const AcGiDisplayList &ensure(std::uint32_t index);
    AcGiDisplayList keep(std::uint32_t index, AcGiListBuilder &builder, std::uint32_t viewportsBefore);
    const std::vector<std::uint32_t> &order(AcDbObjectId space, const std::vector<std::uint32_t> &entities);

    AcDbDatabase &m_database;
    std::function<void()> m_ended;
    AcGiListTables m_tables;
    AcGiListStore m_store;
    std::vector<AcGiDisplayList> m_lists; ///< By stub index, of entities and of block records.
    std::map<int, Slot> m_slots;
    int m_slot = 0; ///< Whose view is being drawn for.
    std::unordered_map<std::uint32_t, std::vector<QString>> m_notes;
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> m_viewports;
    std::unordered_map<AcDbObjectId, Order> m_orders;
    std::uint64_t m_namesChangeCount = 0;
    QHash<QString, AcDbObjectId> m_layers;
    QHash<QString, AcDbObjectId> m_linetypes;
};
