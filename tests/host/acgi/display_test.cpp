// Pictures of small drawings, looked at pixel by pixel.
#include "host/acgi/display/display.h"
#include "host/acgi/index_color.h"

#include "host/acdb/dbsymtb.h"
#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

#include <QImage>

#include <cmath>
#include <limits>

using tests::Groups;
using tests::MemoryDrawing;

static const QRgb kRed = acgi::indexColor(1);
static const QRgb kGreen = acgi::indexColor(3);
static const QRgb kBlue = acgi::indexColor(5);
static constexpr QRgb kBlack = 0xFF000000u;

/// A picture of 100 by 100 pixels of the square from the origin to (100 100): a pixel is a drawing unit.
struct Picture {
    QImage image{100, 100, QImage::Format_RGB32};
    acgi::PaintReport report;

    QRgb at(double x, double y) const { return image.pixel(int(x), int(std::floor(100.0 - y))); }
};

static Picture paint(AcDbDatabase &database, AcDbObjectId space, const acgi::PaintOptions &options = {})
{
    Picture picture;
    AcGiViewport view;
    view.centre = {50.0, 50.0, 0.0};
    view.height = view.pixelWidth = view.pixelHeight = 100.0;
    QPainter painter(&picture.image);
    picture.report = acgi::displayOf(database).paint(space, view, painter, options);
    return picture;
}

static Picture paint(AcDbDatabase &database, const acgi::PaintOptions &options = {})
{
    return paint(database, database.modelSpaceId(), options);
}

/// A filled square of 10 units from its lower left corner.
static Groups square(double x, double y, const Groups &first = {})
{
    Groups groups = first;
    groups.insert(groups.end(), {{10, AcGePoint3d(x, y, 0)},
                                 {11, AcGePoint3d(x + 10, y, 0)},
                                 {12, AcGePoint3d(x, y + 10, 0)},
                                 {13, AcGePoint3d(x + 10, y + 10, 0)}});
    return groups;
}

static AcDbObjectId layerOf(AcDbDatabase &database, const char *name)
{
    return database.tableRecord(SymbolTable::layer, QString::fromLatin1(name));
}

TEST(Display, ResolvesLayerZeroAndByBlockThroughNestedReferences)
{
    MemoryDrawing drawing;
    drawing.layer("GREEN", {.color = 3});
    drawing.layer("BLUE", {.color = 5});
    const std::uint64_t inner = drawing.block("INNER");
    drawing.entity("SOLID", square(0, 0, {{8, "0"}}), inner);
    drawing.entity("SOLID", square(20, 0, {{8, "BLUE"}, {62, 0}}), inner);
    drawing.entity("SOLID", square(40, 0, {{8, "BLUE"}}), inner);
    const std::uint64_t outer = drawing.block("OUTER");
    drawing.entity("INSERT", {{8, "0"}, {62, 0}, {2, "INNER"}, {10, AcGePoint3d(10, 10, 0)}}, outer);
    drawing.entity("INSERT", {{8, "GREEN"}, {62, 1}, {2, "OUTER"}, {10, AcGePoint3d(0, 0, 0)}});
    const auto database = drawing.open();
    const Picture picture = paint(*database);
    EXPECT_EQ(picture.at(15, 15), kGreen) << "layer 0 by layer: the layer of the outermost reference";
    EXPECT_EQ(picture.at(35, 15), kRed) << "by block, handed on by a reference that is by block";
    EXPECT_EQ(picture.at(55, 15), kBlue) << "its own layer";
}

TEST(Display, FindsPropertiesBehindTheMarkerOfTheKind)
{
    MemoryDrawing drawing;
    drawing.layer("GREEN", {.color = 3});
    drawing.layer("FROZEN", {.flags = 1, .color = 5});
    const Groups behind{{100, "AcDbEntity"}, {100, "AcDbTrace"}};
    const auto solid = [&](double x, const Groups &properties) {
        Groups groups = behind;
        groups.insert(groups.end(), properties.begin(), properties.end());
        return drawing.entity("SOLID", square(x, 10, groups));
    };
    const std::uint64_t green = solid(10, {{8, "GREEN"}});
    solid(30, {{8, "GREEN"}, {62, 1}});
    solid(50, {{8, "FROZEN"}, {62, 1}});
    const auto database = drawing.open();
    const Picture picture = paint(*database);
    EXPECT_EQ(picture.at(15, 15), kGreen);
    EXPECT_EQ(picture.at(35, 15), kRed);
    EXPECT_EQ(picture.at(55, 15), kBlack);
    AcDbObjectPointer<AcDbEntity> entity(database->getAcDbObjectId({green}), AcDb::kForWrite);
    EXPECT_EQ(entity->setLayer(QStringLiteral("FROZEN")), Acad::eOk);
    EXPECT_EQ(entity->layer(), u"FROZEN");
    EXPECT_EQ(std::ranges::count(entity->groups(), 8, &resbuf::restype), 1);
}

