// Plot settings of layouts, and the viewports of sheets: numbers that a plotted or picked place depends on.
#include "host/aced/edplot.h"
#include "host/aced/hostcommands.h"

#include "host/acap/docview.h"
#include "host/aced/edpicture.h"
#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"
#include "tests/support/files.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

using tests::MemoryDrawing;

/// A viewport of 100 x 50 at (150, 100) that shows 1:10, turned by a quarter.
static tests::Groups viewport(int number, AcGePoint3d direction = {0, 0, 1})
{
    return {{10, AcGePoint3d(150, 100, 0)},
            {40, 100.0},
            {41, 50.0},
            {68, 1},
            {69, number},
            {12, AcGePoint2d(7, 3)},
            {16, direction},
            {17, AcGePoint3d(1000, 0, 0)},
            {45, 500.0},
            {51, 90.0}};
}

TEST(SheetViewports, PixelsGoThroughThem)
{
    MemoryDrawing memory;
    memory.entity("VIEWPORT", viewport(2), memory.paperSpace());
    const tests::OpenDrawing drawing(memory.open());
    AcApDocument &document = drawing.document();
    ASSERT_EQ(acedMakeSpaceCurrent(document, document.database()->paperSpaceId()), Acad::eOk);
    document.view() = {.centre = {150, 100, 0}, .height = 200, .pixelWidth = 400, .pixelHeight = 200};
    // The view's middle (7, 3) is counted from the target in the turned view.
    const AcGePoint3d middle(1003, -7, 0);
    QPoint pixel;
    ASSERT_TRUE(acedCoordFromWorldToPixel(2, middle, pixel));
    EXPECT_EQ(pixel, QPoint(200, 100));
    ASSERT_TRUE(acedCoordFromWorldToPixel(2, middle + AcGeVector3d(100, 0, 0), pixel));
    EXPECT_EQ(pixel, QPoint(200, 90)) << "1:10 and turned: the world's x points up";
    ASSERT_TRUE(acedCoordFromWorldToPixel(1, {0, 100, 0}, pixel));
    EXPECT_EQ(pixel, QPoint(50, 100));
    EXPECT_FALSE(acedCoordFromWorldToPixel(3, {}, pixel));

    // Entering changes nothing on the screen, only what takes input.
    ASSERT_EQ(acedSetVarText("CVPORT", "2"), RTNORM);
    EXPECT_TRUE(acedIsModelSpaceCurrent(document));
    EXPECT_EQ(acedIntVar("TILEMODE", 1), 0);
    EXPECT_TRUE(acedViewport(document).paperSpace);
    ASSERT_TRUE(acedCoordFromWorldToPixel(2, middle + AcGeVector3d(100, 0, 0), pixel));
    EXPECT_EQ(pixel, QPoint(200, 90));
    EXPECT_NEAR(acedRealVar("VIEWSIZE"), 2000, 1e-9);
    EXPECT_TRUE(document.view().centre.isEqualTo(middle, 1e-9));
    ASSERT_EQ(acedSetVarText("CVPORT", "1"), RTNORM);
    EXPECT_FALSE(acedIsModelSpaceCurrent(document));
    EXPECT_TRUE(document.view().centre.isEqualTo({150, 100, 0}, 1e-9));
    EXPECT_FALSE(document.database()->hasChanges()) << "looking is no edit";
}

TEST(SheetViewports, SomeAreNotEntered)
{
    MemoryDrawing memory;
    memory.entity("VIEWPORT", viewport(1), memory.paperSpace());
    memory.entity("VIEWPORT", viewport(3, {1, 1, 1}), memory.paperSpace());
    memory.entity("VIEWPORT", viewport(3), memory.paperSpace()); // The number is taken.
    const tests::OpenDrawing drawing(memory.open());
    AcApDocument &document = drawing.document();
    EXPECT_EQ(acedEnterViewport(document, 3), Acad::eKeyNotFound) << "model space is shown";
    ASSERT_EQ(acedMakeSpaceCurrent(document, document.database()->paperSpaceId()), Acad::eOk);
    EXPECT_EQ(acedEnterViewport(document, 3), Acad::eInvalidInput) << "not seen from above";
    EXPECT_EQ(acedEnterViewport(document, 9), Acad::eKeyNotFound);
    EXPECT_EQ(acedEnterViewport(document, 2), Acad::eOk);
    // Going to the Model tab leaves the viewport.
    ASSERT_EQ(acedSetVarText("CTAB", "Model"), RTNORM);
    EXPECT_EQ(acedCurrentViewport(document), 2);
    EXPECT_FALSE(acedViewport(document).paperSpace);
}

