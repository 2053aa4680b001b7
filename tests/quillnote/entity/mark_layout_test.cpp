// Layouts of marks as values: what a pass shows, where text, flag and leaders stand, what it writes back.
#include "quillnote/entity/mark_layout.h"

#include "quillnote/entity/mark_record.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>

static constexpr double kTolerance = 1e-9;

void PrintTo(const AcGePoint3d &point, std::ostream *out)
{
    *out << '(' << point.x << ' ' << point.y << ' ' << point.z << ')';
}

static testing::AssertionResult isAt(const AcGePoint3d &point, const AcGePoint3d &expected)
{
    if (point.isEqualTo(expected, kTolerance))
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << testing::PrintToString(point) << " is not at " << testing::PrintToString(expected);
}

/// A target of 120 x 60 at the origin, seen with 0.1 units a pixel: the drawing unit is 1.5.
struct MarkLayoutTest : testing::Test {
    MarkLayoutTest()
    {
        mark->targetStyle = TargetStyle::bevel;
        mark->targetCorner2 = {120, 60, 0};
        mark->textHeight = 6;
        mark->suggestionContent = QStringLiteral("门宽不足");
        settings.viewFlag = true;
        view.viewport.height = 100;
        view.viewport.pixelWidth = 1600;
        view.viewport.pixelHeight = 1000;
    }
    /// The text box is 100 x 20 from (200, 100); one leader.
    void makeLeaderMark()
    {
        mark->leaderMode = LeaderMode::leader;
        mark->textBoxCorner1 = {200, 100, 0};
        mark->textBoxCorner2 = {300, 120, 0};
        mark->textBoxCorner3 = {200, 120, 0};
        mark->textBoxCorner4 = {300, 100, 0};
        mark->leaderUsed[0] = true;
    }
    MarkLayout layOut(MarkPicture picture = MarkPicture::view) const
    {
        return layOutMark(*mark, settings, view, picture);
    }
    std::unique_ptr<QuillnoteObj3> mark = QuillnoteObj3::forReading();
    MarkDrawingSettings settings;
    MarkView view;
};

TEST_F(MarkLayoutTest, SizesAreCountedInThePixelsThatPeopleSee)
{
    EXPECT_DOUBLE_EQ(layOut().drawUnit, 1.5);
    view.viewport.pixelsPerMillimetre *= 2.0;
    EXPECT_DOUBLE_EQ(layOut().drawUnit, 3.0);
}

TEST_F(MarkLayoutTest, TheHintSaysWhatTheMarkIs)
{
    mark->markNumber = 12;
    mark->subNumber = 3;
    mark->suggestionName = QStringLiteral("张三");
    EXPECT_EQ(mark->subHint(), u"12.3  张三\n门宽不足\n（未答复）");
    EXPECT_FALSE(mark->subIsHidden());
    mark->displayMode = DisplayMode::hidden;
    mark->feedbackType = -1;
    mark->feedbackContent = QStringLiteral("规范允许");
    mark->feedbackName = QStringLiteral("李四");
    EXPECT_EQ(mark->subHint(), u"12.3  张三\n门宽不足\n拒绝修正  规范允许  （李四）");
    EXPECT_EQ(mark->subTexts(), QStringList({QStringLiteral("门宽不足"), QStringLiteral("规范允许")}));
    EXPECT_TRUE(mark->subIsHidden());
    mark->suggestionContent = QString(2000, u'x');
    EXPECT_LT(mark->subHint().size(), 400);
}

// What is shown -----------------------------------------------------------------------------------

