// What entities draw beyond their plain geometry: corners, clips, styles with overrides, views of a sheet,
// and numbers that no drawing should have.
#include "host/acgi/kinds/draw_entity.h"

#include "tests/support/memory_drawing.h"
#include "tests/support/recorder.h"

#include <gtest/gtest.h>

using tests::Group;
using tests::Groups;
using tests::MemoryDrawing;

namespace
{

/// A recorder that also writes down clips, images, markers and viewports.
class Everything : public tests::Recorder
{
public:
    std::vector<acgi::ViewportPicture> viewports;

    void marker(const AcGePoint3d &point, int mode, double size, double angle) override
    {
        lines << QStringLiteral("marker %1 %2 %3 %4")
                     .arg(tests::pointText(toWorld(point)))
                     .arg(mode)
                     .arg(size)
                     .arg(angle, 0, 'f', 3);
    }
    void image(const acgi::Image &image) override
    {
        lines << QStringLiteral("image %1 %2 to %3, %4 corners, fade %5")
                     .arg(image.path, tests::pointText(image.origin),
                          tests::pointText(image.origin + image.u + image.v))
                     .arg(image.clip.size())
                     .arg(image.fade);
    }
    void viewport(const acgi::ViewportPicture &picture) override { viewports.push_back(picture); }
    void pushClip(std::span<const acgi::Loop> loops, bool inverted) override
    {
        QString line = inverted ? QStringLiteral("outside") : QStringLiteral("inside");
        for (const AcGePoint3d &point : loops.front())
            line += u' ' + tests::pointText(toWorld(point));
        lines << line;
    }
    void popClip() override { lines << QStringLiteral("unclip"); }
};

Everything drawn(const MemoryDrawing &drawing, std::uint64_t handle, bool withPen = false)
{
    const std::unique_ptr<AcDbDatabase> database = drawing.open();
    const AcDbObjectPointer<AcDbEntity> entity(database->getAcDbObjectId({handle}), AcDb::kForRead);
    Everything sink;
    sink.withPen = withPen;
    acgi::drawEntity(*entity, sink);
    return sink;
}

Group handleGroup(int code, std::uint64_t handle)
{
    return {code, AcDbHandle{handle}};
}

} // namespace

TEST(WideLines, FillTheirCorners)
{
    const Groups corner{
        {70, 0}, {43, 2.0}, {10, AcGePoint2d(0, 0)}, {10, AcGePoint2d(10, 0)}, {10, AcGePoint2d(10, 9)}};
    MemoryDrawing drawing;
    const QStringList areas = drawn(drawing, drawing.entity("LWPOLYLINE", corner)).lines;
    ASSERT_EQ(areas.size(), 2);
    for (const QString &area : areas)
        EXPECT_TRUE(area.startsWith(u"fill") && area.contains(u"(11 -1)")) << area.toStdString();
    // A hairpin would reach far out: it is cut off.
    const std::uint64_t hairpin = drawing.entity(
        "LWPOLYLINE",
        {{43, 2.0}, {10, AcGePoint2d(0, 0)}, {10, AcGePoint2d(10, 0)}, {10, AcGePoint2d(0, 0.5)}});
    EXPECT_FALSE(drawn(drawing, hairpin).lines.join(u' ').contains(u"(5"));

    drawing.headerVariable("$FILLMODE", {{70, 0}});
    EXPECT_EQ(drawn(drawing, drawing.entity("LWPOLYLINE", corner)).lines,
              QStringList({"polyline (0 1) (9 1) (11 -1) (0 -1) (0 1)",
                           "polyline (9 1) (9 9) (11 9) (11 -1) (9 1)"}));
}

TEST(Points, TakeTheirLookFromTheDrawing)
{
    MemoryDrawing drawing;
    drawing.headerVariable("$PDMODE", {{70, 34}});
    drawing.headerVariable("$PDSIZE", {{40, -3.0}});
    const std::uint64_t point = drawing.entity("POINT", {{10, AcGePoint3d(1, 2, 0)}, {50, 90.0}});
    EXPECT_EQ(drawn(drawing, point).lines, QStringList("marker (1 2) 34 -3 1.571"));
}

TEST(Points, OfDimensionsAreDots)
{
    MemoryDrawing drawing;
    drawing.headerVariable("$PDMODE", {{70, 34}});
    const std::uint64_t point = drawing.entity("POINT", {{10, AcGePoint3d(1, 2, 0)}}, drawing.block("*D7"));
    EXPECT_EQ(drawn(drawing, point).lines, QStringList("marker (1 2) 0 0 0.000"));
}

