// Vertices of outlines: which points count, which edge is picked, and the command that adds one.
#include "quillnote/authoring/mark_vertices.h"

#include "quillnote/authoring/polygon_mark.h"

#include "tests/quillnote/authoring/authoring_fixture.h"

using Points = std::vector<AcGePoint3d>;

static const Points kSquare{{0, 0, 0}, {100, 0, 0}, {100, 100, 0}, {0, 100, 0}};

TEST(Vertices, RepeatedPointsCountOnce)
{
    struct Row {
        Points given;
        Points kept;
    };
    const Row rows[] = {
        {{}, {}},
        {{{1, 1, 0}}, {{1, 1, 0}}},
        {{{1, 1, 0}, {1.0005, 1, 0}}, {{1, 1, 0}}},
        {{{0, 0, 0}, {5, 0, 0}, {5, 0, 0}, {5, 0.0009, 0}, {5, 0.0011, 0}},
         {{0, 0, 0}, {5, 0, 0}, {5, 0.0011, 0}}},
        {{{0, 0, 0}, {5, 0, 0}, {5, 5, 0}, {0, 0.0005, 0}}, {{0, 0, 0}, {5, 0, 0}, {5, 5, 0}}},
        {{{0, 0, 0}, {5, 0, 0}, {0, 0, 0}, {0, 5, 0}}, {{0, 0, 0}, {5, 0, 0}, {0, 0, 0}, {0, 5, 0}}},
    };
    for (const Row &row : rows)
        EXPECT_EQ(distinctVertices(row.given), row.kept) << row.given.size();
}

TEST(Vertices, TheEdgeUnderAPoint)
{
    struct Row {
        AcGePoint3d point;
        std::optional<std::size_t> polygon;
        std::optional<std::size_t> spline;
    };
    // At the middle of a side, 160 degrees are reached 8.8 from it and 100 degrees 42 from it.
    const Row rows[] = {
        {{50, 0, 0}, 0, 0},    {{50, -8, 0}, 0, 0},  {{50, 8, 0}, 0, 0},    {{100, 60, 0}, 1, 1},
        {{0, 60, 0}, 3, 3},    {{50, -9, 0}, {}, 0}, {{50, -41, 0}, {}, 0}, {{50, -43, 0}, {}, {}},
        {{50, 50, 0}, {}, {}}, {{0, 0, 0}, {}, {}},  {{300, 0, 0}, {}, {}},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(edgeAt(kSquare, false, row.point), row.polygon) << row.point.x << ' ' << row.point.y;
        EXPECT_EQ(edgeAt(kSquare, true, row.point), row.spline) << row.point.x << ' ' << row.point.y;
    }
    EXPECT_FALSE(edgeAt({}, false, {}));
}

namespace
{

struct AddVertexTest : AuthoringTest {
    AcDbObjectId rectangle(int style) const
    {
        startUpSettings().style = style;
        NewMark request;
        request.corner2 = {100, 60, 0};
        request.opinionText = QStringLiteral("text");
        return createMark(database(), request);
    }
    void expectRefused(const QStringList &answers, const QString &said) const
    {
        AuthoringTest::expectRefused(QStringLiteral("QN3_addVertext"), answers, said);
    }
};

const QString kOff = QStringLiteral("\n请拾取靶框上，而不是拾取标注文本或文本框。");
const QString kNoOutline = QStringLiteral("\n只能在矩形或多边形靶框上增加顶点。");

} // namespace

TEST_F(AddVertexTest, ARectangleBecomesAPolygon)
{
    const Points expected{{0, 0, 0}, {100, 0, 0}, {100, 20, 0}, {100, 60, 0}, {0, 60, 0}};
    for (const int style : {2, 4, 5, -4}) {
        QuillnoteObj3 mark;
        mark.targetStyle = TargetStyle(style);
        mark.targetCorner2 = {100, 60, 0};
        ASSERT_TRUE(insertVertex(mark, {100, 20, 9}));
        EXPECT_EQ(mark.targetStyle, TargetStyle::thickPolygon);
        EXPECT_EQ(mark.vertexCount, 5);
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_TRUE(mark.vertices[i].isEqualTo(expected[i], 1e-9)) << style << ' ' << i;
    }
    const AcDbObjectId id = rectangle(4);
    const QString printed = runAndBack(QStringLiteral("QN3_addV"), {"100,20"});
    EXPECT_TRUE(printed.contains(QStringLiteral("\n已在第2顶点之后增加了新顶点。")));
    EXPECT_EQ(AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead)->vertexCount, 5);
}

TEST_F(AddVertexTest, PointsAreThoseOfTheCoordinateSystem)
{
    const AcDbObjectId id = makePolygonMark(database(), kSquare, AcGeVector3d::kZAxis);
    drawing->document().ucs() = {
        .origin = {0, 100, 5}, .xAxis = AcGeVector3d::kYAxis, .yAxis = -AcGeVector3d::kXAxis};
    runAndBack(QStringLiteral("QN3_addVertext"), {"-40,0"});
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    EXPECT_EQ(mark->vertexCount, 5);
    EXPECT_TRUE(mark->vertices[4].isEqualTo({0, 60, 0}, 1e-9)) << "behind the last one";
}

TEST_F(AddVertexTest, OtherPlacesAndThingsAreRefused)
{
    expectRefused({""}, QStringLiteral("\n未选中评图标签。"));
    expectRefused({"500,500"}, QStringLiteral("\n未选中评图标签。"));
    rectangle(4);
    expectRefused({"L"}, kOff);
    for (const int style : {1, 3, 6}) {
        rectangle(style);
        expectRefused({"L"}, kNoOutline);
    }
    NewMark leader;
    leader.isLeader = true;
    leader.corner2 = {400, 400, 0};
    leader.opinionText = QStringLiteral("text");
    createMark(database(), leader);
    expectRefused({"L"}, kNoOutline);
}

TEST_F(AddVertexTest, ASeventeenthVertexIsRefused)
{
    Points sixteen;
    for (int i = 0; i < 16; ++i) {
        const double angle = i * kGePi / 8;
        sixteen.emplace_back(100 * std::cos(angle), 100 * std::sin(angle), 0.0);
    }
    const AcDbObjectId id = makePolygonMark(database(), sixteen, AcGeVector3d::kZAxis);
    const AcGePoint3d middle = sixteen[0] + (sixteen[1] - sixteen[0]) * 0.5;
    closeStep();
    const auto before = tests::wholeDrawing(database());
    tests::ScriptFrontEnd script;
    script.addEntity(id, middle);
    acedEditor()->runCommand(QStringLiteral("QN3_addVertext"));
    EXPECT_TRUE(script.printed.contains(QStringLiteral("\n靶框最多只能有16个顶点！")));
    EXPECT_EQ(tests::wholeDifference(before, tests::wholeDrawing(database())), QStringList());
}
