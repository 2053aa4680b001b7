// Polygon and spline marks: drawn by answers and with a live cursor, with and without a text, in turned views
// and coordinate systems.
#include "quillnote/authoring/polygon_mark.h"

#include "quillnote/authoring/mark_vertices.h"
#include "quillnote/entity/mark_dictionary.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "host/acgi/display/display.h"
#include "tests/quillnote/authoring/authoring_fixture.h"

#include <QPainter>

using testing::ElementsAre;

namespace
{

struct PolygonMarkTest : AuthoringTest {
    PolygonMarkTest() { startUpSettings().textHeight = 5; }
    /// The marks of the drawing, open for read.
    std::vector<std::unique_ptr<AcDbObjectPointer<QuillnoteObj3>>> marks() const
    {
        std::vector<std::unique_ptr<AcDbObjectPointer<QuillnoteObj3>>> opened;
        for (const AcDbObjectId id : collectMarks(database()).ids)
            opened.push_back(std::make_unique<AcDbObjectPointer<QuillnoteObj3>>(id, AcDb::kForRead));
        return opened;
    }
    AcDbObjectPointer<QuillnoteObj3> onlyMark() const
    {
        const std::vector<AcDbObjectId> ids = collectMarks(database()).ids;
        EXPECT_EQ(ids.size(), 1U);
        return AcDbObjectPointer<QuillnoteObj3>(ids.at(0), AcDb::kForRead);
    }
};

/// Moves the cursor over places before each of its answers.
class MovingFrontEnd : public tests::ScriptFrontEnd
{
public:
    using ScriptFrontEnd::ScriptFrontEnd;
    std::optional<AcEdAnswer> answer(const AcEdPrompt &prompt) override
    {
        if (prompt.tracker) {
            for (const AcGePoint3d &place : path) {
                prompt.tracker->cursorMoved(place);
                look(*prompt.tracker);
            }
        }
        return ScriptFrontEnd::answer(prompt);
    }

    std::vector<AcGePoint3d> path;
    std::vector<int> vertices; ///< Of the mark that was shown, at each place; 0 for none.
    std::vector<TargetStyle> styles;
    bool isPainted = false;

private:
    void look(const AcEdCursorTracker &tracker)
    {
        const std::vector<const AcDbEntity *> shown = tracker.shown();
        const auto *const mark = shown.empty() ? nullptr : dynamic_cast<const QuillnoteObj3 *>(shown[0]);
        vertices.push_back(mark ? mark->vertexCount : 0);
        styles.push_back(mark ? mark->targetStyle : TargetStyle::none);
        QImage image(200, 200, QImage::Format_RGB32);
        image.fill(Qt::black);
        const QImage empty = image;
        QPainter painter(&image);
        const AcGiViewport view(
            AcGeView{.centre = {50, 50, 0}, .height = 200, .pixelWidth = 200, .pixelHeight = 200});
        acgi::PaintOptions options;
        options.fillBackground = false;
        acgi::displayOf(*acdbCurDwg()).paintTransients(shown, view, painter, options);
        isPainted = image != empty;
    }
};

} // namespace

static std::vector<AcGePoint3d> verticesOf(const QuillnoteObj3 &mark)
{
    return {mark.vertices.begin(), mark.vertices.begin() + mark.vertexCount};
}

static QStringList corners(int count, const QStringList &end)
{
    QStringList answers;
    for (int i = 0; i < count; ++i)
        answers.append(QStringLiteral("%1,%2").arg(i * 10).arg(i % 2 * 20));
    return answers + end;
}

