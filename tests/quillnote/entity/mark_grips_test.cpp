// Grips of marks: what each drag makes of the record, in straight and twisted views, and when drags are
// refused.
#include "quillnote/entity/mark_grips.h"

#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_state.h"
#include "quillnote/entity/password.h"

#include "host/acdb/dbtransient.h"
#include "host/acgi/query/install.h"
#include "tests/quillnote/entity/mark_streams.h"
#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

/// A target of 120 x 60 at the origin of the view, which may be twisted; text height 6.
class MarkGrips : public testing::TestWithParam<double>
{
protected:
    MarkGrips()
    {
        view.viewport.height = 100;
        view.viewport.pixelWidth = 1600;
        view.viewport.pixelHeight = 1000;
        if (testing::UnitTest::GetInstance()->current_test_info()->value_param())
            view.viewport.twist = GetParam();
        settings.textHeight = 4;
        settings.textHeightPS = 2;
        settings.BKstyle = FrameStyle(99);
        shape.target = rectangle(0, 0, 120, 60);
        shape.flagPoint = world(0, -6);
        shape.xDirection = view.viewport.getEyeToWorldTransform() * AcGeVector3d::kXAxis;
        shape.textHeight = 6;
        shape.textLength = 4;
        placeFlag();
    }
    AcGePoint3d world(double x, double y) const
    {
        return view.viewport.getEyeToWorldTransform() * AcGePoint3d(x, y, 0);
    }
    AcGeVector3d along(double x, double y) const
    {
        return view.viewport.getEyeToWorldTransform() * AcGeVector3d(x, y, 0);
    }
    MarkCorners rectangle(double left, double bottom, double right, double top) const
    {
        return {world(left, bottom), world(right, top), world(left, top), world(right, bottom)};
    }
    /// Where drawing puts the flag of this target.
    void placeFlag()
    {
        const auto mark = QuillnoteObj3::forReading();
        mark->leaderMode = LeaderMode::flag;
        shape.textBox = hasTextBox(shape.leaderMode) ? shape.textBox : shape.target;
        applyMarkShape(*mark, shape);
        shape.flagPoint = layOutMark(*mark, settings, view).writeBack.flagPoint;
    }
    /// A box of 100 x 20 with two leaders; slot 3 is the second one.
    void makeLeaderMark()
    {
        shape.leaderMode = LeaderMode::leader;
        shape.textBox = rectangle(200, 100, 300, 120);
        shape.leaderUsed[0] = shape.leaderUsed[3] = true;
        shape.leaderEnds[0] = world(120, 30);
        shape.leaderEnds[3] = world(10, 200);
    }
    MarkShape drag(std::vector<int> grips, double x, double y) const
    {
        return moveMarkGrips(shape, grips, along(x, y), settings, view).value();
    }
    bool isAt(const AcGePoint3d &point, double x, double y) const
    {
        return point.isEqualTo(world(x, y), 1e-9);
    }
    bool isRectangle(const MarkCorners &corners, double left, double bottom, double right, double top) const
    {
        return isAt(corners.corner1, left, bottom) && isAt(corners.corner2, right, top) &&
               isAt(corners.corner3, left, top) && isAt(corners.corner4, right, bottom);
    }

    MarkShape shape;
    MarkDrawingSettings settings;
    MarkView view;
};

TEST_P(MarkGrips, StandInTheirOrder)
{
    const auto kinds = [&] {
        QString text;
        for (const MarkGrip &grip : markGrips(shape))
            text += QStringLiteral("svccfbwl")[grip.kind] + QString::number(grip.number) + u' ';
        return text;
    };
    EXPECT_EQ(kinds(), "c0 c0 c1 c2 c3 f0 ");
    makeLeaderMark();
    EXPECT_EQ(kinds(), "c0 c0 c1 c2 c3 b0 w0 l0 l3 ");
    shape.targetStyle = TargetStyle::thickPolygon;
    shape.vertexCount = 3;
    EXPECT_EQ(kinds(), "v0 v1 v2 b0 w0 l0 l3 ");
    shape.targetStyle = TargetStyle::none;
    EXPECT_EQ(kinds(), "b0 w0 l0 l3 ");
    shape.hasSketch = true;
    EXPECT_EQ(kinds(), "s0 ");
    EXPECT_FALSE(moveMarkGrips(shape, std::vector{1}, {1, 0, 0}, settings, view));
    EXPECT_FALSE(moveMarkGrips(shape, std::vector{-1}, {1, 0, 0}, settings, view));
}

