// How entities draw: one function per kind, found through one table, into any AcGiGeometry.
#pragma once

#include "host/acdb/dbentity.h"
#include "host/acgi/geometry.h"

namespace acgi
{

/// Draws the entity, its attributes and the blocks it refers to, in the coordinates of its owner. False
/// when its kind draws nothing here; the sink counts such entities. Custom entities draw themselves when
/// the sink has a view, else the box of their extents. Layers and visibility are the sink's business
/// (AcGiGeometry::wants).
bool drawEntity(const AcDbEntity &entity, AcGiGeometry &sink);

/// Draws the entities of a block definition in block coordinates: what an insert shows, so without
/// attribute definitions. Blocks that contain themselves stop at the repetition.
void drawBlock(AcDbObjectId blockRecord, AcGiGeometry &sink);

/// The base point of a block definition.
AcGePoint3d blockOrigin(AcDbObjectId blockRecord);

} // namespace acgi
