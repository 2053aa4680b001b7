// Extents of entities: the sink that keeps the box around everything drawn.
#pragma once

#include "host/acdb/dbentity.h"
#include "host/acdb/dbnesting.h"
#include "host/acgi/geometry.h"

#include <unordered_map>
#include <unordered_set>

namespace acgi
{

/// How far something reaches: its box, and whether lines without end go beyond it.
struct Reach {
    AcDbExtents box; ///< Not valid when nothing with an end is drawn.
    bool endless = false;
};

/// An entity of a block definition: what has to be known of it before it is worth decoding.
struct BlockPart {
    AcDbObjectId entity;
    Reach reach; ///< In block coordinates.
    QString layer;
    bool isSwitchedOff = false; ///< Group 60.
    bool hasParts = false;      ///< Shows blocks or attributes, which may be hidden each for itself.
};

/// A block definition in its own coordinates, and all that it shows.
struct BlockReach : Reach {
    std::vector<BlockPart> parts;
    /// What is drawn lies inside of these points: a convex polygon seen from above, at the lowest and the
    /// highest z. The box of a turned reference is the box of the turned points.
    std::vector<AcGePoint3d> hull;
};

/// Reaches of block definitions, each computed once. Good as long as no block definition changes.
class BlockExtents
{
public:
    /// A block that contains itself counts without the repetition.
    const BlockReach &of(AcDbObjectId blockRecord);
    bool knows(AcDbObjectId blockRecord) const { return m_blocks.contains(blockRecord); }
    void clear() { m_blocks.clear(); }

private:
    std::unordered_map<AcDbObjectId, BlockReach> m_blocks;
    AcDbNesting m_nesting;                ///< Of the block whose reach is being computed.
    std::unordered_set<QString> m_layers; ///< So that parts of one layer share its name.
};

/// How far an entity reaches, with the boxes of blocks taken from `blocks`.
Reach reachOf(const AcDbEntity &entity, BlockExtents &blocks);

/// The box around an entity in the coordinates of its owner; eInvalidExtents for what has none (lines
/// without end, kinds that draw nothing). What layers or visibility hide counts too.
///
/// Without `blocks` the box is exact for lines, arcs and texts in inserted blocks, up to a bounded
/// amount of work; beyond it, and with `blocks`, curves in turned blocks may count a thousandth more.
Acad::ErrorStatus extentsOf(const AcDbEntity &entity, AcDbExtents &extents, BlockExtents *blocks = nullptr);

} // namespace acgi
