// What a transformed entity draws is what the entity drew, transformed: kind by kind, matrix by matrix.
#include "host/acdb/dbtransform.h"
#include "host/acge/geextents.h"
#include "host/acgi/entity_groups.h"
#include "host/acgi/kinds/draw_entity.h"

#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

#include <algorithm>

using tests::Groups;
using tests::MemoryDrawing;

/// Everything drawn, in world coordinates: chains of points, and arcs.
class Recorder : public AcGiGeometry
{
public:
    std::vector<acgi::Loop> chains;
    std::vector<acgi::Loop> areas;
    std::vector<acgi::Arc> arcs;
    std::vector<std::pair<AcGePoint3d, AcGeVector3d>> rays;

    void polyline(std::uint32_t count, const AcGePoint3d *points) override
    {
        acgi::Loop &chain = chains.emplace_back();
        for (std::uint32_t i = 0; i < count; ++i)
            chain.push_back(toWorld(points[i]));
    }
    void arc(const acgi::Arc &arc) override { arcs.push_back(toWorld(arc)); }
    void fill(std::span<const acgi::Loop> loops) override
    {
        for (const acgi::Loop &loop : loops) {
            for (AcGePoint3d &point : areas.emplace_back(loop))
                point = toWorld(point);
        }
    }
    void text(const acgi::TextLine &line) override
    {
        const AcGePoint3d frame[] = {line.position, line.position + line.direction * line.width,
                                     line.position + line.up};
        polyline(3, frame);
    }
    void infiniteLine(const AcGePoint3d &base, const AcGeVector3d &direction, bool) override
    {
        rays.emplace_back(toWorld(base), (modelToWorld() * direction).normal());
    }
};

static void expectNear(const AcGePoint3d &a, const AcGePoint3d &b)
{
    EXPECT_TRUE(a.isEqualTo(b, 1e-6))
        << a.x << ' ' << a.y << ' ' << a.z << " is not " << b.x << ' ' << b.y << ' ' << b.z;
}

/// The same curve, whichever way round and from whichever point of a whole circle.
static void expectSameArc(const acgi::Arc &arc, const acgi::Arc &expected)
{
    std::vector<AcGePoint3d> points;
    std::vector<AcGePoint3d> expectedPoints;
    arc.appendSamples(points);
    expected.appendSamples(expectedPoints);
    AcDbExtents box;
    AcDbExtents expectedBox;
    std::ranges::for_each(points, [&](const AcGePoint3d &p) { box.addPoint(p); });
    std::ranges::for_each(expectedPoints, [&](const AcGePoint3d &p) { expectedBox.addPoint(p); });
    EXPECT_EQ(arc.isWhole(), expected.isWhole());
    expectNear({box.minPoint().x, box.minPoint().y, 0},
               {expectedBox.minPoint().x, expectedBox.minPoint().y, 0});
    expectNear({box.maxPoint().x, box.maxPoint().y, 0},
               {expectedBox.maxPoint().x, expectedBox.maxPoint().y, 0});
    expectNear(arc.centre, expected.centre);
    if (arc.isWhole())
        return;
    expectNear(arc.at(arc.start + arc.sweep / 2), expected.at(expected.start + expected.sweep / 2));
    const bool reversed = !points.front().isEqualTo(expectedPoints.front(), 1e-6);
    expectNear(points.front(), reversed ? expectedPoints.back() : expectedPoints.front());
    expectNear(points.back(), reversed ? expectedPoints.front() : expectedPoints.back());
}

/// The same closed line, whose curves may be sampled at other points.
static void expectSameArea(const acgi::Loop &loop, const acgi::Loop &expected)
{
    constexpr double kSampling = 0.02;
    for (const AcGePoint3d &point : loop) {
        double nearest = 1e9;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const AcGePoint3d &from = expected[i];
            const AcGeVector3d side = expected[(i + 1) % expected.size()] - from;
            const double length = side.dotProduct(side);
            const double along =
                length > 0.0 ? std::clamp((point - from).dotProduct(side) / length, 0.0, 1.0) : 0.0;
            nearest = std::min(nearest, point.distanceTo(from + side * along));
        }
        EXPECT_LT(nearest, kSampling) << point.x << ' ' << point.y << ' ' << point.z;
    }
}

