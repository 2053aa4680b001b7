// The box of every kind, worked out by hand.
#include "host/acgi/query/extents.h"
#include "host/acgi/query/install.h"

#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

#include <cmath>

using tests::Group;
using tests::Groups;
using tests::MemoryDrawing;

static const double kRoot2 = std::sqrt(2.0);

struct Box {
    double left, bottom, right, top;
};

static void expectBox(const AcDbExtents &box, const Box &expected)
{
    ASSERT_TRUE(box.isValid());
    EXPECT_NEAR(box.minPoint().x, expected.left, 1e-9);
    EXPECT_NEAR(box.minPoint().y, expected.bottom, 1e-9);
    EXPECT_NEAR(box.maxPoint().x, expected.right, 1e-9);
    EXPECT_NEAR(box.maxPoint().y, expected.top, 1e-9);
}

static AcDbExtents boxOf(const MemoryDrawing &drawing, std::uint64_t handle,
                         acgi::BlockExtents *blocks = nullptr)
{
    const std::unique_ptr<AcDbDatabase> database = drawing.open();
    AcDbObjectPointer<AcDbEntity> entity(database->getAcDbObjectId({handle}), AcDb::kForRead);
    AcDbExtents box;
    acgi::extentsOf(*entity, box, blocks);
    return box;
}

struct KindRow {
    const char *name;
    const char *kind;
    Groups groups;
    Box box;
};

class KindExtents : public testing::TestWithParam<KindRow>
{
};

TEST_P(KindExtents, AreTheBoxOfTheGeometry)
{
    MemoryDrawing drawing;
    const std::uint64_t handle = drawing.entity(GetParam().kind, GetParam().groups);
    expectBox(boxOf(drawing, handle), GetParam().box);
    // What applications keep with an entity is not its own.
    Groups marked{
        {102, "{APP"}, {10, AcGePoint3d(-900, 0, 0)}, {11, AcGePoint3d(900, 0, 0)}, {40, 900.0}, {102, "}"}};
    marked.insert(marked.end(), GetParam().groups.begin(), GetParam().groups.end());
    expectBox(boxOf(drawing, drawing.entity(GetParam().kind, marked)), GetParam().box);
}

