// The index finds what looking at every entity finds, before and after changes.
#include "host/acgi/query/spatial_index.h"

#include "host/acdb/dbundo.h"
#include "host/acdb/owngroups.h"
#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

#include <random>

using tests::Groups;
using tests::MemoryDrawing;

static std::vector<std::uint64_t> handlesOf(const std::vector<AcDbObjectId> &ids)
{
    std::vector<std::uint64_t> handles;
    for (const AcDbObjectId id : ids)
        handles.push_back(id.handle().value);
    return handles;
}

using Handles = std::vector<std::uint64_t>;

class SpatialIndex : public testing::Test
{
protected:
    void open()
    {
        database = drawing.open();
        space = database->modelSpaceId();
    }
    acgi::SpatialIndex &index() { return acgi::spatialIndexOf(*database); }
    AcDbObjectId id(std::uint64_t handle) const { return database->getAcDbObjectId({handle}); }
    Handles near(double x, double y) { return handlesOf(index().atPoint(space, {x, y, 0}, 0.5)); }

    std::uint64_t line(double x, double y, std::uint64_t block = 0)
    {
        return drawing.entity("LINE", {{10, AcGePoint3d(x, y, 0)}, {11, AcGePoint3d(x + 2, y + 2, 0)}},
                              block);
    }

    MemoryDrawing drawing;
    std::unique_ptr<AcDbDatabase> database;
    AcDbObjectId space;
};

TEST_F(SpatialIndex, AgreesWithLookingAtEverything)
{
    std::mt19937 random(20240611);
    std::uniform_real_distribution<double> place(0.0, 100.0);
    std::uniform_real_distribution<double> size(0.1, 8.0);
    const std::uint64_t block = drawing.block("B");
    line(0, 0, block);
    line(-3, 1, block);
    drawing.entity("CIRCLE", {{10, AcGePoint3d(3, -2, 0)}, {40, 1.5}}, block);
    const std::uint64_t nested = drawing.block("N");
    drawing.entity("INSERT", {{2, "B"}, {10, AcGePoint3d(1, 1, 0)}, {50, 30.0}}, nested);
    drawing.entity("TEXT", {{1, "wide"}, {10, AcGePoint3d(-2, 3, 0)}, {40, 1.0}}, nested);
    for (int i = 0; i < 400; ++i) {
        const AcGePoint3d at(place(random), place(random), 0);
        const AcGePoint3d to = at + AcGeVector3d(size(random) - 4, size(random) - 4, 0);
        if (i % 4 == 0)
            drawing.entity("CIRCLE", {{10, at}, {40, size(random)}});
        else if (i % 40 == 1)
            drawing.entity("INSERT", {{2, "N"}, {10, at}, {50, place(random)}, {70, 3}, {44, 9.0}});
        else if (i % 4 == 1)
            drawing.entity("INSERT", {{2, "B"}, {10, at}, {41, size(random)}, {50, place(random)}});
        else if (i % 40 == 2)
            drawing.entity("RAY", {{10, at}, {11, to}});
        else
            drawing.entity("LINE", {{10, at}, {11, to}});
    }
    open();
    std::vector<acgi::Window> windows;
    std::vector<Handles> expectedCrossing;
    for (int i = 0; i < 100; ++i) {
        const AcGePoint3d one(place(random), place(random), 0);
        const AcGePoint3d other = one + AcGeVector3d(size(random) * 4, size(random) * 4, 0);
        const acgi::Window window = acgi::Window::fromCorners(one, other, i % 3 == 0 ? 0.0 : 0.4);
        Handles expectedInside;
        Handles crossing;
        for (const std::uint32_t entity : database->blockContents(space)->entities) {
            readEntity(AcDbObjectId(database->stub(entity)), [&](const AcDbEntity &e) {
                if (acgi::liesInside(e, window))
                    expectedInside.push_back(e.handle().value);
                if (acgi::crosses(e, window))
                    crossing.push_back(e.handle().value);
            });
        }
        EXPECT_EQ(handlesOf(index().insideWindow(space, window)), expectedInside);
        EXPECT_EQ(handlesOf(index().crossingWindow(space, window)), crossing);
        windows.push_back(window);
        expectedCrossing.push_back(std::move(crossing));
    }
    const auto together = index().crossingWindows(space, windows);
    ASSERT_EQ(together.size(), windows.size());
    for (std::size_t i = 0; i < windows.size(); ++i)
        EXPECT_EQ(handlesOf(together[i]), expectedCrossing[i]) << i;
}