TEST_F(MarkLayoutTest, APassShowsWhatModeAndSettingsLetItShow)
{
    struct Row {
        const char *name;
        int displayMode;
        int leaderMode;
        bool showText;
        bool viewFlag;
        bool suppressed;
        const char *shown; ///< Text, outline, leaders, box frame, flag.
    };
    const Row rows[] = {
        {"full flag mark", 0, 0, true, true, false, "TO--F"},
        {"text switched off", 0, 0, false, true, false, "-O--F"},
        {"flags switched off", 0, 0, true, false, false, "TO---"},
        {"grips shown", 0, 0, true, true, true, "-O--F"},
        {"shrunk flag mark", 1, 0, true, true, false, "----F"},
        {"hidden flag mark", -1, 0, true, true, false, "-----"},
        {"leader marks always show text", 0, 1, false, true, false, "TOLBF"},
        {"shrunk leader mark", 1, 1, true, true, false, "----F"},
    };
    makeLeaderMark();
    for (const Row &row : rows) {
        mark->displayMode = DisplayMode(row.displayMode);
        mark->leaderMode = LeaderMode(row.leaderMode);
        settings.showMarkText = row.showText;
        settings.viewFlag = row.viewFlag;
        view.textSuppressed = row.suppressed;
        const MarkLayout layout = layOut();
        const std::string shown = {layout.text ? 'T' : '-', layout.outline.isEmpty() ? '-' : 'O',
                                   layout.leaders.empty() ? '-' : 'L', layout.frame.isEmpty() ? '-' : 'B',
                                   layout.flag ? 'F' : '-'};
        EXPECT_EQ(shown, row.shown) << row.name;
    }
}

TEST_F(MarkLayoutTest, AnEmptyOpinionHasNoBox)
{
    makeLeaderMark();
    mark->suggestionContent.clear();
    const MarkLayout layout = layOut();
    EXPECT_TRUE(layout.frame.isEmpty());
    EXPECT_EQ(layout.leaders.size(), 1u);
    EXPECT_TRUE(isAt(layout.textBox.corner2, {300, 120, 0})) << "a box without text keeps its width";
}

TEST_F(MarkLayoutTest, MarksWithoutOutlineHaveAFlagOnlyWhenAskedFor)
{
    mark->targetStyle = TargetStyle::none;
    EXPECT_FALSE(layOut().flag);
    settings.displayFlagWithFreehandDraw = true;
    EXPECT_TRUE(layOut().flag);
}

TEST_F(MarkLayoutTest, ProgramsThatDoNotKnowMarksSeeSimplerOnes)
{
    settings.viewFlag = false;
    mark->targetStyle = TargetStyle::ellipse;
    const MarkLayout ellipse = layOut(MarkPicture::proxy);
    EXPECT_TRUE(ellipse.outline.pieces.empty());
    EXPECT_FALSE(ellipse.outline.bumps.empty());
    EXPECT_GT(ellipse.outline.waveWeight, 0) << "thick, in few figures";
    EXPECT_TRUE(ellipse.flag);

    makeLeaderMark();
    mark->flagStyle = FrameStyle::thickWaves;
    const MarkLayout leader = layOut(MarkPicture::proxy);
    EXPECT_TRUE(leader.frame.bumps.empty());
    EXPECT_EQ(leader.frame.pieces.size(), 1u);
}

// Flag --------------------------------------------------------------------------------------------

TEST_F(MarkLayoutTest, WaveRectanglesHaveTheirFlagAtTheLeft)
{
    mark->targetStyle = TargetStyle::thickWaves;
    EXPECT_TRUE(isAt(layOut().flag->outline[0], {0, 60, 0}));
    settings.applyAll = true;
    settings.style = TargetStyle::bevel;
    EXPECT_TRUE(isAt(layOut().flag->outline[0], {120, 60, 0})) << "by the outline that is drawn";
}

