// Vectors, transforms and boxes, against results worked out by hand.
#include "host/acge/geextents.h"
#include "host/acge/gematrix.h"

#include <gtest/gtest.h>

#include <limits>

static void expectNear(const AcGePoint3d &found, const AcGePoint3d &wanted)
{
    EXPECT_TRUE(found.isEqualTo(wanted, 1e-12)) << found.x << ' ' << found.y << ' ' << found.z;
}

TEST(Vectors, AnglesAndDirections)
{
    EXPECT_NEAR(AcGeVector3d(1, 0, 0).angleTo({1, 1e-9, 0}), 1e-9, 1e-20);
    EXPECT_NEAR(AcGeVector3d(1, 0, 0).angleTo({-2, 0, 0}), kGePi, 1e-15);
    EXPECT_EQ(AcGeVector3d().angleTo({1, 0, 0}), 0.0);
    EXPECT_EQ(AcGeVector3d().normal(), AcGeVector3d());
    EXPECT_NEAR(directionAngle({1, 1, 0}, {1, 0, 0}), 1.5 * kGePi, 1e-15);
    EXPECT_EQ(directionAngle({1, 1, 0}, {1, 1, 5}), 0.0);
    expectNear(polarOffset({1, 1, 7}, kGePi / 2, 2), {1, 3, 7});
}

TEST(Matrices, DoWhatTheyAreCalled)
{
    expectNear(AcGePoint3d(2, 0, 5).rotateBy(kGePi / 2, AcGeVector3d::kZAxis, {1, 0, 0}), {1, 1, 5});
    expectNear(AcGeMatrix3d::scaling(3, {1, 1, 1}) * AcGePoint3d(2, 1, 1), {4, 1, 1});
    expectNear(AcGeMatrix3d::mirroring({0, 1, 0}, {1, 0, 0}) * AcGePoint3d(3, 4, 5), {3, -2, 5});
    expectNear(AcGeMatrix3d::planeToWorld(-AcGeVector3d::kZAxis) * AcGePoint3d(1, 2, 3), {-1, 2, -3});
    expectNear(AcGeMatrix3d::planeToWorld(AcGeVector3d::kXAxis) * AcGePoint3d(1, 2, 3), {3, 1, 2});
    EXPECT_TRUE(AcGeMatrix3d::planeToWorld({}).isIdentity());
}

TEST(Matrices, InverseUndoesAndSingularOnesGiveTheIdentity)
{
    const AcGeMatrix3d m = AcGeMatrix3d::translation({1, 2, 3}) * AcGeMatrix3d::rotation(0.7, {1, 2, 3}) *
                           AcGeMatrix3d::scaling(2, -3, 4);
    expectNear(m.inverse() * (m * AcGePoint3d(5, 6, 7)), {5, 6, 7});
    expectNear(m * (m.inverse() * AcGePoint3d(5, 6, 7)), {5, 6, 7});
    EXPECT_NEAR(m.determinant(), -24.0, 1e-12);
    EXPECT_NEAR(m.scale(), 4.0, 1e-12);
    EXPECT_TRUE(AcGeMatrix3d::scaling(1, 0, 1).inverse().isIdentity());
}

TEST(Extents, GrowTurnAndIgnoreWhatIsNoPoint)
{
    AcDbExtents box;
    EXPECT_FALSE(box.isValid());
    box.addPoint({std::numeric_limits<double>::quiet_NaN(), 0, 0});
    box.addPoint({std::numeric_limits<double>::infinity(), 0, 0});
    EXPECT_FALSE(box.isValid());
    EXPECT_FALSE(box.meetsInPlane(box));
    box = AcDbExtents({2, 1, 0}, {0, 0, 0});
    box.transformBy(AcGeMatrix3d::rotation(kGePi / 2, AcGeVector3d::kZAxis));
    expectNear(box.minPoint(), {-1, 0, 0});
    expectNear(box.maxPoint(), {0, 2, 0});
    EXPECT_TRUE(box.meetsInPlane({{0, 2, 9}, {5, 5, 9}}));
    EXPECT_FALSE(box.meetsInPlane({{0.1, 0, 0}, {1, 1, 0}}));
    EXPECT_TRUE(box.containsInPlane({{-0.5, 0.5, 0}, {0, 1, 0}}));
}
