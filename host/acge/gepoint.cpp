#include "host/acge/gepoint.h"

#include "host/acge/gematrix.h"

#include <algorithm>

AcGeVector3d AcGeVector3d::crossProduct(const AcGeVector3d &other) const
{
    return {y * other.z - z * other.y, z * other.x - x * other.z, x * other.y - y * other.x};
}

AcGeVector3d AcGeVector3d::normal() const
{
    const double size = length();
    return size <= kGeTolerance ? *this : *this / size;
}

double AcGeVector3d::angleTo(const AcGeVector3d &other) const
{
    const double sizes = length() * other.length();
    if (sizes <= kGeTolerance * kGeTolerance)
        return 0.0;
    // atan2 keeps its accuracy for nearly parallel vectors, where acos loses it.
    return std::atan2(crossProduct(other).length(), dotProduct(other));
}

AcGeVector3d AcGeVector3d::rotateBy(double angle, const AcGeVector3d &axis) const
{
    return AcGeVector3d(*this).transformBy(AcGeMatrix3d::rotation(angle, axis));
}

AcGeVector3d &AcGeVector3d::transformBy(const AcGeMatrix3d &matrix)
{
    return *this = matrix * *this;
}

AcGePoint3d &AcGePoint3d::transformBy(const AcGeMatrix3d &matrix)
{
    return *this = matrix * *this;
}

AcGePoint3d AcGePoint3d::rotateBy(double angle, const AcGeVector3d &axis, const AcGePoint3d &centre) const
{
    return AcGePoint3d(*this).transformBy(AcGeMatrix3d::rotation(angle, axis, centre));
}

double directionAngle(const AcGePoint3d &from, const AcGePoint3d &to)
{
    const double angle = std::atan2(to.y - from.y, to.x - from.x);
    return angle < 0.0 ? angle + 2.0 * kGePi : angle;
}

AcGePoint3d polarOffset(const AcGePoint3d &point, double angle, double distance)
{
    return {point.x + distance * std::cos(angle), point.y + distance * std::sin(angle), point.z};
}
