// The automatic flag refresh: which messages refresh, how often, which marks; and the set of drawn marks that
// it walks, as drawings open, switch and close.
#include "quillnote/authoring/all_marks.h"
#include "quillnote/authoring/flag_refresh.h"

#include "host/aced/edview.h"
#include "host/aced/edwinmsg.h"
#include "host/acgi/display/display.h"
#include "host/os/clock.h"
#include "tests/quillnote/authoring/authoring_fixture.h"

#include <QImage>

struct FlagRefreshTest : AuthoringTest {
    FlagRefreshTest()
    {
        os::setFixedMilliseconds(1000);
        startFlagRefresh();
    }
    ~FlagRefreshTest() override
    {
        stopFlagRefresh();
        os::setFixedMilliseconds({});
        markDrawingState().reset();
    }
    /// As the window does.
    void paint(AcApDocument &document) const
    {
        QImage image(64, 40, QImage::Format_RGB32);
        QPainter painter(&image);
        const AcGiViewport view = acedGiViewport(document.view(), false);
        acgi::displayOf(*document.database()).paint(document.database()->modelSpaceId(), view, painter, {});
    }
    /// True when the message had the drawn marks gone through: ids of what is gone are forgotten then.
    static bool refreshes(int message, quintptr window, std::int64_t clock)
    {
        os::setFixedMilliseconds(clock);
        const AcDbObjectId gone;
        drawnMarks(*acdbCurDwg()).insert(gone);
        EXPECT_FALSE(acedFilterWindowMessage({message, window}));
        return drawnMarks(*acdbCurDwg()).erase(gone) == 0;
    }
};

TEST_F(FlagRefreshTest, OnlyPaintingAndTheWheelRefreshAndNotTooOften)
{
    constexpr int kMouseMove = 512;
    EXPECT_FALSE(refreshes(WM_PAINT, 0, 1000));
    EXPECT_FALSE(refreshes(kMouseMove, 1, 1000));
    EXPECT_TRUE(refreshes(WM_PAINT, 1, 1000));
    EXPECT_FALSE(refreshes(WM_MOUSEWHEEL, 1, 1020));
    EXPECT_FALSE(refreshes(WM_PAINT, 1, 1049));
    EXPECT_TRUE(refreshes(WM_MOUSEWHEEL, 1, 1050));
    EXPECT_FALSE(refreshes(WM_MOUSEWHEEL, 1, 1099)) << "counted from the last refresh";
    markDrawingState().textSuppressed = true;
    EXPECT_FALSE(refreshes(WM_PAINT, 1, 2000)) << "grips are shown";
    markDrawingState().textSuppressed = false;
    EXPECT_TRUE(refreshes(WM_PAINT, 1, 2000));
}

TEST_F(FlagRefreshTest, RunsOnceUntilItIsSwitchedOff)
{
    EXPECT_TRUE(startFlagRefresh());
    EXPECT_TRUE(markDrawingState().flagRefreshRunning);
    run(QStringLiteral("QN3_AutoOFF"));
    EXPECT_FALSE(markDrawingState().flagRefreshRunning);
    EXPECT_FALSE(refreshes(WM_PAINT, 1, 5000));
    run(QStringLiteral("QN3_Auto"));
    EXPECT_TRUE(markDrawingState().flagRefreshRunning);
    EXPECT_TRUE(refreshes(WM_PAINT, 1, 5000)) << "the pause starts anew";
}

TEST_F(FlagRefreshTest, ErasedMarksAreForgottenAndComeBackWhenTheyAreDrawn)
{
    const AcDbObjectId id = make();
    paint(drawing->document());
    EXPECT_EQ(drawnMarks(database()).count(id), 1U);
    run(QStringLiteral("ERASE"), {"L", ""});
    refreshDrawnMarks();
    EXPECT_TRUE(drawnMarks(*acdbCurDwg()).empty());
    database().undo().undo();
    paint(drawing->document());
    EXPECT_EQ(drawnMarks(database()).count(id), 1U);
}

TEST_F(FlagRefreshTest, EachDrawingHasItsOwnDrawnMarks)
{
    const AcDbObjectId first = make();
    paint(drawing->document());
    auto second = std::make_unique<tests::OpenDrawing>(tests::MemoryDrawing().open());
    EXPECT_TRUE(drawnMarks(second->database()).empty());
    const AcDbObjectId other = createMark(second->database(), {});
    paint(second->document());
    // A drawing that is not the current one, and one that is no document, leave nothing behind.
    paint(drawing->document());
    const std::unordered_set<AcDbObjectId> ofSecond{other};
    EXPECT_EQ(drawnMarks(second->database()), ofSecond);

    const std::unordered_set<AcDbObjectId> ofFirst{first};
    acDocManager()->activateDocument(&drawing->document());
    EXPECT_EQ(drawnMarks(database()), ofFirst);
    second.reset();
    EXPECT_EQ(drawnMarks(database()), ofFirst) << "another drawing was closed";
    refreshDrawnMarks();
    EXPECT_EQ(drawnMarks(database()), ofFirst);
}