TEST(Splines, ClosePeriodicallyAndThroughFitPoints)
{
    MemoryDrawing drawing;
    // A periodic curve whose file leaves out the control points that come again.
    Groups periodic{{100, "AcDbSpline"}, {70, 3}, {71, 2}};
    for (int knot = 0; knot < 9; ++knot)
        periodic.emplace_back(40, double(knot));
    for (const AcGePoint3d point : {AcGePoint3d(0, 0, 0), {4, 0, 0}, {4, 4, 0}, {0, 4, 0}})
        periodic.emplace_back(10, point);
    const QString circleLike = drawn(drawing, drawing.entity("SPLINE", periodic)).lines.value(0);
    EXPECT_TRUE(circleLike.startsWith(u"polyline (2 0)") && circleLike.endsWith(u"(2 0)"))
        << circleLike.toStdString();
    EXPECT_TRUE(circleLike.contains(u"(4 2)") && circleLike.contains(u"(0 2)"));

    const std::uint64_t fitted = drawing.entity("SPLINE", {{100, "AcDbSpline"},
                                                           {71, 3},
                                                           {11, AcGePoint3d(0, 0, 0)},
                                                           {11, AcGePoint3d(1, 2, 0)},
                                                           {11, AcGePoint3d(2, 0, 0)},
                                                           {12, AcGePoint3d(0, 1, 0)},
                                                           {13, AcGePoint3d(0, -1, 0)}});
    const QString curve = drawn(drawing, fitted).lines.value(0);
    EXPECT_TRUE(curve.startsWith(u"polyline (0 0)") && curve.endsWith(u"(2 0)")) << curve.toStdString();
    EXPECT_GT(curve.count(u'('), 10);
    EXPECT_TRUE(curve.contains(u"(1 2)"));
}

TEST(Meshes, HideEdgesAndRefuseCountsWithoutPoints)
{
    MemoryDrawing drawing;
    const std::uint64_t faces = drawing.entity("POLYLINE", {{70, 64}});
    for (const AcGePoint3d corner : {AcGePoint3d(0, 0, 0), {4, 0, 0}, {0, 3, 0}})
        drawing.subEntity("VERTEX", {{70, 192}, {10, corner}});
    drawing.subEntity("VERTEX", {{70, 128}, {62, 5}, {71, 1}, {72, -2}, {73, 3}, {74, 77}});
    EXPECT_EQ(drawn(drawing, faces, true).lines,
              QStringList({"5 polyline (0 0) (4 0)", "5 polyline (0 3) (0 0)"}));

    const std::uint64_t grid = drawing.entity("POLYLINE", {{70, 16}, {71, 1 << 30}, {72, 1 << 30}});
    drawing.subEntity("VERTEX", {{70, 64}, {10, AcGePoint3d(0, 0, 0)}});
    EXPECT_TRUE(drawn(drawing, grid).lines.isEmpty());
}

TEST(Multilines, AreCutAndColouredByElement)
{
    MemoryDrawing drawing;
    const std::uint64_t style = drawing.object(
        "MLINESTYLE",
        {{100, "AcDbMlineStyle"}, {70, 16}, {62, 256}, {49, 1.0}, {62, 1}, {49, -1.0}, {62, 256}});
    const std::uint64_t line = drawing.entity("MLINE", {{62, 3},
                                                        {100, "AcDbMline"},
                                                        handleGroup(340, style),
                                                        {71, 1},
                                                        {11, AcGePoint3d(0, 0, 0)},
                                                        {12, AcGePoint3d(1, 0, 0)},
                                                        {13, AcGePoint3d(0, 1, 0)},
                                                        {74, 4},
                                                        {41, 1.0},
                                                        {41, 0.0},
                                                        {41, 2.0},
                                                        {41, 5.0},
                                                        {75, 0},
                                                        {74, 2},
                                                        {41, -1.0},
                                                        {41, 0.0},
                                                        {75, 0},
                                                        {11, AcGePoint3d(8, 0, 0)},
                                                        {12, AcGePoint3d(1, 0, 0)},
                                                        {13, AcGePoint3d(0, 1, 0)},
                                                        {74, 2},
                                                        {41, 1.0},
                                                        {41, 0.0},
                                                        {75, 0},
                                                        {74, 2},
                                                        {41, -1.0},
                                                        {41, 0.0},
                                                        {75, 0}});
    EXPECT_EQ(drawn(drawing, line, true).lines,
              QStringList({"1 polyline (0 1) (2 1)", "1 polyline (5 1) (8 1)", "polyline (0 -1) (8 -1)",
                           "polyline (0 -1) (0 1)"}));
}

