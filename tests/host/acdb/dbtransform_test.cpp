// Which groups a transform touches and what they become. That the drawn shape follows the matrix, kind
// by kind, is checked where entities draw (tests/host/acgi/transform_test.cpp).
#include "host/acdb/dbtransform.h"

#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

using tests::Groups;

static constexpr double kQuarter = kGePi / 2.0;

static ResbufList entity(const char *kind, const Groups &own)
{
    ResbufList list{tests::Group(0, kind), tests::Group(5, AcDbHandle{0x2A}), tests::Group(8, "0")};
    list.insert(list.end(), own.begin(), own.end());
    // As read from a file: every group knows its bytes.
    for (resbuf &group : list)
        group.source = "bytes";
    return list;
}

static std::vector<int> touchedCodes(const ResbufList &list)
{
    std::vector<int> codes;
    for (const resbuf &group : list) {
        if (group.source.empty())
            codes.push_back(group.restype);
    }
    return codes;
}

static double real(const ResbufList &list, int code)
{
    const resbuf *const group = findGroup(list, code);
    return group ? group->real() : std::nan("");
}

static AcGePoint3d point(const ResbufList &list, int code)
{
    const resbuf *const group = findGroup(list, code);
    return group ? group->point() : AcGePoint3d(std::nan(""), 0, 0);
}

static AcGeMatrix3d mirrorAtY()
{
    return AcGeMatrix3d::mirroring({}, AcGeVector3d::kYAxis);
}

struct TouchRow {
    const char *name;
    const char *kind;
    Groups groups;
    AcGeMatrix3d matrix;
    std::vector<int> touched;
};

class TransformTouches : public testing::TestWithParam<TouchRow>
{
};

TEST_P(TransformTouches, OnlyWhatChanges)
{
    ResbufList list = entity(GetParam().kind, GetParam().groups);
    ASSERT_EQ(acdbTransformGroups(list, GetParam().matrix), Acad::eOk);
    EXPECT_EQ(touchedCodes(list), GetParam().touched);
}

static const AcGeMatrix3d kShift = AcGeMatrix3d::translation({5, -3, 0});
static const AcGeMatrix3d kLift = AcGeMatrix3d::translation({0, 0, 2});
static const AcGeMatrix3d kTurn = AcGeMatrix3d::rotation(kQuarter, AcGeVector3d::kZAxis);

// clang-format off
INSTANTIATE_TEST_SUITE_P(Kinds, TransformTouches, testing::Values(
    TouchRow{"ArcMoves", "ARC", {{10, AcGePoint3d(1, 2, 0)}, {40, 2.0}, {50, 0.0}, {51, 270.0}}, kShift, {10}},
    TouchRow{"TiltedCircleKeepsItsNormal", "CIRCLE",
        {{10, AcGePoint3d(1, 2, 3)}, {40, 2.0}, {210, AcGePoint3d(0.48, 0.6, 0.64)}}, kShift, {10}},
    TouchRow{"PolylineKeepsZeroBulges", "LWPOLYLINE",
        {{70, 0}, {43, 0.0}, {10, AcGePoint2d(1, 1)}, {42, 0.0}, {10, AcGePoint2d(2, 1)}}, mirrorAtY(), {10, 10}},
    TouchRow{"PolylineGetsAnElevation", "LWPOLYLINE", {{70, 0}, {10, AcGePoint2d(1, 1)}}, kLift, {38}},
    TouchRow{"TextGetsARotation", "TEXT", {{10, AcGePoint3d(1, 0, 0)}, {40, 2.5}, {1, "a"}}, kTurn, {10, 50}},
    TouchRow{"UprightInsertKeepsItsScales", "INSERT", {{2, "B"}, {10, AcGePoint3d(1, 0, 0)}, {41, 2.0}}, kShift, {10}},
    TouchRow{"PreviewBytesOfAHatchAreNoPaths", "HATCH",
        {{92, 8}, {310, QByteArray("12345678")}, {10, AcGePoint3d(0, 0, 0)}, {91, 1}, {92, 2}, {93, 1},
         {10, AcGePoint2d(3, 3)}, {97, 0}, {75, 0}}, kShift, {10}},
    TouchRow{"ApplicationGroupsAreNotGeometry", "LINE",
        {{102, "{APP"}, {40, 7.0}, {10, AcGePoint3d(9, 9, 9)}, {102, "}"}, {10, AcGePoint3d(1, 1, 0)},
         {11, AcGePoint3d(2, 2, 0)}}, kShift, {10, 11}},
    TouchRow{"ExtendedDataGoesAlong", "LINE",
        {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(1, 0, 0)}, {1001, "APP"}, {1010, AcGePoint3d(1, 1, 0)},
         {1011, AcGePoint3d(1, 1, 0)}, {1013, AcGePoint3d(1, 0, 0)}, {1040, 1.0}, {1041, 1.0}}, kShift, {10, 11, 1011}}),
    [](const auto &row) { return row.param.name; });
