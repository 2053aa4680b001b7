// Hatch patterns: families of parallel dashed lines, and cutting them with an area.
#pragma once

#include "host/acgi/entity_groups.h"
#include "host/acgi/geometry.h"

#include <functional>

namespace acgi
{

/// Lines through base + i * offset for all whole i, along `angle`. Each has its dashes from that point on.
struct HatchLineFamily {
    double angle = 0.0; ///< Radians.
    AcGePoint2d base;
    AcGePoint2d offset;
    std::vector<double> dashes; ///< Above 0 a dash, below 0 a gap, 0 a dot; empty: a continuous line.
};

/// Scaled and turned as the entity wants them.
std::vector<HatchLineFamily> readHatchPattern(const EntityGroups &groups);

/// A piece of a pattern: `from` equals `to` for a dot.
using HatchSegment = std::function<void(const AcGePoint3d &from, const AcGePoint3d &to)>;

/// Calls `draw` with what of the pattern lies in the area between the loops (even-odd rule; all in a plane
/// z = elevation). False, and nothing drawn, when that would be more than 200,000 pieces. Families whose
/// numbers make no sense draw nothing.
bool cutHatchPattern(const std::vector<HatchLineFamily> &families, const std::vector<Loop> &loops,
                     const HatchSegment &draw);

} // namespace acgi