TEST(Leaders, HaveTheArrowheadsOfTheirOverrides)
{
    MemoryDrawing drawing;
    const std::uint64_t dot = drawing.block("_DOT");
    drawing.entity("CIRCLE", {{10, AcGePoint3d(0, 0, 0)}, {40, 0.5}}, dot);
    drawing.record(SymbolTable::dimStyle, "DIMSTYLE", "ISO", {{40, 2.0}, {41, 3.0}, {176, 1}});
    const Groups path{
        {100, "AcDbLeader"}, {3, "ISO"}, {10, AcGePoint3d(0, 0, 0)}, {10, AcGePoint3d(20, 0, 0)}};
    const std::uint64_t plain = drawing.entity("LEADER", path);
    EXPECT_EQ(drawn(drawing, plain, true).lines,
              QStringList({"1 fill [(0 0)(6 -1)(6 1)]", "1 polyline (6 0) (20 0)"}));

    Groups overriding = path;
    for (const Group &group : {Group(1001, "ACAD"),
                               {1000, "DSTYLE"},
                               {1002, "{"},
                               {1070, 41},
                               {1040, 1.0},
                               {1070, 341},
                               handleGroup(1005, dot),
                               {1070, 176},
                               {1070, 5},
                               {1002, "}"}})
        overriding.push_back(group);
    EXPECT_EQ(drawn(drawing, drawing.entity("LEADER", overriding), true).lines,
              QStringList({"5 arc (0 0) from (-1 0) to (-1 0) through (1 0)", "5 polyline (2 0) (20 0)"}));
    // No room for an arrowhead.
    Groups shortLeader = path;
    shortLeader.back() = Group(10, AcGePoint3d(11, 0, 0));
    EXPECT_EQ(drawn(drawing, drawing.entity("LEADER", shortLeader)).lines,
              QStringList("polyline (0 0) (11 0)"));
}

TEST(Multileaders, OverrideLineByLine)
{
    MemoryDrawing drawing;
    const std::uint64_t leader = drawing.entity("MULTILEADER", {{100, "AcDbMLeader"},
                                                                {300, "CONTEXT_DATA{"},
                                                                {40, 1.0},
                                                                {140, 2.0},
                                                                {145, 0.5},
                                                                {290, 0},
                                                                {296, 0},
                                                                {302, "LEADER{"},
                                                                {10, AcGePoint3d(20, 0, 0)},
                                                                {11, AcGePoint3d(1, 0, 0)},
                                                                {40, 3.0},
                                                                {304, "LEADER_LINE{"},
                                                                {10, AcGePoint3d(0, 0, 0)},
                                                                {91, 0},
                                                                {305, "}"},
                                                                {304, "LEADER_LINE{"},
                                                                {10, AcGePoint3d(20, 9, 0)},
                                                                {91, 1},
                                                                {92, int(0xC3000003)},
                                                                {40, 1.0},
                                                                {93, 18},
                                                                {305, "}"},
                                                                {303, "}"},
                                                                {301, "}"},
                                                                {170, 1},
                                                                {91, int(0xC2FF8000)},
                                                                {291, 1}});
    EXPECT_EQ(drawn(drawing, leader, true).lines,
              QStringList({"#ff8000 fill [(0 0)(2 -0.333)(2 0.333)]", "#ff8000 polyline (2 0) (20 0) (23 0)",
                           "3 fill [(20 9)(19.833 8)(20.167 8)]", "3 polyline (20 8) (20 0) (23 0)"}));
}

TEST(Dimensions, AreMeasuredWhenTheirPictureIsMissing)
{
    MemoryDrawing drawing;
    drawing.record(SymbolTable::dimStyle, "DIMSTYLE", "ISO",
                   {{41, 0.5}, {42, 0.0}, {44, 1.0}, {271, 1}, {278, 44}});
    drawing.block("*D1"); // Empty.
    const std::uint64_t rotated = drawing.entity("DIMENSION", {{2, "*D1"},
                                                               {3, "ISO"},
                                                               {70, 32},
                                                               {10, AcGePoint3d(9, 5, 0)},
                                                               {1, "<> m"},
                                                               {13, AcGePoint3d(0, 0, 0)},
                                                               {14, AcGePoint3d(9, 2, 0)},
                                                               {50, 0.0}});
    const QStringList lines = drawn(drawing, rotated).lines;
    EXPECT_EQ(lines.mid(0, 3),
              QStringList({"polyline (0 0) (0 6)", "polyline (9 2) (9 6)", "polyline (0.5 5) (8.5 5)"}));
    EXPECT_TRUE(lines.last().startsWith(u"text \"9,0 m\"")) << lines.last().toStdString();
    // Between two lines that cross at the origin; the point on the arc lies in the lower sector.
    const std::uint64_t angular = drawing.entity("DIMENSION", {{3, "ISO"},
                                                               {70, 34},
                                                               {13, AcGePoint3d(1, 1, 0)},
                                                               {14, AcGePoint3d(2, 2, 0)},
                                                               {15, AcGePoint3d(-1, 1, 0)},
                                                               {10, AcGePoint3d(-2, 2, 0)},
                                                               {16, AcGePoint3d(0, -4, 0)}});
    EXPECT_TRUE(drawn(drawing, angular).lines.join(u'\n').contains(u"through (0 -4)"));
}