/// The settings of a layout as files state them, with the group codes that mean something else behind.
static tests::Groups layoutGroups(int rotation, int unit, int flags)
{
    return {{100, "AcDbPlotSettings"},
            {40, 1.0},
            {41, 2.0},
            {42, 3.0},
            {43, 4.0},
            {44, 210.0},
            {45, 297.0},
            {46, 5.0},
            {47, 6.0},
            {142, 1.0},
            {143, 2.0},
            {70, flags},
            {72, unit},
            {73, rotation},
            {74, 4},
            {48, 10.0},
            {49, 20.0},
            {140, 30.0},
            {141, 40.0},
            {7, "Monochrome.ctb"},
            {75, 0},
            {100, "AcDbLayout"},
            {1, "Layout1"},
            {70, 1}};
}

static AcEdPlot plotOf(const tests::Groups &groups)
{
    MemoryDrawing memory;
    const auto layout = memory.object("LAYOUT", groups);
    const tests::OpenDrawing drawing(memory.open());
    AcDbDatabase &database = *drawing.document().database();
    {
        AcDbObjectPointer<AcDbObject> block(database.paperSpaceId(), AcDb::kForWrite);
        block->setGroup(340, AcDbHandle{layout});
    }
    return acedLayoutPlot(database, database.paperSpaceId());
}

TEST(LayoutPlot, FollowsTheSettings)
{
    const AcEdPlot upright = plotOf(layoutGroups(0, 1, 4));
    EXPECT_EQ(upright.pageWidth, 210);
    EXPECT_EQ(upright.margins.left, 1);
    EXPECT_EQ(upright.margins.top, 4);
    EXPECT_EQ(upright.scale, 0.5);
    EXPECT_TRUE(upright.centred);
    EXPECT_FALSE(upright.lineWeights);
    EXPECT_TRUE(upright.monochrome);
    EXPECT_EQ(upright.area, AcEdPlotArea::window);
    EXPECT_TRUE(upright.window.maxPoint().isEqualTo({30, 40, 0}));

    const AcEdPlot turned = plotOf(layoutGroups(1, 0, 128));
    EXPECT_EQ(turned.pageWidth, 297);
    EXPECT_EQ(turned.margins.left, 4) << "the upper edge of the sheet";
    EXPECT_EQ(turned.margins.bottom, 1);
    EXPECT_EQ(turned.scale, 12.7) << "inches";
    EXPECT_FALSE(turned.centred);
    EXPECT_EQ(turned.offset.y, 6);

    EXPECT_FALSE(plotOf(layoutGroups(0, 1, 16)).scale) << "standard scale 0 fits";
    EXPECT_FALSE(plotOf({}).scale) << "without settings everything is fitted in";
}

TEST(Plot, RefusesWhatMakesNoPage)
{
    const tests::OpenDrawing drawing(MemoryDrawing().open());
    AcApDocument &document = drawing.document();
    AcEdPlot page;
    page.space = document.database()->modelSpaceId();
    EXPECT_FALSE(acedPlot(document, {page}, "never.pdf")) << "an empty drawing";
    page.area = AcEdPlotArea::view;
    page.viewName = "NOWHERE";
    EXPECT_FALSE(acedPlot(document, {page}, "never.pdf"));
    page.area = AcEdPlotArea::display;
    page.scale = 0;
    EXPECT_FALSE(acedPlot(document, {page}, "never.pdf"));
    page.scale = 1;
    page.margins.left = 400;
    EXPECT_FALSE(acedPlot(document, {page}, "never.pdf"));
}

TEST(Plot, StoppedPlotsLeaveTheFileAsItWas)
{
    struct Impatient : tests::ScriptFrontEnd {
        bool progress(const QString &what, double) override
        {
            told.append(what);
            return what.isEmpty() || told.size() < patience;
        }
        QStringList told;
        qsizetype patience = 1;
    } front;
    acedRegisterHostCommands(); // Whatever ran before, the front end hears of progress.
    MemoryDrawing memory;
    memory.entity("LINE", {{10, AcGePoint3d()}, {11, AcGePoint3d(10, 10, 0)}});
    const tests::OpenDrawing drawing(memory.open());
    const tests::TempDir folder;
    const QString path = folder.write(QStringLiteral("plan.pdf"), "earlier");
    const std::vector<AcEdPlot> pages(2,
                                      acedLayoutPlot(drawing.database(), drawing.database().modelSpaceId()));
    const auto stopped = acedPlot(drawing.document(), pages, path);
    ASSERT_FALSE(stopped);
    EXPECT_TRUE(stopped.error().contains(u"stopped"));
    EXPECT_EQ(tests::readFile(path), "earlier");
    EXPECT_EQ(folder.fileNames(), QStringList{"plan.pdf"});
    EXPECT_TRUE(front.told.last().isEmpty()) << "the end is told too";

    front.patience = 1000;
    ASSERT_TRUE(acedPlot(drawing.document(), pages, path));
    EXPECT_TRUE(tests::readFile(path).startsWith("%PDF"));
}
