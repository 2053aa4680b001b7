#include "host/acgi/kinds/hatch_pattern.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace acgi
{

std::vector<HatchLineFamily> readHatchPattern(const EntityGroups &groups)
{
    std::vector<HatchLineFamily> families;
    bool inPattern = false;
    for (const resbuf &group : groups) {
        if (group.restype == 78)
            inPattern = true;
        else if (!inPattern)
            continue;
        else if (group.restype == 53)
            families.emplace_back().angle = radians(group.real());
        else if (families.empty())
            continue;
        else if (group.restype == 43)
            families.back().base.x = group.real();
        else if (group.restype == 44)
            families.back().base.y = group.real();
        else if (group.restype == 45)
            families.back().offset.x = group.real();
        else if (group.restype == 46)
            families.back().offset.y = group.real();
        else if (group.restype == 49)
            families.back().dashes.push_back(group.real());
        else if (group.restype == 98 || group.restype == 450)
            break; // Seed points or a gradient follow.
    }
    return families;
}

namespace
{

constexpr double kMostPieces = 200000.0;

/// A stretch of one line of a family inside the area.
struct Stretch {
    double line; ///< Number of the line, whole.
    double from; ///< Distances along the line from the foot of the base point.
    double to;
};

/// One family in its own coordinates: along the lines, and across them in numbers of lines.
class FamilyCutter
{
public:
    explicit FamilyCutter(const HatchLineFamily &family)
        : m_family(family), m_along(std::cos(family.angle), std::sin(family.angle))
    {
        const AcGePoint2d &offset = family.offset;
        m_shift = offset.x * m_along.x + offset.y * m_along.y;
        m_spacing = offset.y * m_along.x - offset.x * m_along.y;
        if (m_spacing < 0.0) {
            m_spacing = -m_spacing;
            m_shift = -m_shift;
        }
        for (const double dash : family.dashes) {
            m_period += std::abs(dash);
            m_shown += dash >= 0.0;
        }
        m_isSound = std::isfinite(family.angle) && std::isfinite(family.base.x) &&
                    std::isfinite(family.base.y) && std::isfinite(m_shift) && std::isfinite(m_spacing) &&
                    std::isfinite(m_period) && m_spacing > 0.0;
    }

    bool isSound() const { return m_isSound; }

    /// Where the lines run inside the area; false when that is in more than kMostPieces stretches.
    bool cut(const std::vector<Loop> &loops)
    {
        if (countCrossings(loops) > 2.0 * kMostPieces)
            return false;
        for (const Loop &loop : loops) {
            for (std::size_t i = 0; i < loop.size(); ++i)
                crossLines(place(loop[i]), place(loop[(i + 1) % loop.size()]));
        }
        std::ranges::sort(m_crossings);
        // A loop crosses each line an even number of times.
        for (std::size_t i = 0; i + 1 < m_crossings.size(); i += 2) {
            const auto &[line, from] = m_crossings[i];
            const double to = m_crossings[i + 1].second;
            if (to > from)
                m_stretches.push_back({line, from, to});
        }
        m_crossings = {};
        return true;
    }

    /// Not fewer than will be drawn.
    double countPieces() const
    {
        double pieces = 0.0;
        for (const Stretch &stretch : m_stretches) {
            const double periods = m_period > 0.0 ? std::floor((stretch.to - stretch.from) / m_period) : 0.0;
            pieces += (periods + 1.0) * m_shown + 1.0;
        }
        return pieces;
    }

    void draw(double elevation, const HatchSegment &segment) const
    {
        for (const Stretch &stretch : m_stretches) {
            const auto emit = [&](double from, double to) {
                segment(at(stretch.line, from, elevation), at(stretch.line, to, elevation));
            };
            if (m_period > 0.0)
                drawDashes(stretch, emit);
            else
                emit(stretch.from, stretch.to);
        }
    }

private:
    struct Place {
        double along;
        double across; ///< In spacings.
        /// The first line at or behind the place: two places have as many lines between them as these
        /// numbers differ, so that loops always close.
        double line() const { return std::ceil(across); }
    };

    Place place(const AcGePoint3d &point) const
    {
        const double x = point.x - m_family.base.x;
        const double y = point.y - m_family.base.y;
        return {x * m_along.x + y * m_along.y, (y * m_along.x - x * m_along.y) / m_spacing};
    }

    AcGePoint3d at(double line, double along, double elevation) const
    {
        const double across = line * m_spacing;
        return {m_family.base.x + m_along.x * along - m_along.y * across,
                m_family.base.y + m_along.y * along + m_along.x * across, elevation};
    }

    double countCrossings(const std::vector<Loop> &loops) const
    {
        double count = 0.0;
        for (const Loop &loop : loops) {
            for (std::size_t i = 0; i < loop.size(); ++i)
                count += std::abs(place(loop[i]).line() - place(loop[(i + 1) % loop.size()]).line());
        }
        // Beyond whole numbers lines have no places any more.
        constexpr double kFarthest = 1e15;
        const bool isFar = std::ranges::any_of(loops, [&](const Loop &loop) {
            return std::ranges::any_of(
                loop, [&](const AcGePoint3d &p) { return !(std::abs(place(p).across) < kFarthest); });
        });
        return isFar ? HUGE_VAL : count;
    }

    void crossLines(const Place &from, const Place &to)
    {
        const double first = std::min(from.line(), to.line());
        const double end = std::max(from.line(), to.line());
        for (double line = first; line < end; line += 1.0) {
            const double share = std::clamp((line - from.across) / (to.across - from.across), 0.0, 1.0);
            m_crossings.emplace_back(line, from.along + (to.along - from.along) * share);
        }
    }

    template <class Emit>
    void drawDashes(const Stretch &stretch, Emit emit) const
    {
        const double origin = stretch.line * m_shift;
        const double first = std::floor((stretch.from - origin) / m_period);
        const double count = std::floor((stretch.to - stretch.from) / m_period) + 2.0;
        for (double i = 0.0; i < count; i += 1.0) {
            double begin = origin + (first + i) * m_period;
            for (const double dash : m_family.dashes) {
                const double end = begin + std::abs(dash);
                const double from = std::max(begin, stretch.from);
                const double to = std::min(end, stretch.to);
                if (dash >= 0.0 && (from < to || (dash == 0.0 && from == to)))
                    emit(from, to);
                begin = end;
            }
        }
    }

    const HatchLineFamily &m_family;
    AcGePoint2d m_along;
    double m_shift = 0.0;   ///< From line to line along the lines.
    double m_spacing = 0.0; ///< Across them, above 0.
    double m_shown = 0.0;   ///< Dashes and dots of a period.
    double m_period = 0.0;  ///< Length of the dashes and gaps; 0 for continuous lines.
    bool m_isSound = false;
    std::vector<std::pair<double, double>> m_crossings; ///< Line, distance along it.
    std::vector<Stretch> m_stretches;
};

} // namespace

bool cutHatchPattern(const std::vector<HatchLineFamily> &families, const std::vector<Loop> &loops,
                     const HatchSegment &draw)
{
    constexpr std::size_t kMostFamilies = 1000; // The richest known patterns have a few dozen.
    if (families.size() > kMostFamilies)
        return false;
    std::vector<FamilyCutter> cutters;
    double pieces = 0.0;
    for (const HatchLineFamily &family : families) {
        FamilyCutter cutter(family);
        if (!cutter.isSound())
            continue;
        if (!cutter.cut(loops))
            return false;
        pieces += cutter.countPieces();
        if (!(pieces <= kMostPieces))
            return false;
        cutters.push_back(std::move(cutter));
    }
    for (const FamilyCutter &cutter : cutters)
        cutter.draw(loops.empty() || loops.front().empty() ? 0.0 : loops.front().front().z, draw);
    return true;
}

} // namespace acgi