TEST_F(MarkLayoutTest, FlagSizes)
{
    struct Row {
        const char *name;
        bool leader;
        double textHeight;
        bool autoSize;
        bool applyAll;
        bool paperSpace;
        bool refreshing;
        double size;
    };
    const Row rows[] = {
        {"text height times scale", false, 6, false, false, false, false, 12},
        {"no text height", false, 0, false, false, false, false, 1.5},
        {"by the screen", false, 6, true, true, false, false, 1.5},
        {"configured for all", false, 6, false, true, false, false, 50},
        {"configured for sheets", false, 6, false, true, true, false, 4},
        {"leader mark", true, 6, true, false, false, false, 6 * 1.36},
        {"leader mark without text height", true, 0, false, false, false, false, 500 * 1.36},
        {"leader mark, configured for all", true, 6, false, true, false, false, 50 * 1.36},
        {"leader mark while flags are refreshed", true, 6, true, false, false, true, 1.5 * 1.36},
    };
    settings.textHeight = 50;
    settings.textHeightPS = 4;
    view.flagScale = 2;
    for (const Row &row : rows) {
        mark->leaderMode = row.leader ? LeaderMode::leader : LeaderMode::flag;
        mark->textHeight = row.textHeight;
        settings.autoFlagSize = row.autoSize;
        settings.applyAll = row.applyAll;
        view.viewport.paperSpace = row.paperSpace;
        view.flagRefreshRunning = row.refreshing;
        const MarkFlag flag = *layOut().flag;
        EXPECT_NEAR(flag.outline[0].distanceTo(flag.outline[1]), 2 * row.size, kTolerance) << row.name;
    }
}

// Text --------------------------------------------------------------------------------------------

TEST_F(MarkLayoutTest, TextHeights)
{
    struct Row {
        const char *name;
        bool leader;
        double own;
        bool automatic;
        bool applyAll;
        bool automaticForAll;
        bool paperSpace;
        double height;
    };
    const Row rows[] = {
        {"own", false, 6, false, false, false, false, 6},
        {"follows the target", false, 6, true, false, false, false, 10},
        {"none at all", false, 0, false, false, false, false, 10},
        {"configured", false, 6, true, true, false, false, 50},
        {"configured for sheets", false, 6, true, true, false, true, 4},
        {"configured to follow", false, 6, false, true, true, false, 10},
        {"leader", true, 6, true, false, false, false, 6},
        {"leader without one", true, 0, false, false, false, false, 500},
        {"leader, configured", true, 6, false, true, true, false, 50},
    };
    settings.textHeight = 50;
    settings.textHeightPS = 4;
    for (const Row &row : rows) {
        mark->leaderMode = row.leader ? LeaderMode::leader : LeaderMode::flag;
        mark->textHeight = row.own;
        mark->autoTextHeight = row.automatic;
        settings.applyAll = row.applyAll;
        settings.autoTargetTextHeight = row.automaticForAll;
        EXPECT_NEAR(markTextHeight(*mark, settings, row.paperSpace, 120), row.height, kTolerance) << row.name;
    }
}

// The diagonal is 134.16, a tenth of it 13.416: nine spacings along 120, half of one is 6.667.
TEST_F(MarkLayoutTest, TextStandsUnderTheTargetAndTheAnchorAboveIt)
{
    const MarkLayout layout = layOut();
    const double lowered = 120.0 / 9 / 2 + 6;
    EXPECT_TRUE(isAt(layout.text->lines.at(0).base, {0, -lowered, 0}));
    EXPECT_TRUE(isAt(layout.writeBack.textAnchor, {0, 6 - lowered, 0}));
    EXPECT_TRUE(isAt(layout.writeBack.flagPoint, layout.writeBack.textAnchor));
    EXPECT_TRUE(isAt(*layout.writeBack.textEndPoint, {0, -lowered - 7.5, 0}));
    EXPECT_TRUE(isAt(layout.writeBack.textBox.corner2, mark->targetCorner2));
    EXPECT_TRUE(isAt(layout.writeBack.targetCorner3, {0, 60, 0}));
    EXPECT_TRUE(isAt(layout.writeBack.targetCorner4, {120, 0, 0}));
}