// clang-format off
static const KindRow kKindRows[] = {
    {"Line", "LINE", {{10, AcGePoint3d(3, 1, 0)}, {11, AcGePoint3d(-1, 4, 0)}}, {-1, 1, 3, 4}},
    {"Circle", "CIRCLE", {{10, AcGePoint3d(5, 5, 0)}, {40, 2.0}}, {3, 3, 7, 7}},
    {"ArcOverTheTop", "ARC", {{10, AcGePoint3d(0, 0, 0)}, {40, 2.0}, {50, 45.0}, {51, 135.0}},
        {-kRoot2, kRoot2, kRoot2, 2}},
    {"ArcOverZeroDegrees", "ARC", {{10, AcGePoint3d(0, 0, 0)}, {40, 2.0}, {50, 315.0}, {51, 45.0}},
        {kRoot2, -kRoot2, 2, kRoot2}},
    {"ArcSeenFromBelow", "ARC",
        {{10, AcGePoint3d(5, 0, 0)}, {40, 2.0}, {50, 0.0}, {51, 90.0}, {210, AcGePoint3d(0, 0, -1)}}, {-7, 0, -5, 2}},
    {"TurnedEllipse", "ELLIPSE", {{10, AcGePoint3d(1, 1, 0)}, {11, AcGePoint3d(0, 4, 0)}, {40, 0.5},
        {41, 0.0}, {42, 2.0 * kGePi}}, {-1, -3, 3, 5}},
    {"HalfEllipse", "ELLIPSE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(4, 0, 0)}, {40, 0.5},
        {41, 0.0}, {42, kGePi}}, {-4, 0, 4, 2}},
    {"BulgedPolyline", "LWPOLYLINE", {{70, 0}, {10, AcGePoint2d(0, 0)}, {42, 1.0}, {10, AcGePoint2d(4, 0)}}, {0, -2, 4, 0}},
    {"ClosingBulge", "LWPOLYLINE",
        {{70, 1}, {10, AcGePoint2d(0, 0)}, {10, AcGePoint2d(4, 0)}, {42, 1.0}}, {0, 0, 4, 2}},
    {"WidePolyline", "LWPOLYLINE", {{70, 0}, {43, 2.0}, {10, AcGePoint2d(0, 0)}, {10, AcGePoint2d(10, 0)}}, {0, -1, 10, 1}},
    {"QuadraticSpline", "SPLINE", {{100, "AcDbSpline"}, {71, 2}, {40, 0.0}, {40, 0.0}, {40, 0.0}, {40, 1.0}, {40, 1.0},
        {40, 1.0}, {10, AcGePoint3d(0, 0, 0)}, {10, AcGePoint3d(2, 4, 0)}, {10, AcGePoint3d(4, 0, 0)}}, {0, 0, 4, 2}},
    {"BrokenSplineShowsItsPoints", "SPLINE", {{71, 3}, {40, 0.0}, {10, AcGePoint3d(0, 0, 0)}, {10, AcGePoint3d(2, 4, 0)}},
        {0, 0, 2, 4}},
    {"Solid", "SOLID", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(4, 0, 0)}, {12, AcGePoint3d(1, 3, 0)},
        {13, AcGePoint3d(5, 3, 0)}}, {0, 0, 5, 3}},
    {"TriangleFace", "3DFACE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(4, 0, 0)}, {12, AcGePoint3d(1, 3, 9)}},
        {0, 0, 4, 3}},
    {"HatchOfAnArcPath", "HATCH", {{100, "AcDbHatch"}, {10, AcGePoint3d(0, 0, 0)}, {91, 1}, {92, 1}, {93, 2},
        {72, 2}, {10, AcGePoint2d(0, 0)}, {40, 2.0}, {50, 0.0}, {51, 180.0}, {73, 1},
        {72, 1}, {10, AcGePoint2d(-2, 0)}, {11, AcGePoint2d(2, 0)}, {97, 0}, {75, 0},
        {98, 1}, {10, AcGePoint2d(99, 99)}}, {-2, 0, 2, 2}},
    {"HatchClockwiseArc", "HATCH", {{100, "AcDbHatch"}, {10, AcGePoint3d(0, 0, 0)}, {91, 1}, {92, 1}, {93, 2},
        {72, 2}, {10, AcGePoint2d(0, 0)}, {40, 2.0}, {50, 0.0}, {51, 180.0}, {73, 0},
        {72, 1}, {10, AcGePoint2d(-2, 0)}, {11, AcGePoint2d(2, 0)}, {97, 0}, {75, 0}}, {-2, -2, 2, 0}},
    {"Multiline", "MLINE", {{100, "AcDbMline"}, {71, 1}, {10, AcGePoint3d(0, 0, 0)},
        {11, AcGePoint3d(0, 0, 0)}, {12, AcGePoint3d(1, 0, 0)}, {13, AcGePoint3d(0, 1, 0)},
        {74, 2}, {41, 0.5}, {41, 0.0}, {75, 0}, {74, 1}, {41, -0.5}, {75, 0},
        {11, AcGePoint3d(8, 0, 0)}, {12, AcGePoint3d(1, 0, 0)}, {13, AcGePoint3d(0, 1, 0)},
        {74, 2}, {41, 0.5}, {41, 0.0}, {75, 0}, {74, 1}, {41, -0.5}, {75, 0}}, {0, -0.5, 8, 0.5}},
    {"ImageFrame", "IMAGE", {{10, AcGePoint3d(1, 1, 0)}, {11, AcGePoint3d(0.5, 0, 0)}, {12, AcGePoint3d(0, 0.5, 0)},
        {13, AcGePoint2d(10, 4)}, {280, 0}}, {1, 1, 6, 3}},
    // Pixels count down from the top: the clipped upper half of the image.
    {"ImageClippedToItsUpperHalf", "IMAGE", {{10, AcGePoint3d(1, 1, 0)}, {11, AcGePoint3d(0.5, 0, 0)},
        {12, AcGePoint3d(0, 0.5, 0)}, {13, AcGePoint2d(10, 4)}, {280, 1}, {71, 1}, {91, 2},
        {14, AcGePoint2d(-0.5, -0.5)}, {14, AcGePoint2d(9.5, 1.5)}}, {1, 2, 6, 3}},
    {"Viewport", "VIEWPORT", {{10, AcGePoint3d(5, 5, 0)}, {40, 4.0}, {41, 2.0}, {69, 2}}, {3, 4, 7, 6}},
    {"DimensionWithoutPicture", "DIMENSION", {{2, "*D7"}, {10, AcGePoint3d(0, 5, 0)}, {13, AcGePoint3d(0, 0, 0)},
        {14, AcGePoint3d(4, 0, 0)}}, {0, 0.0625, 4, 5.27}},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Kinds, KindExtents, testing::ValuesIn(kKindRows),
                         [](const auto &row) { return row.param.name; });

