// Views, spaces and coordinate systems of the current document.
#include "host/aced/edview.h"

#include "host/acdb/dbentity.h"
#include "host/acdb/dbundo.h"
#include "host/aced/edinput.h"
#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

using tests::MemoryDrawing;

static void expectNear(const AcGePoint3d &a, const AcGePoint3d &b)
{
    EXPECT_TRUE(a.isEqualTo(b, 1e-9)) << a.x << ',' << a.y << ',' << a.z << " is not " << b.x << ',' << b.y;
}

TEST(View, PixelsAndWorld)
{
    const tests::OpenDrawing drawing(MemoryDrawing().open());
    AcGeView &view = drawing.document().view();
    view = {.centre = {100, 50, 0}, .height = 100, .twist = 0, .pixelWidth = 400, .pixelHeight = 200};
    QPoint pixel;
    AcGePoint3d world;
    ASSERT_TRUE(acedCoordFromWorldToPixel(2, {100, 50, 0}, pixel));
    EXPECT_EQ(pixel, QPoint(200, 100));
    ASSERT_TRUE(acedCoordFromWorldToPixel(2, {0, 100, 0}, pixel));
    EXPECT_EQ(pixel, QPoint(0, 0));
    ASSERT_TRUE(acedCoordFromPixelToWorld(2, {400, 200}, world));
    expectNear(world, {200, 0, 0});

    // Turned: what lies along the view's own axes is level on the screen.
    view.twist = 0.3;
    const AcGeVector3d level = view.getEyeToWorldTransform() * AcGeVector3d(50, 0, 0);
    ASSERT_TRUE(acedCoordFromWorldToPixel(2, view.centre + level, pixel));
    EXPECT_EQ(pixel, QPoint(300, 100));
    for (const QPoint &there : {QPoint(0, 0), QPoint(399, 17), QPoint(-50, 1000)}) {
        ASSERT_TRUE(acedCoordFromPixelToWorld(2, there, world));
        ASSERT_TRUE(acedCoordFromWorldToPixel(2, world, pixel));
        EXPECT_EQ(pixel, there);
    }

    EXPECT_FALSE(acedCoordFromWorldToPixel(1, {}, pixel)) << "the sheet is not shown";
    EXPECT_FALSE(acedCoordFromWorldToPixel(2, {1e300, 0, 0}, pixel));
    EXPECT_FALSE(acedCoordFromWorldToPixel(2, {NAN, 0, 0}, pixel));
}

TEST(View, NothingIsShownWithoutADocument)
{
    QPoint pixel;
    AcGePoint3d world;
    EXPECT_FALSE(acedCoordFromWorldToPixel(2, {}, pixel));
    EXPECT_FALSE(acedCoordFromPixelToWorld(2, {}, world));
    EXPECT_EQ(acedSetCurrentView({}), Acad::eNoDocument);
    expectNear(acedTrans(AcGePoint3d(1, 2, 3), AcEdSpace::ucs, AcEdSpace::world), {1, 2, 3});
}

TEST(View, ZoomFitsTheRectangle)
{
    const tests::OpenDrawing drawing(MemoryDrawing().open());
    AcApDocument &document = drawing.document();
    document.view() = {.centre = {}, .height = 100, .twist = 0, .pixelWidth = 400, .pixelHeight = 200};
    acedZoomWindow(document, {10, 10, 0}, {0, 0, 0}); // Higher than the view is shaped.
    EXPECT_DOUBLE_EQ(document.view().height, 10);
    expectNear(document.view().centre, {5, 5, 0});
    acedZoomWindow(document, {0, 0, 0}, {80, 10, 0}); // Wider.
    EXPECT_DOUBLE_EQ(document.view().height, 40);
    acedZoomWindow(document, {7, 7, 0}, {7, 7, 0}); // A point: only the centre moves.
    EXPECT_DOUBLE_EQ(document.view().height, 40);
    expectNear(document.view().centre, {7, 7, 0});

    AcEdViewRecord record{.centre = {10, 0, 0}, .height = 20, .width = 80, .twist = kGePi / 2, .layout = {}};
    EXPECT_EQ(acedSetCurrentView(record), Acad::eOk);
    EXPECT_DOUBLE_EQ(document.view().height, 40);
    expectNear({},
               AcGePoint3d() + (document.view().getWorldToEyeTransform() * document.view().centre.asVector() -
                                AcGeVector3d(10, 0, 0)));
    record.height = record.width = 0;
    EXPECT_EQ(acedSetCurrentView(record), Acad::eInvalidInput);
    record.height = 1;
    record.layout = drawing.id(1);
    EXPECT_EQ(acedSetCurrentView(record), Acad::eInvalidInput) << "that is no layout";
}

