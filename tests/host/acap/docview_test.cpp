// The view and the coordinate system that a drawing opens with.
#include "host/acap/docview.h"

#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

using tests::MemoryDrawing;

namespace
{

void addViewport(MemoryDrawing &drawing, const char *name, double centre, double height, double twistDegrees)
{
    drawing.record(
        SymbolTable::viewport, "VPORT", name,
        {{12, AcGePoint2d(centre, 0)}, {17, AcGePoint3d(100, 0, 0)}, {40, height}, {51, twistDegrees}});
}

AcGeView opened(const AcDbDatabase &database)
{
    AcApDocManager manager;
    AcGeView view = AcApDocument().view();
    acapRestoreView(database, database.currentSpaceId(), view);
    return view;
}

} // namespace

TEST(SavedView, IsTheFirstActiveViewport)
{
    MemoryDrawing drawing;
    addViewport(drawing, "Other", 1, 11, 0);
    addViewport(drawing, "*Active", 10, 50, 90);
    addViewport(drawing, "*Active", 3, 33, 0);
    const AcGeView view = opened(*drawing.open());
    EXPECT_DOUBLE_EQ(view.height, 50);
    EXPECT_DOUBLE_EQ(view.twist, kGePi / 2);
    // The centre is filed in the view's own frame, from the target on.
    const AcGeVector3d offset =
        AcGeMatrix3d::rotation(view.twist, AcGeVector3d::kZAxis) * (view.centre - AcGePoint3d(100, 0, 0));
    EXPECT_NEAR(offset.x, 10, 1e-9);
    EXPECT_NEAR(offset.y, 0, 1e-9);
    EXPECT_EQ(view.pixelWidth, AcGeView().pixelWidth);
}

TEST(SavedView, OldDrawingsHaveItInTheHeader)
{
    MemoryDrawing drawing(DrawingVersion::r12);
    drawing.headerVariable("$VIEWCTR", {{10, AcGePoint2d(7, 8)}});
    drawing.headerVariable("$VIEWSIZE", {{40, 20.0}});
    const AcGeView view = opened(*drawing.open());
    EXPECT_EQ(view.centre, AcGePoint3d(7, 8, 0));
    EXPECT_DOUBLE_EQ(view.height, 20);
}

TEST(SavedView, OfASheetIsItsOwnViewport)
{
    MemoryDrawing drawing;
    addViewport(drawing, "*Active", 10, 50, 0);
    drawing.headerVariable("$TILEMODE", {{70, 0}});
    const auto sheet = drawing.paperSpace();
    drawing.entity("VIEWPORT", {{69, 2}, {12, AcGePoint2d(1, 1)}, {45, 9.0}}, sheet);
    drawing.entity("VIEWPORT", {{69, 1}, {12, AcGePoint2d(210, 148)}, {45, 300.0}}, sheet);
    const AcGeView view = opened(*drawing.open());
    EXPECT_EQ(view.centre, AcGePoint3d(210, 148, 0));
    EXPECT_DOUBLE_EQ(view.height, 300);
}

TEST(SavedView, WithoutNumbersTheFirstViewportIsTheSheet)
{
    MemoryDrawing drawing;
    drawing.headerVariable("$TILEMODE", {{70, 0}});
    const auto sheet = drawing.paperSpace();
    drawing.entity("VIEWPORT", {{69, 0}, {12, AcGePoint2d(210, 148)}, {45, 300.0}}, sheet);
    const auto second = drawing.entity("VIEWPORT", {{69, 0}, {12, AcGePoint2d(1, 1)}, {45, 9.0}}, sheet);
    const auto database = drawing.open();
    EXPECT_DOUBLE_EQ(opened(*database).height, 300);
    const auto viewports = acapSheetViewports(*database, database->paperSpaceId());
    ASSERT_EQ(viewports.size(), 1U);
    EXPECT_EQ(viewports.front().first, 2);
    EXPECT_EQ(viewports.front().second.handle().value, second);
}

TEST(SavedView, DamagedNumbersChangeNothing)
{
    for (const double height : {0.0, -5.0, 1e300, double(NAN)}) {
        MemoryDrawing drawing;
        addViewport(drawing, "*Active", 10, height, 0);
        EXPECT_DOUBLE_EQ(opened(*drawing.open()).height, AcGeView().height) << height;
    }
}

TEST(SavedUcs, ComesFromTheHeaderOfItsSpace)
{
    MemoryDrawing drawing;
    drawing.headerVariable("$UCSORG", {{10, AcGePoint3d(5, 6, 0)}});
    drawing.headerVariable("$UCSXDIR", {{10, AcGePoint3d(0, 1, 0)}});
    drawing.headerVariable("$UCSYDIR", {{10, AcGePoint3d(-1, 0, 0)}});
    drawing.headerVariable("$PUCSXDIR", {{10, AcGePoint3d(1, 1, 0)}}); // Not square to its Y axis.
    drawing.headerVariable("$PUCSYDIR", {{10, AcGePoint3d(0, 1, 0)}});
    const auto database = drawing.open();
    const AcApUcs model = acapSavedUcs(*database, database->modelSpaceId());
    EXPECT_EQ(model.origin, AcGePoint3d(5, 6, 0));
    EXPECT_EQ(model.xAxis, AcGeVector3d(0, 1, 0));
    EXPECT_EQ(acapSavedUcs(*database, database->paperSpaceId()).xAxis, AcGeVector3d::kXAxis);
}
