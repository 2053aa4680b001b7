#include "host/acgi/query/extents.h"

#include "host/acgi/kinds/draw_entity.h"
#include "host/acgi/query/visibility.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace acgi
{

namespace
{

/// Entities that one exact box may look at.
constexpr std::size_t kMostWork = 20000;

/// The outline of points seen from above; see BlockReach::hull.
class Hull
{
public:
    void add(const AcGePoint3d &point)
    {
        constexpr std::size_t kMost = 4096;
        if (!(std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z)))
            return;
        m_lowest = std::min(m_lowest, point.z);
        m_highest = std::max(m_highest, point.z);
        m_points.push_back(point);
        if (m_points.size() >= kMost)
            reduce();
    }

    std::vector<AcGePoint3d> take()
    {
        reduce();
        std::vector<AcGePoint3d> points;
        for (const AcGePoint3d &point : m_points) {
            points.emplace_back(point.x, point.y, m_lowest);
            if (m_highest > m_lowest)
                points.emplace_back(point.x, point.y, m_highest);
        }
        return points;
    }

private:
    /// Leaves the corners of the convex polygon.
    void reduce()
    {
        const auto place = [](const AcGePoint3d &p) { return std::pair(p.x, p.y); };
        std::ranges::sort(m_points, {}, place);
        const auto samePlace = [&](const AcGePoint3d &a, const AcGePoint3d &b) {
            return place(a) == place(b);
        };
        m_points.erase(std::unique(m_points.begin(), m_points.end(), samePlace), m_points.end());
        if (m_points.size() < 3)
            return;
        std::vector<AcGePoint3d> corners;
        const auto walk = [&](auto begin, auto end) {
            const std::size_t base = corners.size();
            for (; begin != end; ++begin) {
                while (corners.size() >= base + 2 && !turnsLeft(corners.end()[-2], corners.back(), *begin))
                    corners.pop_back();
                corners.push_back(*begin);
            }
            corners.pop_back(); // It begins the way back.
        };
        walk(m_points.begin(), m_points.end());
        walk(m_points.rbegin(), m_points.rend());
        m_points = std::move(corners);
    }

    static bool turnsLeft(const AcGePoint3d &a, const AcGePoint3d &b, const AcGePoint3d &c)
    {
        return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x) > 0.0;
    }

    std::vector<AcGePoint3d> m_points;
    double m_lowest = std::numeric_limits<double>::infinity();
    double m_highest = -std::numeric_limits<double>::infinity();
};

/// Boxes stay boxes: every axis goes along one axis.
bool keepsBoxes(const AcGeMatrix3d &matrix)
{
    for (const auto &row : matrix.entry) {
        const double sum = std::abs(row[0]) + std::abs(row[1]) + std::abs(row[2]);
        const double largest = std::max({std::abs(row[0]), std::abs(row[1]), std::abs(row[2])});
        if (sum - largest > 1e-12 * largest)
            return false;
    }
    return true;
}

class ExtentsSink : public AcGiGeometry
{
public:
    explicit ExtentsSink(BlockExtents *blocks) : m_blocks(blocks) {}
    Reach reach;
    bool isDone() const override { return !m_blocks && m_work > kMostWork; }

    void polyline(std::uint32_t count, const AcGePoint3d *points) override
    {
        ++m_work;
        for (std::uint32_t i = 0; i < count; ++i)
            addPoint(toWorld(points[i]));
    }

    void arc(const Arc &arc) override
    {
        ++m_work;
        const Arc world = toWorld(arc);
        if (m_hull)
            addAround(world);
        if (world.isWhole()) {
            const AcGeVector3d half(std::hypot(world.u.x, world.v.x), std::hypot(world.u.y, world.v.y),
                                    std::hypot(world.u.z, world.v.z));
            reach.box.addPoint(world.centre - half);
            reach.box.addPoint(world.centre + half);
            return;
        }
        reach.box.addPoint(world.at(world.start));
        reach.box.addPoint(world.at(world.start + world.sweep));
        addExtremes(world, world.u.x, world.v.x);
        addExtremes(world, world.u.y, world.v.y);
        addExtremes(world, world.u.z, world.v.z);
    }