TEST_P(MarkGrips, TheTargetStaysARectangle)
{
    struct Row {
        std::vector<int> grips;
        double x, y;
        double left, bottom, right, top;
    };
    const Row rows[] = {
        {{0}, 7, 5, 7, 5, 127, 65},          {{1}, 7, 5, 7, 5, 120, 60},       {{2}, 7, 5, 0, 0, 127, 65},
        {{3}, 7, 5, 7, 0, 120, 65},          {{4}, 7, 5, 0, 5, 127, 60},       {{1, 3}, 7, 5, 7, 5, 120, 65},
        {{1, 2, 3, 4}, 7, 5, 7, 5, 127, 65}, {{0, 1, 2}, 7, 5, 7, 5, 127, 65}, {{1}, 130, 5, 120, 5, 130, 60},
        {{3}, 7, -70, 7, -10, 120, 0},
    };
    for (const Row &row : rows) {
        const MarkShape moved = drag(row.grips, row.x, row.y);
        EXPECT_TRUE(isRectangle(moved.target, row.left, row.bottom, row.right, row.top))
            << row.grips.front() << ' ' << row.x << ' ' << row.y;
        EXPECT_EQ(moved.targetStyle, TargetStyle::thinWaves);
    }
}

TEST_P(MarkGrips, ATargetThatIsAskewInTheViewIsMadeStraight)
{
    shape.xDirection = along(0.8, 0.6);
    shape.target = {world(0, 0), world(20, 90), world(-36, 48), world(56, 42)};
    const MarkShape moved = drag({1}, -4, -6);
    EXPECT_TRUE(isRectangle(moved.target, -4, -6, 20, 90));
    EXPECT_TRUE(moved.xDirection.normal().dotProduct(along(1, 0)) > 1.0 - 1e-9);
    view.plotting = true;
    EXPECT_EQ(drag({0}, 5, 5).xDirection, shape.xDirection);
}

TEST_P(MarkGrips, AFlagThatIsDraggedAwayBecomesALeaderMark)
{
    EXPECT_EQ(drag({5}, 0, -5.9).leaderMode, LeaderMode::flag);
    const double x = 200;
    const MarkShape moved = drag({5}, x, 0);
    EXPECT_EQ(moved.leaderMode, LeaderMode::leader);
    EXPECT_EQ(moved.flagStyle, FrameStyle::bevel);
    EXPECT_TRUE(moved.leaderUsed[0]);
    const AcGePoint3d flag = view.viewport.getWorldToEyeTransform() * moved.flagPoint;
    EXPECT_TRUE(isRectangle(moved.textBox, flag.x, flag.y - 4, flag.x + 15, flag.y)) << "five letters of 3";
    EXPECT_TRUE(isAt(moved.leaderEnds[0], 120, 12)) << "nearest of the twelve places";

    view.viewport.paperSpace = true;
    shape.textLength = 500;
    const MarkShape onSheet = drag({5}, x, 0);
    EXPECT_TRUE(isRectangle(onSheet.textBox, flag.x, flag.y - 2, flag.x + 30, flag.y)) << "twenty of 1.5";
}

TEST_P(MarkGrips, ATextBoxThatComesBackBecomesAFlag)
{
    makeLeaderMark();
    EXPECT_EQ(drag({5}, 1, 1).leaderMode, LeaderMode::leader) << "a small move is no way back";
    EXPECT_EQ(drag({5}, -300, -120).leaderMode, LeaderMode::leader);
    const MarkShape back = drag({5}, -203, -118);
    EXPECT_EQ(back.leaderMode, LeaderMode::flag) << "near corner 1";
    EXPECT_FALSE(back.leaderUsed[0]);
    EXPECT_TRUE(back.leaderUsed[3]);
    EXPECT_TRUE(isRectangle(drag({5}, -20, 30).textBox, 180, 130, 280, 150));
    EXPECT_TRUE(isRectangle(drag({5, 6}, -20, 30).textBox, 180, 130, 280, 150)) << "width and place at once";
}

TEST_P(MarkGrips, TheWidthOfATextBoxIgnoresTheVerticalPart)
{
    makeLeaderMark();
    EXPECT_TRUE(isRectangle(drag({6}, 30, 99).textBox, 200, 100, 330, 120));
    EXPECT_TRUE(isRectangle(drag({6}, -150, 99).textBox, 150, 100, 200, 120)) << "the sides change roles";
}

