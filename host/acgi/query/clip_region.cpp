#include "host/acgi/query/clip_region.h"

#include <algorithm>
#include <cmath>

namespace acgi
{

bool areaHolds(std::span<const Loop> loops, double x, double y)
{
    bool holds = false;
    for (const Loop &loop : loops) {
        for (std::size_t i = 0; i < loop.size(); ++i) {
            const AcGePoint3d &from = loop[i];
            const AcGePoint3d &to = loop[(i + 1) % loop.size()];
            if ((from.y > y) != (to.y > y) && x < from.x + (y - from.y) / (to.y - from.y) * (to.x - from.x))
                holds = !holds;
        }
    }
    return holds;
}

static AcGePoint3d between(const AcGePoint3d &from, const AcGePoint3d &to, double t)
{
    return from + (to - from) * t;
}

/// Where along the line (0 to 1) it crosses the outlines.
static void appendCrossings(const AcGePoint3d &from, const AcGePoint3d &to, std::span<const Loop> loops,
                            std::vector<double> &crossings)
{
    const AcGeVector3d along = to - from;
    for (const Loop &loop : loops) {
        for (std::size_t i = 0; i < loop.size(); ++i) {
            const AcGeVector3d start = loop[i] - from;
            const AcGeVector3d side = loop[(i + 1) % loop.size()] - loop[i];
            const double det = along.x * side.y - along.y * side.x;
            if (det == 0.0)
                continue; // Parallel: the neighbours of this side cross.
            const double t = (start.x * side.y - start.y * side.x) / det;
            const double u = (start.x * along.y - start.y * along.x) / det;
            if (t > 0.0 && t < 1.0 && u >= 0.0 && u <= 1.0)
                crossings.push_back(t);
        }
    }
}

void ClipRegion::push(std::vector<Loop> loops, bool inverted)
{
    AcDbExtents box;
    for (const Loop &loop : loops) {
        for (const AcGePoint3d &corner : loop)
            box.addPoint({corner.x, corner.y, 0.0});
    }
    m_clips.push_back({std::move(loops), inverted, box});
}

bool ClipRegion::holds(const AcGePoint3d &point) const
{
    return std::ranges::all_of(
        m_clips, [&](const Clip &clip) { return areaHolds(clip.loops, point.x, point.y) != clip.inverted; });
}

AcDbExtents ClipRegion::box() const
{
    AcDbExtents box;
    for (const Clip &clip : m_clips) {
        if (!clip.inverted && (!box.isValid() || box.containsInPlane(clip.box)))
            box = clip.box;
    }
    return box;
}

static bool mayMeet(const AcGePoint3d &from, const AcGePoint3d &to, const AcDbExtents &box)
{
    return std::max(from.x, to.x) >= box.minPoint().x && std::min(from.x, to.x) <= box.maxPoint().x &&
           std::max(from.y, to.y) >= box.minPoint().y && std::min(from.y, to.y) <= box.maxPoint().y;
}

ClipRegion::Shown ClipRegion::shownOf(const AcDbExtents &box) const
{
    bool isAll = true;
    for (const Clip &clip : m_clips) {
        bool isCut = false;
        for (const Loop &loop : clip.loops) {
            for (std::size_t i = 0; i < loop.size() && !isCut; ++i)
                isCut = mayMeet(loop[i], loop[(i + 1) % loop.size()], box);
        }
        if (!isCut && areaHolds(clip.loops, box.minPoint().x, box.minPoint().y) == clip.inverted)
            return Shown::none;
        isAll = isAll && !isCut;
    }
    return isAll ? Shown::all : Shown::perhaps;
}

void ClipRegion::visitShown(const AcGePoint3d &from, const AcGePoint3d &to,
                            const std::function<void(double, double)> &visit) const
{
    std::vector<double> ends{0.0, 1.0};
    for (const Clip &clip : m_clips)
        appendCrossings(from, to, clip.loops, ends);
    std::ranges::sort(ends);
    for (std::size_t i = 0; i + 1 < ends.size(); ++i) {
        if (holds(between(from, to, (ends[i] + ends[i + 1]) / 2.0)))
            visit(ends[i], ends[i + 1]);
    }
}

void ClipRegion::visitOutlinesIn(
    std::span<const Loop> area,
    const std::function<void(const AcGePoint3d &, const AcGePoint3d &)> &visit) const
{
    for (const Clip &clip : m_clips) {
        for (const Loop &loop : clip.loops) {
            for (std::size_t i = 0; i < loop.size(); ++i) {
                const AcGePoint3d &from = loop[i];
                const AcGePoint3d &to = loop[(i + 1) % loop.size()];
                std::vector<double> ends{0.0, 1.0};
                appendCrossings(from, to, area, ends);
                std::ranges::sort(ends);
                for (std::size_t k = 0; k + 1 < ends.size(); ++k) {
                    const AcGePoint3d middle = between(from, to, (ends[k] + ends[k + 1]) / 2.0);
                    const auto holdsMiddle = [&](const Clip &other) {
                        return &other == &clip ||
                               areaHolds(other.loops, middle.x, middle.y) != other.inverted;
                    };
                    if (areaHolds(area, middle.x, middle.y) && std::ranges::all_of(m_clips, holdsMiddle))
                        visit(between(from, to, ends[k]), between(from, to, ends[k + 1]));
                }
            }
        }
    }
}

} // namespace acgi