TEST(Display, HidesWhatLayersHideAndFollowsThemWithoutAnewList)
{
    MemoryDrawing drawing;
    drawing.layer("A", {.color = 1});
    drawing.layer("B", {.color = 3});
    const std::uint64_t block = drawing.block("BLOCK");
    drawing.entity("SOLID", square(0, 0, {{8, "0"}}), block);
    drawing.entity("SOLID", square(20, 0, {{8, "B"}}), block);
    drawing.entity("INSERT", {{8, "A"}, {2, "BLOCK"}, {10, AcGePoint3d(10, 10, 0)}});
    drawing.entity("SOLID", square(60, 10, {{8, "B"}, {60, 1}}));
    const auto database = drawing.open();
    EXPECT_EQ(paint(*database).at(15, 15), kRed);
    EXPECT_EQ(paint(*database).at(65, 15), kBlack) << "group 60";
    const auto change = [&](auto set) {
        AcDbObjectPointer<AcDbLayerTableRecord> layer(layerOf(*database, "A"), AcDb::kForWrite);
        set(*layer);
    };
    const std::size_t memory = acgi::displayOf(*database).memory();
    change([](AcDbLayerTableRecord &layer) { layer.setIsOff(true); });
    EXPECT_EQ(paint(*database).at(15, 15), kBlack);
    EXPECT_EQ(paint(*database).at(35, 15), kGreen) << "off hides only what stands on the layer";
    change([](AcDbLayerTableRecord &layer) { layer.setIsOff(false), layer.setIsFrozen(true); });
    EXPECT_EQ(paint(*database).at(35, 15), kBlack) << "frozen hides all that the reference shows";
    change([](AcDbLayerTableRecord &layer) { layer.setIsFrozen(false), layer.setColorIndex(5); });
    EXPECT_EQ(paint(*database).at(15, 15), kBlue);
    change([](AcDbLayerTableRecord &layer) { layer.setIsPlottable(false); });
    acgi::PaintOptions plot;
    plot.plotting = true;
    EXPECT_EQ(paint(*database, plot).at(15, 15), kBlack);
    EXPECT_EQ(acgi::displayOf(*database).memory(), memory);
}

TEST(Display, ShowsChangesOfEntitiesAndOfBlocks)
{
    MemoryDrawing drawing;
    const std::uint64_t block = drawing.block("BLOCK");
    const std::uint64_t inside = drawing.entity("SOLID", square(0, 0, {{62, 1}}), block);
    drawing.entity("INSERT", {{2, "BLOCK"}, {10, AcGePoint3d(10, 10, 0)}});
    const std::uint64_t plain = drawing.entity("SOLID", square(60, 10, {{62, 3}}));
    const auto database = drawing.open();
    ASSERT_EQ(paint(*database).at(15, 15), kRed);
    ASSERT_EQ(paint(*database).at(65, 15), kGreen);
    const auto move = [&](std::uint64_t handle) {
        AcDbObjectPointer<AcDbEntity> entity(database->getAcDbObjectId({handle}), AcDb::kForWrite);
        entity->transformBy(AcGeMatrix3d::translation({0.0, 50.0, 0.0}));
    };
    move(inside);
    move(plain);
    const Picture moved = paint(*database);
    EXPECT_EQ(moved.at(15, 15), kBlack);
    EXPECT_EQ(moved.at(15, 65), kRed);
    EXPECT_EQ(moved.at(65, 15), kBlack);
    EXPECT_EQ(moved.at(65, 65), kGreen);
    AcDbObjectPointer<AcDbEntity>(database->getAcDbObjectId({plain}), AcDb::kForWrite)->erase();
    EXPECT_EQ(paint(*database).at(65, 65), kBlack);
}

TEST(Display, CoversInDrawingOrder)
{
    MemoryDrawing drawing;
    drawing.entity("SOLID", square(10, 10, {{62, 1}}));
    drawing.entity("WIPEOUT", {{10, AcGePoint3d(0, 0, 0)},
                               {11, AcGePoint3d(15, 0, 0)},
                               {12, AcGePoint3d(0, 30, 0)},
                               {13, AcGePoint2d(1, 1)}});
    drawing.entity("SOLID", square(10, 10, {{62, 3}}));
    drawing.entity("SOLID", square(12, 12, {{62, 1}}));
    const auto database = drawing.open();
    const Picture picture = paint(*database);
    EXPECT_EQ(picture.at(11, 11), kGreen);
    EXPECT_EQ(picture.at(15, 15), kRed);
    EXPECT_EQ(picture.at(11, 25), kBlack);
}

