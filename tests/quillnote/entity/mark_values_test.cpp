// Numbers, dates and statuses as texts; corners.
#include "quillnote/entity/mark_geometry.h"
#include "quillnote/entity/mark_values.h"

#include <gtest/gtest.h>

#include <limits>

TEST(MarkValues, NumberText)
{
    EXPECT_EQ(markNumberText(12, 0), u"12");
    EXPECT_EQ(markNumberText(12, 3), u"12.3");
    EXPECT_EQ(markNumberText(65535, 65535), u"65535.65535");
}

TEST(MarkValues, DatesAreShownByTheirDistanceFromNow)
{
    const QDateTime local(QDate(2024, 3, 1), QTime(12, 0, 0));
    const double now = 2460371.0; // Powers of two below, so that the distances are exact.
    EXPECT_EQ(markDateText(now, now, local), u"2024-03-01 12:00:00");
    EXPECT_EQ(markDateText(now - 1.25, now, local), u"2024-02-29 06:00:00");
    EXPECT_EQ(markDateText(now - 1.0 / 1024, now, local), u"2024-03-01 11:58:36") << "84.375 seconds";
    EXPECT_EQ(markDateText(now + 0.5, now, local), u"2024-03-02 00:00:00");
    for (const double damaged : {std::numeric_limits<double>::quiet_NaN(), 1e300, -1e300})
        EXPECT_EQ(markDateText(damaged, now, local), QString()) << damaged;
}

TEST(MarkValues, StatusTexts)
{
    const std::pair<int, const char16_t *> rows[] = {{-1, u"拒绝修正。"},
                                                     {1, u"有争议，未修正。"},
                                                     {2, u"部分修正。"},
                                                     {3, u"完全修正。"},
                                                     {0, u""},
                                                     {4, u""}};
    for (const auto &[code, sentence] : rows)
        EXPECT_EQ(handling::statusSentence(std::int16_t(code)), QString::fromUtf16(sentence));
    EXPECT_EQ(handling::statusText(3), u"完全修正");
}

static void expectNear(const AcGePoint3d &actual, const AcGePoint3d &expected)
{
    EXPECT_TRUE(actual.isEqualTo(expected, 1e-9))
        << actual.x << ' ' << actual.y << ' ' << actual.z << " is not " << expected.x << ' ' << expected.y;
}

TEST(MarkGeometry, TheOtherCornersFollowTheXDirection)
{
    // The same rectangle upright and in a view turned by 30 degrees.
    for (const double angle : {0.0, kGePi / 6}) {
        const auto turned = [&](double x, double y) {
            return AcGePoint3d(x, y, 0).rotateBy(angle, AcGeVector3d::kZAxis);
        };
        const CompletedCorners others =
            completeCorners(turned(1, 2), turned(5, 4), AcGeVector3d::kZAxis,
                            AcGeVector3d::kXAxis.rotateBy(angle, AcGeVector3d::kZAxis));
        expectNear(others.corner3, turned(1, 4));
        expectNear(others.corner4, turned(5, 2));
    }
    const CompletedCorners point =
        completeCorners({3, 3, 0}, {3, 3, 0}, AcGeVector3d::kZAxis, AcGeVector3d::kXAxis);
    expectNear(point.corner3, {3, 3, 0});
    expectNear(point.corner4, {3, 3, 0});
}

TEST(MarkGeometry, CornersAreSortedAsTheUserSeesThem)
{
    for (const auto &[a, b] : {std::pair{AcGePoint3d(1, 5, 0), AcGePoint3d(4, 2, 0)},
                               std::pair{AcGePoint3d(4, 5, 0), AcGePoint3d(1, 2, 0)}}) {
        const SortedCorners sorted = sortCorners(a, b, {});
        expectNear(sorted.lowerLeft, {1, 2, 0});
        expectNear(sorted.upperRight, {4, 5, 0});
    }
    // A view turned by a quarter: world (x y) is seen at (-y x).
    const AcGeMatrix3d quarter = AcGeMatrix3d::rotation(kGePi / 2, AcGeVector3d::kZAxis);
    const SortedCorners sorted = sortCorners({1, 5, 0}, {4, 2, 0}, quarter);
    expectNear(sorted.lowerLeft, {1, 5, 0});
    expectNear(sorted.upperRight, {4, 2, 0});
}
