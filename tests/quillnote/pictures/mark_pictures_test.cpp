// What marks look like: every outline, every text-box frame, flags and their numbers, shrunk marks, sketches.
// Each of them looks the same after it was converted to plain entities.
#include "quillnote/authoring/native_conversion.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_state.h"
#include "quillnote/entity/mark_values.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edcommands.h"
#include "host/aced/edinput.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/picture.h"
#include "tests/support/script_front_end.h"

namespace
{

struct MarkPictures : testing::Test {
    MarkPictures()
    {
        registerMarkClass();
        markDrawingState().reset();
        startUpSettings().reset();
        startUpSettings().viewFlag = true;
        tests::MemoryDrawing made;
        made.record(SymbolTable::textStyle, "STYLE", "Standard",
                    {{70, 0}, {40, 0.0}, {41, 0.7}, {3, "txt"}, {4, ""}});
        drawing = std::make_unique<tests::OpenDrawing>(made.open());
    }
    ~MarkPictures() override
    {
        drawing.reset();
        unregisterMarkClass();
        startUpSettings().reset();
        markDrawingState().reset();
    }
    /// A mark around a target of `width` by `height`; `change` makes it special.
    template <class Change>
    void add(AcGePoint3d corner, double width, double height, Change change) const
    {
        auto mark = std::make_unique<QuillnoteObj3>();
        mark->targetCorner1 = corner;
        mark->targetCorner2 = corner + AcGeVector3d(width, height, 0);
        mark->color1 = 1;
        mark->color2 = 5;
        mark->textHeight = 12;
        change(*mark);
        AcDbObjectPointer<AcDbBlockTableRecord> space(drawing->database().modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId id;
        EXPECT_EQ(space->appendAcDbEntity(id, mark.get()), Acad::eOk);
        mark.release()->close();
    }
    QImage matched(const AcGiViewport &view, const QString &name) const
    {
        const tests::Picture picture = tests::paintPicture(drawing->database().modelSpaceId(), view);
        EXPECT_TRUE(picture.report.undrawn.empty());
        EXPECT_TRUE(
            tests::matchesPicture(picture.image, QStringLiteral("quillnote/pictures/%1.png").arg(name)));
        return picture.image;
    }
    void compare(int width, int height, const QString &name, const acgi::PaintOptions &options = {}) const
    {
        compareConverted(matched(tests::planView(0, 0, width, height), name), options);
    }
    /// Letters and the edges of waves may fall on other sides of a pixel.
    void compareConverted(const QImage &marks, const acgi::PaintOptions &options) const
    {
        AcGeView &seen = drawing->document().view();
        seen.height = seen.pixelHeight; // A pixel is a unit, as in the pictures.
        EXPECT_GT(convertMarks(drawing->database()).converted, 0U);
        const AcGiViewport view = tests::planView(0, 0, marks.width(), marks.height());
        const tests::Picture converted =
            tests::paintPicture(drawing->database().modelSpaceId(), view, options);
        EXPECT_TRUE(converted.report.undrawn.empty());
        constexpr double kShare = 0.005;
        const double pixels = double(marks.width()) * marks.height();
        EXPECT_LE(double(tests::differingPixels(marks, converted.image)), kShare * pixels);
    }
    std::unique_ptr<tests::OpenDrawing> drawing;
};

} // namespace

static void setVertices(QuillnoteObj3 &mark, std::initializer_list<AcGePoint3d> points)
{
    std::copy(points.begin(), points.end(), mark.vertices.begin());
    mark.vertexCount = std::int16_t(points.size());
}

static void setTextBox(QuillnoteObj3 &mark, double left, double bottom, double right, double top)
{
    mark.leaderMode = LeaderMode::leader;
    mark.textBoxCorner1 = {left, bottom, 0};
    mark.textBoxCorner2 = {right, top, 0};
    mark.textBoxCorner3 = {left, top, 0};
    mark.textBoxCorner4 = {right, bottom, 0};
    mark.leaderUsed[0] = true;
}

struct MarkOutlines : MarkPictures, testing::WithParamInterface<int> {
};

TEST_P(MarkOutlines, LookAsTheyDid)
{
    const int style = GetParam();
    add({30, 50, 0}, 120, 70, [&](QuillnoteObj3 &mark) {
        mark.targetStyle = TargetStyle(style);
        mark.suggestionContent = QStringLiteral("门宽不足");
        if (style > 50)
            setVertices(mark, {{30, 50, 0}, {130, 60, 0}, {150, 100, 0}, {80, 120, 0}, {40, 105, 0}});
    });
    compare(200, 150, QStringLiteral("outline%1").arg(style));
}
INSTANTIATE_TEST_SUITE_P(Styles, MarkOutlines, testing::Values(-1, 1, 2, 3, 4, 5, 6, 51, 52, 53, 54));

struct MarkFrames : MarkPictures, testing::WithParamInterface<int> {
};

TEST_P(MarkFrames, LookAsTheyDid)
{
    const int outline = GetParam() % 2 ? 5 : 51;
    add({20, 25, 0}, 90, 60, [&](QuillnoteObj3 &mark) {
        mark.targetStyle = TargetStyle(outline);
        mark.flagStyle = FrameStyle(GetParam());
        mark.suggestionContent = QStringLiteral("门宽不足\r\n改为 900");
        setTextBox(mark, 140, 100, 230, 140);
        if (outline == 51)
            setVertices(mark, {{20, 25, 0}, {110, 30, 0}, {90, 85, 0}, {40, 75, 0}});
    });
    compare(260, 160, QStringLiteral("frame%1").arg(GetParam()));
}
INSTANTIATE_TEST_SUITE_P(Styles, MarkFrames, testing::Range(100, 106));

/// Marks with outlines of their own, and one with a text box; all of them different.
static void addOfEveryKind(const MarkPictures &pictures)
{
    const std::initializer_list<std::pair<int, AcGePoint3d>> places = {
        {4, {20, 150, 0}}, {1, {160, 150, 0}}, {-6, {300, 150, 0}}, {51, {20, 40, 0}}};
    for (const auto &[style, corner] : places) {
        pictures.add(corner, 80, 50, [&, style = style, corner = corner](QuillnoteObj3 &mark) {
            mark.targetStyle = TargetStyle(style);
            mark.suggestionContent = QStringLiteral("门宽");
            setVertices(mark, {corner, corner + AcGeVector3d(80, 10, 0), corner + AcGeVector3d(50, 50, 0)});
        });
    }
    pictures.add({160, 40, 0}, 80, 50, [](QuillnoteObj3 &mark) {
        mark.targetStyle = TargetStyle::bevel;
        mark.flagStyle = FrameStyle::bevel;
        mark.suggestionContent = QStringLiteral("改为 900");
        setTextBox(mark, 290, 60, 370, 90);
    });
}

// Flags are outlines; bars and the bumps of polygons go with the target, not with the screen.
TEST_F(MarkPictures, Plotted)
{
    addOfEveryKind(*this);
    acedRegCmds()->addCommand({QStringLiteral("TEST"), QStringLiteral("PLOT"), QStringLiteral("PLOT"), 0,
                               [&] { matched(tests::planView(0, 0, 440, 220), QStringLiteral("plotted")); }});
    EXPECT_EQ(acedEditor()->runCommand(QStringLiteral("PLOT")), RTNORM);
    acedRegCmds()->removeGroup(QStringLiteral("TEST"));
}

TEST_F(MarkPictures, WithOneLookForAll)
{
    startUpSettings().applyAll = true;
    startUpSettings().style = 3;
    startUpSettings().BKstyle = 105;
    startUpSettings().color1 = 3;
    startUpSettings().color2 = 6;
    startUpSettings().textHeight = 9;
    startUpSettings().autoTargetTextHeight = false;
    addOfEveryKind(*this);
    compare(440, 220, QStringLiteral("oneLook"));
}

// Ellipses, sketches and leaders go by the screen, everything else by the mark.
TEST_F(MarkPictures, SeenInATurnedView)
{
    addOfEveryKind(*this);
    AcGiViewport view = tests::planView(0, 0, 440, 300);
    view.twist = kGePi / 6;
    view.centre = {215, 115, 0};
    matched(view, QStringLiteral("turned"));
}

// A row of numbers with one to five characters, and a row of statuses.
TEST_F(MarkPictures, NumbersSitInTheirFlags)
{
    const std::pair<int, int> numbers[] = {{7, 0}, {42, 0}, {1, 2}, {128, 0}, {12, 3}, {1234, 0}, {12345, 0}};
    double x = 12;
    for (const auto &[number, subNumber] : numbers) {
        add({x, 60, 0}, 10, 40, [&, n = number, sub = subNumber](QuillnoteObj3 &mark) {
            mark.targetStyle = TargetStyle::bevel;
            mark.markNumber = std::uint16_t(n);
            mark.subNumber = std::uint16_t(sub);
            mark.textHeight = 24;
        });
        x += 70;
    }
    x = 12;
    for (const int status : {handling::kNone, handling::kRefused, handling::kDisputed,
                             handling::kPartlyCorrected, handling::kCorrected}) {
        add({x, 10, 0}, 10, 30, [&](QuillnoteObj3 &mark) {
            mark.targetStyle = TargetStyle::bevel;
            mark.markNumber = std::uint16_t(5 + status);
            mark.textHeight = 24;
            mark.feedbackType = std::int16_t(status);
        });
        x += 70;
    }
    compare(500, 110, QStringLiteral("flags"));
}

// Beside each other: a shrunk mark, a small one, one with a signature, a turned one, one that is hidden.
TEST_F(MarkPictures, ShrunkSignedAndTurned)
{
    startUpSettings().viewName = true;
    add({10, 80, 0}, 60, 40, [](QuillnoteObj3 &mark) {
        mark.targetStyle = TargetStyle::bevel;
        mark.displayMode = DisplayMode::shrunk;
        mark.suggestionContent = QStringLiteral("不显示");
    });
    add({110, 80, 0}, 100, 60, [](QuillnoteObj3 &mark) {
        mark.targetStyle = TargetStyle::bevel;
        mark.suggestionContent = QStringLiteral("文字较长的意见会按照靶框宽度换行显示");
        mark.suggestionName = QStringLiteral("Reviewer");
    });
    add({300, 40, 0}, 30, 80, [](QuillnoteObj3 &mark) {
        mark.targetStyle = TargetStyle::thickWaves;
        mark.xDirection = AcGeVector3d(0.8, 0.6, 0);
        mark.suggestionContent = QStringLiteral("转角");
    });
    add({10, 10, 0}, 60, 40, [](QuillnoteObj3 &mark) {
        mark.targetStyle = TargetStyle::bevel;
        mark.displayMode = DisplayMode::hidden;
    });
    compare(400, 160, QStringLiteral("modes"));
}

TEST_F(MarkPictures, SketchesShowEveryKindOfStroke)
{
    // Kind, two corners counted from the upper left, colour with red lowest, pen.
    const std::int32_t numbers[] = {200, 100, 7,                        //
                                    2,   10,  10, 60,  40, 0x0000FF, 1, //
                                    3,   70,  10, 120, 40, 0x00A000, 2, //
                                    4,   130, 10, 190, 40, 0xFF0000, 3, //
                                    5,   10,  60, 60,  90, 0x000000, 4, //
                                    7,   70,  60, 100, 90, 0x00A5FF, 1, //
                                    8,   110, 60, 145, 90, 0xC0C000, 1, //
                                    9,   155, 60, 190, 90, 0x8000FF, 1};
    add({10, 10, 0}, 200, 100, [&](QuillnoteObj3 &mark) {
        mark.targetStyle = TargetStyle::none;
        mark.sketchData = QByteArray(reinterpret_cast<const char *>(numbers), sizeof numbers);
    });
    // Plain entities show their widths only where weights are shown.
    acgi::PaintOptions options;
    options.lineWeights = true;
    compare(220, 120, QStringLiteral("sketch"), options);
}
