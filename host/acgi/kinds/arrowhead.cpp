#include "host/acgi/kinds/arrowhead.h"

#include "host/acgi/kinds/draw_blocks.h"
#include "host/acgi/kinds/draw_entity.h"
#include "host/acgi/kinds/draw_tools.h"

#include <algorithm>

namespace acgi
{

static QString blockName(AcDbObjectId record)
{
    QString name;
    readObject(record, [&](const AcDbObject &object) { name = EntityGroups(object).text(2).toUpper(); });
    return name;
}

static bool hasContents(AcDbObjectId record)
{
    const BlockContents *const contents =
        record.database() ? record.database()->blockContents(record) : nullptr;
    return contents && !contents->entities.empty();
}

// The line runs through these to its very end.
double Arrowhead::inset() const
{
    static constexpr QStringView kThrough[] = {u"_NONE",   u"_OBLIQUE", u"_ARCHTICK", u"_INTEGRAL", u"_OPEN",
                                               u"_OPEN30", u"_OPEN90",  u"_SMALL",    u"_DOTSMALL"};
    if (tick)
        return 0.0;
    if (block.isNull())
        return size;
    return std::ranges::find(kThrough, QStringView(blockName(block))) == std::end(kThrough) ? size : 0.0;
}

void drawArrowhead(const Arrowhead &arrow, const AcGePoint3d &tip, const AcGeVector3d &direction,
                   const AcGeVector3d &normal, const AcDbEntity &entity, AcGiGeometry &sink)
{
    const AcGeVector3d across = normal.crossProduct(direction).normal();
    if (!(arrow.size > 0.0) || across.isZeroLength() || !std::isfinite(arrow.size))
        return;
    const AcGeVector3d x = direction * arrow.size;
    const AcGeVector3d y = across * arrow.size;
    if (arrow.tick) {
        const AcGePoint3d stroke[] = {tip - x - y, tip + x + y};
        return sink.polyline(2, stroke);
    }
    if (hasContents(arrow.block)) {
        BlockPlacement reference;
        reference.record = arrow.block;
        reference.placement = AcGeMatrix3d::fromAxes(tip, x, y, normal.normal() * arrow.size) *
                              AcGeMatrix3d::translation(-blockOrigin(arrow.block).asVector());
        return drawReference(reference, sink);
    }
    if (blockName(arrow.block) == QLatin1String("_NONE"))
        return;
    constexpr double kHalfWidth = 1.0 / 6.0;
    drawArea(entity, {tip, tip - x + y * kHalfWidth, tip - x - y * kHalfWidth}, sink);
}

} // namespace acgi
