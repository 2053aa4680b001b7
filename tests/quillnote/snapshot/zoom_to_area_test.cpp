// Zooming to an area: margins, what "already visible" means, turned views, other spaces.
#include "quillnote/frame/settings/settings.h"
#include "quillnote/snapshot/zoom_to_area.h"

#include "host/acgi/kinds/draw_entity.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

struct ZoomTest : testing::Test {
    ZoomTest() : drawing(tests::MemoryDrawing().open())
    {
        settings::setNumber(u"viewScale2", 0);
        view() = AcGeView();
        view().pixelWidth = 200;
        view().pixelHeight = 100;
    }
    AcGeView &view() const { return drawing.document().view(); }
    const tests::OpenDrawing drawing;
    const AcDbExtents area{{10, 20, 0}, {30, 30, 0}};
};

TEST_F(ZoomTest, TheMarginIsAShareOfTheSize)
{
    zoomToArea(area);
    EXPECT_TRUE(view().centre.isEqualTo({20, 25, 0}, 1e-9));
    EXPECT_NEAR(view().height, 14, 1e-9); // 10 and a fifth on either side.
    for (const auto &[setting, share] : {std::pair(9, 0.2), {10, 0.1}, {90, 0.9}, {91, 0.2}}) {
        settings::setNumber(u"viewScale2", setting);
        EXPECT_NEAR(widenedArea(area).minPoint().x, 10 - 20 * share, 1e-9) << setting;
        EXPECT_NEAR(widenedArea(area).maxPoint().y, 30 + 10 * share, 1e-9) << setting;
    }
}

TEST_F(ZoomTest, WhatIsWhollyVisibleStaysWhenAsked)
{
    view().centre = {20, 25, 0};
    view().height = 12;
    zoomToArea(area, {}, ZoomWhen::ifOutside);
    EXPECT_EQ(view().height, 12);
    view().centre = {20, 27, 0}; // The lower edge of the area goes out of sight.
    zoomToArea(area, {}, ZoomWhen::ifOutside);
    EXPECT_NEAR(view().height, 14, 1e-9);
    zoomToArea({}, {}); // An area that is none.
    EXPECT_NEAR(view().height, 14, 1e-9);
}

TEST_F(ZoomTest, ATurnedViewStaysTurned)
{
    view().twist = kGePi / 2;
    zoomToArea(area);
    EXPECT_EQ(view().twist, kGePi / 2);
    EXPECT_TRUE(view().centre.isEqualTo({20, 25, 0}, 1e-9));
    EXPECT_NEAR(view().height, 28, 1e-9); // The width of the area stands upright.
}

TEST_F(ZoomTest, AnAreaOnASheetShowsTheSheet)
{
    view().centre = {20, 25, 0};
    const AcDbObjectId sheet = drawing.database().paperSpaceId();
    zoomToArea(area, sheet, ZoomWhen::ifOutside);
    EXPECT_EQ(drawing.database().currentSpaceId(), sheet);
    EXPECT_TRUE(view().centre.isEqualTo({20, 25, 0}, 1e-9));
}
