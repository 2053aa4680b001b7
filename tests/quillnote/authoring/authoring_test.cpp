// Making marks: picking, the record that comes out, its number and layer, and the one collector.
#include "quillnote/authoring/mark_layer.h"
#include "quillnote/authoring/mark_opinion.h"
#include "quillnote/authoring/mark_targets.h"
#include "quillnote/authoring/new_mark.h"
#include "quillnote/entity/mark_dictionary.h"
#include "quillnote/snapshot/pending_snapshot.h"
#include "quillnote/ui/mark_editor.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edinput.h"
#include "host/aced/edpick.h"
#include "host/aced/edpicture.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "tests/quillnote/authoring/authoring_fixture.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

TEST_F(AuthoringTest, CornersComeOutSortedAsTheUserSeesThem)
{
    const double twist = kGePi / 6;
    for (const double turned : {0.0, twist}) {
        drawing->document().view().twist = turned;
        AcGePoint3d a;
        AcGePoint3d b;
        tests::ScriptFrontEnd script;
        script.addPoint({30, 20, 5});
        script.addPoint({-10, 40, 0});
        ASSERT_TRUE(pickMarkPoints(a, b, PickMode::rectangle));
        AcGePoint3d seenA = a.rotateBy(turned, AcGeVector3d::kZAxis);
        AcGePoint3d seenB = b.rotateBy(turned, AcGeVector3d::kZAxis);
        EXPECT_LT(seenA.x, seenB.x);
        EXPECT_LT(seenA.y, seenB.y);
        EXPECT_EQ(a.z, 0.0);

        NewMark request;
        request.corner1 = a;
        request.corner2 = b;
        AcDbObjectPointer<QuillnoteObj3> mark(createMark(database(), request), AcDb::kForRead);
        const AcGePoint3d seen4 = mark->targetCorner4.rotateBy(turned, AcGeVector3d::kZAxis);
        EXPECT_TRUE(seen4.isEqualTo({seenB.x, seenA.y, 0}, 1e-9));
    }
}

TEST_F(AuthoringTest, PickingLeavesTheVariablesAsTheyWere)
{
    acedSetIntVar(QStringLiteral("OSMODE"), 35);
    AcGePoint3d a;
    AcGePoint3d b;
    {
        tests::ScriptFrontEnd script({"^C"});
        EXPECT_FALSE(pickMarkPoints(a, b, PickMode::rectangle));
        EXPECT_TRUE(script.printed.contains(QStringLiteral("未获取点，放弃!")));
    }
    EXPECT_EQ(acedIntVar(QStringLiteral("OSMODE")), 35);
    tests::ScriptFrontEnd script({"0,0", "^C"});
    EXPECT_FALSE(pickMarkPoints(a, b, PickMode::leader));
    EXPECT_TRUE(script.printed.contains(QStringLiteral("未获取第二点，放弃!")));
    EXPECT_EQ(acedIntVar(QStringLiteral("OSMODE")), 35);
}

TEST_F(AuthoringTest, ACommandMakesOneMarkAndOneStep)
{
    tests::ScriptFrontEnd script({"0,0", "40,30"}, {"set 1003 \"门宽不足\"", "ok"});
    EXPECT_EQ(acedEditor()->runCommand(QStringLiteral("QN3_Quillnote")), RTNORM);
    const CollectedMarks marks = collectMarks(database());
    ASSERT_EQ(marks.ids.size(), 1U);
    {
        AcDbObjectPointer<QuillnoteObj3> mark(marks.ids[0], AcDb::kForRead);
        EXPECT_EQ(mark->suggestionContent, QStringLiteral("门宽不足"));
        EXPECT_EQ(mark->suggestionName, QStringLiteral("张工"));
        EXPECT_EQ(mark->targetCorner2, AcGePoint3d(40, 30, 0));
        EXPECT_EQ(mark->GUID.size(), 38);
        EXPECT_TRUE(mark->cornersValid);
    }
    EXPECT_EQ(readLastMarkNumber(database()), 1);
    EXPECT_TRUE(database().undo().undo());
    EXPECT_TRUE(collectMarks(database()).ids.empty());
    EXPECT_FALSE(database().hasChanges());
}

