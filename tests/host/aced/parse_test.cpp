// Reading typed answers.
#include "host/aced/edparse.h"

#include <gtest/gtest.h>

static double degrees(double angle)
{
    return angle * kGePi / 180;
}

TEST(ParseNumber, TakesWholeTextsOnly)
{
    const std::pair<const char *, double> good[] = {{"12", 12},    {" -.5 ", -0.5}, {"1.5e3", 1500},
                                                    {"3/4", 0.75}, {"1-1/2", 1.5},  {"-1-1/2", -1.5},
                                                    {"+7", 7}};
    for (const auto &[text, value] : good) {
        const auto number = acedParseNumber(text);
        ASSERT_TRUE(number) << text;
        EXPECT_DOUBLE_EQ(*number, value) << text;
    }
    for (const char *text :
         {"", " ", "1,2", "12mm", "1/0", "1/", "/2", "nan", "1e999", "1e308/.1", "--1", "1/2/3"})
        EXPECT_FALSE(acedParseNumber(text)) << text;
}

TEST(ParseAngle, KnowsTheUnits)
{
    struct Case {
        const char *text;
        AcEdAngleFormat format;
        double angle;
    };
    const Case good[] = {
        {"45", {}, degrees(45)},
        {"-90", {}, degrees(-90)},
        {"45d30'", {}, degrees(45.5)},
        {"45d30'36\"", {}, degrees(45.51)},
        {"-45d30'", {}, degrees(-45.5)},
        {"100g", {}, degrees(90)},
        {"1.5r", {}, 1.5},
        {"50", {.units = 2}, degrees(45)},
        {"1", {.units = 3}, 1},
        {"45", {.clockwise = true}, degrees(-45)},
        {"N45d0'0\"E", {}, degrees(45)},
        {"N 30 W", {}, degrees(120)},
        {"S30E", {}, degrees(-60)},
        {"s30w", {}, degrees(-120)},
        {"W", {}, degrees(180)},
    };
    for (const Case &c : good) {
        const auto angle = acedParseAngle(c.text, c.format);
        ASSERT_TRUE(angle) << c.text;
        EXPECT_NEAR(*angle, c.angle, 1e-12) << c.text;
    }
    for (const char *text : {"", "x", "45d30", "d", "g", "N45", "45'", "45d30'x", "1.79e308d1e308'", "E30N"})
        EXPECT_FALSE(acedParseAngle(text, {})) << text;
}

TEST(ParsePoint, ReadsEveryForm)
{
    struct Case {
        const char *text;
        AcGePoint3d point;
        bool relative = false;
        bool world = false;
        bool hasZ = false;
    };
    const Case good[] = {
        {"1,2", {1, 2, 0}},
        {" 1.5 , -2 ", {1.5, -2, 0}},
        {"1,2,3", {1, 2, 3}, false, false, true},
        {"@1,2", {1, 2, 0}, true},
        {"@", {}, true},
        {"@10<90", {0, 10, 0}, true},
        {"10<180", {-10, 0, 0}},
        {"10<0,5", {10, 0, 5}, false, false, true},
        {"*1,2", {1, 2, 0}, false, true},
        {"@*1,2", {1, 2, 0}, true, true},
        {"*@1,2", {1, 2, 0}, true, true},
    };
    for (const Case &c : good) {
        const auto typed = acedParsePoint(c.text, {});
        ASSERT_TRUE(typed) << c.text;
        EXPECT_TRUE(typed->point.isEqualTo(c.point)) << c.text;
        EXPECT_EQ(typed->relative, c.relative) << c.text;
        EXPECT_EQ(typed->world, c.world) << c.text;
        EXPECT_EQ(typed->hasZ, c.hasZ) << c.text;
    }
    for (const char *text :
         {"", "1", "*", "1,", ",2", "1,2,3,4", "@@1,2", "a,b", "10<", "<90", "1<2,3,4", "1;2"})
        EXPECT_FALSE(acedParsePoint(text, {})) << text;

    // A direction counts from the drawing's base angle, and turns its way.
    const auto turned = acedParsePoint("@10<30", {.base = degrees(90), .clockwise = true});
    ASSERT_TRUE(turned);
    EXPECT_TRUE(turned->point.isEqualTo(polarOffset({}, degrees(60), 10)));
}

TEST(Keywords, MatchByCapitalsOrBeginning)
{
    struct Case {
        const char *typed;
        const char *keywords;
        int index; ///< -1 none, -2 ambiguous.
    };
    const Case cases[] = {
        {"yes", "Yes No", 0},
        {"n", "Yes No", 1},
        {"NO", "Yes No", 1},
        {"nope", "Yes No", -1},
        {"x", "Undo eXit", 1},
        {"xi", "Undo eXit", 1},
        {"ex", "Undo eXit", 1},
        {"l", "LType LAyer", -2},
        {"lt", "LType LAyer", 0},
        {"la", "LType LAyer", 1},
        {"s", "Save SaveAs", 0},    // The capitals of the first, the beginning of both.
        {"save", "Save SaveAs", 0}, // All of the first.
        {"sa", "Save SaveAs", 1},   // The capitals of the second.
        {"p", "Polyline,PL Point,P", 1},
        {"2", "2Points 3Points", 0},
        {"all", "ALL Add", 0},
        {"a", "ALL Add", 1},
        {"", "Yes", -1},
    };
    for (const Case &c : cases) {
        const auto match = acedMatchKeyword(c.typed, QString(c.keywords).split(' '));
        EXPECT_EQ(match.ambiguous ? -2 : match.index, c.index) << c.typed << " of " << c.keywords;
        EXPECT_EQ(match.candidates.size() > 1, match.ambiguous) << c.typed;
    }
}