TEST(Extents, PolylinesReadTheirVertices)
{
    MemoryDrawing drawing;
    const std::uint64_t flat = drawing.entity("POLYLINE", {{70, 1}, {10, AcGePoint3d(0, 0, 0)}});
    drawing.subEntity("VERTEX", {{10, AcGePoint3d(0, 0, 0)}});
    drawing.subEntity("VERTEX", {{10, AcGePoint3d(4, 0, 0)}, {42, 1.0}});
    drawing.subEntity("SEQEND", {});
    const std::uint64_t mesh = drawing.entity("POLYLINE", {{70, 16}, {71, 2}, {72, 2}});
    for (const double x : {0.0, 1.0}) {
        drawing.subEntity("VERTEX", {{10, AcGePoint3d(x, 0, 0)}, {70, 64}});
        drawing.subEntity("VERTEX", {{10, AcGePoint3d(x, 5, 0)}, {70, 64}});
    }
    const std::uint64_t faces = drawing.entity("POLYLINE", {{70, 64}});
    for (const double x : {0.0, 1.0, 7.0})
        drawing.subEntity("VERTEX", {{10, AcGePoint3d(x, x, 0)}, {70, 192}});
    drawing.subEntity("VERTEX", {{10, AcGePoint3d(99, 99, 0)}, {70, 128}, {71, 1}, {72, -2}, {73, 9}});
    expectBox(boxOf(drawing, flat), {0, 0, 4, 2});
    expectBox(boxOf(drawing, mesh), {0, 0, 1, 5});
    expectBox(boxOf(drawing, faces), {0, 0, 1, 1});
}

static AcDbExtents boxOfText(const Groups &groups)
{
    MemoryDrawing drawing;
    return boxOf(drawing, drawing.entity("TEXT", groups));
}

TEST(Extents, TextStandsAtItsAlignmentPoint)
{
    const AcDbExtents left = boxOfText({{1, "Room"}, {10, AcGePoint3d(10, 5, 0)}, {40, 2.0}});
    const double width = left.maxPoint().x - 10.0;
    expectBox(left, {10, 5, 10 + width, 7});
    EXPECT_GT(width, 4.0);
    const auto aligned = [](int horizontal, int vertical) {
        return boxOfText({{1, "Room"},
                          {10, AcGePoint3d(0, 0, 0)},
                          {11, AcGePoint3d(10, 5, 0)},
                          {40, 2.0},
                          {72, horizontal},
                          {73, vertical}});
    };
    expectBox(aligned(2, 0), {10 - width, 5, 10, 7});
    expectBox(aligned(1, 3), {10 - width / 2, 3, 10 + width / 2, 5});
    // With room for what reaches below the base line, and in the middle of all that.
    expectBox(aligned(0, 1), {10, 5 + 2.0 / 3, 10 + width, 7 + 2.0 / 3});
    expectBox(aligned(4, 0), {10 - width / 2, 5 - 2.0 / 3, 10 + width / 2, 6 + 1.0 / 3});
    // Fitted between two points the width is given; aligned, the height follows from it.
    expectBox(
        boxOfText({{1, "Room"}, {10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(8, 0, 0)}, {40, 2.0}, {72, 5}}),
        {0, 0, 8, 2});
    expectBox(boxOfText({{1, "Room"},
                         {10, AcGePoint3d(0, 0, 0)},
                         {11, AcGePoint3d(2 * width, 0, 0)},
                         {40, 1.0},
                         {72, 3}}),
              {0, 0, 2 * width, 4});
    // Upright, backward, and wider.
    expectBox(boxOfText({{1, "Room"}, {10, AcGePoint3d(0, 0, 0)}, {40, 2.0}, {50, 90.0}}), {-2, 0, 0, width});
    expectBox(boxOfText({{1, "Room"}, {10, AcGePoint3d(0, 0, 0)}, {40, 2.0}, {71, 2}}), {-width, 0, 0, 2});
    expectBox(boxOfText({{1, "Room"}, {10, AcGePoint3d(0, 0, 0)}, {40, 2.0}, {41, 2.0}}),
              {0, 0, 2 * width, 2});
}