TEST_F(AuthoringTest, NumbersFollowTheHighestMarkAndEndAt65535)
{
    const auto makeAndRead = [&] {
        return AcDbObjectPointer<QuillnoteObj3>(make(), AcDb::kForRead)->markNumber;
    };
    EXPECT_EQ(makeAndRead(), 1);
    {
        AcDbObjectPointer<QuillnoteObj3> mark(collectMarks(database()).ids.at(0), AcDb::kForWrite);
        mark->markNumber = 40;
    }
    writeLastMarkNumber(database(), 0); // A drawing whose dictionary was purged by another program.
    EXPECT_EQ(makeAndRead(), 41);

    writeLastMarkNumber(database(), 65534);
    EXPECT_EQ(makeAndRead(), 65535);
    EXPECT_TRUE(make().isNull());
    const QString refusal = QStringLiteral("编号已用到65535");
    for (const char *const command : {"QN3_Quillnote", "QN3_QuillnoteLeader"})
        EXPECT_TRUE(run(QString::fromLatin1(command), {"0,0", "9,9"}).contains(refusal)) << command;
    for (const char *const command : {"QN3_PolygonMark", "QN3_SplineMarkJig", "QN3_EasyDraw"})
        EXPECT_TRUE(run(QString::fromLatin1(command)).contains(refusal)) << command;
    EXPECT_EQ(collectMarks(database()).ids.size(), 3U);
}

TEST_F(AuthoringTest, ACancelledEditorMakesNothing)
{
    tests::ScriptFrontEnd script({"0,0", "40,30"}, {"set 1003 \"x\"", "cancel"});
    QN3_Quillnote();
    EXPECT_TRUE(collectMarks(database()).ids.empty());
    EXPECT_EQ(readLastMarkNumber(database()), 0);
}

/// Flags stand beside the extents of their marks and keep their size on the screen when they are told to.
TEST_F(AuthoringTest, AMarkIsPickedByItsFlagHoweverFarTheViewIsZoomed)
{
    startUpSettings().viewFlag = startUpSettings().autoFlagSize = true;
    startUpSettings().style = 1;
    const AcDbObjectId mark = make();
    AcGeView &view = drawing->document().view();
    for (const double pixel : {0.01, 0.5}) {
        view.height = pixel * view.pixelHeight;
        const AcGePoint3d flag(20.0 + 20 * pixel, 10.0 - 5 * pixel, 0.0);
        EXPECT_EQ(acedPickAt(drawing->document(), flag, {}), mark) << "one pixel is " << pixel;
        const AcGePoint3d beyond = flag + AcGeVector3d(30 * pixel, 0, 0);
        EXPECT_TRUE(acedPickAt(drawing->document(), beyond, {}).isNull()) << "one pixel is " << pixel;
    }
}

TEST_F(AuthoringTest, AMarkKeepsWhatItsTargetShowedWhenItWasPicked)
{
    acedCommandS({QStringLiteral("LINE"), QStringLiteral("0,15"), QStringLiteral("40,15"), QString()});
    {
        tests::ScriptFrontEnd script({"0,0", "40,30"}, {"set 1003 \"x\"", "cancel"});
        QN3_Quillnote();
        EXPECT_FALSE(pendingSnapshot().target) << "of a mark that does not come";
    }
    tests::ScriptFrontEnd script({"0,0", "40,30"}, {"ok"});
    QN3_Quillnote();
    AcDbObjectPointer<QuillnoteObj3> mark(collectMarks(database()).ids.at(0), AcDb::kForRead);
    EXPECT_EQ(mark->snapEntityCount(), 1U);
    EXPECT_TRUE(mark->snapChecksum.startsWith(QStringLiteral("SUM=")));
    EXPECT_TRUE(mark->snapImage.startsWith("\x89PNG"));
    EXPECT_TRUE(mark->fullImage.isEmpty());
}

