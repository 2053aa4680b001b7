// Arrowheads: at the ends of leaders and dimension lines.
#pragma once

#include "host/acdb/dbentity.h"
#include "host/acgi/geometry.h"

namespace acgi
{

struct Arrowhead {
    AcDbObjectId block; ///< Stands at its origin, points along x, is one unit long; null: a filled triangle.
    double size = 0.0;
    bool tick = false; ///< A slanted stroke.

    /// How much of the line's end the arrowhead stands for.
    double inset() const;
};

/// `direction` leads along the line to the tip (length 1), `normal` is that of the line's plane. Has the pen
/// of the line; `entity` is whose arrowhead it is.
void drawArrowhead(const Arrowhead &arrow, const AcGePoint3d &tip, const AcGeVector3d &direction,
                   const AcGeVector3d &normal, const AcDbEntity &entity, AcGiGeometry &sink);

} // namespace acgi