struct Subject {
    const char *name;
    const char *kind;
    Groups groups;
    std::vector<Groups> vertices = {};
    bool flatOnly = false; ///< Has no form outside the XY plane.
};

class TransformDraws : public testing::TestWithParam<Subject>
{
};

static std::uint64_t addSubject(MemoryDrawing &drawing, const Subject &subject)
{
    const std::uint64_t block = drawing.block("B", {1, 0, 0});
    drawing.entity("LINE", {{10, AcGePoint3d(1, 1, 0)}, {11, AcGePoint3d(4, 2, 1)}}, block);
    drawing.entity("LWPOLYLINE", {{70, 0}, {10, AcGePoint2d(1, 1)}, {42, 0.4}, {10, AcGePoint2d(3, 7)}},
                   block);
    const std::uint64_t handle = drawing.entity(subject.kind, subject.groups);
    for (const Groups &vertex : subject.vertices)
        drawing.subEntity("VERTEX", vertex);
    return handle;
}

static void transform(AcDbObjectId id, const AcGeMatrix3d &matrix)
{
    AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
    const AcGeVector3d normal = EntityGroups(*entity).normal();
    ASSERT_EQ(acdbTransformGroups(entity->editGroups(), matrix), Acad::eOk);
    for (const AcDbObjectId part : acdbSubEntities(id)) {
        AcDbObjectPointer<AcDbEntity> vertex(part, AcDb::kForWrite);
        ASSERT_EQ(acdbTransformGroups(vertex->editGroups(), matrix, normal), Acad::eOk);
    }
}

static Recorder record(AcDbObjectId id)
{
    Recorder drawn;
    readEntity(id, [&](const AcDbEntity &entity) { EXPECT_TRUE(acgi::drawEntity(entity, drawn)); });
    return drawn;
}

static void compare(const Recorder &before, const Recorder &after, const AcGeMatrix3d &matrix)
{
    ASSERT_EQ(after.chains.size(), before.chains.size());
    ASSERT_EQ(after.arcs.size(), before.arcs.size());
    ASSERT_EQ(after.areas.size(), before.areas.size());
    ASSERT_EQ(after.rays.size(), before.rays.size());
    EXPECT_FALSE(before.chains.empty() && before.arcs.empty() && before.areas.empty() && before.rays.empty());
    for (std::size_t i = 0; i < before.areas.size(); ++i) {
        acgi::Loop expected = before.areas[i];
        for (AcGePoint3d &point : expected)
            point.transformBy(matrix);
        expectSameArea(after.areas[i], expected);
        expectSameArea(expected, after.areas[i]);
    }
    for (std::size_t i = 0; i < before.rays.size(); ++i) {
        expectNear(after.rays[i].first, matrix * before.rays[i].first);
        expectNear(AcGePoint3d() + after.rays[i].second,
                   AcGePoint3d() + (matrix * before.rays[i].second).normal());
    }
    for (std::size_t i = 0; i < before.chains.size(); ++i) {
        ASSERT_EQ(after.chains[i].size(), before.chains[i].size());
        for (std::size_t j = 0; j < before.chains[i].size(); ++j)
            expectNear(after.chains[i][j], matrix * before.chains[i][j]);
    }
    for (std::size_t i = 0; i < before.arcs.size(); ++i)
        expectSameArc(after.arcs[i], before.arcs[i].transformed(matrix));
}