TEST_F(AuthoringTest, ALeaderMarkHasItsTextBesideTheEndOfTheLeader)
{
    startUpSettings().textHeight = 5;
    startUpSettings().BKstyle = 104;
    for (const double turned : {0.0, kGePi / 3}) {
        drawing->document().view().twist = turned;
        const AcGeMatrix3d toView = AcGeMatrix3d::rotation(turned, AcGeVector3d::kZAxis, {});
        for (const double x : {200.0, -200.0}) {
            NewMark request;
            request.isLeader = true;
            request.corner1 = toView.inverse() * AcGePoint3d(10, 10, 0);
            request.corner2 = toView.inverse() * AcGePoint3d(x, 50, 0);
            request.opinionText = QString(85, QLatin1Char('m'));
            AcDbObjectPointer<QuillnoteObj3> mark(createMark(database(), request), AcDb::kForRead);
            EXPECT_EQ(mark->leaderMode, LeaderMode::leader);
            EXPECT_EQ(mark->targetStyle, TargetStyle::none);
            EXPECT_EQ(mark->flagStyle, FrameStyle::thinWaves);
            EXPECT_TRUE(mark->leaderUsed[0] && !mark->leaderUsed[1]);
            EXPECT_TRUE(mark->targetCorner1.isEqualTo(request.corner1, 1e-9));
            EXPECT_TRUE(mark->targetCorner2.isEqualTo(request.corner1, 1e-9));
            EXPECT_TRUE(mark->snapImage.isEmpty() && mark->snapEntityIds.empty());
        }
    }
}

TEST(LeaderTextBox, StandsAwayFromTheStart)
{
    const auto box = [](double x, int length) {
        return leaderTextBox({0, 0, 0}, {x, 20, 0}, 2, QString(length, u'x'), {});
    };
    // Height 2: the margin is 4, the box reaches 2 x (lines + 2) above the end.
    const double right = box(50, 40).corner2.x;
    EXPECT_GT(right, 50 + 4 + 40);
    for (const auto &[length, top] : {std::pair(39, 26), std::pair(40, 28), std::pair(85, 30)}) {
        const LeaderTextBox wide = box(50, length);
        EXPECT_TRUE(wide.corner1.isEqualTo({50, 16, 0}, 1e-9)) << length;
        EXPECT_NEAR(wide.corner2.y, top, 1e-9) << length;
        EXPECT_EQ(wide.corner2.x == right, length >= 40) << length;
        EXPECT_NEAR(box(-50, length).corner1.x, -wide.corner2.x, 1e-9) << length;
        EXPECT_EQ(box(-50, length).corner2.x, -50) << length;
    }
    EXPECT_EQ(box(0, 40).corner1.x, 0) << "straight up";
}

TEST_F(AuthoringTest, NumbersOnlyGrow)
{
    for (int i = 0; i < 5; ++i)
        make();
    const std::vector<AcDbObjectId> ids = collectMarks(database()).ids;
    AcDbObjectPointer<QuillnoteObj3>(ids[2], AcDb::kForWrite)->erase();
    AcDbObjectPointer<QuillnoteObj3> next(make(), AcDb::kForRead);
    EXPECT_EQ(next->markNumber, 6);
}

TEST_F(AuthoringTest, TheLayerIsMadeOrRepaired)
{
    settings::setNumber(u"useLayer", 1);
    settings::setNumber(u"noPlotLayer", 1);
    settings::setText(u"LayerName", u"  校审 ");
    for (int round = 0; round < 2; ++round) {
        AcDbObjectPointer<QuillnoteObj3> mark(make(), AcDb::kForRead);
        EXPECT_EQ(mark->layer(), QStringLiteral("校审"));
        mark.close();
        AcDbObjectPointer<AcDbLayerTableRecord> layer(
            database().tableRecord(SymbolTable::layer, QStringLiteral("校审")), AcDb::kForWrite);
        ASSERT_TRUE(layer);
        EXPECT_FALSE(layer->isPlottable() || layer->isLocked() || layer->isFrozen() || layer->isOff());
        EXPECT_EQ(acedTextVar(QStringLiteral("CLAYER")), QStringLiteral("校审"));
        layer->setIsLocked(true);
        layer->setIsOff(true);
    }
    settings::setText(u"LayerName", QString(37, QLatin1Char('a')));
    EXPECT_EQ(markLayerName(), QStringLiteral("评图标签"));
    settings::setText(u"LayerName", QString(36, QLatin1Char('a')));
    EXPECT_EQ(markLayerName().size(), 36);
}

