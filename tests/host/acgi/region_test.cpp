// Inside, crossing and under the pick box: true geometry against windows.
#include "host/acgi/query/region.h"

#include "host/acgi/query/visibility.h"
#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

using tests::Groups;
using tests::MemoryDrawing;

enum Answer { outside, crossing, inside };

static Answer answerFor(const MemoryDrawing &drawing, std::uint64_t handle, const acgi::Window &window)
{
    const std::unique_ptr<AcDbDatabase> database = drawing.open();
    AcDbObjectPointer<AcDbEntity> entity(database->getAcDbObjectId({handle}), AcDb::kForRead);
    const bool crosses = acgi::crosses(*entity, window);
    const bool within = acgi::liesInside(*entity, window);
    EXPECT_TRUE(crosses || !within);
    return within ? inside : crosses ? crossing : outside;
}

static acgi::Window window(double left, double bottom, double right, double top)
{
    return acgi::Window::fromCorners({left, bottom, 0}, {right, top, 0});
}

struct RegionRow {
    const char *name;
    const char *kind;
    Groups groups;
    acgi::Window window;
    Answer answer;
};

class Region : public testing::TestWithParam<RegionRow>
{
};

TEST_P(Region, GoesByTrueGeometry)
{
    MemoryDrawing drawing;
    EXPECT_EQ(answerFor(drawing, drawing.entity(GetParam().kind, GetParam().groups), GetParam().window),
              GetParam().answer);
}

static const Groups kDiagonal{{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(10, 10, 0)}};
static const Groups kCircle{{10, AcGePoint3d(0, 0, 0)}, {40, 10.0}};
static const Groups kUpperHalf{{10, AcGePoint3d(0, 0, 0)}, {40, 10.0}, {50, 0.0}, {51, 180.0}};
static const Groups kSolid{
    {10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(10, 0, 0)}, {12, AcGePoint3d(0, 10, 0)}};
static const Groups kText{{1, "Room"}, {10, AcGePoint3d(0, 0, 0)}, {40, 10.0}};
static const Groups kXLine{{10, AcGePoint3d(5, 5, 0)}, {11, AcGePoint3d(1, 1, 0)}};
/// A square ring, 10 outside and 4 inside.
static const Groups kRing{{100, "AcDbHatch"},
                          {10, AcGePoint3d(0, 0, 0)},
                          {91, 2},
                          {92, 3},
                          {72, 0},
                          {73, 1},
                          {93, 4},
                          {10, AcGePoint2d(-5, -5)},
                          {10, AcGePoint2d(5, -5)},
                          {10, AcGePoint2d(5, 5)},
                          {10, AcGePoint2d(-5, 5)},
                          {97, 0},
                          {92, 2},
                          {72, 0},
                          {73, 1},
                          {93, 4},
                          {10, AcGePoint2d(-2, -2)},
                          {10, AcGePoint2d(2, -2)},
                          {10, AcGePoint2d(2, 2)},
                          {10, AcGePoint2d(-2, 2)},
                          {97, 0},
                          {75, 0}};
/// Turned by 45 degrees: a diamond of half diagonal 4 around (5 5).
static const acgi::Window kDiamond = acgi::Window::fromCorners({1, 5, 0}, {9, 5, 0}, kGePi / 4);

INSTANTIATE_TEST_SUITE_P(
    Windows, Region,
    testing::Values(
        RegionRow{"LineInside", "LINE", kDiagonal, window(-1, -1, 11, 11), inside},
        RegionRow{"LineTouchingTheBorder", "LINE", kDiagonal, window(0, 0, 10, 10), inside},
        RegionRow{"LineThroughACorner", "LINE", kDiagonal, window(4, 3, 6, 5), crossing},
        RegionRow{"LineBesideTheWindowInItsBox", "LINE", kDiagonal, window(6, 1, 9, 4), outside},
        RegionRow{"WindowGivenBackwards", "LINE", kDiagonal, window(11, 11, -1, -1), inside},
        RegionRow{"LineCrossesATurnedWindow", "LINE", kDiagonal, kDiamond, crossing},
        RegionRow{"PointInATurnedWindow", "POINT", {{10, AcGePoint3d(5, 8, 0)}}, kDiamond, inside},
        RegionRow{"PointInTheBoxOfATurnedWindow", "POINT", {{10, AcGePoint3d(8, 8, 0)}}, kDiamond, outside},
        RegionRow{"WindowInsideACircle", "CIRCLE", kCircle, window(-1, -1, 1, 1), outside},
        RegionRow{"WindowOnACircle", "CIRCLE", kCircle, window(9, -1, 11, 1), crossing},
        RegionRow{"CornerOfTheBoxOfACircle", "CIRCLE", kCircle, window(9, 9, 12, 12), outside},
        RegionRow{"CircleInside", "CIRCLE", kCircle, window(-10, -10, 10, 10), inside},
        RegionRow{"CircleBulgesOut", "CIRCLE", kCircle, window(-9, -11, 11, 11), crossing},
        RegionRow{"ArcHasNoLowerHalf", "ARC", kUpperHalf, window(-1, -11, 1, -9), outside},
        RegionRow{"ArcBulgesOut", "ARC", kUpperHalf, window(-11, -1, 11, 9), crossing},
        RegionRow{"SolidHoldsTheWindow", "SOLID", kSolid, window(1, 1, 2, 2), crossing},
        RegionRow{"SolidIsATriangle", "SOLID", kSolid, window(8, 8, 9, 9), outside},
        RegionRow{"TextCountsByItsBox", "TEXT", kText, window(2, 2, 3, 3), crossing},
        RegionRow{"HatchHoldsTheWindow", "HATCH", kRing, window(3, 3, 4, 4), crossing},
        RegionRow{"HatchHasAnIsland", "HATCH", kRing, window(-1, -1, 1, 1), outside},
        RegionRow{"XLineCrossesFarAway", "XLINE", kXLine, window(1000, 999, 1002, 1001), crossing},
        RegionRow{"XLineMisses", "XLINE", kXLine, window(1000, 0, 1002, 1), outside},
        RegionRow{"XLineIsNeverInside", "XLINE", kXLine, window(0, 0, 10, 10), crossing},
        RegionRow{"RayHasABeginning", "RAY", kXLine, window(0, 0, 1, 1), outside},
        RegionRow{"NoAreaNoAnswer", "LINE", kDiagonal, window(5, 5, 5, 5), outside},
        RegionRow{"SliverWithoutAreaNoAnswer", "LINE", kDiagonal, window(0, 5, 10, 5), outside},
        RegionRow{"NothingDrawnNothingFound", "3DSOLID", {}, window(-9, -9, 9, 9), outside}),
    [](const auto &row) { return row.param.name; });