TEST_P(TransformDraws, WhatItDrewTransformed)
{
    const AcGeMatrix3d shift = AcGeMatrix3d::translation({100, -20, 0});
    const AcGeMatrix3d turn = AcGeMatrix3d::rotation(kGePi / 2, AcGeVector3d::kZAxis, {3, 4, 0});
    const AcGeMatrix3d mirror = AcGeMatrix3d::mirroring({2, 0, 0}, AcGeVector3d::kYAxis);
    const AcGeMatrix3d scale = AcGeMatrix3d::scaling(2.5, {1, 1, 0});
    const AcGeMatrix3d tilt = AcGeMatrix3d::rotation(1.1, {1, 2, 0.5}, {0, 1, 0});
    const std::pair<const char *, AcGeMatrix3d> flat[] = {{"shift", shift},
                                                          {"turn", turn},
                                                          {"mirror", mirror},
                                                          {"scale", scale},
                                                          {"all", shift * mirror * turn * scale}};
    const std::pair<const char *, AcGeMatrix3d> space[] = {{"lift", AcGeMatrix3d::translation({1, 2, 3})},
                                                           {"tilt", tilt},
                                                           {"mirrored tilt", mirror * tilt * scale}};
    const auto check = [](const char *name, const AcGeMatrix3d &matrix) {
        SCOPED_TRACE(name);
        MemoryDrawing drawing;
        const std::uint64_t handle = addSubject(drawing, GetParam());
        const std::unique_ptr<AcDbDatabase> database = drawing.open();
        const AcDbObjectId id = database->getAcDbObjectId({handle});
        const Recorder before = record(id);
        transform(id, matrix);
        compare(before, record(id), matrix);
    };
    for (const auto &[name, matrix] : flat)
        check(name, matrix);
    for (const auto &[name, matrix] : space) {
        if (!GetParam().flatOnly)
            check(name, matrix);
    }
}

static const tests::Group kFromBelow(210, AcGePoint3d(0, 0, -1));
static const tests::Group kTilted(210, AcGePoint3d(0.48, 0.6, 0.64));

