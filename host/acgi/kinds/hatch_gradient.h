// Gradients of hatches: an area in bands of one colour each.
#pragma once

#include "host/acgi/entity_groups.h"
#include "host/acgi/geometry.h"

#include <optional>

namespace acgi
{

struct HatchGradient {
    enum Shape : std::uint8_t { linear, cylinder, spherical };
    Shape shape = linear;
    bool inverted = false; ///< The colours change places.
    bool centred = true;   ///< Else the light comes from the upper left.
    double angle = 0.0;    ///< Radians.
    std::uint32_t first = 0;
    std::uint32_t second = 0; ///< 0x00RRGGBB.
};

/// Nothing when the hatch has none.
std::optional<HatchGradient> readHatchGradient(const EntityGroups &groups);

/// Fills the area between the loops (in a plane z = elevation); the pen's colour changes.
void fillGradient(const HatchGradient &gradient, const std::vector<Loop> &loops, AcGiGeometry &sink);

} // namespace acgi