TEST(RegionOfInserts, SeeIntoTheirBlock)
{
    MemoryDrawing drawing;
    const std::uint64_t block = drawing.block("B");
    drawing.entity("LINE", kDiagonal, block);
    const std::uint64_t insert =
        drawing.entity("INSERT", {{2, "B"}, {10, AcGePoint3d(100, 0, 0)}, {41, -1.0}});
    EXPECT_EQ(answerFor(drawing, insert, window(89, -1, 101, 11)), inside);
    EXPECT_EQ(answerFor(drawing, insert, window(94, 4, 96, 6)), crossing);
    EXPECT_EQ(answerFor(drawing, insert, window(91, 1, 94, 4)), outside);
    EXPECT_EQ(answerFor(drawing, insert, window(104, 4, 106, 6)), outside);

    const std::uint64_t grid = drawing.entity(
        "INSERT",
        {{2, "B"}, {10, AcGePoint3d(0, 0, 0)}, {50, 90.0}, {70, 30000}, {71, 30000}, {44, 20.0}, {45, 20.0}});
    EXPECT_EQ(answerFor(drawing, grid, window(-400006, 400005, -400004, 400006)), crossing);
    EXPECT_EQ(answerFor(drawing, grid, window(-400009, 400011, -400001, 400019)), outside);
    EXPECT_EQ(answerFor(drawing, grid, window(-600000, -1, 1, 599991)), inside);
    EXPECT_EQ(answerFor(drawing, grid, window(-600000, -1, 1, 599989)), crossing);
}

TEST(RegionOfInserts, HiddenContentsAreNotThere)
{
    MemoryDrawing drawing;
    drawing.layer("OFF", {.color = -7});
    drawing.layer("FROZEN", {.flags = 1});
    const std::uint64_t block = drawing.block("B");
    for (const char *layer : {"OFF", "FROZEN"})
        drawing.entity("LINE", {{8, layer}, {10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(10, 10, 0)}}, block);
    drawing.entity("LINE", {{60, 1}, {10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(10, 10, 0)}}, block);
    drawing.entity("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(1, 0, 0)}}, block);
    drawing.entity("XLINE", {{10, AcGePoint3d(0, 50, 0)}, {11, AcGePoint3d(1, 0, 0)}}, block);
    const std::uint64_t insert = drawing.entity("INSERT", {{2, "B"}, {10, AcGePoint3d(0, 0, 0)}});
    EXPECT_EQ(answerFor(drawing, insert, window(4, 4, 6, 6)), outside);
    EXPECT_EQ(answerFor(drawing, insert, window(0.5, -1, 6, 1)), crossing);
    EXPECT_EQ(answerFor(drawing, insert, window(1000, 49, 1001, 51)), crossing);
}

TEST(Visibility, GoesByLayerAndSwitch)
{
    MemoryDrawing drawing;
    drawing.layer("OFF", {.color = -7});
    drawing.layer("FROZEN", {.flags = 1});
    drawing.layer("LOCKED", {.flags = 4});
    const std::pair<Groups, bool> rows[] = {{{}, true},
                                            {{{60, 1}}, false},
                                            {{{8, "off"}}, false},
                                            {{{8, "FROZEN"}}, false},
                                            {{{8, "LOCKED"}}, true},
                                            {{{8, "NOT THERE"}}, true}};
    std::vector<std::uint64_t> handles;
    for (const auto &row : rows)
        handles.push_back(drawing.entity("POINT", row.first));
    const std::unique_ptr<AcDbDatabase> database = drawing.open();
    acgi::Visibility visibility;
    for (std::size_t i = 0; i < handles.size(); ++i) {
        AcDbObjectPointer<AcDbEntity> entity(database->getAcDbObjectId({handles[i]}), AcDb::kForRead);
        EXPECT_EQ(acgi::isVisible(*entity), rows[i].second) << i;
        EXPECT_EQ(visibility.isVisible(*entity), rows[i].second) << i;
    }
}
