// Outlines of targets and text boxes: sizes, colours, what is too small to show, what settings impose.
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_outline.h"
#include "quillnote/entity/mark_record.h"

#include "tests/support/recorder.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

MarkCorners rectangle(double width, double height)
{
    return {.corner1 = {0, 0, 0},
            .corner2 = {width, height, 0},
            .corner3 = {0, height, 0},
            .corner4 = {width, 0, 0}};
}

OutlineRecord rectangleMark(double width, double height)
{
    OutlineRecord mark;
    mark.target = mark.textBox = rectangle(width, height);
    return mark;
}

MarkOutline outlineOf(const OutlineRecord &mark, int style, const OutlineView &view = {})
{
    MarkOutline outline;
    targetOutline(mark, view, TargetStyle(style), outline);
    return outline;
}

MarkOutline frameOf(const OutlineRecord &mark, FrameStyle style, const OutlineView &view = {})
{
    MarkOutline outline;
    textBoxFrame(mark, view, style, outline);
    return outline;
}

QStringList drawn(const MarkOutline &outline)
{
    tests::Recorder recorder;
    recorder.withPen = true;
    drawOutline(outline, AcGiCommonDraw(recorder, kAcGiStandardDisplay));
    return recorder.lines;
}

std::size_t bumpsAlong(const MarkOutline &outline, bool upright)
{
    return std::size_t(std::ranges::count_if(outline.bumps, [&](const WaveBump &bump) {
        return (std::abs(bump.a.x - bump.b.x) < 1e-9) == upright;
    }));
}

} // namespace

TEST(MarkOutline, WaveRectanglesHaveOneSpacingOnAllSides)
{
    const MarkOutline wide = outlineOf(rectangleMark(20, 10), 5);
    EXPECT_FALSE(wide.thinWaves);
    EXPECT_EQ(bumpsAlong(wide, false), 26u) << "20 by a fifteenth of the diagonal is 13.4";
    EXPECT_EQ(bumpsAlong(wide, true), 14u);
    for (const WaveBump &bump : wide.bumps) {
        const AcGePoint3d middle = waveMiddle(bump);
        EXPECT_FALSE(middle.x > 0 && middle.x < 20 && middle.y > 0 && middle.y < 10) << "bulges inwards";
    }
    const MarkOutline flat = outlineOf(rectangleMark(30, 0.9), 2);
    EXPECT_TRUE(flat.thinWaves);
    EXPECT_EQ(bumpsAlong(flat, true), 0u) << "sides shorter than half the spacing";
    EXPECT_EQ(bumpsAlong(flat, false), 30u);
}

TEST(MarkOutline, SmallTargetsDisappear)
{
    const OutlineRecord mark = rectangleMark(3, 4);
    struct Row {
        int style;
        double shown;
        double hidden;
    };
    for (const Row &row : {Row{1, 5, 5.01}, Row{2, 10, 10.01}, Row{3, 5, 5.01}, Row{4, 5, 5.01},
                           Row{5, 10, 10.01}, Row{6, 5, 5.01}}) {
        EXPECT_FALSE(outlineOf(mark, row.style, {.drawUnit = row.shown}).isEmpty()) << row.style;
        EXPECT_TRUE(outlineOf(mark, row.style, {.drawUnit = row.hidden}).isEmpty()) << row.style;
    }
    for (const int style : {0, 7, 49, 50, 55})
        EXPECT_TRUE(outlineOf(mark, style).isEmpty()) << style;
}

TEST(MarkOutline, BevelledRectangle)
{
    OutlineRecord mark = rectangleMark(10, 10);
    const QStringList lines = drawn(outlineOf(mark, 4, {.drawUnit = 3}));
    ASSERT_EQ(lines.size(), 3);
    EXPECT_EQ(lines[0], u"2 fill [(-0.332 0.707)(-0.332 10.332)(9.293 10.332)(9.293 11.082)"
                        "(-1.082 11.082)(-1.082 0.707)]");
    EXPECT_EQ(lines[1], u"5 fill [(0.707 -1.082)(11.082 -1.082)(11.082 9.293)(10.332 9.293)"
                        "(10.332 -0.332)(0.707 -0.332)]");
    EXPECT_EQ(lines[2], u"2 polyline (0 0) (10 0) (10 10) (0 10) (0 0)");
    mark.displayMode = DisplayMode::shrunk;
    EXPECT_TRUE(outlineOf(mark, 4, {.drawUnit = 3}).isEmpty());
}