TEST_F(PolygonMarkTest, OutlineAndTextBecomeOneMark)
{
    startUpSettings().style = 5;
    startUpSettings().BKstyle = 104;
    run(QStringLiteral("LINE"), {"20,40", "60,40", ""});
    acedSetIntVar(QStringLiteral("OSMODE"), 35);
    runAndBack(QStringLiteral("QN3_PolygonMarkJig"),
               {"0,0", "100,0", "100,80", "100,80", "@-100,0", "", "200,150"},
               {"set 1003 \"门宽不足\"", "ok"});
    EXPECT_EQ(acedIntVar(QStringLiteral("OSMODE")), 35);
    const auto mark = onlyMark();
    EXPECT_EQ(mark->targetStyle, TargetStyle::thickPolygon);
    EXPECT_THAT(verticesOf(*mark), ElementsAre(AcGePoint3d(0, 0, 0), AcGePoint3d(100, 0, 0),
                                               AcGePoint3d(100, 80, 0), AcGePoint3d(0, 80, 0)));
    EXPECT_EQ(mark->targetCorner1, AcGePoint3d(0, 0, 0));
    EXPECT_EQ(mark->targetCorner2, AcGePoint3d(100, 80, 0));
    EXPECT_TRUE(mark->targetCorner4.isEqualTo({100, 0, 0}, 1e-9));
    EXPECT_EQ(mark->leaderMode, LeaderMode::leader);
    EXPECT_EQ(mark->flagStyle, FrameStyle::thinWaves);
    EXPECT_EQ(mark->suggestionContent, QStringLiteral("门宽不足"));
    EXPECT_EQ(mark->suggestionName, QStringLiteral("张工"));
    EXPECT_EQ(mark->markNumber, 1);
    EXPECT_EQ(readLastMarkNumber(database()), 1);
    EXPECT_EQ(mark->GUID.size(), 38);
    EXPECT_TRUE(mark->textBoxCorner1.isEqualTo({200, 145, 0}, 1e-6)) << "beside the picked place";
    EXPECT_TRUE(mark->leaderUsed[0] && !mark->leaderUsed[1]);
    const AcGePoint3d &end = mark->leaderEnds[0];
    const double unit = 15 * drawing->document().view().pixelSize();
    EXPECT_LT(std::min(std::abs(end.x - 100), std::abs(end.y - 80)), unit) << "on the outline";
    EXPECT_EQ(mark->snapEntityCount(), 1U);
    EXPECT_TRUE(mark->snapImage.startsWith("\x89PNG"));
}

TEST_F(PolygonMarkTest, AnOutlineWithoutTextIsFinished)
{
    make();
    startUpSettings().style = 2;
    runAndBack(QStringLiteral("QN3_SplineMarkJig"), {"0,0", "50,10", "40,40", "0,0", "", ""});
    runAndBack(QStringLiteral("QN3_PolygonMarkJig"), {"0,0", "50,10", "40,40", "", ""});
    const auto opened = marks();
    ASSERT_EQ(opened.size(), 3U);
    const QuillnoteObj3 &spline = **opened[1];
    EXPECT_EQ(spline.targetStyle, TargetStyle::thinSpline);
    EXPECT_EQ(spline.vertexCount, 3) << "it closes by itself";
    EXPECT_EQ(spline.leaderMode, LeaderMode::flag);
    EXPECT_EQ(spline.markNumber, 2);
    EXPECT_EQ(spline.suggestionName, QStringLiteral("张工"));
    EXPECT_EQ((*opened[2])->markNumber, 3);
    EXPECT_EQ((*opened[2])->targetStyle, TargetStyle::thinPolygon);
    EXPECT_EQ(readLastMarkNumber(database()), 3);
}

TEST_F(PolygonMarkTest, WhatHasNoOutlineLeavesNothingBehind)
{
    settings::setNumber(u"useLayer", 1);
    struct Row {
        const char *command;
        QStringList answers;
        QStringList dialogLines{};
    };
    const Row rows[] = {
        {"QN3_PolygonMarkJig", {"^C"}},
        {"QN3_PolygonMarkJig", {""}},
        {"QN3_SplineMarkJig", {"0,0", ""}},
        {"QN3_PolygonMarkJig", {"0,0", "0,0", ""}},
        {"QN3_PolygonMark", {""}},
        {"QN3_PolygonMark", {"0,0", "5,0", ""}},
        {"QN3_PolygonMark", {"0,0", "5,0", "0,0", ""}},
        // Esc at every question, and in the editor.
        {"QN3_PolygonMarkJig", {"0,0", "50,0", "50,50", "^C"}},
        {"QN3_SplineMarkJig", {"0,0", "50,0", "50,50", "", "^C"}},
        {"QN3_PolygonMarkJig", {"0,0", "50,0", "50,50", "", "90,90"}, {"set 1003 \"x\"", "cancel"}},
        {"QN3_PolygonMark", {"0,0", "50,0", "50,50", "^C"}},
    };
    for (const Row &row : rows) {
        run(QString::fromLatin1(row.command), row.answers, row.dialogLines);
        EXPECT_FALSE(database().hasChanges()) << row.command << qPrintable(row.answers.join(u' '));
    }
    EXPECT_TRUE(run(QStringLiteral("QN3_PolygonMark"), {""}).contains(QStringLiteral("未获取点，放弃!")));
}

