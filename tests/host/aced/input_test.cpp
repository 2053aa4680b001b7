// Prompts: what they take, refuse and ask again, with and without a coordinate system of one's own.
#include "host/aced/edinput.h"

#include "host/aced/edcommands.h"
#include "host/aced/edsysvar.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

using tests::MemoryDrawing;
using tests::ScriptFrontEnd;

namespace
{

class Prompts : public testing::Test
{
protected:
    /// Origin (100, 0), X axis along the world's Y.
    void turnUcs() { m_drawing.document().ucs() = {{100, 0, 0}, {0, 1, 0}, {-1, 0, 0}}; }

    const tests::OpenDrawing m_drawing{MemoryDrawing().open()};
};

} // namespace

TEST_F(Prompts, PointsCountFromBaseOrLastPoint)
{
    ScriptFrontEnd script({"1,2", "@3,4", "@10<0", "@", "@1,1", "*5,5,7"});
    AcGePoint3d point;
    const AcGePoint3d base(100, 100, 0);
    EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTNORM);
    EXPECT_EQ(point, AcGePoint3d(1, 2, 0));
    EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTNORM);
    EXPECT_EQ(point, AcGePoint3d(4, 6, 0));
    EXPECT_EQ(acedGetPoint(&base, "p", point), RTNORM);
    EXPECT_EQ(point, AcGePoint3d(110, 100, 0));
    EXPECT_TRUE(script.prompts.back().hasBase);
    EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTNORM);
    EXPECT_EQ(point, AcGePoint3d(110, 100, 0)) << "@ alone is the last point";
    EXPECT_EQ(acedGetCorner(base, "p", point), RTNORM);
    EXPECT_EQ(point, AcGePoint3d(101, 101, 0));
    EXPECT_EQ(script.prompts.back().kind, AcEdPromptKind::corner);
    EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTNORM);
    EXPECT_EQ(point, AcGePoint3d(5, 5, 7));
    resbuf last;
    EXPECT_EQ(acedGetVar("LASTPOINT", last), RTNORM);
    EXPECT_EQ(last.point(), point);
}

TEST_F(Prompts, EachDrawingHasALastPointOfItsOwn)
{
    ScriptFrontEnd script({"1,2", "@", "@"});
    AcGePoint3d point;
    EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTNORM);
    {
        const tests::OpenDrawing other{MemoryDrawing().open()};
        EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTNORM);
        EXPECT_EQ(point, AcGePoint3d());
    }
    EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTNORM);
    EXPECT_EQ(point, AcGePoint3d(1, 2, 0));
}

TEST_F(Prompts, PointsAreInTheCurrentUcs)
{
    turnUcs();
    ScriptFrontEnd script({"1,2", "*100,5", "@*0,1"});
    script.addPoint({98, 1, 0});
    AcGePoint3d point;
    EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTNORM);
    EXPECT_EQ(point, AcGePoint3d(1, 2, 0));
    EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTNORM);
    EXPECT_TRUE(point.isEqualTo({5, 0, 0}));
    EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTNORM);
    EXPECT_TRUE(point.isEqualTo({6, 0, 0})) << "one up in the world is one along this X axis";
    EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTNORM);
    EXPECT_TRUE(point.isEqualTo({1, 2, 0})) << "a place that was pointed at comes in world coordinates";
}

TEST_F(Prompts, WrongAnswersAreAskedAgainButNotForEver)
{
    ScriptFrontEnd script({"nonsense", "1,", "1,2"});
    AcGePoint3d point;
    EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTNORM);
    EXPECT_EQ(point, AcGePoint3d(1, 2, 0));
    EXPECT_EQ(script.prompts.size(), 3u);
    EXPECT_EQ(script.printed.count("需要点"), 2);

    ScriptFrontEnd stubborn;
    for (int i = 0; i < 1000; ++i)
        stubborn.add("nonsense");
    int value = 0;
    EXPECT_EQ(acedGetInt("n", value), RTCAN);
    EXPECT_LT(stubborn.prompts.size(), 100u);
}

TEST_F(Prompts, EnterCancelAndTheEndOfAnswers)
{
    ScriptFrontEnd script({"", "", "7", "^C"});
    int value = -1;
    EXPECT_EQ(acedGetInt("n", value), RTNONE);
    EXPECT_EQ(value, -1);
    acedInitGet(RSG_NONULL);
    EXPECT_EQ(acedGetInt("n", value), RTNORM) << "Enter is no answer here";
    EXPECT_EQ(value, 7);
    EXPECT_EQ(acedGetInt("n", value), RTCAN);
    EXPECT_EQ(acedGetInt("n", value), RTCAN) << "nothing is left to answer with";
    EXPECT_TRUE(acedEditor()->isQuitting());
}