/// What ROTATE makes of it.
static OutlineRecord turned(OutlineRecord mark, double angle)
{
    for (AcGePoint3d *corner :
         {&mark.target.corner1, &mark.target.corner2, &mark.target.corner3, &mark.target.corner4})
        *corner = corner->rotateBy(angle, AcGeVector3d::kZAxis);
    return mark;
}

TEST(MarkOutline, EllipsesStayInTheirTargetsHoweverTheseLie)
{
    for (const int style : {1, 3, 6}) {
        for (const double angle : {0.0, kGePi / 4, 2.0, kGePi / 2}) {
            const MarkOutline outline = outlineOf(turned(rectangleMark(60, 80), angle), style);
            std::vector<AcGePoint3d> points = outline.points;
            for (const WaveBump &bump : outline.bumps)
                points.push_back(bump.a);
            // 72 points of the thin one; 36 bumps of the others, which a square turned by 45 degrees had none
            // of.
            EXPECT_EQ(points.size(), style == 1 ? 72u : 36u) << style << " at " << angle;
            for (const AcGePoint3d &point : points) {
                const AcGePoint3d back = point.rotateBy(-angle, AcGeVector3d::kZAxis);
                EXPECT_NEAR(std::pow((back.x - 30) / 30, 2) + std::pow((back.y - 40) / 40, 2), 1.0, 1e-9);
            }
        }
    }
    OutlineRecord square = rectangleMark(10, 10);
    square.enlarged = true;
    EXPECT_NEAR(outlineOf(turned(square, kGePi / 4), 1).points[0].distanceTo({0, 5 * std::sqrt(2.0), 0}),
                6.25, 1e-9);
}

TEST(MarkOutline, ProxiesAreClosedAndMadeOfFewBumps)
{
    const std::vector<AcGePoint3d> star{
        {0, 0, 0}, {4, 1, 0},  {9, 0, 0},  {8, 4, 0},  {100, 9, 0}, {5, 8, 0},  {4, 60, 0}, {0, 9, 0},
        {1, 4, 0}, {-9, 4, 0}, {-8, 3, 0}, {-9, 2, 0}, {-7, 1, 0},  {-6, 0, 0}, {-5, 1, 0}, {-4, 0.5, 0}};
    OutlineRecord mark = rectangleMark(1000, 3);
    for (const int style : {1, 2, 3, 4, 5, 6, 51, 52, 53, 54}) {
        for (const std::size_t vertices : {std::size_t(3), star.size()}) {
            mark.vertices = std::span(star).first(vertices);
            MarkOutline outline;
            proxyOutline(mark, TargetStyle(style), {}, outline);
            EXPECT_LE(outline.bumps.size(), 14u + (vertices > 14 ? 2u : 0u)) << style;
            ASSERT_GE(outline.bumps.size(), 4u) << style;
            EXPECT_TRUE(outline.bumps.front().a.isEqualTo(outline.bumps.back().b, 1e-6)) << style;
            for (std::size_t i = 1; i < outline.bumps.size(); ++i)
                EXPECT_TRUE(outline.bumps[i - 1].b.isEqualTo(outline.bumps[i].a, 1e-6)) << style;
            EXPECT_EQ(outline.waveWeight > 0, style < 53) << style;
        }
    }
}

