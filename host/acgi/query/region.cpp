#include "host/acgi/query/region.h"

#include "host/acgi/entity_groups.h"
#include "host/acgi/kinds/draw_entity.h"
#include "host/acgi/query/extents.h"
#include "host/acgi/query/visibility.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace acgi
{

// The window ---------------------------------------------------------------------------------------

static double cross(const AcGePoint2d &from, const AcGePoint2d &to, double x, double y)
{
    return (to.x - from.x) * (y - from.y) - (to.y - from.y) * (x - from.x);
}

Window::Window(const std::array<AcGePoint2d, 4> &corners) : m_corners(corners)
{
    double area = 0.0;
    for (std::size_t i = 0; i < 4; ++i)
        area += cross(m_corners[0], m_corners[i], m_corners[(i + 1) % 4].x, m_corners[(i + 1) % 4].y);
    if (area < 0.0)
        std::ranges::reverse(m_corners);
    m_isEmpty = !(std::abs(area) > 0.0);
}

Window Window::fromCorners(const AcGePoint3d &one, const AcGePoint3d &other, double angle)
{
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const AcGeVector3d diagonal = other - one;
    const double along = diagonal.x * c + diagonal.y * s;
    const AcGePoint2d beside(one.x + along * c, one.y + along * s);
    return Window({AcGePoint2d(one.x, one.y), beside, AcGePoint2d(other.x, other.y),
                   AcGePoint2d(one.x + other.x - beside.x, one.y + other.y - beside.y)});
}

Window Window::aroundPoint(const AcGePoint3d &point, double aperture)
{
    const AcGeVector3d half(aperture, aperture, 0.0);
    return fromCorners(point - half, point + half);
}

AcDbExtents Window::extents() const
{
    AcDbExtents box;
    for (const AcGePoint2d &corner : m_corners)
        box.addPoint({corner.x, corner.y, 0.0});
    return box;
}

bool Window::contains(const AcGePoint3d &point) const
{
    if (m_isEmpty)
        return false;
    for (std::size_t i = 0; i < 4; ++i) {
        if (!(cross(m_corners[i], m_corners[(i + 1) % 4], point.x, point.y) >= 0.0))
            return false;
    }
    return true;
}

static std::array<AcGePoint3d, 4> cornersOf(const AcDbExtents &box)
{
    const AcGePoint3d &low = box.minPoint();
    const AcGePoint3d &high = box.maxPoint();
    return {
        AcGePoint3d(low.x, low.y, 0.0), {high.x, low.y, 0.0}, {high.x, high.y, 0.0}, {low.x, high.y, 0.0}};
}

bool Window::contains(const AcDbExtents &box) const
{
    return box.isValid() &&
           std::ranges::all_of(cornersOf(box), [this](const AcGePoint3d &p) { return contains(p); });
}

// Two convex shapes are apart when a side of one divides them.
bool Window::mayMeet(const AcDbExtents &box) const
{
    if (m_isEmpty || !extents().meetsInPlane(box))
        return false;
    const auto corners = cornersOf(box);
    for (std::size_t i = 0; i < 4; ++i) {
        const auto outside = [&](const AcGePoint3d &p) {
            return cross(m_corners[i], m_corners[(i + 1) % 4], p.x, p.y) < 0.0;
        };
        if (std::ranges::all_of(corners, outside))
            return false;
    }
    return true;
}

// The sink -----------------------------------------------------------------------------------------

static ScreenViewProvider s_screenView = nullptr;

void setScreenView(ScreenViewProvider provider)
{
    s_screenView = provider;
}

std::optional<AcGiViewport> screenView(const AcDbDatabase &database)
{
    return s_screenView ? s_screenView(database) : std::nullopt;
}

namespace
{

/// Entities that one answer may look at; past them blocks answer by their boxes.
constexpr std::size_t kMostWork = 200000;

enum class Question { inside, crossing };

class RegionSink : public AcGiGeometry
{
public:
    RegionSink(const Window &window, Question question, BlockExtents *blocks)
        : m_window(window), m_question(question), m_blocks(blocks ? *blocks : m_ownBlocks)
    {
    }

    bool answer() const { return m_question == Question::crossing ? m_touched : m_shown && !m_outside; }
    bool isDone() const override { return m_question == Question::crossing ? m_touched : m_outside; }
    const AcGiViewport *view() const override { return m_view ? &*m_view : nullptr; }
    void setView(const std::optional<AcGiViewport> &view) { m_view = view; }
    bool wants(const AcDbEntity &nested) override { return m_visibility.isVisible(nested, insideBlock()); }

    void polyline(std::uint32_t count, const AcGePoint3d *points) override
    {
        ++m_work;
        AcGePoint3d from = toWorld(points[0]);
        notePoint(from);
        for (std::uint32_t i = 1; i < count && !isDone(); ++i) {
            const AcGePoint3d to = toWorld(points[i]);
            notePoint(to);
            noteSegment(from, to - from, 0.0, 1.0);
            from = to;
        }
    }

    void arc(const Arc &arc) override
    {
        ++m_work;
        const Arc world = toWorld(arc);
        notePoint(world.at(world.start));
        notePoint(world.at(world.start + world.sweep));
        for (std::size_t i = 0; i < 4 && !isDone(); ++i)
            noteArcAtSide(world, m_window.corners()[i], m_window.corners()[(i + 1) % 4]);
    }

    void fill(std::span<const Loop> loops) override
    {
        std::vector<AcGePoint3d> closed;
        for (const Loop &loop : loops) {
            if (loop.empty() || isDone())
                continue;
            closed.assign(loop.begin(), loop.end());
            closed.push_back(loop.front());
            polyline(std::uint32_t(closed.size()), closed.data());
        }
        // No border touches the window: it lies wholly in the area or wholly beside it.
        if (m_question == Question::crossing && !m_touched)
            m_touched = areaHolds(loops, m_window.corners()[0]);
    }

    void text(const TextLine &line) override
    {
        const AcGeVector3d along = line.direction * line.width;
        const Loop box = {line.position, line.position + along, line.position + along + line.up,
                          line.position + line.up};
        fill(std::span(&box, 1));
    }

    void infiniteLine(const AcGePoint3d &base, const AcGeVector3d &direction, bool bothWays) override
    {
        constexpr double kEndless = std::numeric_limits<double>::infinity();
        m_shown = m_outside = true;
        noteSegment(toWorld(base), modelToWorld() * direction, bothWays ? -kEndless : 0.0, kEndless);
    }

    bool blockReference(const BlockPlacement &reference) override
    {
        const BlockReach &block = m_blocks.of(reference.record);
        const auto draw = [&](int column, int row) {
            if (!isDone())
                drawInstance(reference.record, block, reference.instance(column, row));
        };
        const int lastColumn = reference.columns - 1;
        const int lastRow = reference.rows - 1;
        if (m_question == Question::inside) {
            // The others lie between those at the corners of the grid.
            draw(0, 0);
            draw(lastColumn, 0);
            draw(0, lastRow);
            draw(lastColumn, lastRow);
            return true;
        }
        const Grid near =
            block.endless ? Grid{0, lastColumn, 0, lastRow} : gridNearWindow(reference, block.box);
        for (int row = near.firstRow; row <= near.lastRow && !isDone(); ++row) {
            for (int column = near.firstColumn; column <= near.lastColumn && !isDone(); ++column)
                draw(column, row);
        }
        return true;
    }

private:
    struct Grid {
        int firstColumn;
        int lastColumn;
        int firstRow;
        int lastRow;
    };

    /// The part of a multiple insert that can meet the window.
    Grid gridNearWindow(const BlockPlacement &reference, const AcDbExtents &block) const
    {
        Grid all{0, reference.columns - 1, 0, reference.rows - 1};
        const AcGeVector3d column = modelToWorld() * reference.columnStep;
        const AcGeVector3d row = modelToWorld() * reference.rowStep;
        const double det = column.x * row.y - column.y * row.x;
        AcDbExtents first = block;
        first.transformBy(modelToWorld() * reference.placement);
        if (det == 0.0 || !first.isValid())
            return all;
        const AcDbExtents window = m_window.extents();
        const AcGeVector3d low = window.minPoint() - first.maxPoint();
        const AcGeVector3d high = window.maxPoint() - first.minPoint();
        AcDbExtents steps;
        for (const double x : {low.x, high.x}) {
            for (const double y : {low.y, high.y})
                steps.addPoint({(x * row.y - y * row.x) / det, (column.x * y - column.y * x) / det, 0.0});
        }
        const auto clamped = [](double value, int last) { return int(std::clamp(value, -1.0, last + 1.0)); };
        return {std::max(0, clamped(std::ceil(steps.minPoint().x), all.lastColumn)),
                std::min(all.lastColumn, clamped(std::floor(steps.maxPoint().x), all.lastColumn)),
                std::max(0, clamped(std::ceil(steps.minPoint().y), all.lastRow)),
                std::min(all.lastRow, clamped(std::floor(steps.maxPoint().y), all.lastRow))};
    }

    void drawInstance(AcDbObjectId record, const BlockReach &block, const AcGeMatrix3d &placement)
    {
        ++m_work;
        const ModelTransform placed(*this, placement);
        AcDbExtents box = block.box;
        box.transformBy(modelToWorld());
        if (m_work > kMostWork) {
            m_shown = m_shown || box.isValid();
            m_outside = m_outside || !m_window.contains(box);
            m_touched = m_touched || m_window.mayMeet(box);
        } else if (block.endless || m_question == Question::inside || m_window.mayMeet(box)) {
            drawParts(record, block);
        }
    }

    /// Decodes only the entities that their boxes leave in doubt.
    void drawParts(AcDbObjectId record, const BlockReach &block)
    {
        if (!enterBlock(record))
            return;
        std::vector<const BlockPart *> doubtful;
        for (const BlockPart &part : block.parts) {
            if (isDone())
                break;
            AcDbExtents box = part.reach.box;
            box.transformBy(modelToWorld());
            const bool isInside = m_window.contains(box) && !part.reach.endless;
            const bool matters = isInside || part.reach.endless || m_question == Question::inside ||
                                 (box.isValid() && m_window.mayMeet(box));
            if (!matters || part.isSwitchedOff ||
                !m_visibility.layerShowsInBlock(*record.database(), part.layer))
                continue;
            if (isInside && !part.hasParts)
                m_shown = m_touched = true;
            else
                doubtful.push_back(&part);
        }
        for (const BlockPart *const part : doubtful) {
            if (isDone())
                break;
            readEntity(part->entity, [this](const AcDbEntity &entity) { drawEntity(entity, *this); });
        }
        leaveBlock();
    }

    void notePoint(const AcGePoint3d &point)
    {
        m_shown = true;
        if (m_window.contains(point))
            m_touched = true;
        else
            m_outside = true;
    }

    /// Cuts the line from `base` along `direction`, parameters `low` to `high`, with the window.
    void noteSegment(const AcGePoint3d &base, const AcGeVector3d &direction, double low, double high)
    {
        for (std::size_t i = 0; i < 4; ++i) {
            const AcGePoint2d &from = m_window.corners()[i];
            const AcGePoint2d &to = m_window.corners()[(i + 1) % 4];
            const double distance = cross(from, to, base.x, base.y);
            const double slope = (to.x - from.x) * direction.y - (to.y - from.y) * direction.x;
            if (slope > 0.0)
                low = std::max(low, -distance / slope);
            else if (slope < 0.0)
                high = std::min(high, -distance / slope);
            else if (!(distance >= 0.0))
                return;
        }
        if (low <= high)
            m_touched = true;
    }

    /// The points where the arc meets the line of a window's side: A cos t + B sin t = C.
    void noteArcAtSide(const Arc &arc, const AcGePoint2d &from, const AcGePoint2d &to)
    {
        const double dx = to.x - from.x;
        const double dy = to.y - from.y;
        const double a = dx * arc.u.y - dy * arc.u.x;
        const double b = dx * arc.v.y - dy * arc.v.x;
        const double c = -cross(from, to, arc.centre.x, arc.centre.y);
        const double reach = std::hypot(a, b);
        const double middle = std::atan2(b, a);
        // The point farthest beyond this side tells whether all of the arc is on the window's side of it.
        if (const double farthest = middle + kGePi; arc.covers(farthest) && -reach < c)
            m_outside = true;
        if (std::abs(c) > reach || reach == 0.0)
            return;
        const double turn = std::acos(std::clamp(c / reach, -1.0, 1.0));
        for (const double t : {middle + turn, middle - turn}) {
            if (!arc.covers(t))
                continue;
            const AcGePoint3d meeting = arc.at(t);
            const double along =
                ((meeting.x - from.x) * dx + (meeting.y - from.y) * dy) / (dx * dx + dy * dy);
            if (along >= 0.0 && along <= 1.0)
                m_touched = true;
        }
    }

    bool areaHolds(std::span<const Loop> loops, const AcGePoint2d &point) const
    {
        bool holds = false;
        for (const Loop &loop : loops) {
            for (std::size_t i = 0; i < loop.size(); ++i) {
                const AcGePoint3d from = toWorld(loop[i]);
                const AcGePoint3d to = toWorld(loop[(i + 1) % loop.size()]);
                if ((from.y > point.y) != (to.y > point.y) &&
                    point.x < from.x + (point.y - from.y) / (to.y - from.y) * (to.x - from.x))
                    holds = !holds;
            }
        }
        return holds;
    }

    const Window &m_window;
    Question m_question;
    std::optional<AcGiViewport> m_view;
    BlockExtents m_ownBlocks;
    BlockExtents &m_blocks;
    Visibility m_visibility;
    bool m_shown = false;   ///< Something was drawn.
    bool m_touched = false; ///< Something lies inside or on the border.
    bool m_outside = false; ///< Something lies outside.
    std::size_t m_work = 0;
};

bool ask(const AcDbEntity &entity, const Window &window, Question question, BlockExtents *blocks)
{
    if (window.isEmpty())
        return false;
    RegionSink sink(window, question, blocks);
    if (entity.isCustom() && entity.database())
        sink.setView(screenView(*entity.database()));
    drawEntity(entity, sink);
    return sink.answer();
}

} // namespace

bool liesInside(const AcDbEntity &entity, const Window &window, BlockExtents *blocks)
{
    return ask(entity, window, Question::inside, blocks);
}

bool crosses(const AcDbEntity &entity, const Window &window, BlockExtents *blocks)
{
    return ask(entity, window, Question::crossing, blocks);
}

} // namespace acgi
