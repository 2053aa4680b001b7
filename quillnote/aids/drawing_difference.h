// What is in one drawing and not in another, and where.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acge/geextents.h"
#include "host/base/progress.h"

#include <unordered_set>
#include <vector>

class AcDbDatabase;

/// A space of a drawing: model space or a layout.
struct ComparedSpace {
    AcDbDatabase *database = nullptr;
    AcDbObjectId space; ///< Block record; null where the drawing has no such space.

    /// Of what is shown.
    AcDbExtents extents() const;
};

/// A rectangle that holds what differs there, world coordinates.
struct DifferingPlace {
    AcDbExtents box;
    std::size_t removed = 0; ///< Entities of the old drawing only.
    std::size_t added = 0;   ///< Of the new one only.
};

struct DrawingDifference {
    std::unordered_set<AcDbObjectId> onlyOld;
    std::unordered_set<AcDbObjectId> onlyNew;
    /// From top to bottom, then from left to right. What lies near each other is one place.
    std::vector<DifferingPlace> places;
    bool isStopped = false;

    bool any() const { return !onlyOld.empty() || !onlyNew.empty(); }
};

/// Compares what can be seen in two spaces and is neither a review mark nor a hot link nor an overlay.
/// Entities are the same when their contents are, whatever their handles; points may lie up to `tolerance`
/// (drawing units) apart, other numbers a thousandth of their size when there is a tolerance at all.
DrawingDifference compareSpaces(const ComparedSpace &old, const ComparedSpace &now, double tolerance,
                                const base::ProgressTeller::Listener &listener = {});