TEST_F(MarkLayoutTest, BoxTextStartsInTheUpperLeftAsSeenAlongTheMark)
{
    makeLeaderMark();
    EXPECT_TRUE(isAt(layOut().text->lines.at(0).base, {202, 120 - 1.33 * 6, 0}));
    // The same box in a drawing seen upside down.
    mark->xDirection = {-1, 0, 0};
    mark->textBoxCorner1 = {300, 120, 0};
    mark->textBoxCorner2 = {200, 100, 0};
    mark->textBoxCorner3 = {300, 100, 0};
    mark->textBoxCorner4 = {200, 120, 0};
    EXPECT_TRUE(isAt(layOut().text->lines.at(0).base, {298, 100 + 1.33 * 6, 0}));
}

static double drawnWidth(const MarkTextLayout &text, const MarkTextLine &line)
{
    return text.style.font().width(line.text) * line.size * line.xScale;
}

TEST_F(MarkLayoutTest, LongTextBreaksIntoLinesThatFitAndLosesNothing)
{
    const QString opinions[] = {
        QStringLiteral("此处门宽不足一米二，请按防火规范第五章核对疏散宽度，并与建筑专业协调后修改平面图。"),
        QStringLiteral("The clear width of this door is below 1.2 m; check it against chapter 5."),
        QStringLiteral("iiiiiiiiiiiiiiiiiiiiiiiiiiiiiiWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW"),
        QStringLiteral("𠀀𠀁𠀂𠀃𠀄𠀅𠀆𠀇𠀈𠀉𠀊𠀋𠀌𠀍𠀎𠀏𠀐𠀑𠀒𠀓𠀔𠀕𠀖𠀗𠀘𠀙𠀚𠀛𠀜"),
    };
    constexpr double kLineWidth = 120 - 0.6 * 6;
    constexpr double kSlack = 1 / 0.9; // What follows a line that was narrowed may come out longer.
    for (const QString &opinion : opinions) {
        mark->suggestionContent = opinion;
        const MarkTextLayout text = *layOut().text;
        EXPECT_GT(text.lines.size(), 1u);
        QString whole;
        for (std::size_t i = 0; i < text.lines.size(); ++i) {
            const MarkTextLine &line = text.lines[i];
            EXPECT_LE(drawnWidth(text, line), kLineWidth * kSlack) << qPrintable(line.text);
            EXPECT_FALSE(line.text.front().isLowSurrogate() || line.text.back().isHighSurrogate());
            EXPECT_TRUE(isAt(line.base, text.lines[0].base - AcGeVector3d(0, 7.5 * double(i), 0)));
            whole += line.text;
        }
        EXPECT_EQ(whole, opinion);
    }
}

TEST_F(MarkLayoutTest, LinesNearlyAsLongAsTheFrameAreStretchedToIt)
{
    const QString text = QStringLiteral("门宽不足门宽不足门宽不足");
    const double natural = markTextStyle(false).font().width(text) * 6;
    mark->targetCorner2.x = natural / 0.95 + 0.6 * 6;
    mark->suggestionContent = text + QStringLiteral("\r\n短");
    const MarkTextLayout laidOut = *layOut().text;
    ASSERT_EQ(laidOut.lines.size(), 2u);
    EXPECT_NEAR(laidOut.lines[0].xScale, 1 / 0.95, 1e-6);
    EXPECT_EQ(laidOut.lines[1].xScale, laidOut.lines[0].xScale) << "the scale stays in force";
    EXPECT_NEAR(laidOut.widest, natural, 1e-6);
}

