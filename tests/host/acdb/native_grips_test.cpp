// Grips of native entities: where they are, that what is dragged goes where it is dragged to, and that undo
// brings back the very groups.
#include "host/acdb/dbapi.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbtransient.h"
#include "host/acdb/dbundo.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/whole_drawing.h"

#include <gmock/gmock.h>

using tests::Groups;

static const AcGePoint3d kTilted(0.6, 0.0, 0.8); ///< Its plane's X axis is the world's Y axis.

struct GripRow {
    const char *name;
    const char *kind;
    Groups groups;
    std::vector<AcGePoint3d> places; ///< World.
    bool follows = true;             ///< Grips go where they are dragged, not just in that direction.
    const char *part = nullptr;      ///< Kind of what the entity owns.
    std::vector<Groups> parts = {};
};

static void PrintTo(const GripRow &row, std::ostream *out)
{
    *out << row.name;
}

class NativeGrips : public testing::TestWithParam<GripRow>
{
protected:
    NativeGrips()
    {
        acdbRegisterClasses();
        const std::uint64_t handle = drawing.entity(GetParam().kind, GetParam().groups);
        for (const Groups &groups : GetParam().parts)
            drawing.subEntity(GetParam().part, groups);
        database = drawing.open();
        id = database->getAcDbObjectId({handle});
    }
    std::vector<AcGePoint3d> grips() const
    {
        return AcDbObjectPointer<AcDbEntity>(id, AcDb::kForRead)->getGripPoints();
    }
    tests::MemoryDrawing drawing;
    std::unique_ptr<AcDbDatabase> database;
    AcDbObjectId id;
};

static bool standsAt(const std::vector<AcGePoint3d> &grips, const AcGePoint3d &place)
{
    return std::ranges::any_of(grips, [&](const AcGePoint3d &grip) { return grip.isEqualTo(place, 1e-9); });
}

TEST_P(NativeGrips, FollowTheDragAndComeBack)
{
    const std::vector<AcGePoint3d> places = grips();
    ASSERT_EQ(places.size(), GetParam().places.size());
    for (std::size_t i = 0; i < places.size(); ++i)
        EXPECT_TRUE(places[i].isEqualTo(GetParam().places[i], 1e-9)) << i;
    const auto before = tests::wholeDrawing(*database);
    const AcGeVector3d offset(0.0, 7.0, 0.0);
    for (int i = 0; i < int(places.size()); ++i) {
        {
            const AcDbUndoGroup step(*database, QStringLiteral("GRIP"));
            AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
            ASSERT_EQ(entity->moveGripPointsAt(std::span(&i, 1), offset), Acad::eOk) << i;
        }
        EXPECT_NE(tests::wholeDrawing(*database), before) << i;
        if (GetParam().follows) {
            EXPECT_TRUE(standsAt(grips(), places[std::size_t(i)] + offset)) << i;
        }
        EXPECT_TRUE(database->undo().undo());
        EXPECT_EQ(tests::wholeDifference(before, tests::wholeDrawing(*database)), QStringList()) << i;
    }
}

