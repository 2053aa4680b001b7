#include "host/acgi/entity_groups.h"

#include <algorithm>

static std::span<const resbuf> ownGroups(std::span<const resbuf> groups)
{
    const auto foreign = [](const resbuf &group) { return group.restype == 101 || group.restype == 1001; };
    return groups.first(std::size_t(std::ranges::find_if(groups, foreign) - groups.begin()));
}

EntityGroups::EntityGroups(const AcDbObject &object) : m_groups(ownGroups(object.groups())) {}

EntityGroups::EntityGroups(const AcDbObject &object, QStringView subclass) : EntityGroups(object)
{
    const auto isMarker = [=](const resbuf &group) {
        return group.restype == 100 && group.text() == subclass;
    };
    const auto marker = std::ranges::find_if(m_groups, isMarker);
    if (marker == m_groups.end())
        return;
    m_groups = m_groups.subspan(std::size_t(marker - m_groups.begin()) + 1);
    const auto next = std::ranges::find(m_groups, 100, &resbuf::restype);
    m_groups = m_groups.first(std::size_t(next - m_groups.begin()));
}

const resbuf *EntityGroups::find(int code) const
{
    const auto found = std::ranges::find(m_groups, code, &resbuf::restype);
    return found == m_groups.end() ? nullptr : &*found;
}

double EntityGroups::real(int code, double fallback) const
{
    const resbuf *const group = find(code);
    return group ? group->real() : fallback;
}

std::int64_t EntityGroups::integer(int code, std::int64_t fallback) const
{
    const resbuf *const group = find(code);
    return group ? group->integer() : fallback;
}

QString EntityGroups::text(int code) const
{
    const resbuf *const group = find(code);
    return group ? group->text() : QString();
}

AcGePoint3d EntityGroups::point(int code, AcGePoint3d fallback) const
{
    const resbuf *const group = find(code);
    return group ? group->point() : fallback;
}

AcGeVector3d EntityGroups::vector(int code, AcGeVector3d fallback) const
{
    const resbuf *const group = find(code);
    return group ? group->point().asVector() : fallback;
}

AcGeVector3d EntityGroups::normal() const
{
    const AcGeVector3d normal = vector(210, AcGeVector3d::kZAxis);
    return normal.isZeroLength() ? AcGeVector3d::kZAxis : normal;
}

std::vector<AcGePoint3d> EntityGroups::points(int code) const
{
    std::vector<AcGePoint3d> found;
    for (const resbuf &group : m_groups) {
        if (group.restype == code)
            found.push_back(group.point());
    }
    return found;
}