TEST_P(MarkGrips, LeaderEndsMoveAndVanishInTheTextBox)
{
    makeLeaderMark();
    const MarkShape gone = drag({8}, 240, -90);
    EXPECT_FALSE(gone.leaderUsed[3]);
    EXPECT_TRUE(gone.leaderUsed[0]);
    const MarkShape both = drag({7, 8}, 1, 2);
    EXPECT_TRUE(isAt(both.leaderEnds[0], 121, 32));
    EXPECT_TRUE(isAt(both.leaderEnds[3], 11, 202));
}

TEST_P(MarkGrips, ALeaderMarkWithoutTargetKeepsItsLeaders)
{
    makeLeaderMark();
    const MarkShape bare = drag({1}, 120, 60);
    EXPECT_EQ(bare.targetStyle, TargetStyle::none);
    EXPECT_EQ(bare.leaderUsed, shape.leaderUsed);
    EXPECT_EQ(drag({1}, 119, 60).targetStyle, TargetStyle::thinWaves);
    shape.leaderMode = LeaderMode::flag;
    EXPECT_EQ(drag({1}, 120, 60).targetStyle, TargetStyle::thinWaves)
        << "a flag mark has nothing but its outline";
}

TEST_P(MarkGrips, VerticesAndSketchesMove)
{
    shape.targetStyle = TargetStyle::thinPolygon;
    shape.vertexCount = 3;
    shape.vertices[1] = world(10, 10);
    const MarkShape moved = drag({1}, 3, 4);
    EXPECT_TRUE(isAt(moved.vertices[1], 13, 14));
    EXPECT_TRUE(moved.vertices[0] == shape.vertices[0]);
    shape.vertices[0] = world(0, 0);
    shape.vertices[2] = world(0, 10);
    EXPECT_TRUE(isRectangle(drag({1}, 20, -7).target, 0, 0, 30, 10)) << "the target is around the vertices";
    EXPECT_TRUE(isRectangle(drag({1, 2}, 20, -17).target, 0, -7, 30, 0));
    shape.targetStyle = TargetStyle::none;
    shape.hasSketch = true;
    const MarkShape sketch = drag({0}, 3, 4);
    EXPECT_TRUE(isAt(sketch.target.corner1, 3, 4));
    EXPECT_TRUE(isAt(sketch.target.corner2, 123, 64));
    EXPECT_TRUE(isAt(sketch.target.corner3, 3, 64));
}

INSTANTIATE_TEST_SUITE_P(Twists, MarkGrips, testing::Values(0.0, kGePi / 6.0, -2.0));

// The entity --------------------------------------------------------------------------------------

class MarkGripEntity : public testing::Test
{
protected:
    MarkGripEntity()
    {
        acgi::install();
        registerMarkClass();
        passwordState().reset();
        setPasswordPrompt([this] {
            ++asked;
            return typed;
        });
        database = tests::MemoryDrawing().open();
        std::unique_ptr<QuillnoteObj3> made = QuillnoteObj3::forReading();
        made->targetCorner2 = {120, 60, 0};
        made->textHeight = 6;
        made->targetStyle = TargetStyle::bevel;
        settleMark(*made, *database);
        id = tests::append(*database, std::move(made));
    }
    ~MarkGripEntity() override
    {
        database.reset();
        setPasswordPrompt({});
        passwordState().reset();
        markDrawingState().reset();
        unregisterMarkClass();
    }
    AcDbObjectPointer<QuillnoteObj3> open() const { return {id, AcDb::kForWrite}; }
    static Acad::ErrorStatus drag(AcDbEntity &mark, int grip, const AcGeVector3d &offset)
    {
        return mark.moveGripPointsAt(std::span(&grip, 1), offset);
    }

    std::unique_ptr<AcDbDatabase> database;
    AcDbObjectId id;
    std::optional<QString> typed;
    int asked = 0;
};