TEST_F(AuthoringTest, PaperSpaceMarksTakeThePaperHeight)
{
    startUpSettings().textHeight = 300;
    startUpSettings().textHeightPS = 7;
    acedSetIntVar(QStringLiteral("TILEMODE"), 0);
    AcDbObjectPointer<QuillnoteObj3> mark(make(), AcDb::kForRead);
    EXPECT_EQ(mark->textHeight, 7.0);
    EXPECT_EQ(mark->blockId(), database().paperSpaceId());
    mark.close();
    acedSetIntVar(QStringLiteral("TILEMODE"), 1);
    EXPECT_EQ(AcDbObjectPointer<QuillnoteObj3>(make(), AcDb::kForRead)->textHeight, 300.0);
    // Model space comes first whatever was made first.
    EXPECT_EQ(collectMarks(database()).ids.size(), 2U);
}

TEST_F(AuthoringTest, TheCollectorFilters)
{
    make(QStringLiteral("Li"));
    make(QStringLiteral(" wang "));
    make(QString());
    make(QStringLiteral("LI"));
    EXPECT_THAT(collectMarks(database()).reviewers,
                ElementsAre("Li", "wang", QStringLiteral("*未命名*"), "LI"));
    EXPECT_EQ(collectMarks(database(), {QStringLiteral("li"), 0}).ids.size(), 2U);
    EXPECT_EQ(collectMarks(database(), {QStringLiteral("WANG"), 0}).ids.size(), 1U);
    EXPECT_EQ(collectMarks(database(), {QStringLiteral("*未命名*"), 0}).ids.size(), 1U);
    EXPECT_EQ(collectMarks(database(), {QString(), 0}).ids.size(), 1U);
    EXPECT_EQ(collectMarks(database(), {QStringLiteral("all"), 4}).ids.size(), 1U);
    for (int i = 0; i < 20; ++i)
        make(QString::number(i));
    EXPECT_EQ(collectMarks(database()).reviewers.size(), 16);
}

TEST_F(AuthoringTest, ACopyGetsAnIdentityOfItsOwn)
{
    const AcDbObjectId original = make();
    const QString guid = AcDbObjectPointer<QuillnoteObj3>(original, AcDb::kForRead)->GUID;
    tests::ScriptFrontEnd script({"L", "", "0,0", "100,0", ""});
    EXPECT_EQ(acedEditor()->runCommand(QStringLiteral("COPY")), RTNORM);
    const std::vector<AcDbObjectId> ids = collectMarks(database()).ids;
    ASSERT_EQ(ids.size(), 2U);
    AcDbObjectPointer<QuillnoteObj3> copy(ids[1], AcDb::kForRead);
    EXPECT_EQ(copy->subNumber, 2);
    EXPECT_NE(copy->GUID, guid);
    EXPECT_NEAR(copy->targetCorner1.x, 100.0, 1e-9);
    EXPECT_EQ(AcDbObjectPointer<QuillnoteObj3>(original, AcDb::kForRead)->GUID, guid);
}

TEST_F(AuthoringTest, EditingCounts)
{
    const AcDbObjectId id = make(QStringLiteral("Li"), QStringLiteral("old"));
    tests::ScriptFrontEnd script({}, {"set 1003 \"new\"", "ok"});
    editMark(id);
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    EXPECT_EQ(mark->suggestionContent, "new");
    EXPECT_EQ(mark->editVersion, 2);
}

TEST(MarkEditor, OpensWhereItFitsTheScreen)
{
    const QSize screen(1920, 1080);
    const QRect atTheTop(510, 0, 900, 180);
    EXPECT_EQ(markEditorRectangle({100, 50, 640, 200}, screen), QRect(100, 50, 640, 200));
    EXPECT_EQ(markEditorRectangle({0, 0, 0, 0}, screen), atTheTop);
    EXPECT_EQ(markEditorRectangle({-1, 0, 640, 200}, screen), atTheTop);
    EXPECT_EQ(markEditorRectangle({1500, 0, 421, 200}, screen), atTheTop);
    EXPECT_EQ(markEditorRectangle({1500, 0, 420, 200}, screen), QRect(1500, 0, 420, 200));
    EXPECT_EQ(markEditorRectangle({0, 900, 420, 181}, screen), atTheTop);
}