TEST(View, ExtentsAreOfWhatIsVisible)
{
    MemoryDrawing memory;
    memory.layer("OFF", {.color = -7});
    memory.entity("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(10, 5, 0)}});
    const auto far = memory.entity("CIRCLE", {{60, 1}, {10, AcGePoint3d(100, 100, 0)}, {40, 1.0}});
    memory.entity("LINE", {{8, "OFF"}, {10, AcGePoint3d(-50, 0, 0)}, {11, AcGePoint3d(0, 0, 0)}});
    const tests::OpenDrawing drawing(memory.open());
    const AcDbExtents extents = acedCurrentExtents(drawing.document());
    ASSERT_TRUE(extents.isValid());
    expectNear(extents.minPoint(), {0, 0, 0});
    expectNear(extents.maxPoint(), {10, 5, 0});
    {
        AcDbObjectPointer<AcDbEntity> entity(drawing.id(far), AcDb::kForWrite);
        entity->setGroup(60, std::int64_t(0));
    }
    expectNear(acedCurrentExtents(drawing.document()).maxPoint(), {101, 101, 0});
}

TEST(Coordinates, BetweenWorldUcsAndDisplay)
{
    const tests::OpenDrawing drawing(MemoryDrawing().open());
    drawing.document().ucs() = {{10, 20, 0}, {0, 1, 0}, {-1, 0, 0}};
    drawing.document().view().twist = kGePi / 2;
    expectNear(acedTrans(AcGePoint3d(1, 2, 3), AcEdSpace::ucs, AcEdSpace::world), {8, 21, 3});
    expectNear(acedTrans(AcGePoint3d(8, 21, 3), AcEdSpace::world, AcEdSpace::ucs), {1, 2, 3});
    const AcGeVector3d along = acedTrans(AcGeVector3d(1, 0, 0), AcEdSpace::ucs, AcEdSpace::world);
    expectNear(AcGePoint3d() + along, {0, 1, 0});
    const AcGePoint3d display = acedTrans(AcGePoint3d(5, 0, 0), AcEdSpace::world, AcEdSpace::display);
    expectNear(display,
               AcGePoint3d() + drawing.document().view().getWorldToEyeTransform() * AcGeVector3d(5, 0, 0));
    expectNear(acedTrans(display, AcEdSpace::display, AcEdSpace::world), {5, 0, 0});
}

TEST(Spaces, SwitchingKeepsTheViews)
{
    MemoryDrawing memory;
    const auto sheet = memory.paperSpace();
    memory.entity("VIEWPORT", {{69, 1}, {12, AcGePoint2d(200, 100)}, {45, 250.0}}, sheet);
    const auto second = memory.block("*Paper_Space0");
    memory.entity("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(10, 10, 0)}}, second);
    memory.headerVariable("$PUCSORG", {{10, AcGePoint3d(1, 1, 0)}});
    const tests::OpenDrawing drawing(memory.open());
    AcApDocument &document = drawing.document();
    document.view().height = 77;
    document.view().pixelHeight = 500;
    const std::size_t undoSteps = drawing.database().undo().position();

    EXPECT_EQ(acedSetVarText("TILEMODE", "0"), RTNORM);
    EXPECT_EQ(drawing.database().currentSpaceId(), drawing.database().paperSpaceId());
    EXPECT_EQ(acedIntVar("CVPORT"), 1);
    EXPECT_DOUBLE_EQ(document.view().height, 250);
    EXPECT_EQ(document.ucs().origin, AcGePoint3d(1, 1, 0));
    document.view().height = 33;
    document.view().pixelHeight = 600; // The window was resized meanwhile.

    // A layout without a saved view shows all that it holds.
    EXPECT_EQ(acedMakeSpaceCurrent(document, drawing.id(second)), Acad::eOk);
    EXPECT_EQ(drawing.database().currentSpaceId(), drawing.id(second));
    EXPECT_EQ(acedIntVar("TILEMODE"), 0);
    expectNear(document.view().centre, {5, 5, 0});
    EXPECT_DOUBLE_EQ(document.view().height, 10);

    EXPECT_EQ(acedSetVarText("CTAB", "model"), RTNORM);
    EXPECT_DOUBLE_EQ(document.view().width(), 77.0 * 1600 / 500);
    EXPECT_EQ(document.view().pixelHeight, 600);
    EXPECT_EQ(document.ucs().origin, AcGePoint3d());
    EXPECT_EQ(acedSetVarText("TILEMODE", "0"), RTNORM);
    EXPECT_DOUBLE_EQ(document.view().height, 33);
    EXPECT_EQ(acedSetVarText("CTAB", "No such layout"), RTREJ);
    EXPECT_EQ(drawing.database().undo().position(), undoSteps) << "looking elsewhere is no edit";
}
