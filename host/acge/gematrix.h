// Affine transforms of space: 3 x 4 in rows, the last row is (0 0 0 1).
#pragma once

#include "host/acge/gepoint.h"

#include <array>

class AcGeMatrix3d
{
public:
    /// entry[row][column]; column 3 is the translation.
    std::array<std::array<double, 4>, 3> entry{{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};

    static AcGeMatrix3d translation(const AcGeVector3d &offset);
    /// Counter-clockwise turn by `angle` radians about `axis` through `centre`.
    static AcGeMatrix3d rotation(double angle, const AcGeVector3d &axis, const AcGePoint3d &centre = {});
    static AcGeMatrix3d scaling(double factor, const AcGePoint3d &centre = {});
    static AcGeMatrix3d scaling(double fx, double fy, double fz);
    /// Reflection at the line through `point` along `direction`, in the XY plane.
    static AcGeMatrix3d mirroring(const AcGePoint3d &point, const AcGeVector3d &direction);
    /// Maps (x y z) to origin + x*xAxis + y*yAxis + z*zAxis.
    static AcGeMatrix3d fromAxes(const AcGePoint3d &origin, const AcGeVector3d &xAxis,
                                 const AcGeVector3d &yAxis, const AcGeVector3d &zAxis);
    /// Object to world coordinates for an extrusion direction, by the arbitrary axis algorithm of the
    /// DXF reference: the X axis is Y x N when |N.x| and |N.y| are below 1/64, else Z x N.
    static AcGeMatrix3d planeToWorld(const AcGeVector3d &normal);

    bool isIdentity() const;
    double determinant() const;
    /// The inverse, or the identity when the matrix is singular.
    AcGeMatrix3d inverse() const;
    /// The largest stretch of any direction along the axes.
    double scale() const;

    friend AcGeMatrix3d operator*(const AcGeMatrix3d &a, const AcGeMatrix3d &b);
    friend AcGePoint3d operator*(const AcGeMatrix3d &m, const AcGePoint3d &p);
    friend AcGeVector3d operator*(const AcGeMatrix3d &m, const AcGeVector3d &v);
    friend bool operator==(const AcGeMatrix3d &, const AcGeMatrix3d &) = default;
};