TEST(Inserts, AreClippedWhereTheBlockStands)
{
    MemoryDrawing drawing;
    const std::uint64_t block = drawing.block("DOOR", {1, 1, 0});
    drawing.entity("LINE", {{10, AcGePoint3d(1, 1, 0)}, {11, AcGePoint3d(9, 1, 0)}}, block);
    const auto clipped = [&](int shown, bool inverted) {
        Groups filter{
            {100, "AcDbFilter"},       {100, "AcDbSpatialFilter"},  {70, 2},    {10, AcGePoint2d(10, 10)},
            {10, AcGePoint2d(12, 13)}, {210, AcGePoint3d(0, 0, 1)}, {71, shown}};
        // The insert stood at (10 10) when it was clipped.
        for (const double entry : {1.0, 0.0, 0.0, -9.0, 0.0, 1.0, 0.0, -9.0, 0.0, 0.0, 1.0, 0.0,
                                   1.0, 0.0, 0.0, 0.0,  0.0, 1.0, 0.0, 0.0,  0.0, 0.0, 1.0, 0.0})
            filter.emplace_back(40, entry);
        if (inverted) {
            const std::uint64_t record =
                drawing.object("XRECORD", {{100, "AcDbXrecord"},
                                           {102, "ACAD_INVERTEDCLIP_ROUNDTRIP"},
                                           {10, AcGePoint3d(10, 10, 0)},
                                           {10, AcGePoint3d(11, 11, 0)},
                                           {102, "ACAD_INVERTEDCLIP_ROUNDTRIP_COMPARE"},
                                           {10, AcGePoint3d(7, 7, 0)}});
            const std::uint64_t extras = drawing.object(
                "DICTIONARY",
                {{100, "AcDbDictionary"}, {3, "ACAD_XREC_ROUNDTRIP"}, handleGroup(350, record)});
            filter.insert(filter.begin(), {{102, "{ACAD_XDICTIONARY"}, handleGroup(360, extras), {102, "}"}});
        }
        const std::uint64_t spatial = drawing.object("SPATIAL_FILTER", filter);
        const std::uint64_t filters = drawing.object(
            "DICTIONARY", {{100, "AcDbDictionary"}, {3, "SPATIAL"}, handleGroup(350, spatial)});
        const std::uint64_t own = drawing.object(
            "DICTIONARY", {{100, "AcDbDictionary"}, {3, "ACAD_FILTER"}, handleGroup(350, filters)});
        return drawn(drawing, drawing.entity("INSERT", {{102, "{ACAD_XDICTIONARY"},
                                                        handleGroup(360, own),
                                                        {102, "}"},
                                                        {2, "DOOR"},
                                                        {10, AcGePoint3d(100, 0, 0)}}))
            .lines;
    };
    const QString line = QStringLiteral("polyline (100 0) (108 0)");
    EXPECT_EQ(clipped(1, false), QStringList({"inside (100 0) (102 0) (102 3) (100 3)", line, "unclip"}));
    EXPECT_EQ(clipped(1, true), QStringList({"outside (100 0) (101 0) (101 1) (100 1)", line, "unclip"}));
    EXPECT_EQ(clipped(0, false), QStringList(line));
}

TEST(Inserts, OfEmptyBlocksMissNoDrawing)
{
    MemoryDrawing drawing;
    drawing.block("PLAN");
    const std::uint64_t empty = drawing.entity("INSERT", {{2, "PLAN"}, {10, AcGePoint3d(0, 0, 0)}});
    EXPECT_TRUE(drawn(drawing, empty).lines.isEmpty());
}

