// Leader and freehand marks as commands: points in twisted views, undo, the ink library there and missing.
#include "tests/quillnote/authoring/authoring_fixture.h"

#include <QDir>

TEST_F(AuthoringTest, ALeaderCommandMakesALeaderMarkAndNoSnapshot)
{
    for (const double twist : {0.0, kGePi / 2}) {
        drawing->document().view().twist = twist;
        for (const char *const end : {"200,80", "-200,80"}) {
            settings::setText(u"name", u"李工");
            runAndBack(QStringLiteral("QN3_QuillnoteLeader"), {"10,20", end}, {"set 1003 \"净高\"", "ok"});
            const AcDbObjectPointer<QuillnoteObj3> mark(collectMarks(database()).ids.back(), AcDb::kForRead);
            EXPECT_EQ(mark->leaderMode, LeaderMode::leader);
            EXPECT_EQ(mark->leaderEnds[0], AcGePoint3d(10, 20, 0)) << "picked points are not sorted";
            EXPECT_EQ(mark->suggestionContent, QStringLiteral("净高"));
            EXPECT_EQ(mark->suggestionName, QStringLiteral("李工"));
            EXPECT_TRUE(mark->snapImage.isEmpty());
            // The box lies beside the end of the leader, on the side that is away from its start.
            const auto seen = [&](AcGePoint3d point) { return point.rotateBy(twist, AcGeVector3d::kZAxis); };
            const AcGePoint3d from = seen({10, 20, 0});
            const AcGePoint3d to = seen({QString::fromLatin1(end).startsWith(u'-') ? -200.0 : 200.0, 80, 0});
            const AcGePoint3d box1 = seen(mark->textBoxCorner1);
            const AcGePoint3d box2 = seen(mark->textBoxCorner2);
            EXPECT_LT(box1.y, to.y);
            EXPECT_GT(box2.y, to.y);
            if (to.x >= from.x)
                EXPECT_NEAR(box1.x, to.x, 1e-9);
            else // Fitting the box to the text moves its right edge.
                EXPECT_LT(box2.x, to.x + 1e-9);
            EXPECT_LT(box1.x, box2.x);
        }
    }
}

TEST_F(AuthoringTest, ALeaderThatIsGivenUpLeavesNothing)
{
    EXPECT_TRUE(run(QStringLiteral("QN3_leader"), {"0,0", "^C"}).contains(QStringLiteral("未获取第二点")));
    run(QStringLiteral("QN3_leader"), {"0,0", "50,0"}, {"cancel"});
    EXPECT_FALSE(database().hasChanges());
}

TEST_F(AuthoringTest, AFreehandMarkHoldsWhatTheInkLibraryWrote)
{
    settings::setText(u"Location", QStringLiteral(QUILL_INK_FOLDER));
    drawing->document().view().centre = {500, 300, 0};
    drawing->document().view().height = 1000;
    drawing->document().view().twist = kGePi / 2;
    const QDir temporary(QDir::tempPath());
    const QStringList before = temporary.entryList({QStringLiteral("QNS*")});
    runAndBack(QStringLiteral("QN3_EasyDraw"));
    settings::setText(u"Location", u"");
    const AcDbObjectPointer<QuillnoteObj3> mark(collectMarks(database()).ids.at(0), AcDb::kForRead);
    const std::int32_t words[] = {1600, 1000, 1, 2, 0, 0, 1600, 1000, 1, 1};
    EXPECT_EQ(mark->sketchData, QByteArray(reinterpret_cast<const char *>(words), sizeof words));
    EXPECT_EQ(temporary.entryList({QStringLiteral("QNS*")}), before);
    EXPECT_EQ(mark->targetStyle, TargetStyle::none);
    EXPECT_EQ(mark->flagStyle, FrameStyle::none);
    EXPECT_EQ(mark->weight, 5);
    EXPECT_EQ(mark->suggestionName, QStringLiteral("张工"));
    EXPECT_TRUE(mark->suggestionContent.isEmpty());
    // The view is 1600 x 1000 and turned left: its lower left corner is to the left and above in the world.
    EXPECT_TRUE(mark->targetCorner1.isEqualTo({0, 1100, 0}, 1e-6)) << mark->targetCorner1.x;
    EXPECT_TRUE(mark->targetCorner2.isEqualTo({1000, -500, 0}, 1e-6)) << mark->targetCorner2.x;
}

TEST_F(AuthoringTest, NothingDrawnIsNoFreehandMark)
{
    settings::setText(u"Location", u"/nowhere");
    const QString printed = run(QStringLiteral("QN3_EASY"));
    settings::setText(u"Location", u"");
    EXPECT_TRUE(printed.contains(QStringLiteral("调用InkRelayDLL.dll错误.")));
    EXPECT_TRUE(printed.contains(QStringLiteral("没有手绘内容")));
    EXPECT_FALSE(database().hasChanges());
}