TEST_F(SpatialIndex, OrdersByDrawingAndSortsOutWhatHasNoBox)
{
    const std::uint64_t first = line(0, 0);
    const std::uint64_t endless =
        drawing.entity("XLINE", {{10, AcGePoint3d(0, 1, 0)}, {11, AcGePoint3d(1, 0, 0)}});
    const std::uint64_t solid = drawing.entity("3DSOLID", {});
    const std::uint64_t last = line(0, 0);
    const std::uint64_t onPaper = line(0, 0, drawing.paperSpace());
    const std::uint64_t block = drawing.block("E");
    drawing.entity("RAY", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(1, 0, 0)}}, block);
    const std::uint64_t insert = drawing.entity("INSERT", {{2, "E"}, {10, AcGePoint3d(500, 500, 0)}});
    open();
    EXPECT_EQ(near(1, 1), (Handles{first, endless, last}));
    EXPECT_EQ(handlesOf(index().query(space, AcDbExtents({0, 0, 0}, {1, 1, 0}))),
              (Handles{first, endless, last, insert}));
    EXPECT_EQ(near(900, 500), Handles{insert});
    EXPECT_EQ(handlesOf(index().withoutExtents(space)), Handles{solid});
    EXPECT_EQ(handlesOf(index().atPoint(database->paperSpaceId(), {1, 1, 0}, 0.5)), Handles{onPaper});
    EXPECT_EQ(index().extents(space).maxPoint(), AcGePoint3d(2, 2, 0));
    EXPECT_TRUE(index().query(space, AcDbExtents()).empty());
}

TEST_F(SpatialIndex, FollowsChangesAndUndo)
{
    const std::uint64_t moved = line(0, 0);
    const std::uint64_t erased = line(0, 0);
    open();
    EXPECT_EQ(near(1, 1), (Handles{moved, erased}));
    std::uint64_t added = 0;
    {
        const AcDbUndoGroup group(*database, "change");
        AcDbObjectPointer<AcDbEntity>(id(moved), AcDb::kForWrite)
            ->transformBy(AcGeMatrix3d::translation({50, 0, 0}));
        AcDbObjectPointer<AcDbEntity>(id(erased), AcDb::kForWrite)->erase();
        AcDbObjectPointer<AcDbBlockTableRecord> record(space, AcDb::kForWrite);
        AcDbEntity *const entity = acdbNewEntity("LINE", {tests::Group(10, AcGePoint3d(0, 0, 0)),
                                                          tests::Group(11, AcGePoint3d(2, 2, 0))})
                                       .release();
        AcDbObjectId newId;
        ASSERT_EQ(record->appendAcDbEntity(newId, entity), Acad::eOk);
        entity->close();
        added = newId.handle().value;
    }
    EXPECT_EQ(near(1, 1), Handles{added});
    EXPECT_EQ(near(51, 1), Handles{moved});
    EXPECT_EQ(index().extents(space).maxPoint(), AcGePoint3d(52, 2, 0));
    database->undo().undo();
    EXPECT_EQ(near(1, 1), (Handles{moved, erased}));
    EXPECT_TRUE(near(51, 1).empty());
    EXPECT_EQ(index().extents(space).maxPoint(), AcGePoint3d(2, 2, 0));
    database->undo().redo();
    EXPECT_EQ(near(1, 1), Handles{added});
    EXPECT_EQ(near(51, 1), Handles{moved});
}

