// Aligning text boxes.
#include "quillnote/authoring/align_marks.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edview.h"
#include "tests/quillnote/authoring/authoring_fixture.h"

static MarkCorners box(double x, double y, double width, double height, double turned = 0.0)
{
    const auto at = [&](double px, double py) {
        return AcGePoint3d(px, py, 0).rotateBy(turned, AcGeVector3d::kZAxis);
    };
    return {at(x, y), at(x + width, y + height), at(x, y + height), at(x + width, y)};
}

static bool areNear(const MarkCorners &a, const MarkCorners &b)
{
    return a.corner1.isEqualTo(b.corner1, 1e-9) && a.corner2.isEqualTo(b.corner2, 1e-9) &&
           a.corner3.isEqualTo(b.corner3, 1e-9) && a.corner4.isEqualTo(b.corner4, 1e-9);
}

TEST(AlignedTextBox, IsARectangleInTheView)
{
    for (const double twist : {0.0, kGePi / 6, kGePi}) {
        AcGeView view;
        view.twist = twist;
        const AcGeVector3d right = AcGeVector3d::kXAxis.rotateBy(-twist, AcGeVector3d::kZAxis);
        const auto aligned = [&](BoxAlignment alignment) {
            return alignedTextBox(box(70, 90, 40, 10, -twist), box(10, 20, 30, 15, -twist), alignment, right,
                                  view.getWorldToEyeTransform());
        };
        EXPECT_TRUE(areNear(aligned(BoxAlignment::sides), box(10, 90, 30, 10, -twist))) << twist;
        EXPECT_TRUE(areNear(aligned(BoxAlignment::left), box(10, 90, 40, 10, -twist))) << twist;
        EXPECT_TRUE(areNear(aligned(BoxAlignment::heights), box(70, 20, 40, 15, -twist))) << twist;
    }
}

// Made in a view with another twist, it cannot be upright in both.
TEST(AlignedTextBox, StaysARectangleAlongItsOwnAxes)
{
    const double own = 0.3;
    const AcGeVector3d right(std::cos(own), std::sin(own), 0);
    for (const BoxAlignment alignment : {BoxAlignment::sides, BoxAlignment::left, BoxAlignment::heights}) {
        const MarkCorners aligned =
            alignedTextBox(box(70, 90, 40, 10, own), box(10, 20, 30, 15), alignment, right, {});
        const AcGeVector3d bottom = aligned.corner4 - aligned.corner1;
        const AcGeVector3d left = aligned.corner3 - aligned.corner1;
        EXPECT_NEAR(bottom.dotProduct(left), 0.0, 1e-9);
        EXPECT_NEAR(bottom.crossProduct(right).length(), 0.0, 1e-9);
        EXPECT_TRUE((aligned.corner1 + bottom + left).isEqualTo(aligned.corner2, 1e-9));
    }
}

namespace
{

struct AlignTest : AuthoringTest {
    AlignTest()
    {
        startUpSettings().textHeight = 5;
        startUpSettings().style = 2;
    }
    AcDbObjectId leader(const AcGePoint3d &end, const QString &text) const
    {
        NewMark request;
        request.isLeader = true;
        request.corner2 = end;
        request.opinionText = text;
        return createMark(database(), request);
    }
    static MarkCorners boxOf(AcDbObjectId id)
    {
        return textBoxCorners(*AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead));
    }
    static QString handle(AcDbObjectId id)
    {
        return QStringLiteral("handle %1").arg(id.handle().value, 0, 16);
    }
};

const QString kLong = QStringLiteral("门口净宽不足，请按规范核对后修改");

} // namespace

TEST_F(AlignTest, LeaderMarksFollowTheReference)
{
    const AcDbObjectId reference = leader({100, 50, 0}, kLong);
    const AcDbObjectId other = leader({180, 120, 0}, kLong + kLong);
    const AcDbObjectId flag = make();
    const auto before = tests::wholeDrawing(database());
    const MarkCorners wanted = boxOf(reference);
    const MarkCorners was = boxOf(other);

    runAndBack(QStringLiteral("qn8_align1"), {handle(reference), "ALL", ""});
    EXPECT_NEAR(boxOf(other).corner1.x, wanted.corner1.x, 1e-9);
    EXPECT_NEAR(boxOf(other).diagonal(), was.diagonal(), 1e-9) << "the box keeps its size";
    EXPECT_TRUE(areNear(boxOf(reference), wanted));
    database().undo().undo();

    runAndBack(QStringLiteral("qn8_align2"), {handle(reference), "ALL", ""});
    // The text hangs on the upper edge; the lower one follows its lines.
    EXPECT_NEAR(boxOf(other).corner3.y, wanted.corner2.y, 1e-9);
    EXPECT_NEAR(boxOf(other).corner1.x, was.corner1.x, 1e-9);
    database().undo().undo();

    runAndBack(QStringLiteral("qn8_align0"), {handle(reference), "ALL", ""});
    EXPECT_NEAR(boxOf(other).corner1.x, wanted.corner1.x, 1e-9);
    EXPECT_NEAR(boxOf(other).corner3.y, was.corner3.y, 1e-9);
    EXPECT_TRUE(AcDbObjectPointer<QuillnoteObj3>(flag, AcDb::kForRead)->leaderMode == LeaderMode::flag);
    database().undo().undo();
    EXPECT_EQ(tests::wholeDifference(before, tests::wholeDrawing(database())), QStringList());
}

TEST_F(AlignTest, AReferenceIsALeaderMark)
{
    const QString command = QStringLiteral("qn8_align0");
    const AcDbObjectId flag = make();
    const AcDbObjectId reference = leader({100, 50, 0}, kLong);
    expectRefused(command, {""}, QStringLiteral("\n未选中评图标签。"));
    expectRefused(command, {handle(flag)}, QStringLiteral("\n不是引线标记，不能当做参考物。"));
    expectRefused(command, {handle(reference), ""}, {});
}

TEST_F(AlignTest, LockedMarksAreTold)
{
    const AcDbObjectId reference = leader({100, 50, 0}, kLong);
    settings::setNumber(u"useLayer", 1);
    const AcDbObjectId locked = leader({180, 120, 0}, kLong);
    AcDbObjectPointer<AcDbLayerTableRecord>(
        database().tableRecord(SymbolTable::layer, QStringLiteral("评图标签")), AcDb::kForWrite)
        ->setIsLocked(true);
    const MarkCorners was = boxOf(locked);
    const QString printed = run(QStringLiteral("qn8_align1"), {handle(reference), "ALL", ""});
    EXPECT_TRUE(printed.contains(QStringLiteral("\n1 个评图标签无法修改")));
    EXPECT_TRUE(areNear(boxOf(locked), was));
}