    void fill(std::span<const Loop> loops) override
    {
        for (const Loop &loop : loops)
            polyline(std::uint32_t(loop.size()), loop.data());
    }

    void text(const TextLine &line) override
    {
        const AcGeVector3d along = line.direction * line.width;
        const AcGePoint3d corners[] = {line.position, line.position + along, line.position + along + line.up,
                                       line.position + line.up};
        polyline(4, corners);
    }

    void infiniteLine(const AcGePoint3d &, const AcGeVector3d &, bool) override { reach.endless = true; }

    void pushClip(std::span<const Loop> loops, bool inverted) override
    {
        Clip &clip = m_clips.emplace_back(Clip{std::exchange(reach, {}), {}, inverted, std::move(m_hull)});
        m_hull.reset();
        if (clip.outerHull)
            m_hull.emplace();
        for (const Loop &loop : loops) {
            for (const AcGePoint3d &corner : loop)
                clip.box.addPoint(toWorld(corner));
        }
    }

    void popClip() override
    {
        Clip clip = std::move(m_clips.back());
        m_clips.pop_back();
        const Reach inside = std::exchange(reach, clip.outer);
        const AcDbExtents shown = clip.inverted ? inside.box : common(inside, clip.box);
        std::optional<Hull> hull = std::exchange(m_hull, std::move(clip.outerHull));
        if (m_hull) {
            for (const AcGePoint3d &corner : clip.inverted ? hull->take() : cornersOf(shown))
                m_hull->add(corner);
        }
        reach.box.addExt(shown);
        reach.endless = reach.endless || (clip.inverted && inside.endless);
    }

    bool blockReference(const BlockPlacement &reference) override
    {
        ++m_work;
        // All instances lie between those at the corners of the grid.
        const int lastColumn = reference.columns - 1;
        const int lastRow = reference.rows - 1;
        addInstance(reference.record, reference.instance(0, 0));
        if (lastColumn > 0)
            addInstance(reference.record, reference.instance(lastColumn, 0));
        if (lastRow > 0)
            addInstance(reference.record, reference.instance(0, lastRow));
        if (lastColumn > 0 && lastRow > 0)
            addInstance(reference.record, reference.instance(lastColumn, lastRow));
        return true;
    }

protected:
    /// Also keeps the outline of what is drawn, until it is taken.
    void keepHull() { m_hull.emplace(); }
    std::vector<AcGePoint3d> takeHull() { return m_hull->take(); }

private:
    /// What was drawn around a clip, and how far the clip lets see.
    struct Clip {
        Reach outer;
        AcDbExtents box;
        bool inverted;
        std::optional<Hull> outerHull;
    };

    /// What lies in the clip's box, which has no height of its own; lines without end reach through it.
    static AcDbExtents common(const Reach &drawn, const AcDbExtents &clip)
    {
        if (!clip.isValid() || drawn.endless)
            return clip;
        if (!drawn.box.isValid() || !drawn.box.meetsInPlane(clip))
            return {};
        const AcGePoint3d &low = drawn.box.minPoint();
        const AcGePoint3d &high = drawn.box.maxPoint();
        return {{std::max(low.x, clip.minPoint().x), std::max(low.y, clip.minPoint().y), low.z},
                {std::min(high.x, clip.maxPoint().x), std::min(high.y, clip.maxPoint().y), high.z}};
    }

    static std::vector<AcGePoint3d> cornersOf(const AcDbExtents &box)
    {
        if (!box.isValid())
            return {};
        const AcGePoint3d &low = box.minPoint();
        const AcGePoint3d &high = box.maxPoint();
        return {low, {high.x, low.y, low.z}, {low.x, high.y, high.z}, high};
    }

    void addPoint(const AcGePoint3d &point)
    {
        reach.box.addPoint(point);
        if (m_hull)
            m_hull->add(point);
    }

    /// Corners of tangents, which leave nothing of the curve outside.
    void addAround(const Arc &arc)
    {
        constexpr int kPerTurn = 64;
        const int pieces = std::max(1, int(std::ceil(std::abs(arc.sweep) / (2.0 * kGePi) * kPerTurn)));
        const double half = arc.sweep / pieces / 2.0;
        const double beyond = 1.0 / std::cos(half);
        for (int i = 0; i < pieces; ++i)
            m_hull->add(arc.centre + (arc.at(arc.start + (2 * i + 1) * half) - arc.centre) * beyond);
        m_hull->add(arc.at(arc.start));
        m_hull->add(arc.at(arc.start + arc.sweep));
    }