TEST(Extents, MTextHangsFromItsAttachment)
{
    const auto attached = [](int attachment) {
        MemoryDrawing drawing;
        return boxOf(drawing, drawing.entity("MTEXT", {{100, "AcDbMText"},
                                                       {10, AcGePoint3d(10, 5, 0)},
                                                       {40, 3.0},
                                                       {71, attachment},
                                                       {1, "one\\Ptwo"}}));
    };
    // Two lines: a height of 3, then another line 5 below its base line.
    const AcDbExtents topLeft = attached(1);
    const double width = topLeft.maxPoint().x - 10.0;
    expectBox(topLeft, {10, -3, 10 + width, 5});
    expectBox(attached(5), {10 - width / 2, 1, 10 + width / 2, 9});
    expectBox(attached(9), {10 - width, 5, 10, 13});
}

TEST(Extents, MTextKnowsItsDirection)
{
    const auto turned = [](Groups groups) {
        MemoryDrawing drawing;
        const Groups hanging{{100, "AcDbMText"}, {10, AcGePoint3d(0, 0, 0)}, {40, 3.0}, {1, "one\\Ptwo"}};
        groups.insert(groups.begin(), hanging.begin(), hanging.end());
        return boxOf(drawing, drawing.entity("MTEXT", groups));
    };
    const double width = turned({}).maxPoint().x;
    // Seen from below: lines run along the world's x axis unless they say otherwise, and follow each other
    // upwards.
    const Group below(210, AcGePoint3d(0, 0, -1));
    expectBox(turned({below}), {0, 0, width, 8});
    expectBox(turned({below, {11, AcGePoint3d(-1, 0, 0)}}), {-width, -8, 0, 0});
    expectBox(turned({below, {11, AcGePoint3d(0, 1, 0)}, {50, 0.0}}), {-width, -8, 0, 0});
    const Group sideways(210, AcGePoint3d(1, 0, 0));
    EXPECT_EQ(turned({sideways}).maxPoint(), turned({sideways, {50, 0.0}}).maxPoint());
    // Letters below each other in the middle of their line, lines to the right of each other.
    const AcDbExtents vertical = turned({{72, 3}});
    EXPECT_GE(vertical.minPoint().x, 0.0);
    EXPECT_GT(vertical.maxPoint().x, 5.5);
    const auto moved = [&](double x, double y) {
        const auto [low, high] = std::pair(vertical.minPoint(), vertical.maxPoint());
        return Box{low.x + x, -11 + y, high.x + x, y};
    };
    expectBox(vertical, moved(0, 0));
    expectBox(turned({{72, 3}, {71, 5}}), moved(-3.5, 6));
    expectBox(turned({{72, 3}, {71, 9}}), moved(-7, 12));
}