TEST_F(PolygonMarkTest, SixteenVerticesAreAllThereIsRoomFor)
{
    for (const auto &[command, end] : {std::pair(QStringLiteral("QN3_PolygonMarkJig"), QStringList{"", ""}),
                                       std::pair(QStringLiteral("QN3_PolygonMark"), QStringList{""})}) {
        const QString printed = runAndBack(command, corners(20, end));
        EXPECT_TRUE(printed.contains(QStringLiteral("其余4个点未采用"))) << qPrintable(printed);
        EXPECT_EQ(printed.count(QStringLiteral("已指定16个顶点")), 1) << qPrintable(printed);
        auto mark = onlyMark();
        EXPECT_EQ(mark->vertexCount, 16);
        EXPECT_EQ(mark->vertices[15], AcGePoint3d(150, 20, 0));
        EXPECT_EQ(mark->targetCorner2, AcGePoint3d(150, 20, 0));
        mark.close();
        database().undo().undo();
    }
    run(QStringLiteral("QN3_PolygonMark"), corners(128, {}));
    EXPECT_EQ(onlyMark()->vertexCount, 16) << "it stops asking";
}

TEST_F(PolygonMarkTest, TwoVerticesTakeNoText)
{
    runAndBack(QStringLiteral("QN3_PolygonMarkJig"), {"0,0", "50,0", "", "90,90"}, {"set 1003 \"x\"", "ok"});
    const auto opened = marks();
    ASSERT_EQ(opened.size(), 2U);
    EXPECT_EQ((*opened[0])->leaderMode, LeaderMode::flag);
    EXPECT_EQ((*opened[0])->markNumber, 2);
    EXPECT_EQ((*opened[1])->leaderMode, LeaderMode::leader);
    EXPECT_EQ((*opened[1])->markNumber, 1);
}

TEST_F(PolygonMarkTest, ThePolygonCommandMakesAFinishedMark)
{
    startUpSettings().snapshotMode = StartUpSettings::kRecordFullView;
    run(QStringLiteral("LINE"), {"20,40", "60,40", ""});
    runAndBack(QStringLiteral("QN3_PolygonMark"), {"0,0", "100,0,7", "100,80", ""});
    const auto mark = onlyMark();
    EXPECT_EQ(mark->targetStyle, TargetStyle::thickPolygon);
    EXPECT_EQ(mark->vertexCount, 3);
    EXPECT_EQ(mark->vertices[1], AcGePoint3d(100, 0, 0));
    EXPECT_EQ(mark->targetCorner2, AcGePoint3d(100, 80, 0));
    EXPECT_EQ(mark->markNumber, 1);
    EXPECT_EQ(mark->GUID.size(), 38);
    EXPECT_EQ(mark->snapEntityCount(), 1U);
    EXPECT_FALSE(mark->fullImage.isEmpty());
}

TEST_F(PolygonMarkTest, TheTextTakesItsPictureAndItsPasswordAlong)
{
    startUpSettings().snapshotMode = StartUpSettings::kRecordFullView;
    settings::setText(u"chPwMD5", hashPassword(QStringLiteral("open")));
    run(QStringLiteral("QN3_PolygonMarkJig"), {"0,0", "50,10", "40,40", "", "90,90"},
        {"set 1003 \"x\"", "ok"});
    const auto mark = onlyMark();
    EXPECT_EQ(mark->chPwMD5, hashPassword(QStringLiteral("open")));
    EXPECT_FALSE(mark->fullImage.isEmpty());
}

TEST_F(PolygonMarkTest, SheetsHaveTheirOwnTextHeightAndMarksTheirLayer)
{
    startUpSettings().textHeightPS = 7;
    settings::setNumber(u"useLayer", 1);
    acedSetIntVar(QStringLiteral("TILEMODE"), 0);
    run(QStringLiteral("QN3_PolygonMark"), {"0,0", "50,10", "40,40", ""});
    const auto mark = onlyMark();
    EXPECT_EQ(mark->textHeight, 7.0);
    EXPECT_EQ(mark->blockId(), database().paperSpaceId());
    EXPECT_EQ(mark->layer(), QStringLiteral("评图标签"));
}

