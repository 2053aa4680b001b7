#include "host/acdb/kinds/entitytransform.h"

#include <algorithm>
#include <cmath>

double wrapDegrees(double angle)
{
    const double positive = std::fmod(std::fmod(angle, 360.0) + 360.0, 360.0);
    return 360.0 - positive < 1e-11 ? 0.0 : positive; // Rounding below zero is zero, not a whole turn.
}

bool sameNumber(double a, double b)
{
    return std::abs(a - b) <= 1e-14 * std::max({1.0, std::abs(a), std::abs(b)});
}

static bool same(const AcGePoint3d &a, const AcGePoint3d &b)
{
    const double size = std::max({1.0, std::abs(a.x), std::abs(a.y), std::abs(a.z)});
    return std::abs(a.x - b.x) <= 1e-14 * size && std::abs(a.y - b.y) <= 1e-14 * size &&
           std::abs(a.z - b.z) <= 1e-14 * size;
}

EntityTransform::EntityTransform(ResbufList &groups, const AcGeMatrix3d &matrix, const AcGeVector3d &normal)
    : m_groups(groups), m_matrix(matrix), m_normal(normal),
      m_scale(std::cbrt(std::abs(matrix.determinant()))), m_mirrored(matrix.determinant() < 0.0)
{
    // The cube root of 1 may be off by one bit, which would touch every length of a moved entity.
    if (std::abs(m_scale - 1.0) < 1e-14)
        m_scale = 1.0;
    markEnd();
    m_inPlane =
        AcGeMatrix3d::planeToWorld(newNormal()).inverse() * matrix * AcGeMatrix3d::planeToWorld(m_normal);
}

void EntityTransform::markEnd()
{
    m_end = ownGroupsEnd(m_groups);
}

double EntityTransform::turnedAngle(double degrees) const
{
    const double angle = degrees * kGePi / 180.0;
    const double base = std::atan2(m_inPlane.entry[1][0], m_inPlane.entry[0][0]);
    if (std::abs(base) < 1e-14 && !m_mirrored)
        return degrees;
    return wrapDegrees((m_mirrored ? base - angle : base + angle) * 180.0 / kGePi);
}

resbuf *EntityTransform::find(int code)
{
    return findGroup(m_groups, code);
}

double EntityTransform::real(int code, double fallback)
{
    const resbuf *const group = find(code);
    return group ? group->real() : fallback;
}

std::int64_t EntityTransform::integer(int code, std::int64_t fallback)
{
    const resbuf *const group = find(code);
    return group ? group->integer() : fallback;
}

void EntityTransform::setReal(resbuf &group, double value)
{
    if (!std::isfinite(value))
        m_overflows = true;
    else if (!sameNumber(group.real(), value))
        group.assign(value);
}

void EntityTransform::setPoint(resbuf &group, const AcGePoint3d &value)
{
    if (!std::isfinite(value.x) || !std::isfinite(value.y) || !std::isfinite(value.z)) {
        m_overflows = true;
        return;
    }
    if (same(group.point(), value))
        return;
    const bool isPlane = std::holds_alternative<AcGePoint2d>(group.resval);
    if (isPlane && sameNumber(value.z, 0.0))
        group.assign(AcGePoint2d(value.x, value.y));
    else
        group.assign(value);
}

void EntityTransform::insertAfter(int after, resbuf group)
{
    const resbuf *const anchor = find(after);
    const std::size_t place = anchor ? std::size_t(anchor - m_groups.data()) + 1 : m_end;
    m_groups.insert(m_groups.begin() + std::ptrdiff_t(place), std::move(group));
    markEnd();
}

void EntityTransform::setReal(int code, double value, double fallback, int after)
{
    if (resbuf *const group = find(code))
        setReal(*group, value);
    else if (!sameNumber(value, fallback))
        insertAfter(after, resbuf(code, value));
}

void EntityTransform::setInteger(int code, std::int64_t value, std::int64_t fallback, int after)
{
    if (resbuf *const group = find(code); group && group->integer() != value)
        group->assign(value);
    else if (!group && value != fallback)
        insertAfter(after, resbuf(code, value));
}

void EntityTransform::setNormal(const AcGeVector3d &normal)
{
    const AcGePoint3d value(normal.x, normal.y, normal.z);
    if (same(value, {m_normal.x, m_normal.y, m_normal.z}))
        return;
    if (resbuf *const group = find(210)) {
        setPoint(*group, value);
        return;
    }
    if (same(value, {0.0, 0.0, 1.0}))
        return;
    // At the end of the subclass that holds the position.
    const resbuf *const position = find(10);
    std::size_t place = position ? std::size_t(position - m_groups.data()) : m_end;
    while (place < m_end && m_groups[place].restype != 100)
        ++place;
    m_groups.insert(m_groups.begin() + std::ptrdiff_t(place), resbuf(210, value));
    markEnd();
}

void EntityTransform::apply(Role role, resbuf &group)
{
    const AcGePoint3d point = group.point();
    const auto asPoint = [](const AcGeVector3d &v) { return AcGePoint3d(v.x, v.y, v.z); };
    switch (role) {
    case Role::point:
        setPoint(group, m_matrix * point);
        break;
    case Role::planePoint:
        setPoint(group, m_inPlane * point);
        break;
    case Role::planePoint2d: {
        const AcGePoint3d moved = m_inPlane * point;
        setPoint(group, {moved.x, moved.y, 0.0});
        break;
    }
    case Role::elevation:
        setReal(group, (m_inPlane * AcGePoint3d(0.0, 0.0, group.real())).z);
        break;
    case Role::elevationPoint:
        setPoint(group, {point.x, point.y, (m_inPlane * AcGePoint3d(0.0, 0.0, point.z)).z});
        break;
    case Role::vector:
        setPoint(group, asPoint(m_matrix * point.asVector()));
        break;
    case Role::direction:
        setPoint(group, asPoint(turned(point.asVector())));
        break;
    case Role::length:
        setReal(group, group.real() * m_scale);
        break;
    case Role::planeAngle:
        setReal(group, turnedAngle(group.real()));
        break;
    case Role::turn:
    case Role::bulge:
        if (m_mirrored)
            setReal(group, -group.real());
        break;
    }
}

void EntityTransform::applyRules(std::span<const Rule> rules)
{
    ApplicationGroups applications;
    for (std::size_t i = 0; i < m_end; ++i) {
        resbuf &group = m_groups[i];
        if (applications.holds(group))
            continue;
        const auto rule = std::ranges::find(rules, group.restype, &Rule::code);
        if (rule != rules.end())
            apply(rule->role, group);
    }
}

void EntityTransform::applyExtendedData()
{
    static constexpr Rule kRules[] = {{1011, Role::point},
                                      {1012, Role::vector},
                                      {1013, Role::direction},
                                      {1041, Role::length},
                                      {1042, Role::length}};
    for (std::size_t i = extendedDataBegin(m_groups); i < m_groups.size(); ++i) {
        const auto rule = std::ranges::find(kRules, m_groups[i].restype, &Rule::code);
        if (rule != std::end(kRules))
            apply(rule->role, m_groups[i]);
    }
}
