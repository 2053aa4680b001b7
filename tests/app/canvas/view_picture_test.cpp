// Panning, zooming and changes: whatever the view does to be quick, it ends up showing what a fresh painting
// would.
#include "tests/app/canvas/view_stage.h"

#include "host/acdb/dbundo.h"
#include "host/aced/edwinmsg.h"
#include "tests/support/picture.h"

#include <QSignalSpy>
#include <QTest>

using tests::MemoryDrawing;
using tests::ViewStage;

namespace
{

/// Lines, circles and texts all over the view and beyond.
MemoryDrawing busyDrawing()
{
    MemoryDrawing content;
    content.headerVariable("$CLAYER", {{8, "0"}});
    for (int i = 0; i < 120; ++i) {
        const AcGePoint3d place(-700 + (i * 373) % 1400, -500 + (i * 211) % 1000, 0);
        content.entity(
            "LINE", {{62, i % 7 + 1}, {100, "AcDbLine"}, {10, place}, {11, place + AcGeVector3d(90, 35, 0)}});
        content.entity("CIRCLE", {{62, i % 5 + 1}, {100, "AcDbCircle"}, {10, place}, {40, 8.0 + i % 30}});
        content.entity("TEXT", {{100, "AcDbText"}, {10, place}, {40, 12.0}, {1, "No. 17"}});
    }
    return content;
}

class ViewPictures : public testing::Test
{
protected:
    ViewStage stage{busyDrawing()};

    void expectFresh()
    {
        ASSERT_TRUE(stage.becomesSharp());
        const QImage fresh = stage.freshPicture();
        const qsizetype pixels = qsizetype(fresh.width()) * fresh.height();
        EXPECT_LE(tests::differingPixels(stage.view.picture(), fresh),
                  qsizetype(pixels * tests::kPixelTolerance));
        QImage empty(fresh.size(), fresh.format());
        empty.fill(fresh.pixel(0, 0));
        EXPECT_GT(tests::differingPixels(fresh, empty), 1000);
    }
};

AcEdWindowMessage lastMessage;

bool swallowWheel(const AcEdWindowMessage &message)
{
    lastMessage = message;
    return message.message == WM_MOUSEWHEEL;
}

} // namespace

TEST_F(ViewPictures, PanningShowsWhatAFreshPaintingWould)
{
    ASSERT_TRUE(stage.becomesSharp());
    for (const QPoint way :
         {QPoint(37, -21), QPoint(-400, 3), QPoint(5, 250), QPoint(900, 0), QPoint(-900, 0)}) {
        stage.view.panBy(way);
        expectFresh();
    }
    stage.document().view().twist = 0.3;
    expectFresh();
    stage.view.panBy({-61, 47});
    expectFresh();
    const QPoint middle(400, 300);
    const AcGePoint3d before = window::worldAt(stage.document(), middle);
    QTest::mousePress(&stage.view, Qt::MiddleButton, {}, middle);
    stage.moveTo(middle + QPoint(30, 40));
    QTest::mouseRelease(&stage.view, Qt::MiddleButton, {}, middle + QPoint(30, 40));
    EXPECT_TRUE(window::worldAt(stage.document(), middle + QPoint(30, 40)).isEqualTo(before, 1e-9));
    expectFresh();
}

TEST_F(ViewPictures, TheWheelKeepsThePlaceUnderTheCursor)
{
    stage.document().view().twist = -0.4;
    const QPoint at(613, 122);
    const AcGePoint3d before = window::worldAt(stage.document(), at);
    for (const int delta : {120, 120, 15, -480}) {
        const double height = stage.document().view().height;
        stage.wheel(at, delta);
        EXPECT_TRUE(window::worldAt(stage.document(), at).isEqualTo(before, 1e-9));
        EXPECT_NEAR(std::log(height / stage.document().view().height), std::log(1.25) * delta / 120.0, 1e-9);
    }
    EXPECT_FALSE(stage.view.grab().isNull()); // What is there, scaled.
    expectFresh();
}

TEST_F(ViewPictures, FiltersHearOfWheelAndPaintingAndMaySwallow)
{
    ASSERT_TRUE(acedRegisterFilterWinMsg(swallowWheel));
    const double height = stage.document().view().height;
    stage.wheel({10, 10}, 120);
    EXPECT_EQ(lastMessage.message, WM_MOUSEWHEEL);
    EXPECT_EQ(stage.document().view().height, height);
    stage.view.panBy({10, 0});
    EXPECT_EQ(lastMessage.message, WM_PAINT);
    EXPECT_EQ(lastMessage.window, stage.view.effectiveWinId());
    acedRemoveFilterWinMsg(swallowWheel);
}

TEST_F(ViewPictures, ChangesShowWhereTheyAre)
{
    ASSERT_TRUE(stage.becomesSharp());
    const QImage before = stage.view.picture().copy();
    stage.play({[&] { stage.type("LINE -100,-100 50,50 120,-80"); }, [&] { stage.type(""); },
                [&] { stage.type("CIRCLE 0,0 77"); }, [&] { stage.type("ERASE C -50,-50 50,50"); },
                [&] { stage.type(""); }});
    expectFresh();
    EXPECT_GT(tests::differingPixels(stage.view.picture(), before), 100);
    stage.view.setWhiteBackground(true);
    expectFresh();
    EXPECT_EQ(stage.view.picture().pixelColor(0, 0).name(), u"#ffffff");
    while (stage.database().undo().undo()) {
    }
    stage.view.setWhiteBackground(false);
    ASSERT_TRUE(stage.becomesSharp());
    EXPECT_EQ(tests::differingPixels(stage.view.picture(), before), 0);
}

