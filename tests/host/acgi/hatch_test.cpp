// Hatches: boundaries of every kind of edge, island styles, patterns cut with them, and what is too much.
#include "host/acgi/kinds/draw_entity.h"
#include "host/acgi/query/extents.h"
#include "host/acgi/query/region.h"

#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using tests::Group;
using tests::Groups;
using tests::MemoryDrawing;

namespace
{

/// Keeps what is drawn, in world coordinates.
class Recorder : public AcGiGeometry
{
public:
    struct Fill {
        std::vector<acgi::Loop> loops;
        acgi::Traits traits;
    };
    std::vector<acgi::Loop> lines;
    std::vector<Fill> fills;
    QStringList undrawn;
    int clips = 0;
    int outside = 0; ///< Clips that keep what lies outside.
    bool dashedLines = false;

    bool isDisplay() const override { return true; }
    void polyline(std::uint32_t count, const AcGePoint3d *points) override
    {
        acgi::Loop line;
        for (std::uint32_t i = 0; i < count; ++i)
            line.push_back(toWorld(points[i]));
        lines.push_back(line);
        dashedLines = dashedLines || subEntityTraits().traits().linetypeBy != acgi::Stated::itself;
    }
    void arc(const acgi::Arc &) override {}
    void fill(std::span<const acgi::Loop> loops) override
    {
        fills.push_back({{loops.begin(), loops.end()}, subEntityTraits().traits()});
    }
    void text(const acgi::TextLine &) override {}
    void infiniteLine(const AcGePoint3d &, const AcGeVector3d &, bool) override {}
    void pushClip(std::span<const acgi::Loop>, bool inverted) override { ++clips, outside += inverted; }
    void popClip() override { --clips; }
    void noteUndrawn(const QString &reason) override { undrawn += reason; }
};

Recorder draw(const Groups &groups, const char *kind = "HATCH")
{
    MemoryDrawing drawing;
    const std::uint64_t handle = drawing.entity(kind, groups);
    const std::unique_ptr<AcDbDatabase> database = drawing.open();
    AcDbObjectPointer<AcDbEntity> entity(database->getAcDbObjectId({handle}), AcDb::kForRead);
    Recorder recorder;
    acgi::drawEntity(*entity, recorder);
    return recorder;
}

Groups operator+(Groups a, const Groups &b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

/// A path that is a square, (low, low) to (high, high).
Groups square(double low, double high)
{
    return {{92, 3},
            {72, 0},
            {73, 1},
            {93, 4},
            {10, AcGePoint2d(low, low)},
            {10, AcGePoint2d(high, low)},
            {10, AcGePoint2d(high, high)},
            {10, AcGePoint2d(low, high)},
            {97, 0}};
}

Groups hatch(int paths, const Groups &boundary, int style, const Groups &rest)
{
    return Groups{{100, "AcDbHatch"},
                  {10, AcGePoint3d(0, 0, 0)},
                  {2, "P"},
                  {70, rest.empty() ? 1 : 0},
                  {91, paths}} +
           boundary + Groups{{75, style}, {76, 1}} + rest + Groups{{98, 1}, {10, AcGePoint2d(99, 99)}};
}

Groups family(double angle, AcGePoint2d base, AcGePoint2d offset, const std::vector<double> &dashes = {})
{
    Groups groups{{53, angle},    {43, base.x},   {44, base.y},
                  {45, offset.x}, {46, offset.y}, {79, int(dashes.size())}};
    for (const double dash : dashes)
        groups.emplace_back(49, dash);
    return groups;
}

Groups pattern(const Groups &families)
{
    return Groups{{52, 0.0}, {41, 1.0}, {77, 0}, {78, 1}} + families;
}

/// "0-2@1": horizontal lines, from - to @ y, in the order drawn.
std::string rows(const Recorder &recorder)
{
    std::string text;
    for (const acgi::Loop &line : recorder.lines) {
        const auto number = [](double value) {
            return QString::number(std::round(value * 1e6) / 1e6).toStdString();
        };
        text += (text.empty() ? "" : " ") + number(line.front().x);
        text += line.size() > 1 ? "-" + number(line.back().x) : "";
        text += "@" + number(line.front().y);
    }
    return text;
}

double areaOf(const acgi::Loop &loop)
{
    double twice = 0.0;
    for (std::size_t i = 0; i < loop.size(); ++i) {
        const AcGePoint3d &next = loop[(i + 1) % loop.size()];
        twice += loop[i].x * next.y - next.x * loop[i].y;
    }
    return std::abs(twice) / 2.0;
}

} // namespace

TEST(HatchBoundary, EveryKindOfEdge)
{
    struct Row {
        const char *name;
        Groups path;
        double area;
    };
    const Groups halfCircleTop{{72, 2}, {10, AcGePoint2d(2, 2)}, {40, 2.0}, {50, 0.0}, {51, 180.0}, {73, 1}};
    const Groups sides{{72, 1}, {10, AcGePoint2d(0, 2)}, {11, AcGePoint2d(0, 0)},
                       {72, 1}, {10, AcGePoint2d(0, 0)}, {11, AcGePoint2d(4, 0)},
                       {72, 1}, {10, AcGePoint2d(4, 0)}, {11, AcGePoint2d(4, 2)}};
    const double weight = std::sqrt(0.5);
    const Row rows[] = {
        {"bulges",
         {{92, 2},
          {72, 1},
          {73, 1},
          {93, 2},
          {10, AcGePoint2d(0, 0)},
          {42, 1.0},
          {10, AcGePoint2d(4, 0)},
          {42, 1.0},
          {97, 0}},
         4 * kGePi},
        {"lines and arc", Groups{{92, 1}, {93, 4}} + halfCircleTop + sides + Groups{{97, 0}}, 8 + 2 * kGePi},
        {"ellipse",
         {{92, 1},
          {93, 1},
          {72, 3},
          {10, AcGePoint2d(1, 1)},
          {11, AcGePoint2d(0, 4)},
          {40, 0.5},
          {50, 0.0},
          {51, 360.0},
          {73, 1},
          {97, 0}},
         8 * kGePi},
        // The ends of an elliptic edge lie in the directions 0 and 45 degrees from the centre.
        {"sector of an ellipse",
         {{92, 1},
          {93, 3},
          {72, 3},
          {10, AcGePoint2d(0, 0)},
          {11, AcGePoint2d(4, 0)},
          {40, 0.5},
          {50, 0.0},
          {51, 45.0},
          {73, 1},
          {72, 1},
          {10, AcGePoint2d(std::sqrt(3.2), std::sqrt(3.2))},
          {11, AcGePoint2d(0, 0)},
          {72, 1},
          {10, AcGePoint2d(0, 0)},
          {11, AcGePoint2d(4, 0)},
          {97, 0}},
         4 * std::atan(2.0)},
        // A quarter of a circle as a rational curve, back to its centre.
        {"rational spline",
         {{92, 1},
          {93, 3},
          {72, 4},
          {94, 2},
          {73, 1},
          {74, 0},
          {95, 6},
          {96, 3},
          {40, 0.0},
          {40, 0.0},
          {40, 0.0},
          {40, 1.0},
          {40, 1.0},
          {40, 1.0},
          {10, AcGePoint2d(2, 0)},
          {42, 1.0},
          {10, AcGePoint2d(2, 2)},
          {42, weight},
          {10, AcGePoint2d(0, 2)},
          {42, 1.0},
          {97, 0},
          {72, 1},
          {10, AcGePoint2d(0, 2)},
          {11, AcGePoint2d(0, 0)},
          {72, 1},
          {10, AcGePoint2d(0, 0)},
          {11, AcGePoint2d(2, 0)},
          {97, 0}},
         kGePi},
        // The square of the corners and the bulging sides between them.
        {"fitted spline",
         {{92, 1},
          {93, 1},
          {72, 4},
          {94, 3},
          {73, 0},
          {74, 0},
          {95, 0},
          {96, 0},
          {97, 3},
          {11, AcGePoint2d(0, 0)},
          {11, AcGePoint2d(2, 2)},
          {11, AcGePoint2d(4, 0)},
          {12, AcGePoint2d(1, 1)},
          {13, AcGePoint2d(1, -1)},
          {97, 0}},
         0.0},
    };
    for (const Row &row : rows) {
        const Recorder recorder = draw(hatch(1, row.path, 0, {}));
        ASSERT_EQ(recorder.fills.size(), 1u) << row.name;
        ASSERT_EQ(recorder.fills[0].loops.size(), 1u) << row.name;
        const double area = areaOf(recorder.fills[0].loops[0]);
        if (row.area > 0.0)
            EXPECT_NEAR(area, row.area, 0.005 * row.area) << row.name;
        else
            EXPECT_GT(area, 4.0) << row.name;
    }
}

TEST(HatchBoundary, EdgesMayStandInAnyOrderAndRunEitherWay)
{
    const auto line = [](double x, double y, double toX, double toY) {
        return Groups{{72, 1}, {10, AcGePoint2d(x, y)}, {11, AcGePoint2d(toX, toY)}};
    };
    const Groups bottom = line(4, 0, 0, 0); // Backwards.
    const Groups right = line(4, 0, 4, 3);
    const Groups top = line(0, 3, 4, 3); // Backwards.
    const Groups left = line(0, 3, 0, 0);
    for (const Groups &edges : {bottom + right + top + left, bottom + top + right + left,
                                top + bottom + left + right, right + left + bottom + top}) {
        const Recorder recorder = draw(hatch(1, Groups{{92, 1}, {93, 4}} + edges + Groups{{97, 0}}, 0, {}));
        ASSERT_EQ(recorder.fills.size(), 1u);
        EXPECT_NEAR(areaOf(recorder.fills[0].loops.at(0)), 12.0, 1e-9);
    }
}

TEST(HatchBoundary, TextBoxesAreSparedWhateverTheStyle)
{
    Groups textBox = square(4, 5);
    textBox[0] = Group(92, 3 | 8);
    for (const int style : {0, 1, 2}) {
        Recorder recorder = draw(hatch(3, square(0, 10) + square(2, 8) + textBox, style, {}));
        EXPECT_EQ(recorder.outside, 1) << style;
        EXPECT_EQ(recorder.clips, 0) << style;
        EXPECT_EQ(recorder.fills.at(0).loops.size(), style == 2 ? 1u : 2u) << style;
    }
}

TEST(HatchBoundary, IslandStylesKeepWhatTheyLookAt)
{
    const Groups nested = square(4, 6) + square(0, 10) + square(2, 8);
    const auto lows = [&](int style) {
        std::vector<double> corners;
        const Recorder recorder = draw(hatch(3, nested, style, {}));
        for (const acgi::Loop &loop : recorder.fills.at(0).loops)
            corners.push_back(loop.front().x);
        return corners;
    };
    EXPECT_EQ(lows(0), (std::vector<double>{4, 0, 2}));
    EXPECT_EQ(lows(1), (std::vector<double>{0, 2}));
    EXPECT_EQ(lows(2), (std::vector<double>{0}));
}

TEST(HatchPattern, LinesAndDashesEndAtTheBoundary)
{
    // Lines every 2 from y = 1; around the hole the lines are cut.
    const Groups ring = square(0, 10) + square(2, 8);
    const Groups lines = pattern(family(0, {0, 1}, {0, 4}));
    EXPECT_EQ(rows(draw(hatch(2, ring, 0, lines))), "0-10@1 0-2@5 8-10@5 0-10@9");
    EXPECT_EQ(rows(draw(hatch(2, ring, 2, lines))), "0-10@1 0-10@5 0-10@9");
    // Upside down: the same lines.
    EXPECT_EQ(rows(draw(hatch(2, ring, 2, pattern(family(0, {0, 1}, {0, -4}))))), "0-10@1 0-10@5 0-10@9");

    // Dashes begin at the base point, and one further on each line.
    const Recorder dashed =
        draw(hatch(1, square(0, 6), 0, pattern(family(0, {0, 1}, {1, 3}, {2, -2, 0, -1}))));
    EXPECT_EQ(rows(dashed), "0-2@1 4@1 5-6@1 0@4 1-3@4 5@4");
    EXPECT_FALSE(dashed.dashedLines);
    EXPECT_TRUE(dashed.fills.empty());
}

TEST(HatchPattern, FollowsTheEntitysPlane)
{
    // Seen from below: x runs the other way.
    Groups groups = hatch(1, square(0, 4), 0, pattern(family(0, {0, 2}, {0, 10})));
    groups[1] = {10, AcGePoint3d(0, 0, 5)};
    groups.insert(groups.begin() + 2, {210, AcGePoint3d(0, 0, -1)});
    const Recorder recorder = draw(groups);
    EXPECT_EQ(rows(recorder), "0--4@2");
    EXPECT_EQ(recorder.lines.at(0).front().z, -5.0);
}

TEST(HatchPattern, SlantedLinesCoverTheArea)
{
    // Two families, crossed: the length of lines is the area over their distance.
    const double step = 0.01;
    const double slant = 37.0 * kGePi / 180.0;
    const AcGePoint2d across(-step * std::sin(slant), step * std::cos(slant));
    const AcGePoint2d along(-step * std::cos(slant), -step * std::sin(slant));
    const Recorder recorder = draw(
        hatch(1, square(0, 2), 0, pattern(family(37, {500, -300}, across) + family(127, {0, 0}, along))));
    double length = 0.0;
    for (const acgi::Loop &line : recorder.lines) {
        length += line.front().distanceTo(line.back());
        for (const AcGePoint3d &end : line)
            EXPECT_LE(std::max(std::abs(end.x - 1), std::abs(end.y - 1)), 1 + 1e-9);
    }
    EXPECT_NEAR(length * step, 2 * 4.0, 0.02);
}

TEST(HatchPattern, TooMuchIsFilledAndNoted)
{
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    const Groups dense[] = {family(0, {0, 0}, {0, 1e-9}), family(0, {0, 0}, {0, 1e-300}),
                            family(0, {0, 0}, {0, 1}, {1e-9, -1e-9}), family(0, {0, 1e30}, {0, 1})};
    for (const Groups &lines : dense) {
        const Recorder recorder = draw(hatch(1, square(0, 100), 0, pattern(lines)));
        EXPECT_EQ(recorder.fills.size(), 1u);
        EXPECT_TRUE(recorder.lines.empty());
        EXPECT_EQ(recorder.undrawn, QStringList("HATCH: pattern too dense"));
    }
    const Groups senseless[] = {family(0, {0, 0}, {0, 0}),        family(30, {0, 0}, {kNan, 1}),
                                family(0, {0, 0}, {1, 0}),        family(kNan, {0, 0}, {0, 1}),
                                family(0, {0, 0}, {0, HUGE_VAL}), family(0, {0, 0}, {0, 1}, {HUGE_VAL, -1})};
    for (const Groups &lines : senseless) {
        const Recorder recorder = draw(hatch(1, square(0, 100), 0, pattern(lines)));
        EXPECT_TRUE(recorder.fills.empty() && recorder.lines.empty() && recorder.undrawn.isEmpty());
    }
    const Recorder far =
        draw(hatch(2, square(0, HUGE_VAL) + square(0, 1), 0, pattern(family(0, {0, 0.5}, {0, 1}))));
    EXPECT_EQ(rows(far), "0-1@0.5");
}

TEST(Hatch, BackgroundGradientAndPolygons)
{
    const Groups lines = pattern(family(0, {0, 5}, {0, 100}));
    const Recorder background = draw(hatch(1, square(0, 10), 0, lines) +
                                     Groups{{1001, "HATCHBACKGROUNDCOLOR"}, {1071, int(0xC2FF0102)}});
    ASSERT_EQ(background.fills.size(), 1u);
    EXPECT_EQ(background.fills[0].traits.color, AcCmEntityColor::fromRgb(0xFF0102));
    EXPECT_EQ(rows(background), "0-10@5");

    const Recorder gradient = draw(hatch(1, square(0, 10), 0, {}) + Groups{{450, 1},
                                                                           {460, kGePi / 2},
                                                                           {461, 0.0},
                                                                           {453, 2},
                                                                           {463, 0.0},
                                                                           {421, 0xFF0000},
                                                                           {463, 1.0},
                                                                           {421, 0x0000FF},
                                                                           {470, "LINEAR"}});
    EXPECT_EQ(gradient.clips, 0);
    ASSERT_GT(gradient.fills.size(), 8u);
    // From red below to blue above, all of the area.
    EXPECT_GT(gradient.fills.front().traits.color.rgb(), 0xF00000u);
    EXPECT_LT(gradient.fills.back().traits.color.rgb(), 0x0F0100u);
    EXPECT_NEAR(gradient.fills.front().loops[0][0].y, 0.0, 1e-9);
    EXPECT_NEAR(gradient.fills.back().loops[0][2].y, 10.0, 1e-9);

    const Recorder polygon =
        draw(Groups{{100, "AcDbMPolygon"}, {70, 1}, {10, AcGePoint3d(0, 0, 0)}, {2, ""}, {71, 1}, {91, 1}} +
                 square(0, 4) + Groups{{76, 1}, {63, 3}, {11, AcGePoint2d(0, 0)}, {99, 0}},
             "MPOLYGON");
    ASSERT_EQ(polygon.fills.size(), 1u);
    EXPECT_EQ(polygon.fills[0].traits.color, AcCmEntityColor::fromIndex(3));
    EXPECT_EQ(polygon.lines.size(), 1u);
}

TEST(Hatch, PatternsCountAsAreasWhenPicked)
{
    MemoryDrawing drawing;
    const std::uint64_t handle = drawing.entity(
        "HATCH", hatch(2, square(0, 10) + square(2, 8), 0, pattern(family(0, {0, 0.5}, {0, 100}))));
    const std::unique_ptr<AcDbDatabase> database = drawing.open();
    AcDbObjectPointer<AcDbEntity> entity(database->getAcDbObjectId({handle}), AcDb::kForRead);
    AcDbExtents box;
    ASSERT_EQ(acgi::extentsOf(*entity, box), Acad::eOk);
    EXPECT_EQ(box.maxPoint().y, 10.0);
    EXPECT_TRUE(acgi::crosses(*entity, acgi::Window::aroundPoint({5, 9, 0}, 0.1)));
    EXPECT_FALSE(acgi::crosses(*entity, acgi::Window::aroundPoint({5, 5, 0}, 0.1)));
}