TEST(Extents, InsertsPlaceTheirBlock)
{
    MemoryDrawing drawing;
    const std::uint64_t block = drawing.block("B", {1, 1, 0});
    drawing.entity("LINE", {{10, AcGePoint3d(1, 1, 0)}, {11, AcGePoint3d(4, 2, 0)}}, block);
    drawing.entity("ATTDEF", {{1, "default text"}, {2, "TAG"}, {10, AcGePoint3d(50, 50, 0)}, {40, 9.0}},
                   block);
    drawing.entity("XLINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(1, 0, 0)}}, block);
    const std::uint64_t outer = drawing.block("OUTER");
    drawing.entity("INSERT", {{2, "B"}, {10, AcGePoint3d(10, 0, 0)}}, outer);
    drawing.entity("INSERT", {{2, "OUTER"}, {10, AcGePoint3d(10, 0, 0)}}, outer);

    const std::uint64_t scaled =
        drawing.entity("INSERT", {{2, "b"}, {10, AcGePoint3d(10, 10, 0)}, {41, -2.0}, {42, 3.0}, {50, 90.0}});
    const std::uint64_t array = drawing.entity(
        "INSERT", {{2, "B"}, {10, AcGePoint3d(0, 0, 0)}, {70, 3}, {71, 2}, {44, 10.0}, {45, -5.0}});
    const std::uint64_t nested = drawing.entity("INSERT", {{2, "OUTER"}, {10, AcGePoint3d(0, 0, 0)}});
    const std::uint64_t turned = drawing.entity("INSERT", {{2, "B"}, {10, AcGePoint3d(0, 0, 0)}, {50, 45.0}});
    const std::uint64_t labelled = drawing.entity("INSERT", {{2, "B"}, {10, AcGePoint3d(0, 0, 0)}});
    drawing.subEntity("ATTRIB", {{1, "x"}, {10, AcGePoint3d(-5, -5, 0)}, {40, 1.0}});
    drawing.subEntity("ATTRIB", {{1, "hidden"}, {10, AcGePoint3d(-50, -50, 0)}, {40, 1.0}, {70, 1}});
    drawing.subEntity("SEQEND", {});
    const std::uint64_t labels =
        drawing.entity("INSERT", {{2, "B"}, {10, AcGePoint3d(0, 0, 0)}, {70, 2}, {44, -20.0}});
    drawing.subEntity("ATTRIB", {{1, "x"}, {10, AcGePoint3d(-5, -5, 0)}, {40, 1.0}});
    drawing.subEntity("SEQEND", {});
    const std::uint64_t missing = drawing.entity("INSERT", {{2, "NOT THERE"}, {10, AcGePoint3d(0, 0, 0)}});

    expectBox(boxOf(drawing, scaled), {7, 4, 10, 10});
    expectBox(boxOf(drawing, array), {0, -5, 23, 1});
    expectBox(boxOf(drawing, nested), {10, 0, 13, 1});
    expectBox(boxOf(drawing, turned), {0, 0, 3 / kRoot2 - 1 / kRoot2, 3 / kRoot2 + 1 / kRoot2});
    const AcDbExtents withAttribute = boxOf(drawing, labelled);
    EXPECT_EQ(withAttribute.minPoint().x, -5.0);
    EXPECT_EQ(withAttribute.maxPoint().x, 3.0);
    EXPECT_EQ(boxOf(drawing, labels).minPoint().x, -25.0);
    EXPECT_FALSE(boxOf(drawing, missing).isValid());
}

TEST(Extents, OfTurnedReferencesAreThoseOfWhatTheyShow)
{
    MemoryDrawing drawing;
    const std::uint64_t diagonal = drawing.block("DIAGONAL");
    drawing.entity("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(10, 10, 0)}}, diagonal);
    const std::uint64_t round = drawing.block("ROUND");
    drawing.entity("CIRCLE", {{10, AcGePoint3d(0, 0, 0)}, {40, 5.0}}, round);
    const std::uint64_t nested = drawing.block("NESTED");
    drawing.entity("INSERT", {{2, "DIAGONAL"}, {10, AcGePoint3d(0, 0, 0)}, {50, -45.0}}, nested);
    const auto turned = [&](const char *block, double degrees) {
        return drawing.entity("INSERT", {{2, block}, {10, AcGePoint3d(0, 0, 0)}, {50, degrees}});
    };
    const std::uint64_t upright = turned("DIAGONAL", 45.0);
    const std::uint64_t circle = turned("ROUND", 30.0);
    const std::uint64_t level = turned("NESTED", 0.0);
    const auto database = drawing.open();
    acgi::BlockExtents blocks;
    const auto size = [&](std::uint64_t handle) {
        const AcDbObjectPointer<AcDbEntity> entity(database->getAcDbObjectId({handle}), AcDb::kForRead);
        const AcDbExtents box = acgi::reachOf(*entity, blocks).box;
        return box.maxPoint() - box.minPoint();
    };
    const double length = 10 * kRoot2;
    EXPECT_NEAR(size(upright).x, 0.0, 1e-9);
    EXPECT_NEAR(size(upright).y, length, 1e-9);
    EXPECT_NEAR(size(level).x, length, 1e-9);
    EXPECT_NEAR(size(level).y, 0.0, 1e-9);
    EXPECT_GE(size(circle).x, 10.0 - 1e-9) << "nothing is outside";
    EXPECT_NEAR(size(circle).x, 10.0, 0.02);
}

TEST(Extents, BlocksInBlocksDoNotExplode)
{
    // Ten inserts in each of twelve levels: 10^12 lines to look at one by one.
    MemoryDrawing drawing;
    std::uint64_t block = drawing.block("L0");
    drawing.entity("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(1, 1, 0)}}, block);
    for (int level = 1; level <= 12; ++level) {
        const QByteArray below = "L" + QByteArray::number(level - 1);
        block = drawing.block(("L" + QByteArray::number(level)).constData());
        for (int i = 0; i < 10; ++i)
            drawing.entity("INSERT", {{2, below.constData()}, {10, AcGePoint3d(i, 0, 0)}}, block);
    }
    const std::uint64_t insert = drawing.entity("INSERT", {{2, "L12"}, {10, AcGePoint3d(0, 0, 0)}});
    expectBox(boxOf(drawing, insert), {0, 0, 12 * 9 + 1, 1});
    const std::uint64_t grid = drawing.entity(
        "INSERT", {{2, "L0"}, {10, AcGePoint3d(0, 0, 0)}, {70, 32767}, {71, 32767}, {44, 1.0}, {45, 1.0}});
    expectBox(boxOf(drawing, grid), {0, 0, 32767, 32767});
}

TEST(Extents, WhatHasNoneSaysSo)
{
    acgi::install();
    MemoryDrawing drawing;
    const std::uint64_t ray = drawing.entity("RAY", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(1, 0, 0)}});
    const std::uint64_t solid = drawing.entity("3DSOLID", {});
    const std::uint64_t line =
        drawing.entity("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(1, 0, 0)}});
    const std::unique_ptr<AcDbDatabase> database = drawing.open();
    AcDbExtents box;
    for (const std::uint64_t handle : {ray, solid}) {
        AcDbObjectPointer<AcDbEntity> entity(database->getAcDbObjectId({handle}), AcDb::kForRead);
        EXPECT_EQ(entity->getGeomExtents(box), Acad::eInvalidExtents);
    }
    AcDbObjectPointer<AcDbEntity> entity(database->getAcDbObjectId({line}), AcDb::kForRead);
    EXPECT_EQ(entity->getGeomExtents(box), Acad::eOk);
    expectBox(box, {0, 0, 1, 0});
}

// Blocks deeper than anybody shows, in a chain and in a ring, end the walk instead of the program.
TEST(Extents, DeepBlocksEnd)
{
    for (const bool isRing : {false, true}) {
        constexpr int kCount = 30'000;
        MemoryDrawing drawing;
        const auto insertOf = [](int block) {
            return Groups{{2, QStringLiteral("B%1").arg(block)}, {10, AcGePoint3d()}};
        };
        for (int i = 0; i < kCount; ++i) {
            const auto block = drawing.block(("B" + QByteArray::number(i)).constData());
            drawing.entity("LINE", {{10, AcGePoint3d()}, {11, AcGePoint3d(1, 2, 0)}}, block);
            if (isRing || i + 1 < kCount)
                drawing.entity("INSERT", insertOf((i + 1) % kCount), block);
        }
        const auto insert = drawing.entity("INSERT", insertOf(0));
        acgi::BlockExtents blocks;
        expectBox(boxOf(drawing, insert, &blocks), {0, 0, 1, 2});
        expectBox(boxOf(drawing, insert), {0, 0, 1, 2});
    }
}
