// Strokes of the hand: near what was drawn, in few points, with their corners and ends.
#include "helpers/ink_relay/ink_curve.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using Path = std::vector<QPointF>;

static double distance(const QPointF &point, const QPointF &a, const QPointF &b)
{
    const QPointF along = b - a;
    const double t = std::clamp(
        QPointF::dotProduct(point - a, along) / std::max(QPointF::dotProduct(along, along), 1e-12), 0.0, 1.0);
    const QPointF away = point - (a + along * t);
    return std::hypot(away.x(), away.y());
}

static double distance(const QPointF &point, const Path &path)
{
    double nearest = 1e9;
    for (std::size_t i = 0; i + 1 < path.size(); ++i)
        nearest = std::min(nearest, distance(point, path[i], path[i + 1]));
    return nearest;
}

static Path circle(int samples, double tremble)
{
    Path path;
    for (int i = 0; i < samples; ++i) {
        const double angle = 2.0 * M_PI * i / (samples - 1);
        const double radius = 100.0 + (i % 2 ? tremble : -tremble);
        path.emplace_back(200.0 + radius * std::cos(angle), 200.0 + radius * std::sin(angle));
    }
    return path;
}

TEST(InkCurve, StaysNearTheHandInFewPoints)
{
    const Path samples = circle(400, 0.6);
    const Path stroke = ink::strokeOf(samples);
    EXPECT_EQ(stroke.front(), samples.front());
    EXPECT_EQ(stroke.back(), samples.back());
    EXPECT_LT(stroke.size(), 80u);
    EXPECT_GT(stroke.size(), 20u);
    for (const QPointF &sample : samples)
        EXPECT_LT(distance(sample, stroke), 1.5);
}

TEST(InkCurve, RoundsWhatAFastHandLeftOut)
{
    // Straight pieces between the twelve samples would leave the circle by 4 pixels.
    const Path samples = circle(13, 0.0);
    const Path stroke = ink::strokeOf(samples);
    for (const QPointF &point : circle(360, 0.0)) {
        if (std::abs(point.y() - 200.0) < 60.0)
            continue; // The ends of the path know no direction.
        EXPECT_LT(distance(point, stroke), 2.0) << point.x() << ' ' << point.y();
    }
}

TEST(InkCurve, KeepsCornersAndStraightLines)
{
    Path samples;
    for (int x = 0; x <= 100; x += 4)
        samples.emplace_back(x, 50);
    for (int y = 54; y <= 150; y += 4)
        samples.emplace_back(100, y);
    const Path stroke = ink::strokeOf(samples);
    EXPECT_LT(distance({100, 50}, stroke), 1.1);
    EXPECT_LE(stroke.size(), 6u);
    EXPECT_EQ(ink::strokeOf(Path{{0, 0}, {10, 1}}), (Path{{0, 0}, {10, 1}}));
}

TEST(InkCurve, APathThatWentNowhereIsOnePoint)
{
    EXPECT_EQ(ink::strokeOf({}), Path());
    EXPECT_EQ(ink::strokeOf(Path{{5, 5}, {5.2, 5}, {5, 5.4}}), (Path{{5, 5}}));
    // There and back again is no point.
    EXPECT_GE(ink::strokeOf(Path{{0, 0}, {40, 0}, {0, 0}}).size(), 3u);
}

// A scribble over the whole canvas for a minute: neither slow nor ten thousand points.
TEST(InkCurve, LongScribblesStaySmall)
{
    Path samples;
    for (int i = 0; i < 12'000; ++i)
        samples.emplace_back(800 + 700 * std::sin(i * 0.031), 450 + 400 * std::sin(i * 0.0217 + 1.0));
    EXPECT_LT(ink::strokeOf(samples).size(), samples.size() / 2);
}
