// Lengths along curves and splines through points, against closed forms and hand computation.
#include "host/acge/gecurve.h"

#include <gtest/gtest.h>

#include <array>
#include <limits>

static void expectNear(const AcGePoint3d &found, const AcGePoint3d &wanted, double tolerance = 1e-9)
{
    EXPECT_TRUE(found.isEqualTo(wanted, tolerance)) << found.x << ' ' << found.y << ' ' << found.z;
}

TEST(Curves, EllipseLengths)
{
    const AcGeEllipArc3d circle({1, 1, 0}, {2, 0, 0}, {0, 2, 0});
    EXPECT_NEAR(*circle.getDistAtParam(*circle.getEndParam()), 4 * kGePi, 1e-9);
    expectNear(*circle.getPointAtDist(kGePi), {1, 3, 0});
    expectNear(*circle.getPointAtDist(-5), {3, 1, 0});
    expectNear(*circle.getPointAtDist(100), {3, 1, 0});

    // Perimeters by the arithmetic-geometric mean; the last one is nearly four times the half axis.
    for (const auto &[minor, perimeter] :
         {std::pair(0.5, 4.844224110273838), std::pair(0.1, 4.063974180100895), std::pair(1e-6, 4.0)}) {
        const AcGeEllipArc3d ellipse({}, {1, 0, 0}, {0, minor, 0});
        EXPECT_NEAR(*ellipse.getDistAtParam(2 * kGePi), perimeter, 1e-6 * perimeter) << minor;
        expectNear(*ellipse.getPointAtDist(perimeter / 4), {0, minor, 0}, 1e-6);
        const double part = *ellipse.getDistAtParam(2.0);
        expectNear(*ellipse.getPointAtDist(part), ellipse.getPointAtParam(2.0), 1e-4 * perimeter);
    }
}

TEST(Curves, FitSplinePassesThroughItsPoints)
{
    const std::array<AcGePoint3d, 4> points{{{0, 0, 0}, {4, 3, 0}, {4, 3, 0}, {8, 0, 0}}};
    const AcGeFitSpline3d natural(points, std::nullopt, std::nullopt);
    EXPECT_EQ(natural.getEndParam(), 10.0);
    expectNear(natural.getPointAtParam(5.0), {4, 3, 0});
    expectNear(natural.getPointAtParam(10.0), {8, 0, 0});
    // By hand: the tangents are (0.8, 0.9), (0.8, 0) and (0.8, -0.9).
    EXPECT_NEAR(natural.getFirstDeriv(0.0).y, 0.9, 1e-12);
    expectNear(natural.getPointAtParam(2.5), {2, 1.5 + 5 * 0.9 / 8, 0});

    const AcGeFitSpline3d clamped(points, AcGeVector3d(0, 5, 0), AcGeVector3d());
    EXPECT_NEAR(clamped.getFirstDeriv(0.0).y, 1.0, 1e-12);
    EXPECT_NEAR(clamped.getFirstDeriv(0.0).x, 0.0, 1e-12);
    const double before = clamped.getFirstDeriv(5.0 - 1e-6).y - clamped.getFirstDeriv(5.0 - 2e-6).y;
    const double after = clamped.getFirstDeriv(5.0 + 2e-6).y - clamped.getFirstDeriv(5.0 + 1e-6).y;
    EXPECT_NEAR(before, after, 1e-11) << "the second derivative jumps";
}

TEST(Curves, LengthOfASplineAgreesWithFineChords)
{
    const std::array<AcGePoint3d, 5> points{{{0, 0, 0}, {10, 1, 0}, {12, 9, 0}, {-3, 7, 0}, {0, 0, 0}}};
    const AcGeFitSpline3d spline(points, AcGeVector3d(1, -1, 0), AcGeVector3d(1, -1, 0));
    const double end = *spline.getEndParam();
    double chords = 0.0;
    constexpr int kChords = 200'000;
    for (int i = 0; i < kChords; ++i)
        chords += spline.getPointAtParam(end * i / kChords)
                      .distanceTo(spline.getPointAtParam(end * (i + 1) / kChords));
    EXPECT_NEAR(*spline.getDistAtParam(end), chords, 1e-6 * chords);
    expectNear(*spline.getPointAtDist(*spline.getDistAtParam(0.37 * end)), spline.getPointAtParam(0.37 * end),
               1e-4 * chords);
}

TEST(Curves, WhatCannotBeComputedHasNoEnd)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const std::array<AcGePoint3d, 2> same{{{1, 1, 0}, {1, 1, 0}}};
    const std::array<AcGePoint3d, 2> broken{{{1, 1, 0}, {1, nan, 0}}};
    for (const AcGeFitSpline3d &spline :
         {AcGeFitSpline3d(same, {}, {}), AcGeFitSpline3d(broken, {}, {}), AcGeFitSpline3d({}, {}, {})}) {
        EXPECT_FALSE(spline.getEndParam());
        EXPECT_FALSE(spline.getDistAtParam(1.0));
        EXPECT_FALSE(spline.getPointAtDist(1.0));
    }
    EXPECT_FALSE(AcGeEllipArc3d({}, {nan, 0, 0}, {0, 1, 0}).getEndParam());
    EXPECT_EQ(AcGeEllipArc3d({}, {}, {}).getDistAtParam(1.0), 0.0);
}