TEST(MarkOutline, WaveEllipse)
{
    const MarkOutline outline = outlineOf(rectangleMark(60, 80), 6);
    // Step 100/16; the perimeter is 220.996 (arithmetic-geometric mean): 35 whole steps, and one more.
    EXPECT_EQ(outline.bumps.size(), 36u);
    for (const WaveBump &bump : outline.bumps)
        EXPECT_NEAR(std::pow((bump.a.x - 30) / 30, 2) + std::pow((bump.a.y - 40) / 40, 2), 1.0, 1e-9);
    EXPECT_TRUE(outlineOf(rectangleMark(0.001, 80), 6).isEmpty());
}

TEST(MarkOutline, PolygonsAndSplines)
{
    const std::array<AcGePoint3d, 4> vertices{{{0, 0, 0}, {10, 0, 5}, {10, 10, 0}, {0, 10, 0}}};
    OutlineRecord mark;
    mark.vertices = std::span(vertices).first(2);
    for (const int style : {51, 52, 53, 54}) {
        const MarkOutline open = outlineOf(mark, style, {.drawUnit = 2});
        EXPECT_EQ(open.bumps.size(), 5u) << "one side only";
        EXPECT_EQ(open.thinWaves, style >= 53);
    }
    mark.vertices = std::span(vertices).first(1);
    EXPECT_TRUE(outlineOf(mark, 51).isEmpty());

    mark.vertices = vertices;
    const MarkOutline closed = outlineOf(mark, 51, {.drawUnit = 2});
    EXPECT_EQ(closed.bumps.size(), 20u);
    EXPECT_EQ(closed.bumps.back().b, vertices[0]);

    const AcGeFitSpline3d spline = *closedSpline(vertices);
    const AcGeVector3d start = spline.getFirstDeriv(0.0);
    EXPECT_NEAR(start.x, std::sqrt(0.5), 1e-12);
    EXPECT_NEAR(start.y, -std::sqrt(0.5), 1e-12) << "the closing side comes down, the first one goes right";
    EXPECT_NEAR((spline.getFirstDeriv(40.0) - start).length(), 0.0, 1e-12);
    EXPECT_GT(outlineOf(mark, 52, {.drawUnit = 2}).bumps.size(), 20u);
    const std::array<AcGePoint3d, 3> same{};
    mark.vertices = same;
    EXPECT_TRUE(outlineOf(mark, 52).isEmpty());
}

TEST(TextBoxFrame, Frames)
{
    OutlineRecord mark = rectangleMark(40, 10);
    mark.textHeight = 8;
    EXPECT_EQ(drawn(frameOf(mark, FrameStyle::underline)),
              QStringList{"2 fill [(0 0)(40 0)(40 -0.25)(0 -0.25)(0 0)]"});
    EXPECT_EQ(frameOf(mark, FrameStyle::waveLine).bumps.size(), 10u);
    EXPECT_EQ(drawn(frameOf(mark, FrameStyle::rectangle)),
              QStringList{"2 polyline (0 0) (40 0) (40 10) (0 10) (0 0)"});
    EXPECT_EQ(frameOf(mark, FrameStyle::thinWaves).bumps.size(), 12u);
    EXPECT_TRUE(frameOf(mark, FrameStyle::thinWaves).thinWaves);
    EXPECT_FALSE(frameOf(mark, FrameStyle::thickWaves).thinWaves);
    EXPECT_EQ(frameOf(mark, FrameStyle(99)).pieces, frameOf(mark, FrameStyle::bevel).pieces);
    const QStringList bevel = drawn(frameOf(mark, FrameStyle::bevel));
    ASSERT_EQ(bevel.size(), 3);
    EXPECT_EQ(bevel[0], u"2 polyline (0 0) (40 0) (40 10) (0 10) (0 0)");
    EXPECT_EQ(bevel[1], u"2 fill [(-1.828 2.828)(-1.828 11.828)(37.172 11.828)(37.172 13.828)"
                        "(-3.828 13.828)(-3.828 2.828)]");
    EXPECT_EQ(bevel[2], u"5 fill [(2.828 -3.828)(43.828 -3.828)(43.828 7.172)(41.828 7.172)"
                        "(41.828 -1.828)(2.828 -1.828)]");
    mark.displayMode = DisplayMode::shrunk;
    for (int style = 100; style <= 105; ++style)
        EXPECT_TRUE(frameOf(mark, FrameStyle(style)).isEmpty()) << style;
}

