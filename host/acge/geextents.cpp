#include "host/acge/geextents.h"

#include "host/acge/gematrix.h"

#include <algorithm>
#include <array>
#include <limits>

static constexpr double kBeyond = std::numeric_limits<double>::infinity();

AcDbExtents::AcDbExtents() : m_min(kBeyond, kBeyond, kBeyond), m_max(-kBeyond, -kBeyond, -kBeyond) {}

AcDbExtents::AcDbExtents(const AcGePoint3d &low, const AcGePoint3d &high) : AcDbExtents()
{
    addPoint(low);
    addPoint(high);
}

void AcDbExtents::addPoint(const AcGePoint3d &point)
{
    if (!std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(point.z))
        return;
    m_min = {std::min(m_min.x, point.x), std::min(m_min.y, point.y), std::min(m_min.z, point.z)};
    m_max = {std::max(m_max.x, point.x), std::max(m_max.y, point.y), std::max(m_max.z, point.z)};
}

void AcDbExtents::addExt(const AcDbExtents &other)
{
    if (!other.isValid())
        return;
    addPoint(other.m_min);
    addPoint(other.m_max);
}

void AcDbExtents::transformBy(const AcGeMatrix3d &matrix)
{
    if (!isValid())
        return;
    // Each coordinate of the turned corners is smallest where every product is, and largest likewise.
    std::array<double, 3> low;
    std::array<double, 3> high;
    for (std::size_t row = 0; row < 3; ++row) {
        const auto &factor = matrix.entry[row];
        const auto [lowX, highX] = std::minmax({factor[0] * m_min.x, factor[0] * m_max.x});
        const auto [lowY, highY] = std::minmax({factor[1] * m_min.y, factor[1] * m_max.y});
        const auto [lowZ, highZ] = std::minmax({factor[2] * m_min.z, factor[2] * m_max.z});
        low[row] = lowX + lowY + lowZ + factor[3];
        high[row] = highX + highY + highZ + factor[3];
    }
    *this = AcDbExtents({low[0], low[1], low[2]}, {high[0], high[1], high[2]});
}

bool AcDbExtents::containsInPlane(const AcDbExtents &other) const
{
    return isValid() && other.isValid() && m_min.x <= other.m_min.x && m_min.y <= other.m_min.y &&
           m_max.x >= other.m_max.x && m_max.y >= other.m_max.y;
}

bool AcDbExtents::meetsInPlane(const AcDbExtents &other) const
{
    return isValid() && other.isValid() && m_min.x <= other.m_max.x && other.m_min.x <= m_max.x &&
           m_min.y <= other.m_max.y && other.m_min.y <= m_max.y;
}