TEST(Images, ShowTheirFileInsideTheirClip)
{
    MemoryDrawing drawing;
    const std::uint64_t definition = drawing.object("IMAGEDEF", {{1, "plan.png"}});
    const Groups whole{{10, AcGePoint3d(1, 1, 0)},
                       {11, AcGePoint3d(0.5, 0, 0)},
                       {12, AcGePoint3d(0, 0.5, 0)},
                       {13, AcGePoint2d(10, 4)},
                       handleGroup(340, definition),
                       {70, 1},
                       {283, 50}};
    Groups inverted = whole;
    for (const Group &group :
         {Group(280, 1), {290, 1}, {14, AcGePoint2d(1.5, 0.5)}, {14, AcGePoint2d(3.5, 2.5)}})
        inverted.push_back(group);
    EXPECT_EQ(drawn(drawing, drawing.entity("IMAGE", whole)).lines,
              QStringList({"image plan.png (1 1) to (6 3), 0 corners, fade 0.5",
                           "polyline (1 1) (6 1) (6 3) (1 3) (1 1)"}));
    const QStringList outside = drawn(drawing, drawing.entity("IMAGE", inverted)).lines;
    EXPECT_EQ(outside.value(0), "outside (2 2.5) (3 2.5) (3 1.5) (2 1.5)");
    EXPECT_EQ(outside.value(2), "unclip");
}

TEST(Viewports, ReadTheirViewAlsoFromOldDrawings)
{
    MemoryDrawing drawing;
    const std::uint64_t walls = drawing.layer("WALLS");
    const std::uint64_t sheet =
        drawing.entity("VIEWPORT", {{40, 9.0}, {41, 9.0}, {68, 0}, {69, 0}}, drawing.paperSpace());
    const std::uint64_t modern = drawing.entity("VIEWPORT",
                                                {{100, "AcDbViewport"},
                                                 {10, AcGePoint3d(5, 5, 0)},
                                                 {40, 4.0},
                                                 {41, 2.0},
                                                 {68, 2},
                                                 {12, AcGePoint2d(7, 8)},
                                                 {16, AcGePoint3d(0, -1, 0)},
                                                 {17, AcGePoint3d(1, 2, 3)},
                                                 {45, 20.0},
                                                 {51, 90.0},
                                                 handleGroup(331, walls)},
                                                drawing.paperSpace());
    EXPECT_TRUE(drawn(drawing, sheet).lines.isEmpty());
    const Groups noNumber{{40, 4.0}, {41, 2.0}, {68, 0}, {69, 0}};
    EXPECT_FALSE(drawn(drawing, drawing.entity("VIEWPORT", noNumber, drawing.paperSpace())).lines.isEmpty());
    const Everything shown = drawn(drawing, modern);
    ASSERT_EQ(shown.viewports.size(), 1U);
    const acgi::ViewportPicture &view = shown.viewports.front();
    EXPECT_EQ(view.viewCentre, AcGePoint2d(7, 8));
    EXPECT_EQ(view.direction, AcGeVector3d(0, -1, 0));
    EXPECT_EQ(view.target, AcGePoint3d(1, 2, 3));
    EXPECT_NEAR(view.twist, kGePi / 2, 1e-12);
    EXPECT_EQ(view.frozenLayers.size(), 1U);
    EXPECT_EQ(shown.lines, QStringList("polyline (3 4) (7 4) (7 6) (3 6) (3 4)"));

    Groups old{{10, AcGePoint3d(5, 5, 0)},
               {40, 4.0},
               {41, 2.0},
               {68, 2},
               {69, 2},
               {1001, "ACAD"},
               {1000, "MVIEW"},
               {1002, "{"},
               {1070, 16},
               {1010, AcGePoint3d(1, 2, 3)},
               {1010, AcGePoint3d(0, 0, 1)}};
    for (const double value : {30.0, 20.0, 7.0, 8.0, 50.0, 0.0, 0.0})
        old.emplace_back(1040, value);
    for (const Group &group : {Group(1002, "{"), {1003, "WALLS"}, {1002, "}"}, {1002, "}"}})
        old.push_back(group);
    const Everything before = drawn(drawing, drawing.entity("VIEWPORT", old, drawing.paperSpace()));
    ASSERT_EQ(before.viewports.size(), 1U);
    EXPECT_EQ(before.viewports[0].viewHeight, 20.0);
    EXPECT_EQ(before.viewports[0].viewCentre, AcGePoint2d(7, 8));
    EXPECT_NEAR(before.viewports[0].twist, kGePi / 6, 1e-12);
    EXPECT_EQ(before.viewports[0].frozenLayers.size(), 1U);
}
