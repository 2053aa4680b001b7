// What two drawings have in common, what only one of them has, and where.
#include "quillnote/aids/drawing_difference.h"

#include "host/acgi/query/install.h"
#include "tests/support/memory_drawing.h"

#include <gmock/gmock.h>

#include <random>

namespace
{

using tests::Groups;

struct Drawing {
    Drawing() { acgi::install(); }

    tests::MemoryDrawing made;
    std::unique_ptr<AcDbDatabase> database;

    std::uint64_t line(double x, double y, double dx = 10, double dy = 0, const char *layer = "0")
    {
        return made.entity("LINE", {{8, layer},
                                    {100, "AcDbLine"},
                                    {10, AcGePoint3d(x, y, 0)},
                                    {11, AcGePoint3d(x + dx, y + dy, 0)}});
    }
    ComparedSpace space()
    {
        if (!database)
            database = made.open();
        return {database.get(), database->modelSpaceId()};
    }
};

} // namespace

TEST(DrawingDifference, HandlesOrderAndGraphicsForOtherProgramsDoNotCount)
{
    std::mt19937 random(3);
    Drawing old;
    Drawing now;
    std::vector<std::pair<int, int>> places;
    for (int i = 0; i < 200; ++i)
        places.emplace_back(int(random() % 40), int(random() % 40)); // Some stand twice.
    for (const auto &[x, y] : places)
        old.line(x, y);
    std::ranges::shuffle(places, random);
    now.line(500, 500);
    for (Drawing *const each : {&old, &now})
        each->made.entity("LINE", {{8, "0"},
                                   {92, 1},
                                   {310, QByteArray(each == &old ? "a" : "b")},
                                   {100, "AcDbLine"},
                                   {10, AcGePoint3d(1, 2, 0)},
                                   {11, AcGePoint3d(3, 4, 0)}});
    for (const auto &[x, y] : places)
        now.line(x, y);
    now.line(places[0].first, places[0].second);
    const DrawingDifference difference = compareSpaces(old.space(), now.space(), 0.0);
    EXPECT_TRUE(difference.onlyOld.empty());
    EXPECT_EQ(difference.onlyNew.size(), 2U);
    EXPECT_TRUE(compareSpaces(old.space(), old.space(), 0.0).places.empty());
    // The other way round.
    EXPECT_EQ(compareSpaces(now.space(), old.space(), 0.0).onlyOld.size(), 2U);
}

TEST(DrawingDifference, PointsMayLieAToleranceApart)
{
    Drawing old;
    Drawing now;
    for (int i = 0; i < 50; ++i) {
        old.line(10 * i, 0);
        now.line(10 * i + 0.09, -0.09);
    }
    const auto moved = now.line(0, 300.2);
    old.line(0, 300);
    const auto changed = [&](double tolerance) { return compareSpaces(old.space(), now.space(), tolerance); };
    EXPECT_EQ(changed(0.0).onlyNew.size(), 51U);
    EXPECT_EQ(changed(0.05).onlyNew.size(), 51U);
    const DrawingDifference tolerant = changed(0.1);
    EXPECT_EQ(tolerant.onlyNew, std::unordered_set{now.database->getAcDbObjectId({moved})});
    EXPECT_EQ(tolerant.onlyOld.size(), 1U);
    EXPECT_FALSE(changed(0.5).any());
}

TEST(DrawingDifference, OtherNumbersStayWhatTheyAre)
{
    const Groups circle{{8, "0"}, {100, "AcDbCircle"}, {10, AcGePoint3d(5, 5, 0)}};
    const auto with = [&](double radius, int color) {
        Groups groups = circle;
        groups.push_back({40, radius});
        groups.insert(groups.begin() + 1, {62, color});
        auto drawing = std::make_unique<Drawing>();
        drawing->made.entity("CIRCLE", groups);
        return drawing;
    };
    const auto base = with(2.0, 1);
    EXPECT_TRUE(compareSpaces(base->space(), with(2.5, 1)->space(), 1.0).any());
    EXPECT_TRUE(compareSpaces(base->space(), with(2.0, 2)->space(), 1.0).any());
    EXPECT_FALSE(compareSpaces(base->space(), with(2.001, 1)->space(), 1.0).any());
}

TEST(DrawingDifference, PlacesHoldWhatLiesTogether)
{
    Drawing old;
    Drawing now;
    for (Drawing *const each : {&old, &now}) {
        each->line(0, 0, 1000, 0);
        each->line(0, 1000, 1000, 0);
    }
    old.line(100, 900);
    now.line(105, 905, 10, 10);
    now.line(800, 100, 0, 20);
    now.line(0, 0, 1000, 1000); // Across everything: a place of its own.
    const std::vector<DifferingPlace> places = compareSpaces(old.space(), now.space(), 0.0).places;
    ASSERT_EQ(places.size(), 3U);
    EXPECT_EQ(places[0].box.maxPoint(), AcGePoint3d(1000, 1000, 0));
    EXPECT_EQ(places[1].box.minPoint(), AcGePoint3d(100, 900, 0));
    EXPECT_EQ(places[1].box.maxPoint(), AcGePoint3d(115, 915, 0));
    EXPECT_EQ(std::pair(places[1].removed, places[1].added), std::pair(std::size_t(1), std::size_t(1)));
    EXPECT_EQ(places[2].box.minPoint(), AcGePoint3d(800, 100, 0));
}

TEST(DrawingDifference, WhatIsNotSeenAndMissingSpacesCountAsNothing)
{
    Drawing old;
    Drawing now;
    now.made.layer("OFF", {.flags = 1});
    now.line(0, 0, 5, 5, "OFF");
    EXPECT_FALSE(compareSpaces(old.space(), now.space(), 0.0).any());
    Drawing other;
    other.line(1, 1);
    EXPECT_EQ(compareSpaces({old.space().database, {}}, other.space(), 0.0).onlyNew.size(), 1U);
    EXPECT_TRUE(compareSpaces(old.space(), other.space(), 0.0, [](const QString &, double) {
                    return false;
                }).isStopped);
}