TEST(Display, SurvivesNumbersThatNoDrawingShouldHave)
{
    constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
    MemoryDrawing drawing;
    for (const double far : {1e9, 1e15, 1e150, 1e308, kNaN, std::numeric_limits<double>::infinity()}) {
        drawing.entity("LINE", {{62, 1}, {10, AcGePoint3d(-far, 50.5, 0)}, {11, AcGePoint3d(far, 50.5, 0)}});
        drawing.entity("CIRCLE", {{62, 3}, {10, AcGePoint3d(far, 20.5, 0)}, {40, far}});
        drawing.entity("SOLID", {{62, 5},
                                 {10, AcGePoint3d(-far, -far, 0)},
                                 {11, AcGePoint3d(far, -far, 0)},
                                 {12, AcGePoint3d(-far, 10, 0)},
                                 {13, AcGePoint3d(far, 10, 0)}});
        drawing.entity("TEXT", {{10, AcGePoint3d(far, 0, 0)}, {40, far}, {1, "text"}});
        drawing.entity("POINT", {{10, AcGePoint3d(far, far, far)}});
        drawing.entity("XLINE", {{10, AcGePoint3d(far, 0, 0)}, {11, AcGePoint3d(far, 1, 0)}});
    }
    const auto database = drawing.open();
    const Picture picture = paint(*database);
    EXPECT_EQ(picture.at(70, 50.5), kRed) << "a line through the view is seen however long it is";
    EXPECT_EQ(picture.at(50, 5), kBlue);
}

TEST(Display, EndsArraysAndBlocksThatWouldNeverEnd)
{
    MemoryDrawing drawing;
    std::uint64_t block = drawing.block("LEVEL0");
    drawing.entity("SOLID", square(0, 0, {{62, 1}}), block);
    drawing.entity("INSERT", {{2, "LEVEL0"}}, block);
    for (int level = 1; level <= 12; ++level) {
        const QString below = QStringLiteral("LEVEL%1").arg(level - 1);
        block = drawing.block(qPrintable(QStringLiteral("LEVEL%1").arg(level)));
        for (int copy = 0; copy < 10; ++copy)
            drawing.entity("INSERT", {{2, below}, {70, 32767}, {71, 32767}, {44, 1e-6}, {45, 1e-6}}, block);
    }
    drawing.entity("INSERT", {{2, "LEVEL12"}, {10, AcGePoint3d(10, 10, 0)}});
    const auto database = drawing.open();
    const Picture picture = paint(*database);
    EXPECT_EQ(picture.at(15, 15), kRed);
    EXPECT_FALSE(picture.report.undrawn.empty()) << "what was left out is told";
}

TEST(Display, ShowsModelSpaceThroughViewports)
{
    MemoryDrawing drawing;
    drawing.layer("FROZEN");
    drawing.entity("SOLID", square(1000, 1000, {{62, 1}}));
    drawing.entity("VIEWPORT",
                   {{100, "AcDbViewport"},
                    {10, AcGePoint3d(50, 50, 0)},
                    {40, 40.0},
                    {41, 40.0},
                    {68, 1},
                    {69, 2},
                    {12, AcGePoint2d(1005, 1000)},
                    {16, AcGePoint3d(0, 0, 1)},
                    {17, AcGePoint3d(0, 0, 0)},
                    {45, 20.0}},
                   drawing.paperSpace());
    const auto database = drawing.open();
    const Picture picture = paint(*database, database->paperSpaceId());
    EXPECT_EQ(picture.at(50, 60), kRed);
    EXPECT_EQ(picture.at(50, 45), kBlack) << "below the square";
    EXPECT_EQ(picture.at(50, 75), kBlack) << "outside the viewport";
}

TEST(Display, ScalesLinetypesInViewportsAsTheSheetOrAsTheView)
{
    const auto pixelsOf = [](int scalesAsSheet) {
        MemoryDrawing drawing;
        drawing.headerVariable("$PSLTSCALE", {{70, scalesAsSheet}});
        drawing.record(SymbolTable::linetype, "LTYPE", "DASHES",
                       {{73, 2}, {40, 20.0}, {49, 10.0}, {74, 0}, {49, -10.0}, {74, 0}});
        drawing.entity("LINE",
                       {{6, "DASHES"}, {62, 1}, {10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(500, 0, 0)}});
        drawing.entity("VIEWPORT",
                       {{100, "AcDbViewport"},
                        {10, AcGePoint3d(50, 50.5, 0)},
                        {40, 100.0},
                        {41, 100.0},
                        {68, 1},
                        {69, 2},
                        {12, AcGePoint2d(250, 0)},
                        {45, 500.0}},
                       drawing.paperSpace());
        const auto database = drawing.open();
        return paint(*database, database->paperSpaceId());
    };
    const auto changes = [](const Picture &picture) {
        int count = 0;
        for (int x = 1; x < 99; ++x)
            count += (picture.at(x, 50.5) == kBlack) != (picture.at(x + 1, 50.5) == kBlack);
        return count;
    };
    // A pattern of 20 units on a sheet of 100, or in a view of 500.
    EXPECT_NEAR(changes(pixelsOf(1)), 10, 2);
    EXPECT_NEAR(changes(pixelsOf(0)), 50, 4);
}
