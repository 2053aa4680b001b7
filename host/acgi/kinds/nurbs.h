// NURBS curves as SPLINE entities and hatch edges hold them.
#pragma once

#include "host/acge/gepoint.h"

#include <vector>

namespace acgi
{

struct NurbsCurve {
    int degree = 3;
    std::vector<double> knots;
    std::vector<AcGePoint3d> controlPoints;
    std::vector<double> weights; ///< Empty: all 1.

    /// Degree 1 to 25, as many knots as control points need, in order, and finite positive weights.
    bool isValid() const;
    AcGePoint3d at(double parameter) const;
    /// Points along the curve, both ends included; empty for curves that are not valid. Their number is
    /// bounded, however many spans the curve has.
    std::vector<AcGePoint3d> samples() const;

private:
    std::size_t spanOf(double parameter) const;
};

/// A fine chain along a curve without the points that hardly turn it. Ends and the extreme points in x and y
/// stay.
std::vector<AcGePoint3d> thinned(const std::vector<AcGePoint3d> &chain);

} // namespace acgi