// clang-format on

TEST(Transform, RefusesWithoutChange)
{
    ResbufList solid = entity("3DSOLID", {{10, AcGePoint3d(1, 2, 0)}});
    const ResbufList before = solid;
    EXPECT_EQ(acdbTransformGroups(solid, kShift), Acad::eNotApplicable);
    EXPECT_EQ(solid, before);

    for (const AcGeMatrix3d &matrix : {AcGeMatrix3d::scaling(1, 2, 1), AcGeMatrix3d::scaling(0, 0, 0)}) {
        ResbufList line = entity("LINE", {{10, AcGePoint3d(1, 2, 0)}, {11, AcGePoint3d(3, 4, 0)}});
        EXPECT_EQ(acdbTransformGroups(line, matrix), Acad::eInvalidInput);
        EXPECT_TRUE(touchedCodes(line).empty());
    }
}

TEST(Transform, PlainPointsStayPlain)
{
    ResbufList line = entity("LINE", {{10, AcGePoint2d(1, 2)}, {11, AcGePoint2d(3, 4)}});
    acdbTransformGroups(line, kShift);
    EXPECT_TRUE(std::holds_alternative<AcGePoint2d>(findGroup(line, 10)->resval));
    acdbTransformGroups(line, kLift);
    EXPECT_EQ(point(line, 10), AcGePoint3d(6, -1, 2));
}

TEST(Transform, ArcsTurnAndReflect)
{
    ResbufList arc = entity("ARC", {{10, AcGePoint3d(1, 0, 0)}, {40, 2.0}, {50, 350.0}, {51, 80.0}});
    acdbTransformGroups(arc, AcGeMatrix3d::scaling(3.0) * kTurn);
    EXPECT_NEAR(real(arc, 50), 80.0, 1e-9);
    EXPECT_NEAR(real(arc, 51), 170.0, 1e-9);
    EXPECT_NEAR(real(arc, 40), 6.0, 1e-12);

    acdbTransformGroups(arc, mirrorAtY());
    EXPECT_NEAR(real(arc, 50), 10.0, 1e-9);
    EXPECT_NEAR(real(arc, 51), 100.0, 1e-9);
    EXPECT_EQ(findGroup(arc, 210), nullptr);
}

TEST(Transform, TextReadsBackwardInAMirror)
{
    ResbufList text =
        entity("TEXT", {{10, AcGePoint3d(4, 1, 0)}, {40, 2.5}, {1, "a"}, {50, 30.0}, {100, "AcDbText"}});
    acdbTransformGroups(text, mirrorAtY());
    EXPECT_NEAR(real(text, 50), 330.0, 1e-9);
    EXPECT_EQ(findGroup(text, 71)->integer(), 2);
    acdbTransformGroups(text, mirrorAtY());
    EXPECT_NEAR(real(text, 50), 30.0, 1e-9);
    EXPECT_EQ(findGroup(text, 71)->integer(), 0);
}