    void addExtremes(const Arc &arc, double u, double v)
    {
        const double extreme = std::atan2(v, u);
        for (const double t : {extreme, extreme + kGePi}) {
            if (arc.covers(t))
                reach.box.addPoint(arc.at(t));
        }
    }

    void addInstance(AcDbObjectId record, const AcGeMatrix3d &placement)
    {
        const ModelTransform placed(*this, placement);
        if (!m_blocks) {
            drawBlock(record, *this);
            return;
        }
        const BlockReach &block = m_blocks->of(record);
        const bool isTurned = !keepsBoxes(modelToWorld());
        static const std::vector<AcGePoint3d> kNone;
        for (const AcGePoint3d &corner : isTurned || m_hull ? block.hull : kNone) {
            const AcGePoint3d world = toWorld(corner);
            if (isTurned)
                reach.box.addPoint(world);
            if (m_hull)
                m_hull->add(world);
        }
        if (!isTurned) {
            AcDbExtents instance = block.box;
            instance.transformBy(modelToWorld());
            reach.box.addExt(instance);
        }
        reach.endless = reach.endless || block.endless;
    }

    BlockExtents *m_blocks;
    std::optional<Hull> m_hull;
    std::vector<Clip> m_clips;
    std::size_t m_work = 0;
};

/// Keeps the reach of each entity of a block apart.
class PartsSink : public ExtentsSink
{
public:
    PartsSink(BlockExtents &blocks, std::unordered_set<QString> &layers)
        : ExtentsSink(&blocks), m_layers(layers)
    {
        keepHull();
    }
    BlockReach take()
    {
        block.hull = takeHull();
        return std::move(block);
    }

    void beginEntity(const AcDbEntity &entity) override
    {
        if (m_depth++ > 0) {
            block.parts.back().hasParts = true;
            return;
        }
        reach = {};
        block.parts.push_back(
            {entity.objectId(), {}, *m_layers.insert(entity.layer()).first, isSwitchedOff(entity)});
    }

    void endEntity() override
    {
        if (--m_depth > 0)
            return;
        block.parts.back().reach = reach;
        block.box.addExt(reach.box);
        block.endless = block.endless || reach.endless;
    }

    bool blockReference(const BlockPlacement &reference) override
    {
        block.parts.back().hasParts = true;
        return ExtentsSink::blockReference(reference);
    }

private:
    BlockReach block;
    std::unordered_set<QString> &m_layers;
    int m_depth = 0;
};

} // namespace

const BlockReach &BlockExtents::of(AcDbObjectId blockRecord)
{
    static const BlockReach kNothing;
    if (const auto known = m_blocks.find(blockRecord); known != m_blocks.end())
        return known->second;
    if (!m_nesting.enter(blockRecord.stub()))
        return kNothing;
    PartsSink sink(*this, m_layers);
    drawBlock(blockRecord, sink);
    m_nesting.leave();
    return m_blocks.try_emplace(blockRecord, sink.take()).first->second;
}

Reach reachOf(const AcDbEntity &entity, BlockExtents &blocks)
{
    if (entity.isCustom()) {
        Reach reach;
        if (entity.subGetGeomExtents(reach.box) != Acad::eOk)
            reach.box = AcDbExtents();
        return reach;
    }
    ExtentsSink sink(&blocks);
    drawEntity(entity, sink);
    return sink.reach;
}

Acad::ErrorStatus extentsOf(const AcDbEntity &entity, AcDbExtents &extents, BlockExtents *blocks)
{
    if (entity.isCustom())
        return entity.subGetGeomExtents(extents);
    ExtentsSink sink(blocks);
    drawEntity(entity, sink);
    extents = sink.reach.box;
    if (sink.isDone()) {
        BlockExtents once;
        extents = reachOf(entity, once).box;
    }
    return extents.isValid() ? Acad::eOk : Acad::eInvalidExtents;
}

} // namespace acgi