TEST_F(Prompts, NumbersKeepTheRules)
{
    struct Case {
        int bits;
        QStringList answers; ///< The last one is taken.
        double taken;
    };
    const Case cases[] = {
        {0, {"-3"}, -3},
        {RSG_NOZERO, {"0", "-3"}, -3},
        {RSG_NONEG, {"-1", "0"}, 0},
        {RSG_NONEG | RSG_NOZERO, {"-1", "0", "2"}, 2},
    };
    for (const Case &c : cases) {
        ScriptFrontEnd script(c.answers + c.answers + c.answers);
        int whole = 99;
        double real = 99;
        double distance = 99;
        acedInitGet(c.bits);
        EXPECT_EQ(acedGetInt("n", whole), RTNORM);
        acedInitGet(c.bits);
        EXPECT_EQ(acedGetReal("n", real), RTNORM);
        acedInitGet(c.bits);
        EXPECT_EQ(acedGetDist(nullptr, "n", distance), RTNORM);
        EXPECT_EQ(whole, c.taken);
        EXPECT_EQ(real, c.taken);
        EXPECT_EQ(distance, c.taken);
        EXPECT_TRUE(script.isUsedUp());
    }
    ScriptFrontEnd script({"1.5", "3000000000", "-2147483649", "2147483647"});
    int whole = 0;
    EXPECT_EQ(acedGetInt("n", whole), RTNORM);
    EXPECT_EQ(whole, 2147483647);
}

TEST_F(Prompts, RulesHoldForOnePromptOnly)
{
    ScriptFrontEnd script({"Yes", "Yes", "0"});
    int value = 0;
    acedInitGet(RSG_NOZERO, "Yes No");
    EXPECT_EQ(acedGetInt("n", value), RTKWORD);
    EXPECT_EQ(acedGetInt("n", value), RTNORM);
    EXPECT_EQ(value, 0);
    EXPECT_EQ(script.prompts.size(), 3u);
}

TEST_F(Prompts, KeywordsComeInFullSpelling)
{
    ScriptFrontEnd script({"n", "_y", "wrong", "s", "sa", ""});
    QString keyword;
    acedInitGet(0, "Yes No");
    EXPECT_EQ(acedGetKword("k", keyword), RTNORM);
    EXPECT_EQ(keyword, "No");
    acedInitGet(0, "Shi Fou _ Yes No");
    EXPECT_EQ(acedGetKword("k", keyword), RTNORM);
    EXPECT_EQ(keyword, "Yes");
    acedInitGet(0, "SOlt SAnd"); // "s" begins both.
    EXPECT_EQ(acedGetKword("k", keyword), RTNORM);
    EXPECT_EQ(keyword, "SAnd");
    EXPECT_EQ(script.prompts.back().keywords, (QStringList{"SOlt", "SAnd"}));
    EXPECT_TRUE(script.printed.contains("SOlt/SAnd"));
    acedInitGet(0, "Yes No");
    EXPECT_EQ(acedGetKword("k", keyword), RTNONE);
}

TEST_F(Prompts, DistancesAndAnglesFromPoints)
{
    ScriptFrontEnd script({"3,4", "0,0", "6,8", "0,0,0", "3,4,12", "90", "0,5", "10,10", "10,0"});
    const AcGePoint3d base(0, 0, 0);
    double value = 0;
    EXPECT_EQ(acedGetDist(&base, "d", value), RTNORM);
    EXPECT_DOUBLE_EQ(value, 5);
    EXPECT_EQ(acedGetDist(nullptr, "d", value), RTNORM);
    EXPECT_DOUBLE_EQ(value, 10);
    acedInitGet(RSG_2D);
    EXPECT_EQ(acedGetDist(nullptr, "d", value), RTNORM);
    EXPECT_DOUBLE_EQ(value, 5);
    EXPECT_EQ(acedGetAngle(&base, "a", value), RTNORM);
    EXPECT_DOUBLE_EQ(value, kGePi / 2);
    EXPECT_EQ(acedGetAngle(&base, "a", value), RTNORM);
    EXPECT_DOUBLE_EQ(value, kGePi / 2);
    EXPECT_EQ(acedGetAngle(nullptr, "a", value), RTNORM);
    EXPECT_DOUBLE_EQ(value, kGePi * 1.5);
}