TEST(TextBoxFrame, WithoutTextHeightTheDrawingUnitCounts)
{
    const OutlineRecord mark = rectangleMark(40, 10);
    const OutlineView view{.drawUnit = 8};
    EXPECT_EQ(drawn(frameOf(mark, FrameStyle::underline, view)),
              QStringList{"2 fill [(0 0)(40 0)(40 -1)(0 -1)(0 0)]"});
    EXPECT_EQ(frameOf(mark, FrameStyle::waveLine, view).bumps.size(), 10u);
    EXPECT_EQ(frameOf(mark, FrameStyle::thickWaves, view).bumps.size(), 26u)
        << "2 x 10 and 2 x 3 of half a unit";
    OutlineRecord same = mark;
    same.textHeight = 8;
    EXPECT_EQ(frameOf(mark, FrameStyle::bevel, view).points, frameOf(same, FrameStyle::bevel).points);
}

TEST(MarkDrawingSettings, WhatApplyAllReplaces)
{
    MarkDrawingSettings settings{.style = TargetStyle::thickWaveEllipse, .BKstyle = FrameStyle::thinWaves};
    EXPECT_EQ(drawnTargetStyle(TargetStyle(-3), settings), TargetStyle::thinWaveEllipse);
    EXPECT_EQ(drawnFrameStyle(FrameStyle::underline, settings), FrameStyle::underline);
    EXPECT_EQ(drawnFrameStyle(FrameStyle::none, settings), FrameStyle::bevel);
    EXPECT_EQ(drawnColor1(7, settings, ColorRange::indexes), 7);

    settings.applyAll = true;
    for (const auto &[own, shown] : {std::pair(1, 6), {49, 6}, {-1, 6}, {-6, 6}, {0, 0}, {50, 50}, {53, 53}})
        EXPECT_EQ(drawnTargetStyle(TargetStyle(own), settings), TargetStyle(shown)) << own;
    EXPECT_EQ(drawnFrameStyle(FrameStyle::underline, settings), FrameStyle::thinWaves);
    settings.BKstyle = FrameStyle(99);
    EXPECT_EQ(drawnFrameStyle(FrameStyle::underline, settings), FrameStyle::bevel);
    settings.style = TargetStyle::none;
    EXPECT_EQ(drawnTargetStyle(TargetStyle::bevel, settings), TargetStyle::bevel)
        << "no outline is configured, so nothing is replaced";
    settings.style = TargetStyle(-2);
    EXPECT_EQ(drawnTargetStyle(TargetStyle::bevel, settings), TargetStyle::thinWaves);

    settings.color1 = 256;
    settings.color2 = 30;
    OutlineRecord mark = rectangleMark(10, 10);
    const OutlineView view{.drawUnit = 1, .settings = settings};
    EXPECT_EQ(outlineOf(mark, 2, view).waveColor, 256);
    EXPECT_EQ(outlineOf(mark, 1, view).pieces.at(0).color, 256);
    const MarkOutline bevel = outlineOf(mark, 4, view);
    EXPECT_EQ(bevel.pieces.at(0).color, 2) << "by layer is no colour of bars and rectangles";
    EXPECT_EQ(bevel.pieces.at(1).color, 30);
}

TEST(MarkOutline, CompletesWhatARecordLeavesOut)
{
    registerMarkClass();
    const auto mark = QuillnoteObj3::forReading();
    mark->targetCorner2 = {10, 10, 0};
    mark->targetStyle = TargetStyle(-1);
    mark->vertexCount = 99;
    EXPECT_EQ(outlineRecord(*mark).vertices.size(), 16u);
    EXPECT_TRUE(outlineRecord(*mark).target.corner4.isEqualTo({10, 0, 0}));
}
