#include "host/acdb/owngroups.h"

#include <algorithm>
#include <cmath>

OwnGroups::OwnGroups(std::span<const resbuf> groups, QStringView subclass) : OwnGroups(groups)
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

const resbuf *OwnGroups::find(int code) const
{
    const auto found =
        std::find_if(begin(), end(), [=](const resbuf &group) { return group.restype == code; });
    return found == end() ? nullptr : &*found;
}

double OwnGroups::real(int code, double fallback) const
{
    const resbuf *const group = find(code);
    return group && std::isfinite(group->real()) ? group->real() : fallback;
}

std::int64_t OwnGroups::integer(int code, std::int64_t fallback) const
{
    const resbuf *const group = find(code);
    return group ? group->integer() : fallback;
}

QString OwnGroups::text(int code) const
{
    const resbuf *const group = find(code);
    return group ? group->text() : QString();
}

AcGePoint3d OwnGroups::point(int code, AcGePoint3d fallback) const
{
    const resbuf *const group = find(code);
    return group ? group->point() : fallback;
}

AcGeVector3d OwnGroups::vector(int code, AcGeVector3d fallback) const
{
    const resbuf *const group = find(code);
    return group ? group->point().asVector() : fallback;
}

AcGeVector3d OwnGroups::normal() const
{
    const AcGeVector3d normal = vector(210, AcGeVector3d::kZAxis);
    return normal.isZeroLength() ? AcGeVector3d::kZAxis : normal;
}

std::vector<AcGePoint3d> OwnGroups::points(int code) const
{
    std::vector<AcGePoint3d> found;
    for (const resbuf &group : *this) {
        if (group.restype == code)
            found.push_back(group.point());
    }
    return found;
}