TEST(Transform, AttributesCarryTheirEmbeddedText)
{
    ResbufList attribute = entity("ATTRIB", {{10, AcGePoint3d(4, 1, 0)},
                                             {40, 2.5},
                                             {1, "a"},
                                             {101, "Embedded Object"},
                                             {10, AcGePoint3d(4, 1, 0)},
                                             {11, AcGePoint3d(1, 0, 0)},
                                             {40, 2.5},
                                             {41, 20.0}});
    acdbTransformGroups(attribute, kTurn);
    EXPECT_EQ(touchedCodes(attribute), (std::vector{10, 50, 10, 11}));
    const std::size_t embedded = 9; // Behind the marker; a rotation was added in front.
    EXPECT_TRUE(findGroup(attribute, 11, embedded)->point().isEqualTo({0, 1, 0}));
}

TEST(Transform, InsertsGetANegativeFactorInAMirror)
{
    ResbufList insert = entity("INSERT", {{2, "B"}, {10, AcGePoint3d(4, 1, 0)}, {50, 20.0}, {45, 3.0}});
    acdbTransformGroups(insert, AcGeMatrix3d::scaling(2.0) * mirrorAtY());
    EXPECT_NEAR(real(insert, 50), 160.0, 1e-9);
    EXPECT_NEAR(real(insert, 41), 2.0, 1e-12);
    EXPECT_NEAR(real(insert, 42), -2.0, 1e-12);
    EXPECT_NEAR(real(insert, 43), 2.0, 1e-12);
    EXPECT_NEAR(real(insert, 45), -6.0, 1e-12);
}

TEST(Transform, HatchPatternsFollow)
{
    ResbufList hatch = entity("HATCH", {{10, AcGePoint3d(0, 0, 0)},
                                        {2, "ANSI31"},
                                        {91, 0},
                                        {75, 0},
                                        {52, 15.0},
                                        {41, 2.0},
                                        {78, 1},
                                        {53, 45.0},
                                        {43, 1.0},
                                        {44, 0.0},
                                        {45, -2.0},
                                        {46, 2.0},
                                        {79, 1},
                                        {49, 0.5},
                                        {98, 1},
                                        {10, AcGePoint2d(3, 1)}});
    acdbTransformGroups(hatch, AcGeMatrix3d::translation({10, 0, 0}) * AcGeMatrix3d::scaling(2.0) * kTurn);
    EXPECT_NEAR(real(hatch, 52), 105.0, 1e-9);
    EXPECT_NEAR(real(hatch, 53), 135.0, 1e-9);
    EXPECT_NEAR(real(hatch, 41), 4.0, 1e-12);
    EXPECT_NEAR(real(hatch, 43), 10.0, 1e-9);
    EXPECT_NEAR(real(hatch, 44), 2.0, 1e-9);
    EXPECT_NEAR(real(hatch, 45), -4.0, 1e-9);
    EXPECT_NEAR(real(hatch, 46), -4.0, 1e-9);
    EXPECT_NEAR(real(hatch, 49), 1.0, 1e-12);
    EXPECT_TRUE(hatch.back().point().isEqualTo({8, 6, 0}, 1e-9));
    EXPECT_EQ(point(hatch, 10), AcGePoint3d(0, 0, 0)); // Only its elevation counts.
}

TEST(Transform, DimensionsTurnTheirAngles)
{
    const Groups linear{{10, AcGePoint3d(0, 5, 0)}, {11, AcGePoint3d(2, 5, 0)}, {70, 32},  {42, 4.0},
                        {13, AcGePoint3d(0, 0, 0)}, {14, AcGePoint3d(4, 0, 0)}, {50, 0.0}, {52, 60.0}};
    ResbufList turned = entity("DIMENSION", linear);
    acdbTransformGroups(turned, AcGeMatrix3d::scaling(2.0) * kTurn);
    EXPECT_TRUE(point(turned, 14).isEqualTo({0, 8, 0}));
    EXPECT_TRUE(point(turned, 11).isEqualTo({-10, 4, 0}));
    EXPECT_NEAR(real(turned, 50), 90.0, 1e-9);
    EXPECT_NEAR(real(turned, 51), 270.0, 1e-9);
    EXPECT_NEAR(real(turned, 52), 60.0, 1e-9);
    EXPECT_NEAR(real(turned, 42), 8.0, 1e-9);

    ResbufList angular = entity("DIMENSION", {{10, AcGePoint3d(0, 5, 0)}, {70, 34}, {42, 1.5}});
    acdbTransformGroups(angular, AcGeMatrix3d::scaling(2.0));
    EXPECT_EQ(real(angular, 42), 1.5);
}