TEST_P(NativeGrips, OthersThereAreNot)
{
    const auto before = tests::wholeDrawing(*database);
    for (const int index : {-1, int(GetParam().places.size())}) {
        AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
        EXPECT_EQ(entity->moveGripPointsAt(std::span(&index, 1), {1, 0, 0}), Acad::eInvalidIndex);
    }
    EXPECT_EQ(tests::wholeDrawing(*database), before);
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Kinds, NativeGrips, testing::Values(
    GripRow{"Line", "LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(4, 2, 6)}}, {{0, 0, 0}, {4, 2, 6}, {2, 1, 3}}},
    GripRow{"Point", "POINT", {{102, "{APP"}, {10, AcGePoint3d(9, 9, 9)}, {102, "}"}, {10, AcGePoint3d(1, 2, 3)}}, {{1, 2, 3}}},
    GripRow{"Circle", "CIRCLE", {{10, AcGePoint3d(1, 1, 0)}, {40, 2.0}},
        {{1, 1, 0}, {3, 1, 0}, {1, 3, 0}, {-1, 1, 0}, {1, -1, 0}}, false},
    GripRow{"TiltedCircle", "CIRCLE", {{10, AcGePoint3d(1, 0, 5)}, {40, 2.0}, {210, kTilted}},
        {{3, 1, 4}, {3, 3, 4}, {1.4, 1, 5.2}, {3, -1, 4}, {4.6, 1, 2.8}}, false},
    GripRow{"Arc", "ARC", {{10, AcGePoint3d(0, 0, 1)}, {40, 2.0}, {50, 270.0}, {51, 90.0}},
        {{0, -2, 1}, {0, 2, 1}, {2, 0, 1}, {0, 0, 1}}, false},
    GripRow{"Ellipse", "ELLIPSE", {{10, AcGePoint3d(1, 0, 0)}, {11, AcGePoint3d(4, 0, 0)}, {40, 0.5}, {41, 0.0}, {42, 6.283185307179586}},
        {{1, 0, 0}, {5, 0, 0}, {1, 2, 0}, {-3, 0, 0}, {1, -2, 0}}, false},
    GripRow{"LightPolyline", "LWPOLYLINE", {{70, 1}, {38, 2.0}, {10, AcGePoint2d(0, 0)}, {42, 0.5}, {10, AcGePoint2d(3, 1)}},
        {{0, 0, 2}, {3, 1, 2}}},
    GripRow{"Polyline", "POLYLINE", {{66, 1}, {10, AcGePoint3d(0, 0, 5)}, {70, 0}, {210, kTilted}}, {{3, 0, 4}, {3, 2, 4}}, true,
        "VERTEX", {{{10, AcGePoint3d(0, 0, 5)}}, {{10, AcGePoint3d(2, 0, 5)}}}},
    GripRow{"Mesh", "POLYLINE", {{66, 1}, {10, AcGePoint3d(0, 0, 0)}, {70, 64}}, {{1, 2, 3}}, true,
        "VERTEX", {{{10, AcGePoint3d(1, 2, 3)}, {70, 192}}, {{10, AcGePoint3d()}, {70, 128}, {71, 1}}}},
    GripRow{"Spline", "SPLINE", {{100, "AcDbSpline"}, {71, 1}, {73, 2}, {74, 2}, {40, 0.0}, {10, AcGePoint3d(0, 0, 0)}, {10, AcGePoint3d(5, 0, 0)},
        {11, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(5, 0, 0)}}, {{0, 0, 0}, {5, 0, 0}}},
    GripRow{"FitSpline", "SPLINE", {{100, "AcDbSpline"}, {71, 3}, {74, 2}, {11, AcGePoint3d(1, 0, 0)}, {11, AcGePoint3d(5, 0, 1)}}, {{1, 0, 0}, {5, 0, 1}}},
    GripRow{"Text", "TEXT", {{10, AcGePoint3d(1, 2, 0)}, {40, 2.5}, {1, "a"}, {11, AcGePoint3d()}}, {{1, 2, 0}}},
    GripRow{"CentredText", "TEXT", {{10, AcGePoint3d(1, 2, 0)}, {40, 2.5}, {1, "a"}, {72, 1}, {11, AcGePoint3d(4, 2, 0)}, {73, 0}}, {{4, 2, 0}}},
    GripRow{"MiddleAttribute", "ATTDEF", {{10, AcGePoint3d(1, 2, 0)}, {40, 2.5}, {1, "a"}, {2, "T"}, {73, 0}, {74, 2}, {11, AcGePoint3d(4, 3, 0)}}, {{4, 3, 0}}},
    GripRow{"MText", "MTEXT", {{10, AcGePoint3d(1, 2, 3)}, {40, 2.5}, {1, "a"}, {210, kTilted}}, {{1, 2, 3}}},
    GripRow{"Insert", "INSERT", {{66, 1}, {2, "B"}, {10, AcGePoint3d(1, 0, 5)}, {210, kTilted}}, {{3, 1, 4}}, true,
        "ATTRIB", {{{10, AcGePoint3d(2, 2, 5)}, {40, 1.0}, {1, "x"}, {2, "T"}, {210, kTilted}}}},
    GripRow{"Solid", "SOLID", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(1, 0, 0)}, {12, AcGePoint3d(0, 1, 0)}, {13, AcGePoint3d(1, 1, 0)}},
        {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}}},
    GripRow{"Face", "3DFACE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(1, 0, 2)}, {12, AcGePoint3d(0, 1, 0)}, {13, AcGePoint3d(1, 1, 3)}},
        {{0, 0, 0}, {1, 0, 2}, {0, 1, 0}, {1, 1, 3}}},
    GripRow{"Ray", "RAY", {{10, AcGePoint3d(2, 0, 0)}, {11, AcGePoint3d(1, 0, 0)}}, {{2, 0, 0}, {3, 0, 0}}, false},
    GripRow{"Leader", "LEADER", {{76, 2}, {10, AcGePoint3d(0, 0, 0)}, {10, AcGePoint3d(3, 3, 0)}}, {{0, 0, 0}, {3, 3, 0}}},
    GripRow{"Dimension", "DIMENSION", {{2, "*D1"}, {10, AcGePoint3d(0, 9, 0)}, {11, AcGePoint3d(2, 9, 0)}, {13, AcGePoint3d()}, {14, AcGePoint3d(4, 0, 0)}}, {{2, 9, 0}}},
    GripRow{"Image", "IMAGE", {{10, AcGePoint3d(1, 1, 0)}, {11, AcGePoint3d(.1, 0, 0)}, {12, AcGePoint3d(0, .1, 0)}}, {{1, 1, 0}}},
    GripRow{"Viewport", "VIEWPORT", {{10, AcGePoint3d(5, 5, 0)}, {40, 4.0}, {41, 6.0}}, {{3, 2, 0}}},
    GripRow{"Unknown", "3DSOLID", {{10, AcGePoint3d(5, 5, 0)}}, {}}),
    [](const auto &row) { return row.param.name; });
