// AcDbExtents: an axis-aligned box in world coordinates that grows as points are added.
#pragma once

#include "host/acge/gepoint.h"

class AcDbExtents
{
public:
    AcDbExtents();
    AcDbExtents(const AcGePoint3d &low, const AcGePoint3d &high);

    /// False until a finite point was added.
    bool isValid() const { return m_min.x <= m_max.x; }
    const AcGePoint3d &minPoint() const { return m_min; }
    const AcGePoint3d &maxPoint() const { return m_max; }

    /// Points that are not finite are ignored.
    void addPoint(const AcGePoint3d &point);
    void addExt(const AcDbExtents &other);
    /// The box around the eight transformed corners.
    void transformBy(const AcGeMatrix3d &matrix);

    /// The following look at x and y only.
    bool containsInPlane(const AcDbExtents &other) const;
    bool meetsInPlane(const AcDbExtents &other) const;

private:
    AcGePoint3d m_min;
    AcGePoint3d m_max;
};