TEST_F(AuthoringTest, TextHeightsSuitTheDrawingAndTheView)
{
    const AcDbExtents small({0, 0, 0}, {17, 12, 0});
    const AcDbExtents large({0, 0, 0}, {16000, 12000, 0});
    struct Row {
        double view;
        AcDbExtents drawing;
        double least;
        double most;
    };
    const Row rows[] = {
        {12, small, 0.2, 0.3},         // Seen whole.
        {297, small, 0.3, 0.4},        // A saved view of something else: what suits the drawing.
        {12000, large, 200, 270},      // Seen whole.
        {900, large, 40, 41},          // Zoomed in: still legible when the whole is seen,
        {60, large, 5.9, 6.1},         // but never a band across the view.
        {100, AcDbExtents(), 1.9, 2.1} // An empty drawing.
    };
    for (const Row &row : rows) {
        const double height = suitingTextHeight(row.view, row.drawing);
        EXPECT_GE(height, row.least) << row.view;
        EXPECT_LE(height, row.most) << row.view;
    }

    startUpSettings().suitsTextHeight = true;
    run(QStringLiteral("LINE"), {"0,0", "17,12", ""});
    drawing->document().view().height = 12;
    NewMark request;
    request.corner2 = {1, 1, 0};
    request.isLeader = true;
    request.opinionText = QStringLiteral("x");
    const auto heightOf = [&] {
        return AcDbObjectPointer<QuillnoteObj3>(createMark(database(), request), AcDb::kForRead)->textHeight;
    };
    EXPECT_NEAR(heightOf(), 0.24, 0.05);
    startUpSettings().suitsTextHeight = false;
    EXPECT_EQ(heightOf(), 1000) << "what the user has set";
    startUpSettings().suitsTextHeight = true;

    // Text under a target that is small in the view does not follow it into the illegible.
    request.isLeader = false;
    startUpSettings().autoTargetTextHeight = true;
    {
        const AcDbObjectPointer<QuillnoteObj3> mark(createMark(database(), request), AcDb::kForRead);
        EXPECT_FALSE(mark->autoTextHeight);
        EXPECT_NEAR(mark->textHeight, 12.0 / 80.0, 1e-9);
    }
    request.corner2 = {9, 9, 0};
    EXPECT_TRUE(
        AcDbObjectPointer<QuillnoteObj3>(createMark(database(), request), AcDb::kForRead)->autoTextHeight);
}

TEST_F(AuthoringTest, EverythingIncludesFlagsAndWhatElseIsDrawnBeside)
{
    startUpSettings().viewFlag = startUpSettings().autoFlagSize = true;
    startUpSettings().style = 4;
    make();
    AcGeView &view = drawing->document().view();
    for (const double twist : {0.0, kGePi / 2}) {
        view.twist = twist;
        run(QStringLiteral("ZOOM"), {"E"});
        // The flag hangs to the right of the upper right corner, 30 pixels long; bars stand 7 pixels off.
        const double pixel = view.pixelSize();
        const AcDbExtents box = acedCurrentExtents(drawing->document());
        const AcGeMatrix3d toPixel = acedViewport(drawing->document()).worldToPixel();
        AcDbExtents seen = box;
        seen.transformBy(toPixel);
        EXPECT_GE(box.maxPoint().x, 20 + 30 * pixel * 0.9);
        EXPECT_LE(box.minPoint().x, -5 * pixel);
        EXPECT_GE(seen.minPoint().x, -1);
        EXPECT_GE(seen.minPoint().y, -1);
        EXPECT_LE(seen.maxPoint().x, view.pixelWidth + 1);
        EXPECT_LE(seen.maxPoint().y, view.pixelHeight + 1);
    }
}

TEST_F(AuthoringTest, MenusKnowWhichCommandsAreNotBuilt)
{
    for (const CommandRow &row : commandTable()) {
        const AcEdCommand *const command =
            acedCommandOfMacro(QStringLiteral("^C^C_%1 ").arg(QString::fromLatin1(row.globalName)));
        ASSERT_TRUE(command) << row.globalName;
        EXPECT_EQ((command->flags & kCommandNotBuilt) != 0, row.function == nullptr) << row.globalName;
    }
    EXPECT_FALSE(acedCommandOfMacro(QStringLiteral("(command \"LINE\") ")));
}