TEST_F(MarkGripEntity, ADragSettlesTheMark)
{
    const auto mark = open();
    EXPECT_EQ(mark->getGripPoints().size(), 6U);
    EXPECT_TRUE(markDrawingState().textSuppressed);
    const AcGePoint3d flag = mark->flagPoint;
    EXPECT_EQ(mark->moveGripPointsAt({}, {1, 1, 0}), Acad::eInvalidInput);
    EXPECT_EQ(drag(*mark, 6, {1, 1, 0}), Acad::eInvalidIndex);
    EXPECT_EQ(drag(*mark, 0, {0.0009, -0.0009, 0}), Acad::eOk);
    EXPECT_EQ(mark->targetCorner1, AcGePoint3d());
    EXPECT_FALSE(mark->gripEditing) << "no drag so far";

    EXPECT_EQ(drag(*mark, 0, {10, 20, 0}), Acad::eOk);
    EXPECT_TRUE(mark->targetCorner1.isEqualTo({10, 20, 0}));
    EXPECT_TRUE(mark->flagPoint.isEqualTo(flag + AcGeVector3d(10, 20, 0), 1e-9));
    EXPECT_TRUE(mark->gripEditing);
}

TEST_F(MarkGripEntity, ADraggedVertexIsToldToWhoKeepsWhatTheTargetHeld)
{
    static int told = 0;
    told = 0;
    const TargetReshaped before = setTargetReshaped([](QuillnoteObj3 &mark) {
        ++told;
        EXPECT_EQ(mark.targetCorner2, AcGePoint3d(90, 80, 0)) << "it is the new target already";
    });
    {
        const auto mark = open();
        mark->targetStyle = TargetStyle::thinPolygon;
        mark->vertexCount = 3;
        mark->vertices[1] = {60, 0, 0};
        mark->vertices[2] = {60, 80, 0};
        EXPECT_EQ(drag(*mark, 1, {30, 0, 0}), Acad::eOk);
        EXPECT_EQ(told, 1);
        AcDbExtents box;
        EXPECT_EQ(mark->getGeomExtents(box), Acad::eOk);
        EXPECT_EQ(box.maxPoint().x, 90);
    }
    setTargetReshaped(before);
}

TEST_F(MarkGripEntity, ABoxComesToRestAndItsGripsStandOnIt)
{
    const auto mark = open();
    mark->suggestionContent = QStringLiteral("The clear width of this door is below 1.2 m; check it against "
                                             "chapter 5 and tell the structural engineer.\r\n第二行");
    const int flag = 5;
    EXPECT_EQ(drag(*mark, flag, {300, 40, 0}), Acad::eOk);
    ASSERT_EQ(mark->leaderMode, LeaderMode::leader);
    const AcGeVector3d size = mark->textBoxCorner2 - mark->textBoxCorner1;
    EXPECT_GT(size.y, 2 * 1.25 * 6) << "it holds its lines";
    for (int i = 0; i < 7; ++i) {
        EXPECT_TRUE(mark->getGripPoints().at(5).isEqualTo(mark->textBoxCorner3, 1e-9));
        EXPECT_TRUE(mark->getGripPoints().at(6).isEqualTo(mark->textBoxCorner2, 1e-9));
        EXPECT_EQ(drag(*mark, 5, {13.7, 7.1, 0}), Acad::eOk);
        const AcGeVector3d now = mark->textBoxCorner2 - mark->textBoxCorner1;
        EXPECT_NEAR(now.x, size.x, 1e-6) << i;
        EXPECT_NEAR(now.y, size.y, 1e-6) << i;
    }
}

TEST_F(MarkGripEntity, FiveWrongPasswordsAreEnough)
{
    open()->chPwMD5 = hashPassword(QStringLiteral("open"));
    {
        const auto copy = AcDbTransient::copyOf(id);
        EXPECT_EQ(drag(copy->entity(), 0, {5, 5, 0}), Acad::eOk);
        EXPECT_EQ(asked, 0) << "what is only shown needs no password";
    }
    typed = QStringLiteral("wrong");
    for (int i = 0; i < 7; ++i)
        EXPECT_EQ(drag(*open(), 0, {5, 5, 0}), Acad::eInvalidInput);
    EXPECT_EQ(asked, 5);
    EXPECT_EQ(open()->targetCorner1, AcGePoint3d());
    passwordState().failedDrags = 4;
    typed = QStringLiteral("open");
    EXPECT_EQ(drag(*open(), 0, {5, 5, 0}), Acad::eOk);
    EXPECT_EQ(drag(*open(), 0, {5, 5, 0}), Acad::eOk);
    EXPECT_EQ(asked, 6);
}