TEST_F(MarkLayoutTest, ATextBoxFollowsItsText)
{
    makeLeaderMark();
    const double natural = markTextStyle(false).font().width(mark->suggestionContent) * 6;
    EXPECT_NEAR(layOut().textBox.corner2.x, 200 + 1.2 * natural, 1e-6) << "too wide";
    EXPECT_NEAR(layOut().textBox.corner4.x, 200 + 1.2 * natural, 1e-6);
    mark->textBoxCorner2.x = mark->textBoxCorner4.x = 200 + natural - 1;
    EXPECT_NEAR(layOut().textBox.corner2.x, 200 + natural + 3.6, 1e-6) << "too narrow";
    mark->textBoxCorner2.x = mark->textBoxCorner4.x = 200 + 1.1 * natural;
    EXPECT_NEAR(layOut().textBox.corner2.x, 200 + 1.1 * natural, 1e-6) << "fits";
    // Applied once, nothing is left to do.
    applyWriteBack(*mark, layOut().writeBack);
    const MarkLayout again = layOut();
    EXPECT_TRUE(isAt(again.textBox.corner2, mark->textBoxCorner2));
}

TEST_F(MarkLayoutTest, ABoxHoldsItsLinesBreaksAtWordsAndComesToRest)
{
    const QString opinions[] = {
        QStringLiteral("The clear width of this door is below 1.2 m; check it against chapter 5."),
        QStringLiteral("短"),
        QStringLiteral("此处门宽不足一米二，请按防火规范第五章核对疏散宽度，并与建筑专业协调后修改平面图。"),
        QStringLiteral("WWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWWW i\r\n\r\nend"),
    };
    settings.viewName = true;
    mark->suggestionName = QStringLiteral("张工");
    for (const QString &opinion : opinions) {
        makeLeaderMark();
        mark->suggestionContent = opinion;
        const MarkLayout first = layOut();
        QStringList lines;
        for (const MarkTextLine &line : first.text->lines) {
            lines += line.text;
            EXPECT_EQ(line.xScale, 1.0);
            EXPECT_LE(line.base.x + drawnWidth(*first.text, line), first.textBox.corner2.x)
                << qPrintable(line.text);
            EXPECT_GT(line.base.y, first.textBox.corner1.y) << qPrintable(line.text);
        }
        EXPECT_GT(first.text->signature->line.base.y, first.textBox.corner1.y);
        EXPECT_EQ(lines.join(QString()).remove(u' '),
                  QString(opinion).remove(QStringLiteral("\r\n")).remove(u' '));
        if (opinion.startsWith(u"The")) {
            EXPECT_EQ(lines.join(u' '), opinion) << "no word is cut";
        }
        for (int pass = 0; pass < 4; ++pass) {
            applyWriteBack(*mark, layOut().writeBack);
            const MarkLayout again = layOut();
            EXPECT_TRUE(isAt(again.textBox.corner1, first.textBox.corner1)) << qPrintable(opinion);
            EXPECT_TRUE(isAt(again.textBox.corner2, first.textBox.corner2)) << qPrintable(opinion);
            EXPECT_EQ(again.text->lines.size(), first.text->lines.size());
        }
    }
}

TEST_F(MarkLayoutTest, FlagsKeepTheirSizeToTheEye)
{
    settings.autoFlagSize = true;
    const auto size = [&] { return layOut().flag->outline[0].distanceTo(layOut().flag->outline[1]); };
    const double usual = size();
    view.viewport.pixelHeight *= 2;
    view.viewport.pixelWidth *= 2;
    view.viewport.pixelsPerMillimetre *= 2;
    EXPECT_NEAR(size(), usual, kTolerance) << "on a screen with twice as many pixels";
    // On paper, 120 units over 60 mm: a height of 3.5 mm, whatever the text height is.
    view.plotting = true;
    mark->textHeight = 0.1;
    view.viewport.pixelsPerMillimetre = view.viewport.pixelWidth / 60;
    view.viewport.height = 120.0 * view.viewport.pixelHeight / view.viewport.pixelWidth;
    const MarkFlag flag = *layOut().flag;
    EXPECT_NEAR(flag.outline[0].distanceTo(flag.outline[4]), 3.5 * 2, kTolerance);
    EXPECT_GT(layOut().outline.waveWeight, 0);
}

