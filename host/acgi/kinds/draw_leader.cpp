// Drawing of leaders: path, arrowhead and hook line.
#include "host/acgi/kinds/dimension_style.h"
#include "host/acgi/kinds/draw_spline.h"
#include "host/acgi/kinds/kinds.h"

namespace acgi
{

namespace
{

enum Annotation : std::int64_t { kText = 0, kNoAnnotation = 3 };

} // namespace

/// With text above its line, the line runs on under the text.
static void addHookLine(const EntityGroups &groups, const DimensionStyle &style, Loop &path)
{
    const bool above = style.integer(77, 0) != 0;
    const double width = groups.real(41);
    if (groups.integer(75) == 0 || groups.integer(73, kNoAnnotation) != kText || !above || !(width > 0.0))
        return;
    const AcGeVector3d along = groups.vector(211, AcGeVector3d::kXAxis).normal();
    const bool against = groups.integer(74) != 0;
    path.push_back(path.back() + along * ((against ? -1.0 : 1.0) * (style.gap() + width)));
}

void drawLeader(const AcDbEntity &entity, AcGiGeometry &sink)
{
    const EntityGroups groups(entity, u"AcDbLeader");
    Loop path = groups.points(10);
    if (path.size() < 2) {
        if (!path.empty())
            sink.polyline(1, path.data());
        return;
    }
    const DimensionStyle style(entity, groups.text(3));
    PenScope pen(sink);
    pen.setColor(style.integer(176, 0));
    addHookLine(groups, style, path);
    const Arrowhead arrow = style.leaderArrow();
    const double first = path[0].distanceTo(path[1]);
    const bool curved = groups.integer(72) != 0;
    const AcGeVector3d direction = (path[0] - path[1]).normal();
    // An arrowhead that takes more than half of the first line is left out.
    if (groups.integer(71, 1) != 0 && first >= 2.0 * arrow.size && first > 0.0) {
        drawArrowhead(arrow, path.front(), direction, groups.normal(), entity, sink);
        path.front() = path.front() - direction * arrow.inset();
    }
    if (curved)
        path = fitSplineSamples(path, -direction, path.back() - path[path.size() - 2]);
    sink.polyline(std::uint32_t(path.size()), path.data());
}

} // namespace acgi
