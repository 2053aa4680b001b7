// Chains along splines, for whatever follows one: spline entities and leaders.
#pragma once

#include "host/acgi/geometry.h"

namespace acgi
{

/// Points along the spline through fit points; the fit points alone when no curve goes through them. Their
/// number is bounded by a multiple of the fit points. Needs at least one point.
Loop fitSplineSamples(std::span<const AcGePoint3d> fitPoints, std::optional<AcGeVector3d> startTangent,
                      std::optional<AcGeVector3d> endTangent);

} // namespace acgi
