// Marks of a drawing drawn into a recorder: what arrives there, in which pen, and what a pass leaves behind.
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_fields.h"
#include "quillnote/entity/mark_layout.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_state.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include "host/acdb/dbsymtb.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/recorder.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

struct MarkDrawTest : testing::Test {
    MarkDrawTest()
    {
        registerMarkClass();
        markDrawingState().reset();
        startUpSettings().reset();
        startUpSettings().viewFlag = true;
        drawing = std::make_unique<tests::OpenDrawing>(tests::MemoryDrawing().open());
        view.height = 100;
        view.pixelHeight = 1000;
        view.pixelWidth = 1600;
    }
    ~MarkDrawTest() override
    {
        drawing.reset();
        unregisterMarkClass();
        startUpSettings().reset();
        markDrawingState().reset();
    }
    /// A rectangle mark of 120 x 60 with text, or one changed from that.
    template <class Change>
    AcDbObjectId append(Change change) const
    {
        auto mark = std::make_unique<QuillnoteObj3>();
        mark->targetStyle = TargetStyle::bevel;
        mark->targetCorner2 = {120, 60, 0};
        mark->textHeight = 6;
        mark->suggestionContent = QStringLiteral("门宽不足");
        change(*mark);
        AcDbObjectPointer<AcDbBlockTableRecord> space(drawing->database().modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId id;
        EXPECT_EQ(space->appendAcDbEntity(id, mark.get()), Acad::eOk);
        mark.release()->close();
        return id;
    }
    AcDbObjectId append() const
    {
        return append([](QuillnoteObj3 &) {});
    }
    QStringList draw(const QuillnoteObj3 &mark) const
    {
        tests::Recorder recorder;
        recorder.withPen = true;
        AcGiViewportDraw context(recorder, kAcGiStandardDisplay, view);
        mark.subViewportDraw(&context);
        return recorder.lines;
    }
    QStringList draw(AcDbObjectId id) const
    {
        return draw(*AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead));
    }
    std::unique_ptr<tests::OpenDrawing> drawing;
    AcGiViewport view;
};

static QString firstWith(const QStringList &lines, const QString &part)
{
    const QStringList found = lines.filter(part);
    return found.isEmpty() ? QString() : found.front();
}

TEST_F(MarkDrawTest, APassDrawsTextOutlineAndFlagInTheirColours)
{
    const AcDbObjectId id = append([](QuillnoteObj3 &mark) { mark.feedbackType = -1; });
    const QStringList lines = draw(id);
    EXPECT_FALSE(firstWith(lines, QStringLiteral("门宽不足")).isEmpty());
    EXPECT_TRUE(lines.back().contains(u"text")) << "the number lies on top of everything";
    EXPECT_TRUE(lines.back().startsWith(u"2 ")) << qPrintable(lines.back());
    EXPECT_TRUE(lines[lines.size() - 2].startsWith(u"6 ")) << qPrintable(lines[lines.size() - 2]);
}

TEST_F(MarkDrawTest, APassLeavesTracesOnlyInWhatIsNotFiled)
{
    const AcDbObjectId id = append([](QuillnoteObj3 &mark) {
        mark.targetStyle = TargetStyle::thinWaves;
        mark.leaderMode = LeaderMode::leader;
        mark.textBoxCorner1 = {200, 100, 0};
        mark.textBoxCorner2 = {300, 120, 0};
        mark.leaderUsed[0] = true;
    });
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    const auto valuesBefore = markFieldValues(*mark);
    markDrawingState().textSuppressed = true;
    draw(*mark);
    EXPECT_EQ(markFieldValues(*mark), valuesBefore);
    EXPECT_EQ(drawnMarks(*id.database()).count(id), 1u);
    EXPECT_FALSE(markDrawingState().textSuppressed) << "lasts for one pass";
    EXPECT_FALSE(mark->textEndPoint) << "the text was left out";
    EXPECT_FALSE(mark->outlineCache.empty());
    draw(*mark);
    EXPECT_TRUE(mark->textEndPoint);
}

TEST_F(MarkDrawTest, HiddenMarksDrawNothingAnywhere)
{
    const AcDbObjectId id = append([](QuillnoteObj3 &mark) { mark.displayMode = DisplayMode::hidden; });
    EXPECT_EQ(draw(id), QStringList());
    EXPECT_TRUE(drawnMarks(*id.database()).empty());
    tests::Recorder recorder;
    AcGiWorldDraw context(recorder, kAcGiSaveWorldDrawForProxy);
    AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead)->saveAs(&context);
    EXPECT_EQ(recorder.lines, QStringList());
}

TEST_F(MarkDrawTest, ADraggedThickWaveIsDrawnAsArcsForOnePass)
{
    const AcDbObjectId id = append([](QuillnoteObj3 &mark) {
        mark.targetStyle = TargetStyle::thickWaves;
        mark.leaderMode = LeaderMode::leader;
        mark.flagStyle = FrameStyle::thickWaves;
        mark.textBoxCorner1 = {200, 100, 0};
        mark.textBoxCorner2 = {300, 120, 0};
    });
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    mark->gripEditing = true;
    const QStringList dragged = draw(*mark);
    EXPECT_GT(dragged.filter(QStringLiteral("arc")).size(), 20);
    EXPECT_EQ(dragged.filter(QStringLiteral("fill")).size(), 1) << "the flag; target and box are arcs";
    EXPECT_EQ(draw(*mark).filter(QStringLiteral("arc")).size(), 0);
}

TEST_F(MarkDrawTest, SavedGraphicsKeepTheTextThatGripsHide)
{
    const AcDbObjectId id = append();
    markDrawingState().textSuppressed = true;
    tests::Recorder recorder;
    AcGiWorldDraw context(recorder, kAcGiSaveWorldDrawForProxy);
    AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead)->saveAs(&context);
    EXPECT_FALSE(firstWith(recorder.lines, QStringLiteral("门宽不足")).isEmpty());
}

TEST_F(MarkDrawTest, ExtentsHoldTheTextOfAMarkThatWasNeverDrawn)
{
    const AcDbObjectId id = append();
    AcDbExtents box;
    ASSERT_EQ(AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead)->getGeomExtents(box), Acad::eOk);
    EXPECT_LT(box.minPoint().y, -12);
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    mark->suggestionContent += QStringLiteral("\r\n第二行\r\n第三行");
    mark.close();
    AcDbExtents taller;
    ASSERT_EQ(AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead)->getGeomExtents(taller), Acad::eOk);
    EXPECT_NEAR(taller.minPoint().y, box.minPoint().y - 15, 1e-9) << "a change moves the end of the text";
}

TEST_F(MarkDrawTest, ASketchIsDrawnEvenWhenShrunkAndGivesItsUpperLeftCorner)
{
    // A canvas of 100 x 100 with one line from (10, 20) to (60, 70), red, two pixels wide.
    const std::int32_t numbers[] = {100, 100, 1, 2, 10, 20, 60, 70, 0x0000FF, 2};
    const QByteArray bytes(reinterpret_cast<const char *>(numbers), sizeof numbers);
    const AcDbObjectId id = append([&](QuillnoteObj3 &mark) {
        mark.targetStyle = TargetStyle::none;
        mark.displayMode = DisplayMode::shrunk;
        mark.targetCorner2 = {200, 100, 0};
        mark.sketchData = bytes;
    });
    EXPECT_EQ(draw(id).filter(QStringLiteral("(20 80) (120 30)")).size(), 1);
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    settleMark(*mark, drawing->database());
    EXPECT_EQ(tests::pointText(mark->targetCorner3), u"(20 80)");
}