TEST_F(Prompts, TextsEndAtABlankUnlessBlanksAreAllowed)
{
    ScriptFrontEnd script({"two words", "two words", "\"C:/my plans/a.dxf\" rest", "", " ^C"});
    QString text;
    EXPECT_EQ(acedGetString(true, "t", text), RTNORM);
    EXPECT_EQ(text, "two words");
    EXPECT_EQ(acedGetString(false, "t", text), RTNORM);
    EXPECT_EQ(text, "two");
    EXPECT_EQ(acedGetString(false, "t", text), RTNORM);
    EXPECT_EQ(text, "C:/my plans/a.dxf");
    acedInitGet(RSG_NONULL, "Yes");
    EXPECT_EQ(acedGetString(false, "t", text), RTNORM);
    EXPECT_EQ(text, "");
}

TEST_F(Prompts, FreeTextCountsAsKeywordWhenAskedFor)
{
    ScriptFrontEnd script({"1,2", "hello", "free text"});
    AcGePoint3d point;
    acedInitGet(RSG_OTHER);
    EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTNORM);
    acedInitGet(RSG_OTHER);
    EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTKWORD);
    EXPECT_EQ(acedGetInput(), "hello");
    QString keyword;
    acedInitGet(RSG_OTHER, "Yes No");
    EXPECT_EQ(acedGetKword("k", keyword), RTNORM);
    EXPECT_EQ(keyword, "free text");
    EXPECT_EQ(acedGetKword("k", keyword), RTERROR) << "there is nothing to choose from";
}

TEST_F(Prompts, LispAnswersAPrompt)
{
    ScriptFrontEnd script({"(+ 1 2)", "(list 1 2 3)", "nil", "(strcat \"Y\" \"es\")"});
    int value = 0;
    EXPECT_EQ(acedGetInt("n", value), RTNORM);
    EXPECT_EQ(value, 3);
    AcGePoint3d point;
    EXPECT_EQ(acedGetPoint(nullptr, "p", point), RTNORM);
    EXPECT_EQ(point, AcGePoint3d(1, 2, 3));
    QString keyword;
    acedInitGet(0, "Yes No");
    EXPECT_EQ(acedGetKword("k", keyword), RTNORM);
    EXPECT_EQ(keyword, "Yes");
}

TEST(Pick, ByPlaceLastHandleAndPointing)
{
    MemoryDrawing memory;
    const auto line = memory.entity("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(100, 0, 0)}});
    const auto circle = memory.entity("CIRCLE", {{10, AcGePoint3d(50, 50, 0)}, {40, 10.0}});
    memory.layer("OFF", {.color = -7});
    memory.entity("LINE", {{8, "OFF"}, {10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(100, 0, 0)}});
    const tests::OpenDrawing drawing(memory.open());
    drawing.document().view().height = 100;
    drawing.document().view().pixelHeight = 100;

    struct Case {
        QString answer;
        int result;
        std::uint64_t picked;
    };
    const Case cases[] = {
        {"30,2", RTNORM, line},
        {"30,20", RTERROR, 0},
        {"Last", RTNORM, circle},
        {"l", RTNORM, circle},
        {QStringLiteral("handle %1").arg(line, 0, 16), RTNORM, line},
        {"handle FFFF", RTERROR, 0},
        {"", RTERROR, 0},
    };
    for (const Case &c : cases) {
        ScriptFrontEnd script({c.answer});
        AcDbObjectId id;
        AcGePoint3d point;
        EXPECT_EQ(acedEntSel("e", id, point), c.result) << qPrintable(c.answer);
        EXPECT_EQ(id.handle().value, c.picked) << qPrintable(c.answer);
    }
    ScriptFrontEnd script;
    script.addEntity(drawing.id(circle), {60, 50, 0});
    AcDbObjectId id;
    AcGePoint3d point;
    EXPECT_EQ(acedEntSel("e", id, point), RTNORM);
    EXPECT_EQ(id, drawing.id(circle));
    EXPECT_EQ(point, AcGePoint3d(60, 50, 0));

    ScriptFrontEnd miss({"30,20", "nonsense", "eXit"});
    EXPECT_EQ(acedEntSel("e", id, point), RTERROR);
    EXPECT_EQ(acedIntVar("ERRNO"), 7);
    acedInitGet(0, "eXit");
    EXPECT_EQ(acedEntSel("e", id, point), RTKWORD);
    EXPECT_EQ(acedGetInput(), "eXit");
}