TEST_F(ViewPictures, ResizingKeepsInViewWhatWasSeen)
{
    ASSERT_TRUE(stage.becomesSharp());
    const AcGeView &shown = stage.document().view();
    for (const bool userMoves : {false, true}) {
        if (userMoves)
            stage.wheel({100, 200}, 240);
        const AcGeView before = shown;
        for (const QSize size : {QSize(901, 155), QSize(150, 455), stage.view.size()}) {
            stage.view.resize(size);
            expectFresh();
            EXPECT_GE(shown.width(), before.width() * (1 - 1e-12)) << size.width();
            EXPECT_GE(shown.height, before.height * (1 - 1e-12)) << size.width();
            EXPECT_TRUE(shown.centre.isEqualTo(before.centre));
        }
        EXPECT_EQ(shown, before);
    }
}

TEST_F(ViewPictures, ZoomPreviousTakesBackARunOfMovesByHand)
{
    const AcGeView &shown = stage.document().view();
    const auto previous = [&] { stage.play({[&] { stage.type("ZOOM P"); }}); };
    const AcGeView first = shown;
    stage.wheel({100, 200}, 120);
    stage.wheel({100, 200}, 120);
    stage.view.panBy({10, 0});
    QTest::qWait(900); // A rest.
    const AcGeView second = shown;
    QTest::mousePress(&stage.view, Qt::MiddleButton, {}, {400, 300});
    stage.moveTo({430, 310});
    QTest::qWait(900); // Not letting go is no rest.
    stage.moveTo({500, 320});
    QTest::mouseRelease(&stage.view, Qt::MiddleButton, {}, {500, 320});
    QTest::mouseClick(&stage.view, Qt::MiddleButton, {}, {500, 320}); // Moves nothing.
    EXPECT_NE(shown, second);
    previous();
    EXPECT_EQ(shown, second);
    previous();
    EXPECT_EQ(shown, first);
    stage.wheel({100, 200}, 120); // However soon, it follows a command.
    previous();
    EXPECT_EQ(shown, first);
}

TEST_F(ViewPictures, DoubleMiddleClickShowsEverythingAndKeysMove)
{
    QSignalSpy typed(&stage.view, &window::DrawingView::textTyped);
    QSignalSpy moved(&stage.view, &window::DrawingView::viewChanged);
    QTest::mouseDClick(&stage.view, Qt::MiddleButton, {}, {50, 50});
    const AcGeView shown = stage.document().view();
    EXPECT_GT(shown.height, 900);
    EXPECT_LT(shown.height, 1500);
    QTest::keyClick(&stage.view, Qt::Key_Left);
    EXPECT_LT(stage.document().view().centre.x, shown.centre.x);
    QTest::keyClick(&stage.view, Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_LT(stage.document().view().height, shown.height);
    EXPECT_EQ(moved.size(), 3);
    QTest::keyClicks(&stage.view, "-L@");
    ASSERT_EQ(typed.size(), 3);
    EXPECT_EQ(typed[1][0].toString(), u"L");
}

namespace
{

/// A drawing that is too large for knowing its extents at once. Its file says something, not the truth.
MemoryDrawing largeDrawing()
{
    MemoryDrawing content;
    content.headerVariable("$EXTMIN", {{10, AcGePoint3d(0, 0, 0)}});
    content.headerVariable("$EXTMAX", {{10, AcGePoint3d(500, 400, 0)}});
    for (int i = 0; i < 30000; ++i) {
        const AcGePoint3d place(i % 200 * 20, i / 200 * 20, 0);
        content.entity(
            "LINE", {{62, i % 7 + 1}, {100, "AcDbLine"}, {10, place}, {11, place + AcGeVector3d(9, 7, 0)}});
    }
    return content;
}

} // namespace

TEST(LargeViewPictures, ZoomToTheFilesExtentsAndThenToTheRealOnes)
{
    for (const bool userMoves : {false, true}) {
        ViewStage stage(largeDrawing());
        AcGeView &view = stage.document().view();
        stage.view.zoomExtents();
        ASSERT_NEAR(view.height, 400 * 1.02, 15.0);
        if (userMoves)
            stage.view.panBy({10, 0});
        const auto isCorrected = [&] {
            stage.view.refresh();
            stage.view.zoomBy(1.0, {}); // Looks for what has become known.
            return view.height > 2900;
        };
        EXPECT_EQ(QTest::qWaitFor(isCorrected, userMoves ? 1500 : 10000), !userMoves);
    }
}

TEST(LargeViewPictures, StripsAndChangesShowWhatAFreshPaintingWould)
{
    ViewStage stage(largeDrawing());
    stage.document().view().centre = {2000, 1500, 0};
    stage.document().view().height = 1800;
    ASSERT_TRUE(stage.becomesSharp());
    const auto expectFresh = [&] {
        ASSERT_TRUE(stage.becomesSharp());
        const qsizetype pixels = qsizetype(ViewStage::kWidth) * ViewStage::kHeight;
        EXPECT_LE(tests::differingPixels(stage.view.picture(), stage.freshPicture()),
                  qsizetype(pixels * tests::kPixelTolerance));
    };
    const QImage before = stage.view.picture().copy();
    stage.play({[&] { stage.type("LINE 1200,800 2900,2100"); }, [&] { stage.type(""); },
                [&] { stage.type("ERASE W 1900,1400 2000,1500"); }, [&] { stage.type(""); }});
    expectFresh();
    EXPECT_GT(tests::differingPixels(stage.view.picture(), before), 500);
    for (const QPoint way : {QPoint(23, -9), QPoint(-310, 4), QPoint(2, 190)}) {
        stage.view.panBy(way);
        expectFresh();
    }
}