TEST_F(SpatialIndex, FollowsPartsAndBlocks)
{
    const std::uint64_t block = drawing.block("B");
    const std::uint64_t inBlock = line(0, 0, block);
    const std::uint64_t insert = drawing.entity("INSERT", {{2, "B"}, {10, AcGePoint3d(10, 0, 0)}});
    const std::uint64_t polyline = drawing.entity("POLYLINE", {{70, 8}, {10, AcGePoint3d(0, 0, 0)}});
    const std::uint64_t vertex = drawing.subEntity("VERTEX", {{10, AcGePoint3d(0, 30, 0)}, {70, 32}});
    drawing.subEntity("VERTEX", {{10, AcGePoint3d(5, 30, 0)}, {70, 32}});
    open();
    EXPECT_EQ(near(11, 1), Handles{insert});
    EXPECT_EQ(near(3, 30), Handles{polyline});
    const auto move = [&](std::uint64_t handle, const AcGeVector3d &offset) {
        AcDbObjectPointer<AcDbEntity>(id(handle), AcDb::kForWrite)
            ->transformBy(AcGeMatrix3d::translation(offset));
    };
    move(inBlock, {20, 0, 0});
    EXPECT_TRUE(near(11, 1).empty());
    EXPECT_EQ(near(31, 1), Handles{insert});
    move(vertex, {0, 20, 0});
    EXPECT_EQ(near(0, 50), Handles{polyline});
    // An entity that is open for write when the question comes counts as it is then.
    AcDbObjectPointer<AcDbEntity> opened(id(insert), AcDb::kForWrite);
    ASSERT_TRUE(opened);
    EXPECT_EQ(near(31, 1), Handles{insert});
}

TEST_F(SpatialIndex, SurvivesManyChangesAndTheEndOfItsDrawing)
{
    std::vector<std::uint64_t> handles;
    for (int i = 0; i < 6000; ++i)
        handles.push_back(line(i * 10.0, 0));
    open();
    EXPECT_EQ(near(1, 1), Handles{handles[0]});
    for (const std::uint64_t handle : handles)
        AcDbObjectPointer<AcDbEntity>(id(handle), AcDb::kForWrite)
            ->transformBy(AcGeMatrix3d::translation({0, 100, 0}));
    EXPECT_TRUE(near(1, 1).empty());
    EXPECT_EQ(near(10001, 101), Handles{handles[1000]});
    open(); // Another drawing, maybe at the same address: nothing of the old one may answer.
    EXPECT_EQ(near(1, 1), Handles{handles[0]});
}

TEST_F(SpatialIndex, IsBuiltInSlicesWhileTheDrawingChanges)
{
    std::vector<std::uint64_t> lines;
    for (int i = 0; i < 20000; ++i)
        lines.push_back(line(i % 200 * 10.0, i / 200 * 10.0));
    open();
    ASSERT_FALSE(index().prepare(space, 0));
    const auto move = [&](std::uint64_t handle, AcGeVector3d way) {
        AcDbObjectPointer<AcDbEntity>(id(handle), AcDb::kForWrite)
            ->transformBy(AcGeMatrix3d::translation(way));
    };
    // One that stands in the slices made already, and one that does not yet.
    move(lines.front(), {-500, 0, 0});
    move(lines.back(), {0, 7777, 0});
    AcDbObjectPointer<AcDbEntity>(id(lines[1]), AcDb::kForWrite)->erase();
    while (!index().prepare(space, 1)) {
    }
    EXPECT_EQ(near(-499, 1), Handles{lines.front()});
    EXPECT_EQ(near(1, 1), Handles());
    EXPECT_EQ(near(11, 1), Handles());
    EXPECT_EQ(near(1991, 991 + 7777), Handles{lines.back()});
    EXPECT_EQ(near(21, 1), Handles{lines[2]});
    EXPECT_EQ(index().query(space, index().extents(space)).size(), lines.size() - 1);
}

TEST_F(SpatialIndex, AnswersWhileItIsBeingBuilt)
{
    for (int i = 0; i < 5000; ++i)
        line(i * 10.0, 0);
    open();
    ASSERT_FALSE(index().prepare(space, 0));
    EXPECT_EQ(near(49991, 1).size(), 1U);
    EXPECT_TRUE(index().prepare(space, 0));
}
