// Waves: the figure of a bump, how many bumps a side or a curve gets, the middles that leaders end at.
#include "quillnote/entity/wave.h"

#include "tests/support/recorder.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

#include <limits>

static void expectNear(const AcGePoint3d &found, const AcGePoint3d &wanted, double tolerance = 1e-9)
{
    EXPECT_TRUE(found.isEqualTo(wanted, tolerance)) << found.x << ' ' << found.y << ' ' << found.z;
}

static std::vector<WaveBump> segment(const AcGePoint3d &a, const AcGePoint3d &b, double step)
{
    std::vector<WaveBump> bumps;
    waveAlongSegment(bumps, a, b, step);
    return bumps;
}

TEST(Wave, BumpFromTheOriginAlongX)
{
    const WaveBump bump{{0, 0, 0}, {1, 0, 0}};
    const WaveBand band = waveBand(bump);
    expectNear(band.inner[0], {0, 0, 0});
    expectNear(band.outer[0], {-0.1430276944, -0.1039157027, 0}, 1e-9);
    expectNear(waveMiddle(bump), {0.5217371187, -0.2897085869, 0}, 1e-9);
    // The inner edge ends on the circle, short of `b`, and the band there has no thickness left.
    expectNear(band.inner[11], band.outer[11]);
}

TEST(Wave, BumpsElsewhereAreTheSameFigure)
{
    const AcGePoint3d a(3, -2, 7);
    for (const double degrees : {0.0, 37.0, 90.0, 143.9, 144.1, 180.0, 269.0, 350.0}) {
        const double angle = degrees * kGePi / 180.0;
        const AcGePoint3d b = polarOffset(a, angle, 20.0);
        std::vector<WaveBump> bumps;
        waveArc(bumps, a, b);
        ASSERT_EQ(bumps.size(), 1u);
        // Along the chord and to its right, from the numbers of the bump above.
        const AcGePoint3d along = polarOffset({3, -2, 0}, angle, 20.0 * 0.5217371187);
        expectNear(waveMiddle(bumps[0]), polarOffset(along, angle - kGePi / 2, 20.0 * 0.2897085869), 1e-8);
    }
    std::vector<WaveBump> none;
    waveArc(none, {0, 0, 0}, {0.0009, 0, 50});
    EXPECT_TRUE(none.empty());
}

TEST(Wave, SegmentsAreCutIntoWholeBumps)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Row {
        double length;
        double step;
        std::size_t bumps;
    };
    for (const Row &row : {Row{10, 3, 3}, Row{0.5, 1, 1}, Row{0.499, 1, 0}, Row{99, 1, 99}, Row{1000, 1, 99},
                           Row{1e100, 1, 99}, Row{5, 0, 5}, Row{5, -2, 5}, Row{5, nan, 5}, Row{nan, 1, 0},
                           Row{0.0005, 0.0005, 0}}) {
        const auto bumps = segment({1, 1, 0}, {1, 1 + row.length, 3}, row.step);
        ASSERT_EQ(bumps.size(), row.bumps) << row.length << " by " << row.step;
        for (std::size_t i = 1; i < bumps.size(); ++i)
            EXPECT_EQ(bumps[i].a, bumps[i - 1].b);
        if (!bumps.empty())
            expectNear(bumps.back().b, {1, 1 + row.length, 0});
    }
}

TEST(Wave, CurvesAreCutByLength)
{
    const AcGeEllipArc3d circle({}, {10, 0, 0}, {0, 10, 0});
    std::vector<WaveBump> bumps;
    waveAlongCurve(bumps, circle, 5.0);
    ASSERT_EQ(bumps.size(), 13u) << "62.8 are 12 whole steps, and one more";
    expectNear(bumps[3].b, polarOffset({}, 8.0 * kGePi / 13.0, 10.0));
    expectNear(bumps.back().b, {10, 0, 0});

    bumps.clear();
    waveAlongCurve(bumps, circle, 0.01);
    EXPECT_EQ(bumps.size(), 99u);
    bumps.clear();
    waveAlongCurve(bumps, circle, 0.0);
    EXPECT_EQ(bumps.size(), 63u) << "a step of 0 counts as 1";
}

TEST(Wave, ACurveWithoutEndIsSaidAndNotDrawn)
{
    tests::ScriptFrontEnd frontEnd;
    std::vector<WaveBump> bumps;
    waveAlongCurve(bumps, AcGeFitSpline3d({}, {}, {}), 1.0);
    EXPECT_TRUE(bumps.empty());
    EXPECT_EQ(frontEnd.printed, u"drawSolidArcsOnSpline getEndParam Err1");
}

TEST(Wave, MiddlesSaturate)
{
    WaveMiddles middles;
    EXPECT_EQ(middles.chord(), 1.0);
    for (int side = 0; side < 3; ++side)
        middles.add(segment({0, double(side), 0}, {2000, double(side), 0}, 1.0));
    EXPECT_EQ(middles.count(), 255u) << "of 297";
    ASSERT_EQ(middles.slots().size(), 256u);
    EXPECT_NEAR(middles.slots()[255].x, 2000 - 2000 / 99.0 * (1 - 0.5217), 0.1) << "the last bump";
    EXPECT_NEAR(middles.chord(), 2000 / 99.0, 1e-9);
    middles.clear();
    EXPECT_EQ(middles.count(), 0u);
}

TEST(Wave, ThickBumpsAreElevenPiecesAndThinOnesOneArc)
{
    const auto bumps = segment({0, 0, 0}, {2, 0, 0}, 1.0);
    tests::Recorder recorder;
    recorder.withPen = true;
    const AcGiCommonDraw context(recorder, kAcGiStandardDisplay);
    drawWaves(bumps, false, context);
    ASSERT_EQ(recorder.lines.size(), 22);
    EXPECT_TRUE(recorder.lines[0].contains(QStringLiteral("(0 0)(-0.143 -0.104)")))
        << qPrintable(recorder.lines[0]);
    recorder.lines.clear();
    drawWaves(bumps, true, context);
    ASSERT_EQ(recorder.lines.size(), 2);
    EXPECT_TRUE(recorder.lines[1].contains(QStringLiteral("from (1 0) to (2 0)")))
        << qPrintable(recorder.lines[1]);
    const auto second = acgi::arcThrough(bumps[1].a, waveMiddle(bumps[1]), bumps[1].b);
    recorder.arc(*second);
    EXPECT_EQ(recorder.lines[2], recorder.lines[1]);
}