TEST(Transform, VerticesStandInThePlaneOfTheirPolyline)
{
    // In the plane that is seen from below, X runs the other way.
    ResbufList vertex = entity("VERTEX", {{10, AcGePoint3d(3, 1, 0)}, {42, 0.5}, {70, 0}});
    acdbTransformGroups(vertex, kShift, -AcGeVector3d::kZAxis);
    EXPECT_TRUE(point(vertex, 10).isEqualTo({-2, -2, 0}));

    ResbufList inSpace = entity("VERTEX", {{10, AcGePoint3d(3, 1, 0)}, {70, 32}});
    acdbTransformGroups(inSpace, kShift, -AcGeVector3d::kZAxis);
    EXPECT_TRUE(point(inSpace, 10).isEqualTo({8, -2, 0}));

    ResbufList face = entity("VERTEX", {{10, AcGePoint3d(0, 0, 0)}, {70, 128}, {71, 1}});
    acdbTransformGroups(face, kShift);
    EXPECT_TRUE(touchedCodes(face).empty());
}

TEST(Transform, MultileadersAreReadByTheirBraces)
{
    ResbufList leader = entity("MULTILEADER", {{300, "CONTEXT_DATA{"},
                                               {40, 1.0},
                                               {10, AcGePoint3d(1, 0, 0)},
                                               {41, 3.0},
                                               {304, "text ending in {"},
                                               {11, AcGePoint3d(0, 0, 1)},
                                               {12, AcGePoint3d(5, 0, 0)},
                                               {13, AcGePoint3d(1, 0, 0)},
                                               {42, 0.0},
                                               {302, "LEADER{"},
                                               {10, AcGePoint3d(4, 0, 0)},
                                               {11, AcGePoint3d(1, 0, 0)},
                                               {304, "LEADER_LINE{"},
                                               {10, AcGePoint3d(0, 2, 0)},
                                               {305, "}"},
                                               {40, 2.0},
                                               {303, "}"},
                                               {110, AcGePoint3d(0, 0, 0)},
                                               {301, "}"},
                                               {10, AcGePoint3d(1, 1, 1)},
                                               {42, 4.0}});
    acdbTransformGroups(leader, AcGeMatrix3d::scaling(2.0) * kTurn);
    std::vector<AcGePoint3d> tens;
    for (const resbuf &group : leader) {
        if (group.restype == 10)
            tens.push_back(group.point());
    }
    ASSERT_EQ(tens.size(), 4u);
    EXPECT_TRUE(tens[0].isEqualTo({0, 2, 0}, 1e-9));
    EXPECT_TRUE(tens[1].isEqualTo({0, 8, 0}, 1e-9));
    EXPECT_TRUE(tens[2].isEqualTo({-4, 0, 0}, 1e-9));
    EXPECT_EQ(tens[3], AcGePoint3d(1, 1, 1)); // Factors of a block, no place.
    EXPECT_TRUE(point(leader, 13).isEqualTo({0, 1, 0}, 1e-9));
    EXPECT_NEAR(real(leader, 42), kQuarter, 1e-9);
    EXPECT_NEAR(leader.back().real(), 8.0, 1e-12);
}

TEST(Transform, ANumberTooLargeChangesNothing)
{
    const ResbufList before = entity("LINE", {{10, AcGePoint3d(1e308, 0, 0)}, {11, AcGePoint3d(1, 2, 0)}});
    ResbufList list = before;
    EXPECT_EQ(acdbTransformGroups(list, AcGeMatrix3d::translation({1e308, 5, 0})), Acad::eInvalidInput);
    EXPECT_EQ(list, before);
    EXPECT_EQ(touchedCodes(list), touchedCodes(before));
}
