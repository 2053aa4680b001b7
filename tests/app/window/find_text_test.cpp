// Finding text in a drawing, and the numbers of the status line.
#include "app/window/drawing_search.h"
#include "app/window/find_bar.h"
#include "app/window/unit_text.h"
#include "tests/app/front_end/window_session.h"
#include "tests/support/script_front_end.h"

#include "host/acgi/query/install.h"

#include <gtest/gtest.h>

namespace
{

class FindTest : public testing::Test
{
protected:
    FindTest()
    {
        acgi::install(); // Extents of texts.
        tests::MemoryDrawing content;
        content.block("DOOR");
        content.entity("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(9, 9, 0)}});
        line = content.entity("TEXT", {{10, AcGePoint3d(100, 0, 0)}, {40, 5.0}, {1, "Pump room"}});
        paragraph = content.entity(
            "MTEXT",
            {{10, AcGePoint3d(500, 0, 0)}, {40, 5.0}, {71, 1}, {1, "{\\fArial;PUMP}\\PP-01 \\S1/2;"}});
        insert = content.entity("INSERT", {{66, 1}, {2, "DOOR"}, {10, AcGePoint3d(900, 0, 0)}});
        content.subEntity("ATTRIB", {{10, AcGePoint3d(900, 0, 0)}, {40, 5.0}, {1, "pump door"}, {2, "NAME"}});
        content.subEntity("SEQEND", {});
        content.entity("TEXT", {{10, AcGePoint3d(0, 50, 0)}, {40, 5.0}, {1, "泵房"}});
        drawing = std::make_unique<tests::OpenDrawing>(content.open());
    }

    std::uint64_t line = 0, paragraph = 0, insert = 0;
    std::unique_ptr<tests::OpenDrawing> drawing;
};

} // namespace

TEST_F(FindTest, LooksIntoTextsParagraphsAndAttributes)
{
    const auto found = window::findTexts(drawing->document(), QStringLiteral("pump"));
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[0].entity, drawing->id(line));
    EXPECT_EQ(found[1].entity, drawing->id(paragraph));
    EXPECT_EQ(found[1].text, u"PUMP P-01 1/2");
    EXPECT_EQ(found[2].entity, drawing->id(insert));
    EXPECT_EQ(found[2].text, u"pump door");
    EXPECT_EQ(window::findTexts(drawing->document(), QStringLiteral("泵")).size(), 1u);
    EXPECT_TRUE(window::findTexts(drawing->document(), QStringLiteral("Arial")).empty());
    EXPECT_TRUE(window::findTexts(drawing->document(), {}).empty());
}

TEST(FindTexts, LooksIntoDimensionsLeadersAndAllLayouts)
{
    tests::MemoryDrawing content;
    const auto picture = content.block("*D1");
    content.entity("MTEXT", {{100, "AcDbMText"}, {40, 2.0}, {1, "\\A1;pump 1200"}}, picture);
    const auto measured = content.entity("DIMENSION", {{2, "*D1"}, {1, ""}});
    const auto typed = content.entity("DIMENSION", {{2, "*D9"}, {1, "pump axis"}});
    const auto leader = content.entity("MULTILEADER", {{100, "AcDbMLeader"},
                                                       {300, "CONTEXT_DATA{"},
                                                       {290, 1},
                                                       {304, "see pump"},
                                                       {302, "LEADER{"},
                                                       {304, "LEADER_LINE{"},
                                                       {305, "}"},
                                                       {303, "}"},
                                                       {301, "}"}});
    const auto title = content.entity("TEXT", {{40, 5.0}, {1, "Pump house"}}, content.paperSpace());
    const tests::OpenDrawing drawing(content.open());
    const auto found = window::findTexts(drawing.document(), QStringLiteral("pump"));
    std::vector<AcDbObjectId> shown;
    for (const window::FoundText &each : found)
        shown.push_back(each.shown);
    EXPECT_EQ(shown,
              (std::vector{drawing.id(measured), drawing.id(typed), drawing.id(leader), drawing.id(title)}));
    EXPECT_EQ(found.back().space, drawing.database().paperSpaceId());
    EXPECT_EQ(found.front().text, u"pump 1200");
}

TEST_F(FindTest, BarStepsRoundAndSelects)
{
    tests::WindowSession session;
    window::FindBar bar(session.front);
    const auto centre = [&] { return drawing->document().view().centre.x; };
    const auto picked = [&] { return drawing->document().pickSet(); };
    drawing->document().pickSet() = {drawing->id(line)};
    session.play({
        [&] { bar.search(QStringLiteral("PUMP")); },
        [&] {
            EXPECT_NEAR(centre(), 100, 40);
            EXPECT_TRUE(bar.status().startsWith(u"1 / 3"));
            bar.step(1);
        },
        [&] {
            EXPECT_NEAR(centre(), 500, 40);
            EXPECT_EQ(picked(), (std::vector{drawing->id(line), drawing->id(paragraph)}));
            bar.step(1);
        },
        [&] {
            EXPECT_NEAR(centre(), 900, 40);
            EXPECT_EQ(picked(), (std::vector{drawing->id(line), drawing->id(insert)}));
            bar.step(1);
        },
        [&] {
            EXPECT_NEAR(centre(), 100, 40);
            EXPECT_EQ(picked(), std::vector{drawing->id(line)});
            bar.step(-1);
        },
        [&] {
            EXPECT_NEAR(centre(), 900, 40);
            bar.search(QStringLiteral("nothing like it"));
        },
        [&] {
            EXPECT_EQ(bar.count(), 0u);
            EXPECT_EQ(bar.status(), u"没有找到");
            session.front.giveText({});
        },
    });
}

TEST(UnitText, FollowsTheUnitsOfTheDrawing)
{
    struct Row {
        double length;
        int units, precision;
        const char *expected;
    };
    const Row rows[] = {
        {15.5, 1, 2, "1.55E+01"},     {15.5, 2, 4, "15.5000"},    {-0.00001, 2, 2, "0.00"},
        {15.5, 3, 2, "1'-3.50\""},    {15.5, 4, 4, "1'-3 1/2\""}, {11.999, 4, 2, "1'-0\""},
        {-15.5, 4, 1, "-1'-3 1/2\""}, {15.5, 5, 4, "15 1/2"},     {0.25, 5, 1, "1/2"},
        {-0.01, 5, 2, "0"},           {0.75, 5, 0, "1"},          {1e300, 5, 4, nullptr},
    };
    for (const Row &row : rows) {
        const QString text = window::lengthText(row.length, row.units, row.precision);
        if (row.expected)
            EXPECT_EQ(text, QLatin1String(row.expected)) << row.length << " in units " << row.units;
        else
            EXPECT_FALSE(text.isEmpty());
    }
}

TEST(UnitText, PlacesAreInTheUsersCoordinates)
{
    const tests::OpenDrawing drawing(tests::MemoryDrawing().open());
    drawing.document().ucs().origin = {10, 20, 0};
    EXPECT_EQ(window::placeText({11, 22, 0}), u"1.0000, 2.0000, 0.0000");
}
