// Points and vectors of the drawing plane and of space: plain values, world units.
#pragma once

#include <cmath>

/// Points closer than this are one point; vectors shorter than this have no direction.
inline constexpr double kGeTolerance = 1e-10;
inline constexpr double kGePi = 3.14159265358979323846;

class AcGeMatrix3d;

class AcGeVector3d
{
public:
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    static const AcGeVector3d kIdentity;
    static const AcGeVector3d kXAxis;
    static const AcGeVector3d kYAxis;
    static const AcGeVector3d kZAxis;

    constexpr AcGeVector3d() = default;
    constexpr AcGeVector3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}

    double length() const { return std::sqrt(x * x + y * y + z * z); }
    double dotProduct(const AcGeVector3d &other) const { return x * other.x + y * other.y + z * other.z; }
    AcGeVector3d crossProduct(const AcGeVector3d &other) const;
    /// The vector of length 1 in this direction; a vector without direction stays as it is.
    AcGeVector3d normal() const;
    bool isZeroLength(double tolerance = kGeTolerance) const { return length() <= tolerance; }
    /// Unsigned angle to `other`, radians, 0 to pi; 0 when either has no direction.
    double angleTo(const AcGeVector3d &other) const;
    /// This vector turned about `axis` by `angle` radians, counter-clockwise seen against the axis.
    AcGeVector3d rotateBy(double angle, const AcGeVector3d &axis) const;
    AcGeVector3d &transformBy(const AcGeMatrix3d &matrix);

    friend bool operator==(const AcGeVector3d &, const AcGeVector3d &) = default;
    friend constexpr AcGeVector3d operator+(const AcGeVector3d &a, const AcGeVector3d &b)
    {
        return {a.x + b.x, a.y + b.y, a.z + b.z};
    }
    friend constexpr AcGeVector3d operator-(const AcGeVector3d &a, const AcGeVector3d &b)
    {
        return {a.x - b.x, a.y - b.y, a.z - b.z};
    }
    friend constexpr AcGeVector3d operator-(const AcGeVector3d &a) { return {-a.x, -a.y, -a.z}; }
    friend constexpr AcGeVector3d operator*(const AcGeVector3d &a, double s)
    {
        return {a.x * s, a.y * s, a.z * s};
    }
    friend constexpr AcGeVector3d operator*(double s, const AcGeVector3d &a) { return a * s; }
    friend constexpr AcGeVector3d operator/(const AcGeVector3d &a, double s)
    {
        return {a.x / s, a.y / s, a.z / s};
    }
};

class AcGePoint3d
{
public:
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;

    static const AcGePoint3d kOrigin;

    constexpr AcGePoint3d() = default;
    constexpr AcGePoint3d(double xx, double yy, double zz) : x(xx), y(yy), z(zz) {}

    constexpr AcGeVector3d asVector() const { return {x, y, z}; }
    double distanceTo(const AcGePoint3d &other) const { return (other - *this).length(); }
    bool isEqualTo(const AcGePoint3d &other, double tolerance = kGeTolerance) const
    {
        return distanceTo(other) <= tolerance;
    }
    AcGePoint3d &transformBy(const AcGeMatrix3d &matrix);
    /// This point turned about `axis` through `centre` by `angle` radians.
    AcGePoint3d rotateBy(double angle, const AcGeVector3d &axis, const AcGePoint3d &centre = kOrigin) const;

    friend bool operator==(const AcGePoint3d &, const AcGePoint3d &) = default;
    friend constexpr AcGeVector3d operator-(const AcGePoint3d &a, const AcGePoint3d &b)
    {
        return {a.x - b.x, a.y - b.y, a.z - b.z};
    }
    friend constexpr AcGePoint3d operator+(const AcGePoint3d &a, const AcGeVector3d &v)
    {
        return {a.x + v.x, a.y + v.y, a.z + v.z};
    }
    friend constexpr AcGePoint3d operator-(const AcGePoint3d &a, const AcGeVector3d &v)
    {
        return {a.x - v.x, a.y - v.y, a.z - v.z};
    }
};

class AcGePoint2d
{
public:
    double x = 0.0;
    double y = 0.0;

    constexpr AcGePoint2d() = default;
    constexpr AcGePoint2d(double xx, double yy) : x(xx), y(yy) {}
    friend bool operator==(const AcGePoint2d &, const AcGePoint2d &) = default;
};

inline constexpr AcGeVector3d AcGeVector3d::kIdentity{};
inline constexpr AcGeVector3d AcGeVector3d::kXAxis{1.0, 0.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kYAxis{0.0, 1.0, 0.0};
inline constexpr AcGeVector3d AcGeVector3d::kZAxis{0.0, 0.0, 1.0};
inline constexpr AcGePoint3d AcGePoint3d::kOrigin{};

/// Direction of `to` seen from `from` in the XY plane, radians, 0 to 2 pi; 0 for equal points.
double directionAngle(const AcGePoint3d &from, const AcGePoint3d &to);
/// `point` moved by `distance` in the direction `angle` (radians) of the XY plane; z is kept.
AcGePoint3d polarOffset(const AcGePoint3d &point, double angle, double distance);
