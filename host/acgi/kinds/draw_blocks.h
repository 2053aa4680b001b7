// Blocks as parts of entities: their records, their instances, the clip of an insert.
#pragma once

#include "host/acdb/owngroups.h"
#include "host/acgi/geometry.h"

namespace acgi
{

/// The block that group 2 names; null when the drawing has none of that name.
AcDbObjectId namedBlock(const AcDbEntity &entity, const OwnGroups &groups);
/// Draws all instances; nothing for a null record.
void drawReference(const BlockPlacement &reference, AcGiGeometry &sink);
/// What an insert is clipped by.
struct InsertClip {
    Loop boundary;         ///< Block coordinates; empty: none, or switched off.
    bool inverted = false; ///< What lies outside shows.
};
InsertClip insertClip(const AcDbEntity &insert);
/// The same boundary where the insert stands.
Loop shownBoundary(const AcDbEntity &insert);

} // namespace acgi
