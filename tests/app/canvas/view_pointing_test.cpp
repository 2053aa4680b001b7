// What a person does with the mouse in the drawing, and what comes of it.
#include "app/canvas/view_grips.h"
#include "tests/app/canvas/view_stage.h"

#include "host/acdb/dbentity.h"
#include "host/acdb/dbundo.h"
#include "host/aced/edmenu.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>

#include <QTest>

using tests::MemoryDrawing;
using tests::ViewStage;

namespace
{

/// Lines from (0,0) to (100,0) and from (0,50) to (300,50), a circle at (200,150) of radius 20.
struct Content : MemoryDrawing {
    Content()
    {
        headerVariable("$CLAYER", {{8, "0"}});
        low = line({0, 0, 0}, {100, 0, 0});
        high = line({0, 50, 0}, {300, 50, 0});
        circle = entity("CIRCLE", {{100, "AcDbCircle"}, {10, AcGePoint3d(200, 150, 0)}, {40, 20.0}});
    }
    std::uint64_t line(AcGePoint3d from, AcGePoint3d to)
    {
        return entity("LINE", {{100, "AcDbLine"}, {10, from}, {11, to}});
    }
    std::uint64_t low = 0;
    std::uint64_t high = 0;
    std::uint64_t circle = 0;
};

/// The pixel of a place while one pixel is one unit.
QPoint at(double x, double y)
{
    return {ViewStage::kWidth / 2 + int(x), ViewStage::kHeight / 2 - int(y)};
}

void expectNear(const AcGePoint3d &point, double x, double y, double z = 0.0)
{
    EXPECT_TRUE(point.isEqualTo({x, y, z}, 1e-6)) << point.x << "," << point.y << "," << point.z;
}

class ViewPointing : public testing::Test
{
protected:
    Content content;
    ViewStage stage{content};
    const AcDbObjectId low = stage.id(content.low);
    const AcDbObjectId high = stage.id(content.high);
    const AcDbObjectId circle = stage.id(content.circle);

    const std::vector<AcDbObjectId> &pickSet() const { return stage.document().pickSet(); }
    void drag(QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = {})
    {
        stage.play({[=, this] { stage.press(from, modifiers); }, [=, this] { stage.moveTo(to); },
                    [=, this] { stage.release(to, modifiers); }});
    }
};

} // namespace

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

// Points ------------------------------------------------------------------------------------------

TEST_F(ViewPointing, ClicksAreWorldPointsWhateverTheTwistAndTheCoordinateSystem)
{
    stage.document().view().twist = kGePi / 2.0; // The world's X axis points up on the screen.
    stage.document().ucs() = {{10, 20, 5}, AcGeVector3d::kYAxis, -AcGeVector3d::kXAxis};
    stage.play({[&] { stage.type("LINE"); }, [&] { stage.click(at(0, 0)); }, [&] { stage.click(at(0, 100)); },
                [&] { QTest::mouseClick(&stage.view, Qt::RightButton, {}, at(0, 0)); }});
    const AcDbObjectId drawn = stage.last();
    ASSERT_NE(drawn, circle);
    expectNear(stage.point(drawn, 10), 0, 0, 5);
    expectNear(stage.point(drawn, 11), 100, 0, 5);
}

TEST_F(ViewPointing, EntityPromptsTakeWhatIsUnderThePickBox)
{
    stage.play({[&] { stage.type("LIST"); }, [&] { stage.click(at(50, 2)); }, [&] { stage.type(""); }});
    EXPECT_TRUE(stage.printed.contains(QStringLiteral("LINE"))) << qPrintable(stage.printed);
    EXPECT_TRUE(stage.printed.contains(QString::number(content.low, 16).toUpper()));
}

// The pick set ------------------------------------------------------------------------------------

TEST_F(ViewPointing, ClicksAddToThePickSetAndShiftTakesAway)
{
    stage.play({[&] { stage.click(at(60, 0)); }, [&] { stage.click(at(60, 50)); },
                [&] { stage.click(at(60, 50)); }, [&] { EXPECT_THAT(pickSet(), ElementsAre(low, high)); },
                [&] { stage.click(at(60, 0), Qt::ShiftModifier); },
                [&] { EXPECT_THAT(pickSet(), ElementsAre(high)); },
                [&] { QTest::keyClick(&stage.view, Qt::Key_Escape); }});
    EXPECT_THAT(pickSet(), IsEmpty());
}

TEST_F(ViewPointing, WindowsToTheRightTakeWhatIsInsideToTheLeftWhatTheyTouch)
{
    const QPoint left = at(-20, 70);
    const QPoint right = at(120, -20);
    stage.play({[&] { stage.click(left); }, [&] { stage.click(right); }});
    EXPECT_THAT(pickSet(), ElementsAre(low));
    drag(right, left, Qt::ShiftModifier);
    EXPECT_THAT(pickSet(), IsEmpty());
    drag(right, left);
    EXPECT_THAT(pickSet(), UnorderedElementsAre(low, high));
    drag(left, right, Qt::ShiftModifier);
    EXPECT_THAT(pickSet(), ElementsAre(high));

    stage.play({[&] { stage.click(left); }, [&] { QTest::keyClick(&stage.view, Qt::Key_Escape); },
                [&] { stage.click(at(60, 0)); }}); // No second corner any more.
    EXPECT_THAT(pickSet(), ElementsAre(high, low));
}

