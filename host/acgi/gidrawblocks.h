// Blocks as parts of entities: their records, their instances, the clip of an insert.
#pragma once

#include "host/acgi/gigeometry.h"
#include "host/acgi/giread.h"

namespace acgi
{

/// The block that group 2 names; null when the drawing has none of that name.
AcDbObjectId namedBlock(const AcDbEntity &entity, const EntityGroups &groups);
/// Draws all instances; nothing for a null record.
void drawReference(const AcGiBlockPlacement &reference, AcGiGeometry &sink);
/// The boundary that an insert is clipped by, in block coordinates; empty: none, or switched off.
AcGiLoop insertClip(const AcDbEntity &insert);

} // namespace acgi
