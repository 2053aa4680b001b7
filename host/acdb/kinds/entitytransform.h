// EntityTransform: one native entity on its way through a matrix (acdbTransformGroups()).
#pragma once

#include "host/acdb/resbuf.h"
#include "host/acge/gematrix.h"

#include <span>

/// What a group means in space. "Plane" values are in the entity's own plane (extrusion direction 210).
enum class Role {
    point,          ///< World point.
    planePoint,     ///< Point of the plane; its z is the elevation.
    planePoint2d,   ///< Point of the plane, elevation in group 38.
    elevation,      ///< Real, height above the plane's origin.
    elevationPoint, ///< Point of which only z counts.
    vector,         ///< World vector, scales.
    direction,      ///< World vector, keeps its length.
    length,
    planeAngle, ///< Degrees from the plane's X axis.
    turn,       ///< Degrees or radians relative to another direction: changes sign in a reflection.
    bulge,
};

struct Rule {
    int code;
    Role role;
};

/// An angle of at least 0 and below 360 degrees.
double wrapDegrees(double angle);
/// Equal up to the rounding of a few multiplications: such a difference is no change.
bool sameNumber(double a, double b);

/// One entity on its way: the groups, and the matrix seen from the world and from the entity's plane.
class EntityTransform
{
public:
    EntityTransform(ResbufList &groups, const AcGeMatrix3d &matrix, const AcGeVector3d &normal);

    void applyRules(std::span<const Rule> rules);
    void applyExtendedData();
    void apply(Role role, resbuf &group);

    double scale() const { return m_scale; }
    bool mirrored() const { return m_mirrored; }
    const AcGeMatrix3d &matrix() const { return m_matrix; }
    AcGeVector3d turned(const AcGeVector3d &direction) const { return m_matrix * direction / m_scale; }
    /// The direction of the plane that a direction of the plane becomes; degrees.
    double turnedAngle(double degrees) const;
    const AcGeVector3d &normal() const { return m_normal; }
    AcGeVector3d newNormal() const { return turned(m_normal); }
    const AcGeMatrix3d &inPlane() const { return m_inPlane; }

    /// A number became too large to be one; the groups are good for nothing then.
    bool overflows() const { return m_overflows; }

    ResbufList &groups() { return m_groups; }
    std::size_t end() const { return m_end; }
    /// Own group with that code, before embedded objects and extended data.
    resbuf *find(int code);
    void setReal(resbuf &group, double value);
    void setPoint(resbuf &group, const AcGePoint3d &value);
    /// Sets an own real group, adding it behind the first group `after` when it stood at `fallback`.
    void setReal(int code, double value, double fallback, int after);
    void setInteger(int code, std::int64_t value, std::int64_t fallback, int after);
    void setNormal(const AcGeVector3d &normal);
    double real(int code, double fallback);
    std::int64_t integer(int code, std::int64_t fallback);

private:
    void insertAfter(int after, resbuf group);
    void markEnd();

    ResbufList &m_groups;
    AcGeMatrix3d m_matrix;
    AcGeMatrix3d m_inPlane; ///< Plane coordinates to those of the transformed plane.
    AcGeVector3d m_normal;
    double m_scale;
    bool m_mirrored;
    bool m_overflows = false;
    std::size_t m_end = 0;
};