TEST_F(ViewPointing, RunningSelectionsTakeClicksAndWindows)
{
    std::vector<std::size_t> chosen;
    QObject::connect(&stage.frontEnd, &window::WindowFrontEnd::chosenShown,
                     [&](const auto &entities) { chosen.push_back(entities.size()); });
    stage.play({[&] { stage.type("ERASE"); }, [&] { stage.click(at(200, 130)); },
                [&] { stage.press(at(120, 20)); }, [&] { stage.moveTo(at(-20, -20)); },
                [&] { stage.release(at(-20, -20)); }, [&] { stage.type(""); }});
    EXPECT_TRUE(low.isErased());
    EXPECT_TRUE(circle.isErased());
    EXPECT_FALSE(high.isErased());
    EXPECT_THAT(chosen, ElementsAre(1u, 2u, 0u));
}

TEST_F(ViewPointing, ThePlaceThatADialogIsAboutStaysVisible)
{
    const auto orange = [&](QPoint place) {
        const QColor color = stage.view.grab().toImage().pixelColor(place);
        return color.red() > 150 && color.blue() < 60;
    };
    QStringList seen;
    const auto look = [&] { seen.append(QString::number(orange(at(-150, -100)))); };
    stage.play({[&] {
        look();
        stage.frontEnd.showPlace({{-150, -100, 0}, {-50, -100, 0}, {-50, -40, 0}, {-150, -40, 0}});
        look();
        stage.frontEnd.showPlace({});
        look();
        stage.type("");
    }});
    EXPECT_EQ(seen.join(u' '), QStringLiteral("0 1 0"));
}

TEST_F(ViewPointing, DeleteErasesThePickSet)
{
    stage.play({[&] { stage.click(at(60, 0)); }, [&] { QTest::keyClick(&stage.view, Qt::Key_Delete); }});
    EXPECT_TRUE(low.isErased());
    EXPECT_FALSE(high.isErased());
}

TEST_F(ViewPointing, DoubleClicksRunTheMenuMacroOfTheKind)
{
    const tests::TempDir folder;
    const auto loaded =
        acedMenus().load(folder.write("clicks.mnu", R"(<menu-file version="1"><group name="CLICKS">
            <double-click entity="LINE" macro="^C^C_ERASE "/></group></menu-file>)"));
    ASSERT_TRUE(loaded) << qPrintable(loaded.error());
    stage.play({[&] { stage.click(at(200, 130)); },
                [&] { QTest::mouseDClick(&stage.view, Qt::LeftButton, {}, at(60, 0)); }});
    EXPECT_TRUE(low.isErased());
    EXPECT_FALSE(circle.isErased()); // Only what was clicked on.
    acedMenus().unload(QStringLiteral("CLICKS"));
}

// Grips and previews ------------------------------------------------------------------------------

TEST_F(ViewPointing, DraggingAGripChangesTheEntityInOneStep)
{
    const std::size_t before = stage.database().undo().position();
    stage.play({[&] { stage.click(at(60, 0)); }, [&] { stage.press(at(101, 1)); },
                [&] { stage.moveTo(at(150, 90)); }, [&] { stage.release(at(150, 90)); }});
    expectNear(stage.point(low, 10), 0, 0);
    expectNear(stage.point(low, 11), 150, 90);
    EXPECT_EQ(stage.database().undo().position(), before + 1);
    EXPECT_THAT(pickSet(), ElementsAre(low));

    // Two clicks do the same, and Esc in between leaves everything as it was.
    stage.play({[&] { stage.click(at(150, 90)); }, [&] { stage.click(at(20, 30)); },
                [&] { stage.click(at(0, 0)); }, [&] { QTest::keyClick(&stage.view, Qt::Key_Escape); }});
    expectNear(stage.point(low, 10), 0, 0);
    expectNear(stage.point(low, 11), 20, 30);
    EXPECT_TRUE(stage.database().undo().undo());
    EXPECT_TRUE(stage.database().undo().undo());
    expectNear(stage.point(low, 11), 100, 0);
}

TEST_F(ViewPointing, GripsAreAsLargeOnFineScreens)
{
    stage.document().pickSet() = {low};
    window::ViewGrips grips;
    ASSERT_TRUE(grips.update(&stage.document()));
    AcGiViewport view;
    view.height = view.pixelWidth = view.pixelHeight = 400;
    for (const double ratio : {1.0, 1.5, 2.0}) {
        view.pixelRatio = ratio;
        EXPECT_TRUE(grips.at({200 + 5 * ratio, 200}, view)) << ratio;
        EXPECT_FALSE(grips.at({200 + 5 * ratio + 2, 200}, view)) << ratio;
        QImage image(400, 400, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        grips.paint(painter, view, std::nullopt, std::nullopt);
        painter.end();
        int wide = 0;
        for (int x = 0; x < 225; ++x) // The next grip stands at 250.
            wide += image.pixel(x, 200) != 0xFF000000u;
        EXPECT_NEAR(wide, 10 * ratio + 1, 1.0) << ratio; // The edge, and whole pixels.
    }
    stage.document().pickSet().clear();
}

TEST_F(ViewPointing, MovedEntitiesFollowTheCursor)
{
    const auto shownAt = [&](QPoint place) {
        stage.moveTo(place);
        AcDbExtents box;
        const auto shown = stage.frontEnd.prompt()->tracker->shown();
        EXPECT_EQ(shown.size(), 1u);
        for (const AcDbEntity *const entity : shown)
            EXPECT_EQ(entity->getGeomExtents(box), Acad::eOk);
        return box.minPoint();
    };
    stage.play({[&] { stage.click(at(60, 0)); }, [&] { stage.type("MOVE"); }, [&] { stage.click(at(0, 0)); },
                [&] { expectNear(shownAt(at(30, 40)), 30, 40); },
                [&] { expectNear(shownAt(at(-5, 7)), -5, 7); }, [&] { stage.view.grab(); },
                [&] { stage.click(at(10, 20)); }});
    expectNear(stage.point(low, 10), 10, 20);
}
