// Extents of entities: the sink that keeps the box around everything drawn.
#pragma once

#include "host/acdb/dbentity.h"
#include "host/acgi/gigeometry.h"

#include <unordered_map>

/// How far something reaches: its box, and whether lines without end go beyond it.
struct AcGiReach {
    AcDbExtents box; ///< Not valid when nothing with an end is drawn.
    bool endless = false;
};

/// Reaches of block definitions, in block coordinates, each computed once. Good as long as no block
/// definition changes.
class AcGiBlockExtents
{
public:
    /// A block that contains itself counts without the repetition.
    const AcGiReach &of(AcDbObjectId blockRecord);
    bool knows(AcDbObjectId blockRecord) const { return m_boxes.contains(blockRecord); }
    void clear() { m_boxes.clear(); }

private:
    std::unordered_map<AcDbObjectId, AcGiReach> m_boxes;
};

/// How far an entity reaches, with the boxes of blocks taken from `blocks`.
AcGiReach acgiReach(const AcDbEntity &entity, AcGiBlockExtents &blocks);

/// The box around an entity in the coordinates of its owner; eInvalidExtents for what has none (lines
/// without end, kinds that draw nothing). What layers or visibility hide counts too.
///
/// Without `blocks` the box is exact for lines, arcs and texts in inserted blocks, up to a bounded
/// amount of work; beyond it, and with `blocks`, it is the box around the turned boxes of the blocks.
Acad::ErrorStatus acgiExtents(const AcDbEntity &entity, AcDbExtents &extents,
                              AcGiBlockExtents *blocks = nullptr);