// clang-format off
static const Subject kSubjects[] = {
    {"Line", "LINE", {{10, AcGePoint3d(1, 2, 3)}, {11, AcGePoint3d(4, 6, 5)}}},
    {"Circle", "CIRCLE", {{10, AcGePoint3d(1, 2, 3)}, {40, 2.0}}},
    {"TiltedCircle", "CIRCLE", {{10, AcGePoint3d(1, 2, 3)}, {40, 2.0}, kTilted}},
    {"Arc", "ARC", {{10, AcGePoint3d(1, 2, 0)}, {40, 2.0}, {50, 20.0}, {51, 130.0}}},
    {"ArcFromBelow", "ARC", {{10, AcGePoint3d(1, 2, 1)}, {40, 2.0}, {50, 300.0}, {51, 40.0}, kFromBelow}},
    {"TiltedArc", "ARC", {{10, AcGePoint3d(1, 2, 1)}, {40, 2.0}, {50, 300.0}, {51, 40.0}, kTilted}},
    {"EllipseArc", "ELLIPSE", {{10, AcGePoint3d(1, 2, 0)}, {11, AcGePoint3d(3, 1, 0)}, {40, 0.4}, {41, 0.3}, {42, 2.0}}},
    {"WholeEllipse", "ELLIPSE",
        {{10, AcGePoint3d(1, 2, 0)}, {11, AcGePoint3d(3, 1, 0)}, {40, 0.4}, {41, 0.0}, {42, 2 * kGePi}, kFromBelow}},
    {"Polyline", "LWPOLYLINE", {{70, 1}, {38, 2.0}, {10, AcGePoint2d(0, 0)}, {42, 0.5}, {10, AcGePoint2d(4, 0)},
        {10, AcGePoint2d(5, 5)}, {42, -0.3}}},
    {"WidePolylineFromBelow", "LWPOLYLINE", {{70, 0}, {10, AcGePoint2d(0, 0)}, {40, 1.0}, {41, 2.0},
        {10, AcGePoint2d(4, 0)}, {42, -0.3}, {10, AcGePoint2d(5, 5)}, kFromBelow}},
    {"OldPolyline", "POLYLINE", {{70, 0}, {10, AcGePoint3d(0, 0, 3)}, kTilted},
        {{{10, AcGePoint3d(0, 0, 3)}, {42, 0.6}}, {{10, AcGePoint3d(4, 1, 3)}}, {{10, AcGePoint3d(7, 3, 3)}}}},
    {"SpacePolyline", "POLYLINE", {{70, 8}, {10, AcGePoint3d(0, 0, 0)}},
        {{{10, AcGePoint3d(0, 0, 3)}, {70, 32}}, {{10, AcGePoint3d(4, 1, 2)}, {70, 32}}}},
    {"Spline", "SPLINE", {{100, "AcDbSpline"}, {71, 2}, {40, 0.0}, {40, 0.0}, {40, 0.0}, {40, 1.0}, {40, 1.0}, {40, 1.0},
        {10, AcGePoint3d(0, 0, 1)}, {10, AcGePoint3d(2, 4, 0)}, {10, AcGePoint3d(4, 0, 0)}}},
    {"Text", "TEXT", {{1, "abc"}, {10, AcGePoint3d(1, 2, 0)}, {40, 2.0}, {50, 30.0}, {51, 15.0}}},
    {"CentredBackwardText", "TEXT", {{1, "abc"}, {10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(1, 2, 1)}, {40, 2.0},
        {41, 0.7}, {71, 2}, {72, 1}, {73, 2}, kFromBelow}},
    {"FittedText", "TEXT", {{1, "abc"}, {10, AcGePoint3d(1, 1, 0)}, {11, AcGePoint3d(6, 3, 0)}, {40, 2.0}, {50, 21.8}, {72, 5}}},
    {"Attribute", "ATTRIB", {{1, "abc"}, {10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(4, 4, 0)}, {40, 2.0}, {72, 2}, {74, 3},
        kTilted}},
    {"MTextWithRotation", "MTEXT", {{100, "AcDbMText"}, {1, "one\\Ptwo"}, {10, AcGePoint3d(1, 2, 0)}, {40, 2.0}, {71, 6},
        {50, 25.0}}},
    {"MTextWithDirection", "MTEXT", {{100, "AcDbMText"}, {1, "one two"}, {10, AcGePoint3d(1, 2, 0)}, {40, 2.0}, {41, 4.0},
        {71, 1}, {11, AcGePoint3d(0.6, 0.8, 0)}}},
    {"MTextUpright", "MTEXT", {{100, "AcDbMText"}, {1, "one"}, {10, AcGePoint3d(1, 2, 0)}, {40, 2.0}, {71, 3}}},
    {"Insert", "INSERT", {{2, "B"}, {10, AcGePoint3d(3, 1, 0)}, {41, 2.0}, {42, -0.5}, {50, 30.0}}},
    {"InsertGridFromBelow", "INSERT", {{2, "B"}, {10, AcGePoint3d(3, 1, 2)}, {50, 30.0}, {70, 2}, {71, 3}, {44, 10.0},
        {45, -4.0}, kFromBelow}},
    {"HatchOfEdges", "HATCH", {{100, "AcDbHatch"}, {10, AcGePoint3d(0, 0, 2)}, {91, 2}, {92, 1}, {93, 4},
        {72, 1}, {10, AcGePoint2d(0, 0)}, {11, AcGePoint2d(2, 0)},
        {72, 2}, {10, AcGePoint2d(3, 0)}, {40, 1.0}, {50, 200.0}, {51, 320.0}, {73, 1},
        {72, 2}, {10, AcGePoint2d(3, 3)}, {40, 1.0}, {50, 20.0}, {51, 100.0}, {73, 0},
        {72, 4}, {94, 2}, {73, 0}, {74, 0}, {95, 6}, {96, 3}, {40, 0.0}, {40, 0.0}, {40, 0.0}, {40, 1.0}, {40, 1.0}, {40, 1.0},
        {10, AcGePoint2d(3, 3)}, {10, AcGePoint2d(0, 5)}, {10, AcGePoint2d(0, 0)}, {97, 0},
        {92, 3}, {72, 1}, {73, 1}, {93, 2}, {10, AcGePoint2d(1, 1)}, {42, 1.0}, {10, AcGePoint2d(2, 1)}, {42, 0.5},
        {97, 0}, {75, 0}, kFromBelow}},
    {"HatchOfEllipses", "HATCH", {{100, "AcDbHatch"}, {10, AcGePoint3d(0, 0, 0)}, {91, 1}, {92, 1}, {93, 2},
        {72, 3}, {10, AcGePoint2d(3, 0)}, {11, AcGePoint2d(2, 1)}, {40, 0.5}, {50, 20.0}, {51, 200.0}, {73, 1},
        {72, 3}, {10, AcGePoint2d(3, 0)}, {11, AcGePoint2d(2, 1)}, {40, 0.5}, {50, 20.0}, {51, 200.0}, {73, 0},
        {97, 0}, {75, 0}}},
    {"Solid", "SOLID", {{10, AcGePoint3d(0, 0, 1)}, {11, AcGePoint3d(4, 0, 1)}, {12, AcGePoint3d(1, 3, 1)},
        {13, AcGePoint3d(5, 3, 1)}, kTilted}},
    {"Face", "3DFACE", {{10, AcGePoint3d(0, 0, 1)}, {11, AcGePoint3d(4, 0, 0)}, {12, AcGePoint3d(1, 3, 0)},
        {13, AcGePoint3d(5, 3, 0)}}},
    {"Leader", "LEADER", {{71, 0}, {10, AcGePoint3d(0, 0, 1)}, {10, AcGePoint3d(4, 0, 0)}}},
    {"Multileader", "MULTILEADER", {{300, "CONTEXT_DATA{"}, {40, 1.0}, {10, AcGePoint3d(1, 0, 0)}, {41, 3.0},
        {304, "one\\Ptwo"}, {11, AcGePoint3d(0, 0, 1)}, {12, AcGePoint3d(5, 2, 0)}, {13, AcGePoint3d(0.8, 0.6, 0)},
        {171, 2}, {302, "LEADER{"}, {10, AcGePoint3d(4, 0, 0)}, {11, AcGePoint3d(1, 0, 0)}, {40, 2.0},
        {304, "LEADER_LINE{"}, {10, AcGePoint3d(0, 2, 0)}, {10, AcGePoint3d(2, 1, 0)}, {305, "}"}, {303, "}"},
        {301, "}"}, {40, 9.0}, {10, AcGePoint3d(1, 1, 1)}}},
    {"Multiline", "MLINE", {{100, "AcDbMline"}, {71, 1}, {10, AcGePoint3d(0, 0, 0)},
        {11, AcGePoint3d(0, 0, 0)}, {12, AcGePoint3d(1, 0, 0)}, {13, AcGePoint3d(0, 1, 0)}, {74, 1}, {41, 0.5}, {75, 0},
        {11, AcGePoint3d(8, 0, 0)}, {12, AcGePoint3d(1, 0, 0)}, {13, AcGePoint3d(0, 1, 0)}, {74, 1}, {41, 0.5}, {75, 0}}},
    {"Ray", "RAY", {{10, AcGePoint3d(0, 0, 1)}, {11, AcGePoint3d(0.6, 0.8, 0)}}},
    {"Image", "IMAGE", {{10, AcGePoint3d(1, 1, 0)}, {11, AcGePoint3d(0.5, 0.1, 0)}, {12, AcGePoint3d(-0.1, 0.5, 0)},
        {13, AcGePoint2d(10, 4)}, {280, 1}, {71, 1}, {91, 2}, {14, AcGePoint2d(0.5, -0.5)}, {14, AcGePoint2d(5.5, 1.5)}}},
};
// clang-format on
INSTANTIATE_TEST_SUITE_P(Kinds, TransformDraws, testing::ValuesIn(kSubjects),
                         [](const auto &row) { return row.param.name; });