// clang-format on

/// A drawing of one entity, whose grips are dragged.
struct OneEntity {
    OneEntity(const char *kind, const Groups &groups)
    {
        acdbRegisterClasses();
        tests::MemoryDrawing drawing;
        const std::uint64_t handle = drawing.entity(kind, groups);
        database = drawing.open();
        id = database->getAcDbObjectId({handle});
    }
    Acad::ErrorStatus drag(std::vector<int> grips, const AcGeVector3d &offset)
    {
        return AcDbObjectPointer<AcDbEntity>(id, AcDb::kForWrite)->moveGripPointsAt(grips, offset);
    }
    ResbufList groups() const { return AcDbObjectPointer<AcDbEntity>(id, AcDb::kForRead)->groups(); }
    double real(int code) const { return findGroup(groups(), code)->real(); }
    AcGePoint3d point(int code) const { return findGroup(groups(), code)->point(); }

    std::unique_ptr<AcDbDatabase> database;
    AcDbObjectId id;
};

TEST(NativeGrip, QuadrantsSetTheRadius)
{
    OneEntity circle("CIRCLE", {{10, AcGePoint3d(1, 1, 0)}, {40, 2.0}});
    EXPECT_EQ(circle.drag({2}, {3, 2, 0}), Acad::eOk);
    EXPECT_DOUBLE_EQ(circle.real(40), 5.0);
    EXPECT_EQ(circle.point(10), AcGePoint3d(1, 1, 0));
    EXPECT_EQ(circle.drag({1}, {-5, 0, 0}), Acad::eInvalidInput) << "onto the centre";
    EXPECT_DOUBLE_EQ(circle.real(40), 5.0);
}

TEST(NativeGrip, ArcsStayCounterClockwiseAndKeepTheirOtherPoints)
{
    OneEntity arc("ARC", {{10, AcGePoint3d(0, 0, 0)}, {40, 2.0}, {50, 0.0}, {51, 180.0}});
    EXPECT_EQ(arc.drag({2}, {0, -4, 0}), Acad::eOk);
    EXPECT_NEAR(arc.real(50), 180.0, 1e-9);
    EXPECT_NEAR(std::remainder(arc.real(51), 360.0), 0.0, 1e-9);
    EXPECT_EQ(arc.drag({2}, {0, 2, 0}), Acad::eInvalidInput) << "three points in a row are no arc";
    EXPECT_NEAR(arc.real(40), 2.0, 1e-12);
}

TEST(NativeGrip, TheLongerAxisOfAnEllipseIsTheMajorOne)
{
    // A quarter, from the end of the major axis to that of the minor one.
    OneEntity ellipse(
        "ELLIPSE",
        {{10, AcGePoint3d()}, {11, AcGePoint3d(4, 0, 0)}, {40, 0.5}, {41, 0.0}, {42, kGePi / 2.0}});
    EXPECT_EQ(ellipse.drag({2}, {0, 6, 0}), Acad::eOk);
    EXPECT_TRUE(ellipse.point(11).isEqualTo({0, 8, 0}));
    EXPECT_DOUBLE_EQ(ellipse.real(40), 0.5);
    EXPECT_NEAR(ellipse.real(41), 1.5 * kGePi, 1e-12) << "the quarter is still the one at the upper right";
    EXPECT_NEAR(ellipse.real(42), 2.0 * kGePi, 1e-12);
}

TEST(NativeGrip, ASplineForgetsFitPointsThatItDoesNotPassAnyMore)
{
    OneEntity spline("SPLINE", {{100, "AcDbSpline"},
                                {74, 1},
                                {10, AcGePoint3d(0, 0, 0)},
                                {10, AcGePoint3d(5, 0, 0)},
                                {11, AcGePoint3d(0, 0, 0)}});
    EXPECT_EQ(spline.drag({1}, {0, 1, 0}), Acad::eOk);
    EXPECT_EQ(findGroup(spline.groups(), 11), nullptr);
    EXPECT_EQ(findGroup(spline.groups(), 74)->integer(), 0);
}

