#include "host/acge/gematrix.h"

#include <algorithm>
#include <cmath>

static AcGeMatrix3d aboutCentre(AcGeMatrix3d linear, const AcGePoint3d &centre)
{
    const AcGePoint3d moved = linear * centre;
    linear.entry[0][3] = centre.x - moved.x;
    linear.entry[1][3] = centre.y - moved.y;
    linear.entry[2][3] = centre.z - moved.z;
    return linear;
}

AcGeMatrix3d AcGeMatrix3d::translation(const AcGeVector3d &offset)
{
    AcGeMatrix3d m;
    m.entry[0][3] = offset.x;
    m.entry[1][3] = offset.y;
    m.entry[2][3] = offset.z;
    return m;
}

// Rodrigues' rotation formula.
AcGeMatrix3d AcGeMatrix3d::rotation(double angle, const AcGeVector3d &axis, const AcGePoint3d &centre)
{
    const AcGeVector3d u = axis.normal();
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double t = 1.0 - c;
    AcGeMatrix3d m;
    m.entry = {{{t * u.x * u.x + c, t * u.x * u.y - s * u.z, t * u.x * u.z + s * u.y, 0},
                {t * u.x * u.y + s * u.z, t * u.y * u.y + c, t * u.y * u.z - s * u.x, 0},
                {t * u.x * u.z - s * u.y, t * u.y * u.z + s * u.x, t * u.z * u.z + c, 0}}};
    return aboutCentre(m, centre);
}

AcGeMatrix3d AcGeMatrix3d::scaling(double factor, const AcGePoint3d &centre)
{
    return aboutCentre(scaling(factor, factor, factor), centre);
}

AcGeMatrix3d AcGeMatrix3d::scaling(double fx, double fy, double fz)
{
    AcGeMatrix3d m;
    m.entry = {{{fx, 0, 0, 0}, {0, fy, 0, 0}, {0, 0, fz, 0}}};
    return m;
}

AcGeMatrix3d AcGeMatrix3d::mirroring(const AcGePoint3d &point, const AcGeVector3d &direction)
{
    const AcGeVector3d u = AcGeVector3d(direction.x, direction.y, 0).normal();
    AcGeMatrix3d m;
    m.entry = {
        {{2 * u.x * u.x - 1, 2 * u.x * u.y, 0, 0}, {2 * u.x * u.y, 2 * u.y * u.y - 1, 0, 0}, {0, 0, 1, 0}}};
    return aboutCentre(m, point);
}

AcGeMatrix3d AcGeMatrix3d::fromAxes(const AcGePoint3d &origin, const AcGeVector3d &xAxis,
                                    const AcGeVector3d &yAxis, const AcGeVector3d &zAxis)
{
    AcGeMatrix3d m;
    m.entry = {{{xAxis.x, yAxis.x, zAxis.x, origin.x},
                {xAxis.y, yAxis.y, zAxis.y, origin.y},
                {xAxis.z, yAxis.z, zAxis.z, origin.z}}};
    return m;
}

AcGeMatrix3d AcGeMatrix3d::planeToWorld(const AcGeVector3d &normal)
{
    const AcGeVector3d n = normal.isZeroLength() ? AcGeVector3d::kZAxis : normal.normal();
    constexpr double kNearAxis = 1.0 / 64.0;
    const bool nearZ = std::abs(n.x) < kNearAxis && std::abs(n.y) < kNearAxis;
    const AcGeVector3d ax = (nearZ ? AcGeVector3d::kYAxis : AcGeVector3d::kZAxis).crossProduct(n).normal();
    return fromAxes({}, ax, n.crossProduct(ax).normal(), n);
}

bool AcGeMatrix3d::isIdentity() const
{
    return *this == AcGeMatrix3d();
}

double AcGeMatrix3d::determinant() const
{
    const auto &e = entry;
    return e[0][0] * (e[1][1] * e[2][2] - e[1][2] * e[2][1]) -
           e[0][1] * (e[1][0] * e[2][2] - e[1][2] * e[2][0]) +
           e[0][2] * (e[1][0] * e[2][1] - e[1][1] * e[2][0]);
}

AcGeMatrix3d AcGeMatrix3d::inverse() const
{
    const double det = determinant();
    if (det == 0.0 || !std::isfinite(det))
        return {};
    const auto &e = entry;
    const auto cofactor = [&](int r1, int c1, int r2, int c2) {
        return (e[r1][c1] * e[r2][c2] - e[r1][c2] * e[r2][c1]) / det;
    };
    AcGeMatrix3d m;
    m.entry = {{{cofactor(1, 1, 2, 2), cofactor(0, 2, 2, 1), cofactor(0, 1, 1, 2), 0},
                {cofactor(1, 2, 2, 0), cofactor(0, 0, 2, 2), cofactor(0, 2, 1, 0), 0},
                {cofactor(1, 0, 2, 1), cofactor(0, 1, 2, 0), cofactor(0, 0, 1, 1), 0}}};
    const AcGeVector3d moved = m * AcGeVector3d(e[0][3], e[1][3], e[2][3]);
    m.entry[0][3] = -moved.x;
    m.entry[1][3] = -moved.y;
    m.entry[2][3] = -moved.z;
    return m;
}

double AcGeMatrix3d::scale() const
{
    double largest = 0.0;
    for (int column = 0; column < 3; ++column)
        largest =
            std::max(largest, AcGeVector3d(entry[0][column], entry[1][column], entry[2][column]).length());
    return largest;
}

AcGeMatrix3d operator*(const AcGeMatrix3d &a, const AcGeMatrix3d &b)
{
    AcGeMatrix3d m;
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column) {
            double sum = column == 3 ? a.entry[row][3] : 0.0;
            for (int k = 0; k < 3; ++k)
                sum += a.entry[row][k] * b.entry[k][column];
            m.entry[row][column] = sum;
        }
    }
    return m;
}

AcGePoint3d operator*(const AcGeMatrix3d &m, const AcGePoint3d &p)
{
    const AcGeVector3d v = m * p.asVector();
    return {v.x + m.entry[0][3], v.y + m.entry[1][3], v.z + m.entry[2][3]};
}

AcGeVector3d operator*(const AcGeMatrix3d &m, const AcGeVector3d &v)
{
    const auto row = [&](int r) { return m.entry[r][0] * v.x + m.entry[r][1] * v.y + m.entry[r][2] * v.z; };
    return {row(0), row(1), row(2)};
}