// The corners enclose the outline as it is seen, so the snapshot is of the outline's place.
TEST_F(PolygonMarkTest, TargetsAreUprightInTheView)
{
    run(QStringLiteral("LINE"), {"60,60", "62,60", ""});
    run(QStringLiteral("LINE"), {"5,95", "8,95", ""});
    const double twist = kGePi / 4;
    drawing->document().view().twist = twist;
    drawing->document().ucs() = {
        .origin = {100, 0, 0}, .xAxis = AcGeVector3d::kYAxis, .yAxis = -AcGeVector3d::kXAxis};
    // World 50,0 100,50 50,100 0,50: seen, a square.
    runAndBack(QStringLiteral("QN3_PolygonMark"), {"0,50", "50,0", "@50,50", "@-50,50", ""});
    auto mark = onlyMark();
    EXPECT_TRUE(mark->vertices[0].isEqualTo({50, 0, 0}, 1e-9));
    EXPECT_TRUE(mark->vertices[3].isEqualTo({0, 50, 0}, 1e-9));
    const AcGeMatrix3d toView = drawing->document().view().getWorldToEyeTransform();
    const double side = 50 * std::sqrt(2.0);
    const AcGePoint3d low = toView * mark->targetCorner1;
    EXPECT_TRUE((toView * mark->targetCorner2).isEqualTo(low + AcGeVector3d(side, side, 0), 1e-9));
    EXPECT_TRUE((toView * mark->targetCorner4).isEqualTo(low + AcGeVector3d(side, 0, 0), 1e-9));
    EXPECT_TRUE((toView * mark->targetCorner3).isEqualTo(low + AcGeVector3d(0, side, 0), 1e-9));
    EXPECT_EQ(mark->snapEntityCount(), 1U) << "the line in the corner of the world's box is outside";
    mark.close();

    // A coordinate system that looks from below turns the mark about.
    database().undo().undo();
    drawing->document().ucs() = {.origin = {}, .xAxis = -AcGeVector3d::kXAxis, .yAxis = AcGeVector3d::kYAxis};
    run(QStringLiteral("QN3_PolygonMark"), {"-50,0", "-100,50", "-50,100", "0,50", ""});
    const auto turned = onlyMark();
    EXPECT_TRUE((toView * turned->xDirection - AcGeVector3d(-1, 0, 0)).isZeroLength(1e-9));
    const AcGePoint3d high = toView * turned->targetCorner1;
    EXPECT_TRUE((toView * turned->targetCorner4).isEqualTo(high + AcGeVector3d(-side, 0, 0), 1e-9));
    EXPECT_TRUE((toView * turned->targetCorner3).isEqualTo(high + AcGeVector3d(0, -side, 0), 1e-9));
}

TEST_F(PolygonMarkTest, TheOutlineFollowsTheCursor)
{
    startUpSettings().style = 6;
    MovingFrontEnd front({"0,0", "100,0", "100,80", "", ""});
    front.path = {{40, 40, 0}, {40, 40, 0}, {60, 60, 0}};
    acedEditor()->runCommand(QStringLiteral("QN3_PolygonMarkJig"));
    EXPECT_TRUE(front.isUsedUp());
    // The place of the cursor is one vertex more than those accepted, however far it moved.
    EXPECT_THAT(front.vertices, ElementsAre(2, 2, 2, 3, 3, 3, 4, 4, 4, 3, 3, 3))
        << "the outline stays while the place of the text is asked";
    EXPECT_THAT(std::span(front.styles).first(9), testing::Each(TargetStyle::thinPolygon));
    EXPECT_TRUE(front.isPainted);
    const auto mark = onlyMark();
    EXPECT_EQ(mark->targetStyle, TargetStyle::thickPolygon);
    EXPECT_THAT(verticesOf(*mark),
                ElementsAre(AcGePoint3d(0, 0, 0), AcGePoint3d(100, 0, 0), AcGePoint3d(100, 80, 0)));
    EXPECT_EQ(mark->targetCorner2, AcGePoint3d(100, 80, 0)) << "what was hovered over is forgotten";
}

TEST_F(PolygonMarkTest, MergingNeedsBothMarks)
{
    const std::vector<AcGePoint3d> triangle{{0, 0, 0}, {10, 0, 0}, {0, 10, 0}};
    const AcDbObjectId polygon = makePolygonMark(database(), triangle, AcGeVector3d::kZAxis);
    NewMark request;
    request.isLeader = true;
    request.corner2 = {50, 50, 0};
    const AcDbObjectId text = createMark(database(), request);
    const auto before = tests::wholeDrawing(database());
    AcDbObjectPointer<QuillnoteObj3> reader(text, AcDb::kForRead);
    EXPECT_FALSE(mergePolygonIntoLeaderMark(polygon, text));
    reader.close();
    EXPECT_EQ(tests::wholeDifference(before, tests::wholeDrawing(database())), QStringList());
    EXPECT_TRUE(mergePolygonIntoLeaderMark(polygon, text));
    EXPECT_TRUE(text.isErased());
}
