#include "host/acgi/query/region.h"

#include "host/acdb/owngroups.h"
#include "host/acgi/kinds/draw_entity.h"
#include "host/acgi/query/extents.h"
#include "host/acgi/query/visibility.h"

#include <QVarLengthArray>

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
    for (const AcGePoint2d &corner : m_corners)
        m_extents.addPoint({corner.x, corner.y, 0.0});
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
    return box.isValid() && m_extents.meetsInPlane(box) &&
           std::ranges::all_of(cornersOf(box), [this](const AcGePoint3d &p) { return contains(p); });
}

// Two convex shapes are apart when a side of one divides them.
bool Window::mayMeet(const AcDbExtents &box) const
{
    if (m_isEmpty || !m_extents.meetsInPlane(box))
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

/// One window that an entity is held against, and what is known so far.
struct Asked {
    const Window *window = nullptr;
    bool shown = false;   ///< Something was drawn.
    bool touched = false; ///< Something lies inside or on the border.
    bool outside = false; ///< Something lies outside.
    std::size_t work = 0;
};

/// Answers for several windows what it would answer for each alone: every part of a block is drawn for those
/// windows only that its box leaves in doubt.
class RegionSink : public AcGiGeometry
{
public:
    RegionSink(std::span<const Window *const> windows, Question question, BlockExtents *blocks)
        : m_question(question), m_blocks(blocks ? *blocks : m_ownBlocks)
    {
        for (const Window *const window : windows)
            m_asked.append(Asked{window});
        for (Asked &asked : m_asked)
            m_active.append(&asked);
    }

    bool answer(std::size_t window) const
    {
        const Asked &asked = m_asked[qsizetype(window)];
        return m_question == Question::crossing ? asked.touched : asked.shown && !asked.outside;
    }
    bool isDone() const override { return areSettled(m_active); }
    const AcGiViewport *view() const override { return m_view ? &*m_view : nullptr; }
    void setView(const std::optional<AcGiViewport> &view) { m_view = view; }
    bool wants(const AcDbEntity &nested) override { return m_visibility.isVisible(nested, insideBlock()); }

    void polyline(std::uint32_t count, const AcGePoint3d *points) override
    {
        countWork();
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
        countWork();
        const Arc world = toWorld(arc);
        notePoint(world.at(world.start));
        notePoint(world.at(world.start + world.sweep));
        forEachOpen([&](Asked &asked) {
            const auto &corners = asked.window->corners();
            for (std::size_t i = 0; i < 4 && !isSettled(asked); ++i)
                noteArcAtSide(asked, world, corners[i], corners[(i + 1) % 4]);
        });
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
        if (m_question != Question::crossing)
            return;
        // No border touches the window: it lies wholly in the area or wholly beside it.
        forEachOpen([&](Asked &asked) { asked.touched = areaHolds(loops, asked.window->corners()[0]); });
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
        for (Asked *const asked : m_active)
            asked->shown = asked->outside = true;
        noteSegment(toWorld(base), modelToWorld() * direction, bothWays ? -kEndless : 0.0, kEndless);
    }

    bool blockReference(const BlockPlacement &reference) override
    {
        const BlockReach &block = m_blocks.of(reference.record);
        const int lastColumn = reference.columns - 1;
        const int lastRow = reference.rows - 1;
        if (m_question == Question::inside) {
            // The others lie between those at the corners of the grid.
            for (const Grid corner : {Grid{0, 0, 0, 0},
                                      {lastColumn, lastColumn, 0, 0},
                                      {0, 0, lastRow, lastRow},
                                      {lastColumn, lastColumn, lastRow, lastRow}})
                drawInstances(reference, block, corner);
        } else if (lastColumn == 0 && lastRow == 0) {
            drawInstances(reference, block, {0, 0, 0, 0});
        } else {
            const Grid all{0, lastColumn, 0, lastRow};
            const AskedList windows = m_active;
            for (Asked *const asked : windows) {
                m_active = {asked};
                drawInstances(reference, block,
                              block.endless ? all : gridNearWindow(*asked->window, reference, block.box));
            }
            m_active = windows;
        }
        return true;
    }

private:
    using AskedList = QVarLengthArray<Asked *, 4>;

    bool isSettled(const Asked &asked) const
    {
        return m_question == Question::crossing ? asked.touched : asked.outside;
    }
    bool areSettled(const AskedList &windows) const
    {
        return std::ranges::all_of(windows, [this](const Asked *asked) { return isSettled(*asked); });
    }
    template <class Use>
    void forEachOpen(Use use)
    {
        for (Asked *const asked : m_active) {
            if (!isSettled(*asked))
                use(*asked);
        }
    }
    void countWork()
    {
        forEachOpen([](Asked &asked) { ++asked.work; });
    }

    struct Grid {
        int firstColumn;
        int lastColumn;
        int firstRow;
        int lastRow;
    };

    void drawInstances(const BlockPlacement &reference, const BlockReach &block, const Grid &grid)
    {
        for (int row = grid.firstRow; row <= grid.lastRow && !isDone(); ++row) {
            for (int column = grid.firstColumn; column <= grid.lastColumn && !isDone(); ++column)
                drawInstance(reference.record, block, reference.instance(column, row));
        }
    }

    /// The part of a multiple insert that can meet the window.
    Grid gridNearWindow(const Window &near, const BlockPlacement &reference, const AcDbExtents &block) const
    {
        Grid all{0, reference.columns - 1, 0, reference.rows - 1};
        const AcGeVector3d column = modelToWorld() * reference.columnStep;
        const AcGeVector3d row = modelToWorld() * reference.rowStep;
        const double det = column.x * row.y - column.y * row.x;
        AcDbExtents first = block;
        first.transformBy(modelToWorld() * reference.placement);
        if (det == 0.0 || !first.isValid())
            return all;
        const AcDbExtents &window = near.extents();
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
        countWork();
        const ModelTransform placed(*this, placement);
        AcDbExtents box = block.box;
        box.transformBy(modelToWorld());
        AskedList near;
        forEachOpen([&](Asked &asked) {
            if (asked.work > kMostWork)
                answerByBox(asked, box);
            else if (block.endless || m_question == Question::inside || asked.window->mayMeet(box))
                near.append(&asked);
        });
        if (near.empty())
            return;
        std::swap(m_active, near);
        drawParts(record, block);
        std::swap(m_active, near);
    }

    static void answerByBox(Asked &asked, const AcDbExtents &box)
    {
        asked.shown = asked.shown || box.isValid();
        asked.outside = asked.outside || !asked.window->contains(box);
        asked.touched = asked.touched || asked.window->mayMeet(box);
    }

    /// A part that has to be drawn for some of the windows.
    struct Doubtful {
        const BlockPart *part;
        AskedList windows;
    };

    /// Decodes only the entities that their boxes leave in doubt.
    void drawParts(AcDbObjectId record, const BlockReach &block)
    {
        if (!enterBlock(record))
            return;
        std::vector<Doubtful> doubtful;
        for (const BlockPart &part : block.parts) {
            if (isDone())
                break;
            AskedList windows = windowsInDoubt(record, part);
            if (!windows.empty())
                doubtful.push_back({&part, std::move(windows)});
        }
        for (Doubtful &each : doubtful) {
            if (areSettled(each.windows))
                continue;
            std::swap(m_active, each.windows);
            readEntity(each.part->entity, [this](const AcDbEntity &entity) { drawEntity(entity, *this); });
            std::swap(m_active, each.windows);
        }
        leaveBlock();
    }

    /// Answers for the windows that hold the whole part, and gives those that its box does not decide.
    AskedList windowsInDoubt(AcDbObjectId record, const BlockPart &part)
    {
        AskedList doubtful;
        AcDbExtents box = part.reach.box;
        box.transformBy(modelToWorld());
        forEachOpen([&](Asked &asked) {
            const bool isInside = asked.window->contains(box) && !part.reach.endless;
            const bool matters = isInside || part.reach.endless || m_question == Question::inside ||
                                 (box.isValid() && asked.window->mayMeet(box));
            if (!matters || part.isSwitchedOff ||
                !m_visibility.layerShowsInBlock(*record.database(), part.layer))
                return;
            if (isInside && !part.hasParts)
                asked.shown = asked.touched = true;
            else
                doubtful.append(&asked);
        });
        return doubtful;
    }

    void notePoint(const AcGePoint3d &point)
    {
        forEachOpen([&](Asked &asked) {
            asked.shown = true;
            (asked.window->contains(point) ? asked.touched : asked.outside) = true;
        });
    }

    /// Cuts the line from `base` along `direction`, parameters `low` to `high`, with the windows.
    void noteSegment(const AcGePoint3d &base, const AcGeVector3d &direction, double low, double high)
    {
        forEachOpen([&](Asked &asked) {
            if (meetsSegment(*asked.window, base, direction, low, high))
                asked.touched = true;
        });
    }

    static bool meetsSegment(const Window &window, const AcGePoint3d &base, const AcGeVector3d &direction,
                             double low, double high)
    {
        for (std::size_t i = 0; i < 4; ++i) {
            const AcGePoint2d &from = window.corners()[i];
            const AcGePoint2d &to = window.corners()[(i + 1) % 4];
            const double distance = cross(from, to, base.x, base.y);
            const double slope = (to.x - from.x) * direction.y - (to.y - from.y) * direction.x;
            if (slope > 0.0)
                low = std::max(low, -distance / slope);
            else if (slope < 0.0)
                high = std::min(high, -distance / slope);
            else if (!(distance >= 0.0))
                return false;
        }
        return low <= high;
    }

    /// The points where the arc meets the line of a window's side: A cos t + B sin t = C.
    static void noteArcAtSide(Asked &asked, const Arc &arc, const AcGePoint2d &from, const AcGePoint2d &to)
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
            asked.outside = true;
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
                asked.touched = true;
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

    Question m_question;
    QVarLengthArray<Asked, 4> m_asked;
    AskedList m_active; ///< Those that what is being drawn counts for.
    std::optional<AcGiViewport> m_view;
    BlockExtents m_ownBlocks;
    BlockExtents &m_blocks;
    Visibility m_visibility;
};

/// The windows must have an area.
void draw(const AcDbEntity &entity, RegionSink &sink)
{
    if (entity.isCustom() && entity.database())
        sink.setView(screenView(*entity.database()));
    drawEntity(entity, sink);
}

bool ask(const AcDbEntity &entity, const Window &window, Question question, BlockExtents *blocks)
{
    if (window.isEmpty())
        return false;
    const Window *const asked = &window;
    RegionSink sink(std::span(&asked, 1), question, blocks);
    draw(entity, sink);
    return sink.answer(0);
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

std::vector<bool> crossesEach(const AcDbEntity &entity, std::span<const Window *const> windows,
                              BlockExtents &blocks)
{
    RegionSink sink(windows, Question::crossing, &blocks);
    draw(entity, sink);
    std::vector<bool> answers(windows.size());
    for (std::size_t i = 0; i < windows.size(); ++i)
        answers[i] = sink.answer(i);
    return answers;
}

} // namespace acgi
