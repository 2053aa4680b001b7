// Adding leaders to marks.
#include "quillnote/authoring/mark_leaders.h"

#include "quillnote/authoring/polygon_mark.h"

#include "tests/quillnote/authoring/authoring_fixture.h"

namespace
{

struct AddLeaderTest : AuthoringTest {
    AddLeaderTest()
    {
        startUpSettings().style = 4;
        startUpSettings().BKstyle = 105;
        startUpSettings().textHeight = 5;
    }
};

int leadersOf(AcDbObjectId id)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    return int(std::count(mark->leaderUsed.begin(), mark->leaderUsed.end(), true));
}

} // namespace

TEST_F(AddLeaderTest, AFlagMarkBecomesALeaderMark)
{
    const AcDbObjectId id = make({}, QStringLiteral("净宽"));
    drawing->document().ucs() = {
        .origin = {0, 0, 3}, .xAxis = AcGeVector3d::kYAxis, .yAxis = -AcGeVector3d::kXAxis};
    tests::ScriptFrontEnd script({"L", "40,-50", "@0,10", ""});
    closeStep();
    const auto before = tests::wholeDrawing(database());
    acedEditor()->runCommand(QStringLiteral("addAleadLine"));
    EXPECT_TRUE(script.isUsedUp());
    EXPECT_TRUE(script.printed.contains(QStringLiteral("\n请选择一个评图标签>>")));
    EXPECT_TRUE(script.prompts.at(1).hasBase);
    EXPECT_TRUE(script.prompts[1].base.isEqualTo({5, -10, -3}, 1e-9)) << "the middle of the target";
    {
        const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        EXPECT_EQ(mark->leaderMode, LeaderMode::leader);
        EXPECT_EQ(mark->targetStyle, TargetStyle::none);
        EXPECT_EQ(mark->flagStyle, FrameStyle::thickWaves);
        EXPECT_NEAR(mark->textBoxCorner1.x, 0, 1e-9);
        EXPECT_LT(mark->textBoxCorner1.y, 10) << "below, by its lines";
        EXPECT_TRUE(mark->textBoxCorner3.isEqualTo({0, 10, 0}, 1e-9));
        EXPECT_TRUE(mark->leaderEnds[0].isEqualTo({50, 40, 0}, 1e-9));
        EXPECT_TRUE(mark->leaderUsed[1] && !mark->leaderUsed[2]);
    }
    EXPECT_TRUE(database().undo().undo());
    EXPECT_EQ(tests::wholeDifference(before, tests::wholeDrawing(database())), QStringList())
        << "all leaders of a command are one step";
}

TEST_F(AddLeaderTest, SixteenLeadersAreAllThereIsRoomFor)
{
    const AcDbObjectId id = make();
    QStringList answers{"L"};
    for (int i = 0; i < 16; ++i)
        answers.append(QStringLiteral("%1,%2").arg(100 + i).arg(i * 10));
    const QString printed = runAndBack(QStringLiteral("addAleadLine"), answers + QStringList{"0,300"});
    EXPECT_TRUE(printed.contains(QStringLiteral("\n最多只能添加16根引线！")));
    EXPECT_EQ(leadersOf(id), 16) << "those before stay";
    expectRefused(QStringLiteral("addAleadLine"), {"L", "0,300"}, QStringLiteral("最多只能添加16根引线"));
}

TEST_F(AddLeaderTest, FurtherLeadersOfAPolygonEndWhereTheyArePut)
{
    run(QStringLiteral("QN3_PolygonMarkJig"), {"0,0", "100,0", "100,80", "", "200,150"},
        {"set 1003 \"x\"", "ok"});
    const AcDbObjectId id = collectMarks(database()).ids.at(0);
    const AcGePoint3d first = AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead)->leaderEnds[0];
    runAndBack(QStringLiteral("addAleadLine"), {"L", "30,300", ""});
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    EXPECT_EQ(mark->targetStyle, TargetStyle::thinPolygon) << "the outline stays";
    EXPECT_TRUE(mark->leaderEnds[0].isEqualTo(first, 1e-6));
    EXPECT_EQ(mark->leaderEnds[1], AcGePoint3d(30, 300, 0));
}

TEST_F(AddLeaderTest, NothingChosenOrAnsweredChangesNothing)
{
    make();
    make();
    for (const QStringList &answers : std::initializer_list<QStringList>{{""}, {"^C"}, {"ALL"}, {"L", ""}})
        expectRefused(QStringLiteral("addAleadLine"), answers, {});
}
