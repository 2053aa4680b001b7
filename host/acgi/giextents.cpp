#include "host/acgi/giextents.h"

#include "host/acgi/gidraw.h"
#include "host/acgi/givisibility.h"

#include <cmath>

namespace
{

/// Entities that one exact box may look at.
constexpr std::size_t kMostWork = 20000;

class ExtentsSink : public AcGiGeometry
{
public:
    explicit ExtentsSink(AcGiBlockExtents *blocks) : m_blocks(blocks) {}
    AcGiReach reach;
    bool isDone() const override { return !m_blocks && m_work > kMostWork; }

    void polyline(std::uint32_t count, const AcGePoint3d *points) override
    {
        ++m_work;
        for (std::uint32_t i = 0; i < count; ++i)
            reach.box.addPoint(toWorld(points[i]));
    }

    void arc(const AcGiArc &arc) override
    {
        ++m_work;
        const AcGiArc world = toWorld(arc);
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

    void fill(std::span<const AcGiLoop> loops) override
    {
        for (const AcGiLoop &loop : loops)
            polyline(std::uint32_t(loop.size()), loop.data());
    }

    void text(const AcGiTextLine &line) override
    {
        const AcGeVector3d along = line.direction * line.width;
        const AcGePoint3d corners[] = {line.position, line.position + along, line.position + along + line.up,
                                       line.position + line.up};
        polyline(4, corners);
    }

    void infiniteLine(const AcGePoint3d &, const AcGeVector3d &, bool) override { reach.endless = true; }

    bool blockReference(const AcGiBlockPlacement &reference) override
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

private:
    void addExtremes(const AcGiArc &arc, double u, double v)
    {
        const double extreme = std::atan2(v, u);
        for (const double t : {extreme, extreme + kGePi}) {
            if (arc.covers(t))
                reach.box.addPoint(arc.at(t));
        }
    }

    void addInstance(AcDbObjectId record, const AcGeMatrix3d &placement)
    {
        const AcGiModelTransform placed(*this, placement);
        if (!m_blocks) {
            acgiDrawBlock(record, *this);
            return;
        }
        const AcGiReach &block = m_blocks->of(record);
        AcDbExtents instance = block.box;
        instance.transformBy(modelToWorld());
        reach.box.addExt(instance);
        reach.endless = reach.endless || block.endless;
    }

    AcGiBlockExtents *m_blocks;
    std::size_t m_work = 0;
};

/// Keeps the reach of each entity of a block apart.
class PartsSink : public ExtentsSink
{
public:
    PartsSink(AcGiBlockExtents &blocks, std::unordered_set<QString> &layers)
        : ExtentsSink(&blocks), m_layers(layers)
    {
    }
    AcGiBlockReach block;

    void beginEntity(const AcDbEntity &entity) override
    {
        if (m_depth++ > 0) {
            block.parts.back().hasParts = true;
            return;
        }
        reach = {};
        block.parts.push_back(
            {entity.objectId(), {}, *m_layers.insert(entity.layer()).first, acgiIsSwitchedOff(entity)});
    }

    void endEntity() override
    {
        if (--m_depth > 0)
            return;
        block.parts.back().reach = reach;
        block.box.addExt(reach.box);
        block.endless = block.endless || reach.endless;
    }

    bool blockReference(const AcGiBlockPlacement &reference) override
    {
        block.parts.back().hasParts = true;
        return ExtentsSink::blockReference(reference);
    }

private:
    std::unordered_set<QString> &m_layers;
    int m_depth = 0;
};

} // namespace

const AcGiBlockReach &AcGiBlockExtents::of(AcDbObjectId blockRecord)
{
    static const AcGiBlockReach kNothing;
    if (const auto known = m_blocks.find(blockRecord); known != m_blocks.end())
        return known->second;
    if (!m_nesting.enter(blockRecord.stub()))
        return kNothing;
    PartsSink sink(*this, m_layers);
    acgiDrawBlock(blockRecord, sink);
    m_nesting.leave();
    return m_blocks.try_emplace(blockRecord, std::move(sink.block)).first->second;
}

AcGiReach acgiReach(const AcDbEntity &entity, AcGiBlockExtents &blocks)
{
    if (entity.isCustom()) {
        AcGiReach reach;
        if (entity.subGetGeomExtents(reach.box) != Acad::eOk)
            reach.box = AcDbExtents();
        return reach;
    }
    ExtentsSink sink(&blocks);
    acgiDrawEntity(entity, sink);
    return sink.reach;
}

Acad::ErrorStatus acgiExtents(const AcDbEntity &entity, AcDbExtents &extents, AcGiBlockExtents *blocks)
{
    if (entity.isCustom())
        return entity.subGetGeomExtents(extents);
    ExtentsSink sink(blocks);
    acgiDrawEntity(entity, sink);
    extents = sink.reach.box;
    if (sink.isDone()) {
        AcGiBlockExtents once;
        extents = acgiReach(entity, once).box;
    }
    return extents.isValid() ? Acad::eOk : Acad::eInvalidExtents;
}