TEST(NativeGrip, SeveralMoveOnceEach)
{
    OneEntity line("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(4, 0, 0)}});
    EXPECT_EQ(line.drag({1, 0, 1}, {1, 1, 0}), Acad::eOk);
    EXPECT_EQ(line.point(10), AcGePoint3d(1, 1, 0));
    EXPECT_EQ(line.point(11), AcGePoint3d(5, 1, 0));
    EXPECT_EQ(line.drag({0, 2}, {1, 1, 0}), Acad::eOk) << "the middle takes all along";
    EXPECT_EQ(line.point(10), AcGePoint3d(2, 2, 0));
    EXPECT_EQ(line.point(11), AcGePoint3d(6, 2, 0));
}

TEST(NativeGrip, PlaneFiguresStayInTheirPlane)
{
    OneEntity solid("SOLID", {{10, AcGePoint3d(0, 0, 1)},
                              {11, AcGePoint3d(1, 0, 1)},
                              {12, AcGePoint3d(0, 1, 1)},
                              {13, AcGePoint3d(1, 1, 1)}});
    EXPECT_EQ(solid.drag({3}, {1, 1, 8}), Acad::eOk);
    EXPECT_EQ(solid.point(13), AcGePoint3d(2, 2, 1));
}

TEST(NativeGrip, ADragThatIsOnlyShownLeavesWhatTheOriginalOwns)
{
    acdbRegisterClasses();
    tests::MemoryDrawing drawing;
    drawing.entity("POLYLINE", {{66, 1}, {70, 8}});
    drawing.subEntity("VERTEX", {{10, AcGePoint3d(1, 2, 3)}, {70, 32}});
    const std::uint64_t insert = drawing.entity("INSERT", {{66, 1}, {2, "B"}, {10, AcGePoint3d()}});
    drawing.subEntity("ATTRIB", {{10, AcGePoint3d(2, 2, 0)}, {40, 1.0}, {1, "x"}});
    const auto database = drawing.open();
    const auto before = tests::wholeDrawing(*database);
    constexpr int kFirst[] = {0};
    const auto polyline = AcDbTransient::copyOf(database->getAcDbObjectId({insert - 2}));
    EXPECT_EQ(polyline->entity().getGripPoints().size(), 1U);
    EXPECT_EQ(polyline->entity().moveGripPointsAt(kFirst, {1, 0, 0}), Acad::eOk);
    EXPECT_EQ(polyline->entity().getGripPoints().front(), AcGePoint3d(2, 2, 3));
    EXPECT_EQ(polyline->entity().transformBy(AcGeMatrix3d::translation({0, 5, 0})), Acad::eOk);
    EXPECT_EQ(polyline->entity().getGripPoints().front(), AcGePoint3d(2, 7, 3));
    const auto shown = AcDbTransient::copyOf(database->getAcDbObjectId({insert}));
    EXPECT_EQ(shown->entity().moveGripPointsAt(kFirst, {1, 0, 0}), Acad::eOk);
    const std::vector<AcDbObjectId> attributes = acdbSubEntities(shown->entity().objectId());
    ASSERT_EQ(attributes.size(), 1U);
    const AcDbObjectPointer<AcDbEntity> attribute(attributes.front(), AcDb::kForRead);
    EXPECT_EQ(findGroup(attribute->groups(), 10)->point(), AcGePoint3d(3, 2, 0));
    EXPECT_EQ(tests::wholeDifference(before, tests::wholeDrawing(*database)), QStringList());
    EXPECT_FALSE(database->hasChanges());
}

TEST(AnonymousBlocks, AreNumberedBehindThoseThereAre)
{
    acdbRegisterClasses();
    tests::MemoryDrawing drawing;
    drawing.block("*U2147483647"); // As other programs may name one.
    drawing.block("*U7");
    drawing.block("*D9");
    const auto database = drawing.open();
    AcDbObjectId first;
    {
        const AcDbUndoGroup step(*database, QStringLiteral("BLOCKS"));
        AcDbNewBlocks blocks(*database);
        for (const char *const name : {"*U2147483648", "*U2147483649"}) {
            const AcDbObjectId id = blocks.addAnonymous({1, 2, 3});
            AcDbObjectPointer<AcDbBlockTableRecord> block(
                static_cast<AcDbBlockTableRecord *>(id.stub()->object));
            EXPECT_EQ(block->getName(), name);
            EXPECT_EQ(block->origin(), AcGePoint3d(1, 2, 3));
            EXPECT_FALSE(block->isLayout());
            first = first.isNull() ? id : first;
        }
    }
    EXPECT_EQ(database->tableRecord(SymbolTable::block, QStringLiteral("*U2147483648")), first);
    EXPECT_TRUE(database->undo().undo());
    EXPECT_FALSE(database->hasChanges());
    EXPECT_TRUE(database->tableRecord(SymbolTable::block, QStringLiteral("*U2147483648")).isNull());
    EXPECT_TRUE(database->undo().redo());
    EXPECT_EQ(AcDbObjectPointer<AcDbBlockTableRecord>(first, AcDb::kForRead)->origin().z, 3.0);
}
