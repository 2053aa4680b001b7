#include "host/acdb/kinds/grips.h"

#include "host/acdb/owngroups.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace gripping
{

Shape::Shape(const AcDbEntity &entity) : m_entity(entity)
{
    for (const resbuf &group : OwnGroups(entity))
        m_own.push_back(std::size_t(&group - entity.groups().data()));
    const AcGeVector3d filed = point(210).value_or(AcGePoint3d(0.0, 0.0, 1.0)).asVector();
    m_normal = filed.isZeroLength() ? AcGeVector3d::kZAxis : filed.normal();
    m_toWorld = AcGeMatrix3d::planeToWorld(m_normal);
}

std::vector<std::size_t> Shape::all(int code) const
{
    std::vector<std::size_t> found;
    std::ranges::copy_if(m_own, std::back_inserter(found),
                         [&](std::size_t i) { return group(i).restype == code; });
    return found;
}

std::optional<std::size_t> Shape::find(int code) const
{
    const auto found = std::ranges::find(m_own, code, [&](std::size_t i) { return group(i).restype; });
    return found == m_own.end() ? std::nullopt : std::optional(*found);
}

void addWhole(Grips &grips, const std::optional<AcGePoint3d> &place)
{
    if (place)
        grips.push_back({.place = *place});
}

void addPoints(const Shape &shape, Grips &grips, int code, Role role)
{
    const double elevation = role == Role::planePoint2d ? shape.real(38, 0.0) : 0.0;
    for (const std::size_t index : shape.all(code)) {
        const AcGePoint3d filed = shape.group(index).point();
        const AcGePoint3d place =
            role == Role::point ? filed : shape.toWorld({filed.x, filed.y, filed.z + elevation});
        grips.push_back({.place = place, .action = Grip::movePoint, .role = role, .group = index});
    }
}

void addReshaping(Grips &grips, std::initializer_list<AcGePoint3d> places)
{
    int part = 0;
    for (const AcGePoint3d &place : places)
        grips.push_back({.place = place, .action = Grip::reshape, .part = part++});
}

void setReal(resbuf &group, double value)
{
    if (!sameNumber(group.real(), value))
        group.assign(value);
}

bool isSize(double value)
{
    return std::isfinite(value) && value > kGeTolerance;
}

} // namespace gripping
