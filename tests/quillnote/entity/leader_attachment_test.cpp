// Where leaders end on targets of every kind, in plain and in twisted views.
#include "quillnote/entity/leader_attachment.h"

#include <gtest/gtest.h>

static void expectNear(const std::optional<AcGePoint3d> &found, const AcGePoint3d &wanted)
{
    ASSERT_TRUE(found);
    EXPECT_TRUE(found->isEqualTo(wanted, 1e-9)) << found->x << ' ' << found->y << ' ' << found->z;
}

static OutlineRecord target(const AcGePoint3d &corner1, const AcGePoint3d &corner2)
{
    OutlineRecord mark;
    mark.target.corner1 = corner1;
    mark.target.corner2 = corner2;
    mark.target.corner3 = {corner1.x, corner2.y, 0};
    mark.target.corner4 = {corner2.x, corner1.y, 0};
    return mark;
}

TEST(LeaderAttachment, RectanglesOfferTwelvePoints)
{
    const OutlineRecord mark = target({0, 0, 0}, {30, 60, 0});
    const auto attached = [&](const AcGePoint3d &from) {
        return attachLeaders(TargetStyle::thinWaves, TargetStyle::thinWaves, mark, true, from);
    };
    expectNear(attached({0, -9, 0}), {6, 0, 0});
    expectNear(attached({11, -9, 0}), {10, 0, 0});
    expectNear(attached({99, -9, 0}), {30, 12, 0});
    expectNear(attached({15, 90, 0}), {15, 60, 0});
    expectNear(attached({-9, 19, 0}), {0, 20, 0});
    expectNear(attached({12.5, -9, 0}), {10, 0, 0}); // As near as the middle, and asked before.
    expectNear(attachLeaders(TargetStyle::thinWaves, TargetStyle::thickWaveEllipse, mark, true, {11, -9, 0}),
               {15, 0, 0});
    expectNear(attachLeaders(TargetStyle::thinWaves, TargetStyle::thickWaveEllipse, mark, true, {-99, 30, 0}),
               {0, 30, 0});
    EXPECT_FALSE(attachLeaders(TargetStyle::none, TargetStyle::none, mark, true, {99, 0, 0})) << "no outline";
    EXPECT_FALSE(attachLeaders(TargetStyle::thinWaves, TargetStyle::thinWaves, mark, false, {99, 0, 0}))
        << "no leader";
}

TEST(LeaderAttachment, EndsLieOnTheTargetHoweverItIsSeen)
{
    // Turned by a quarter: the world's x runs upwards, the lower side is x = 0.
    OutlineRecord mark;
    mark.target = {.corner1 = {0, 60, 0}, .corner2 = {30, 0, 0}, .corner3 = {30, 60, 0}, .corner4 = {}};
    expectNear(attachLeaders(TargetStyle::thinWaves, TargetStyle::thinWaves, mark, true, {-9, 55, 0}),
               {0, 48, 0});
    expectNear(
        attachLeaders(TargetStyle::thinWaveEllipse, TargetStyle::thinWaveEllipse, mark, true, {-9, 40, 0}),
        {0, 30, 0});
    expectNear(attachLeaders(TargetStyle::ellipse, TargetStyle::ellipse, mark, true, {-9, 40, 0}),
               {0, 30, 0});
}

TEST(LeaderAttachment, PolygonsAndSplinesAreMetFromTheirMiddle)
{
    // A square with a deep notch from the right; its first vertex comes twice.
    const std::array<AcGePoint3d, 6> notched{
        {{0, 0, 0}, {0, 0, 0}, {10, 0, 0}, {6, 5, 0}, {10, 10, 0}, {0, 10, 0}}};
    OutlineRecord mark;
    mark.vertices = notched;
    const AcGePoint3d middle(26.0 / 5, 5, 0);
    expectNear(attachLeaders(TargetStyle::thickPolygon, TargetStyle::thickPolygon, mark, true, {99, 5, 0}),
               {6, 5, 0});
    expectNear(attachLeaders(TargetStyle::thinPolygon, TargetStyle::thinPolygon, mark, true, {-10, 5, 0}),
               {0, 5, 0});
    EXPECT_FALSE(attachLeaders(TargetStyle::thickPolygon, TargetStyle::thickPolygon, mark, true, {3, 5, 0}))
        << "the reference point is inside";
    EXPECT_FALSE(attachLeaders(TargetStyle::thickPolygon, TargetStyle::thickPolygon, mark, true, middle));

    const std::array<AcGePoint3d, 4> square{{{10, 0, 0}, {0, 10, 0}, {-10, 0, 0}, {0, -10, 0}}};
    mark.vertices = square;
    const auto end =
        attachLeaders(TargetStyle::thickSpline, TargetStyle::thickSpline, mark, true, {30, 40, 0});
    ASSERT_TRUE(end);
    EXPECT_NEAR(end->x * 40, end->y * 30, 1e-7) << "on the line";
    double off = 1e9;
    const AcGeFitSpline3d spline = *closedSpline(square);
    for (int i = 0; i < 20'000; ++i)
        off = std::min(off, end->distanceTo(spline.getPointAtParam(*spline.getEndParam() * i / 20'000)));
    EXPECT_LT(off, 2e-3) << "on the curve";

    mark.vertices = std::span(square).first(1);
    EXPECT_FALSE(attachLeaders(TargetStyle::thickPolygon, TargetStyle::thickPolygon, mark, true, {99, 5, 0}));
}

TEST(LeaderAttachment, EndsSnapToBumps)
{
    std::vector<WaveBump> bumps;
    waveAlongSegment(bumps, {0, 0, 0}, {30, 0, 0}, 10.0);
    WaveMiddles middles;
    middles.add(bumps);
    const AcGePoint3d first = waveMiddle(bumps[0]);
    const AcGePoint3d second = waveMiddle(bumps[1]);
    EXPECT_EQ(snapLeaderEnd({0, -5, 0}, middles), first);
    EXPECT_EQ(snapLeaderEnd(first + AcGeVector3d(6, 0, 0), middles), second) << "the next one is nearer";
    EXPECT_EQ(snapLeaderEnd({40, 5, 0}, middles), AcGePoint3d(40, 5, 0));
    const AcGePoint3d atLast = waveMiddle(bumps[2]) + AcGeVector3d(4, 0, 0);
    EXPECT_EQ(snapLeaderEnd(atLast, middles), atLast) << "the last bump is not asked";
    EXPECT_EQ(snapLeaderEnd(first, WaveMiddles()), first);
}
