#include "quillnote/snapshot/commands/place_differences.h"

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_record.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edspace.h"

#include <QHash>
#include <QSet>

#include <unordered_set>

static AcDbObjectId sameSpace(AcDbObjectId space, const AcDbDatabase &other)
{
    return acedFindLayout(other, acdbLayoutName(space));
}

std::vector<ComparedPlace> comparedPlaces(AcDbDatabase &oldDrawing, AcDbDatabase &newDrawing)
{
    std::vector<ComparedPlace> places;
    QSet<QString> known;
    for (const AcDbObjectId id : collectMarks(newDrawing).ids) {
        const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        if (!mark)
            continue;
        known.insert(mark->GUID);
        places.push_back({id, sameSpace(mark->blockId(), oldDrawing), mark->blockId(), false});
    }
    for (const AcDbObjectId id : collectMarks(oldDrawing).ids) {
        const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        if (mark && !known.contains(mark->GUID))
            places.push_back({id, mark->blockId(), sameSpace(mark->blockId(), newDrawing), true});
    }
    return places;
}

PlaceComparer::PlaceComparer(AcDbDatabase &oldDrawing, AcDbDatabase &newDrawing)
    : m_old(oldDrawing), m_new(newDrawing)
{
}

std::vector<AcDbObjectId> PlaceComparer::Side::at(AcDbObjectId space, const acgi::Window &window)
{
    return space.isNull() ? std::vector<AcDbObjectId>() : targetEntities(database, space, window);
}

// Equal contents cancel each other out, wherever they stand in the drawings; of what is left, the same handle
// on both sides is one entity that was changed.
PlaceDifference PlaceComparer::compare(const ComparedPlace &place)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(place.mark, AcDb::kForRead);
    if (!mark)
        return {};
    const acgi::Window window = targetWindow(*mark);
    QHash<QByteArray, std::vector<std::uint64_t>> left;
    for (const AcDbObjectId id : m_old.at(place.oldSpace, window))
        left[m_old.content.of(id)].push_back(id.handle().value);
    std::vector<std::uint64_t> added;
    for (const AcDbObjectId id : m_new.at(place.newSpace, window)) {
        const auto same = left.find(m_new.content.of(id));
        if (same != left.end() && !same->empty())
            same->pop_back();
        else
            added.push_back(id.handle().value);
    }
    std::unordered_set<std::uint64_t> removed;
    for (const auto &handles : std::as_const(left))
        removed.insert(handles.begin(), handles.end());
    PlaceDifference difference;
    difference.changed = std::size_t(
        std::ranges::count_if(added, [&](std::uint64_t handle) { return removed.contains(handle); }));
    difference.added = added.size() - difference.changed;
    difference.removed = removed.size() - difference.changed;
    return difference;
}
