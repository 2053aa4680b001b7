// The boundary of a hatch: closed loops in its plane, and which of them count for its island style.
#pragma once

#include "host/acgi/entity_groups.h"
#include "host/acgi/geometry.h"

namespace acgi
{

enum class HatchStyle : std::uint8_t {
    normal, ///< Every second area from outside in.
    outer,  ///< The outermost areas only.
    ignore  ///< All that the outer loops enclose.
};

HatchStyle hatchStyle(const EntityGroups &groups);

struct HatchLoops {
    std::vector<Loop> bounds;    ///< Of the area, by the even-odd rule.
    std::vector<Loop> textBoxes; ///< Around texts, which are spared wherever they lie.
};

/// Curves as chords, z the elevation. The edges of a path may stand in any order and run either way. Loops
/// with coordinates that are not finite are left out.
HatchLoops readHatchLoops(const EntityGroups &groups);

/// What is left of the loops when areas inside areas are not looked at as the style says.
std::vector<Loop> loopsForStyle(std::vector<Loop> loops, HatchStyle style);

} // namespace acgi