TEST_F(MarkLayoutTest, TheSignatureNamesReviewerAndDate)
{
    mark->suggestionName = QStringLiteral("张工");
    mark->createTime = 2460000.5;
    EXPECT_FALSE(layOut().text->signature);
    settings.viewName = true;
    const MarkTextLayout named = *layOut().text;
    ASSERT_TRUE(named.signature);
    EXPECT_EQ(named.signature->line.text, u"张工");
    EXPECT_NEAR(named.signature->line.size, 2, kTolerance);
    const AcGePoint3d below = named.lines.back().base - AcGeVector3d(0, 7.5, 0);
    EXPECT_TRUE(isAt(named.signature->line.base, below));
    EXPECT_TRUE(isAt(named.signature->ruleStart, below + AcGeVector3d(0, 0.825 * 6, 0)));
    EXPECT_NEAR(named.signature->ruleStart.distanceTo(named.signature->ruleEnd), 120 - 3.6, kTolerance);
    settings.viewDateTime = true;
    EXPECT_TRUE(layOut().text->signature->line.text.startsWith(u"张工 @ 20"));
    settings.viewName = false;
    EXPECT_TRUE(layOut().text->signature->line.text.startsWith(u"20"));
}

// Leaders -----------------------------------------------------------------------------------------

TEST_F(MarkLayoutTest, LeadersStartAtTheCornerOnTheSideOfTheirEnd)
{
    struct Row {
        AcGePoint3d end;
        AcGePoint3d start;
    };
    makeLeaderMark();
    mark->targetStyle = TargetStyle::none; // Nothing to attach to: ends stay.
    mark->leaderUsed = {};
    mark->suggestionContent.clear();
    const Row rows[] = {
        {{400, 300, 0}, {300, 120, 0}},
        {{400, 0, 0}, {300, 100, 0}},
        {{0, 300, 0}, {200, 120, 0}},
        {{0, 0, 0}, {200, 100, 0}},
    };
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        mark->leaderEnds[2 * i] = rows[i].end;
        mark->leaderUsed[2 * i] = true;
    }
    const MarkLayout layout = layOut();
    ASSERT_EQ(layout.leaders.size(), std::size(rows));
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_TRUE(isAt(layout.leaders[i].end, rows[i].end));
        EXPECT_TRUE(isAt(layout.leaders[i].start, rows[i].start));
    }
}

TEST_F(MarkLayoutTest, TheFirstLeaderFollowsTheTargetAndTouchesABump)
{
    makeLeaderMark();
    EXPECT_TRUE(isAt(layOut().leaders.at(0).end, {120, 30, 0})) << "right side, its middle";
    mark->targetStyle = TargetStyle::thinWaves;
    const MarkLayout waves = layOut();
    const AcGePoint3d &end = waves.leaders.at(0).end;
    const auto &middles = waves.waveMiddles.slots();
    EXPECT_TRUE(std::ranges::any_of(middles, [&](const AcGePoint3d &middle) { return middle == end; }));
    EXPECT_GT(end.x, 120) << "bumps bulge outward";
    EXPECT_EQ(waves.writeBack.leaderEnds[0], end);
}

// Writing back ------------------------------------------------------------------------------------

TEST_F(MarkLayoutTest, WritingBackChangesTheRecordAndNothingBeforeIt)
{
    makeLeaderMark();
    const MarkLayout layout = layOut();
    EXPECT_FALSE(mark->cornersValid);
    applyWriteBack(*mark, layout.writeBack);
    EXPECT_TRUE(mark->cornersValid);
    EXPECT_TRUE(isAt(mark->targetCorner3, {0, 60, 0}));
    EXPECT_TRUE(isAt(mark->leaderEnds[0], {120, 30, 0}));
    EXPECT_TRUE(isAt(mark->textBoxCorner2, layout.textBox.corner2));
    EXPECT_EQ(mark->textEndPoint, layout.writeBack.textEndPoint);
}
