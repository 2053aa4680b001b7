// The mark as an entity of a drawing: defaults, erase protection, list, extents, transforms, undo, class.
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_fields.h"
#include "quillnote/entity/mark_layout.h"
#include "quillnote/entity/mark_state.h"
#include "quillnote/entity/password.h"
#include "quillnote/frame/settings/settings.h"

#include "host/acdb/dbundo.h"
#include "host/os/clock.h"
#include "host/os/settings_store.h"
#include "tests/quillnote/entity/mark_streams.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

class MarkRecord : public testing::Test
{
protected:
    MarkRecord() { registerMarkClass(); }
    ~MarkRecord() override
    {
        setPasswordPrompt({});
        passwordState().reset();
    }

    AcDbObjectId append(std::unique_ptr<QuillnoteObj3> mark = std::make_unique<QuillnoteObj3>())
    {
        return tests::append(*database, std::move(mark));
    }
    Acad::ErrorStatus erase(AcDbObjectId id, bool erasing = true)
    {
        AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite, true);
        return mark->erase(erasing);
    }

    std::unique_ptr<AcDbDatabase> database = tests::drawingOfStreams();
    tests::ScriptFrontEnd frontEnd;
};

TEST_F(MarkRecord, ANewMarkTakesColoursFromTheSettingsAndItsDateFromTheClock)
{
    os::setFixedTime(QDateTime(QDate(2024, 5, 6), QTime(12, 0)));
    struct Row {
        int stored1, stored2;
        std::uint16_t color1, color2;
    };
    for (const Row &row : {Row{0, 0, 2, 5}, Row{1, 255, 1, 255}, Row{256, -1, 2, 5}}) {
        settings::setNumber(u"color1", row.stored1);
        settings::setNumber(u"color2", row.stored2);
        const QuillnoteObj3 mark;
        EXPECT_EQ(mark.color1, row.color1);
        EXPECT_EQ(mark.color2, row.color2);
        EXPECT_EQ(mark.createTime, os::julianNow());
    }
    os::SettingsStore::user().remove(settings::kKey, u"color1");
    os::SettingsStore::user().remove(settings::kKey, u"color2");
    os::setFixedTime(std::nullopt);
}

TEST_F(MarkRecord, ListShowsNumberAndOpinion)
{
    QuillnoteObj3().subList();
    EXPECT_EQ(std::exchange(frontEnd.printed, {}), u"\n标记[1]：");
    QuillnoteObj3 mark;
    mark.markNumber = 12;
    mark.suggestionContent = QStringLiteral("%1 太薄");
    mark.subList();
    EXPECT_EQ(std::exchange(frontEnd.printed, {}), u"\n标记[12]：%1 太薄");
}

TEST_F(MarkRecord, AnErasureMayBeRefused)
{
    std::optional<QString> typed;
    int asked = 0;
    setPasswordPrompt([&] {
        ++asked;
        return typed;
    });
    EXPECT_EQ(erase(append()), Acad::eOk) << "a mark without a password";
    auto lasting = std::make_unique<QuillnoteObj3>();
    lasting->erasable = false;
    EXPECT_EQ(erase(append(std::move(lasting))), Acad::eInvalidInput);
    EXPECT_EQ(asked, 0);

    auto mark = std::make_unique<QuillnoteObj3>();
    mark->chPwMD5 = hashPassword(QStringLiteral("secret")).toUpper();
    const AcDbObjectId id = append(std::move(mark));
    EXPECT_EQ(erase(id), Acad::eInvalidInput);
    EXPECT_FALSE(id.isErased());
    typed = QStringLiteral("secret");
    EXPECT_EQ(erase(id), Acad::eOk);
    EXPECT_TRUE(id.isErased());
    EXPECT_EQ(erase(id, false), Acad::eOk);
    EXPECT_FALSE(id.isErased());
    EXPECT_EQ(asked, 2) << "the right password is asked for once";
}

TEST_F(MarkRecord, ClosingEndsGripEditingAndShowsTheText)
{
    const AcDbObjectId id = append(std::make_unique<QuillnoteObj3>());
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    mark->gripEditing = true;
    markDrawingState().textSuppressed = true;
    mark.close();
    EXPECT_FALSE(markDrawingState().textSuppressed);
    EXPECT_FALSE((AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead)->gripEditing));
}

TEST_F(MarkRecord, UndoAndRedoBringBackEveryField)
{
    const AcDbObjectId id = append();
    database->undo().clear();
    const auto state = [&] {
        return tests::fieldLines(*AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead));
    };
    const QString before = state();
    {
        const AcDbUndoGroup step(*database, QStringLiteral("edit"));
        tests::setFullMark(*AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForWrite), *database);
    }
    const QString after = state();
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(database->undo().undo());
        EXPECT_EQ(state(), before);
        ASSERT_TRUE(database->undo().redo());
        EXPECT_EQ(state(), after);
    }
}

TEST_F(MarkRecord, ExtentsHoldWhatTheMarkShows)
{
    QuillnoteObj3 mark;
    const auto expectBox = [&](const AcGePoint3d &low, const AcGePoint3d &high, const char *why) {
        AcDbExtents box;
        ASSERT_EQ(mark.getGeomExtents(box), Acad::eOk) << why;
        EXPECT_TRUE(box.minPoint() == low && box.maxPoint() == high) << why;
    };
    mark.targetCorner1 = {100, 100, 0};
    mark.targetCorner2 = {110, 105, 0};
    expectBox({100, 100, 0}, {110, 105, 0}, "corners not computed yet lie at the origin");
    mark.cornersValid = true;
    mark.targetCorner3 = {100, 107, 0};
    mark.targetCorner4 = {112, 100, 0};
    mark.leaderEnds[3] = {90, 90, 0};
    expectBox({100, 100, 0}, {112, 107, 0}, "a flag mark has no leaders");
    mark.targetStyle = TargetStyle(-2);
    expectBox({100, 100, 0}, {112, 107, 0}, "negative codes have an outline too");
    mark.leaderMode = LeaderMode::leader;
    mark.leaderUsed[3] = true;
    mark.leaderEnds[4] = {-1, -1, 0};
    mark.textBoxCorner1 = mark.textBoxCorner2 = mark.textBoxCorner3 = mark.textBoxCorner4 = {200, 101, 0};
    mark.targetStyle = TargetStyle::none;
    expectBox({90, 90, 0}, {200, 101, 0}, "no outline: box and used leaders");
    mark.leaderMode = LeaderMode::flag;
    expectBox({100, 100, 0}, {112, 107, 0}, "a sketch not drawn yet");
    mark.textEndPoint = AcGePoint3d(95, 80, 0);
    expectBox({95, 80, 0}, {95, 80, 0}, "the end of the text");
}

static void expectAt(const AcGePoint3d &actual, const AcGePoint3d &expected, const char *what = "")
{
    EXPECT_TRUE(actual.isEqualTo(expected, 1e-9)) << what << ' ' << actual.x << ' ' << actual.y;
}

TEST_F(MarkRecord, TransformMovesWhatIsInUse)
{
    QuillnoteObj3 mark;
    tests::setFullMark(mark, *database);
    const AcGeMatrix3d turn = AcGeMatrix3d::translation({10, 0, 0}) * AcGeMatrix3d::scaling(2.0) *
                              AcGeMatrix3d::rotation(kGePi / 2, AcGeVector3d::kZAxis);
    ASSERT_EQ(mark.transformBy(turn), Acad::eOk);
    expectAt(mark.targetCorner1, {6, 2, 6});
    expectAt(mark.textBoxCorner4, {-58, 48, 88});
    expectAt(mark.vertices[2], {-134, 124, 0});
    expectAt(mark.leaderEnds[3], {-396, 206, 0});
    expectAt(mark.leaderEnds[1], {101, 201, 0}, "a free slot");
    expectAt(AcGePoint3d() + mark.xDirection, {-1, 0, 0});

    mark.targetStyle = TargetStyle::thickWaves;
    const AcGePoint3d vertex = mark.vertices[0];
    mark.transformBy(turn);
    EXPECT_EQ(mark.vertices[0], vertex) << "not a polygon";
}

TEST_F(MarkRecord, AMirroredMarkStandsUprightWhereItsMirrorImageIs)
{
    for (const AcGeVector3d &line : {AcGeVector3d::kYAxis, AcGeVector3d::kXAxis}) {
        QuillnoteObj3 mark;
        mark.targetStyle = TargetStyle::thickPolygon;
        mark.vertexCount = 3;
        mark.vertices = {{{1, 1, 0}, {3, 1, 0}, {2, 2, 0}}};
        mark.targetCorner1 = {1, 1, 0};
        mark.targetCorner2 = {3, 2, 0};
        ASSERT_EQ(mark.transformBy(AcGeMatrix3d::mirroring({}, line)), Acad::eOk);
        const bool toTheLeft = line == AcGeVector3d::kYAxis;
        expectAt(mark.targetCorner1, toTheLeft ? AcGePoint3d(-3, 1, 0) : AcGePoint3d(1, -2, 0));
        expectAt(mark.targetCorner3, toTheLeft ? AcGePoint3d(-3, 2, 0) : AcGePoint3d(1, -1, 0));
        expectAt(mark.vertices[0], toTheLeft ? AcGePoint3d(-2, 2, 0) : AcGePoint3d(2, -2, 0));
        expectAt(AcGePoint3d() + mark.xDirection, {1, 0, 0});
    }
}

TEST_F(MarkRecord, AScaledTextBoxFitsItsText)
{
    auto made = std::make_unique<QuillnoteObj3>();
    made->targetStyle = TargetStyle::none;
    made->leaderMode = LeaderMode::leader;
    made->textHeight = 6;
    made->suggestionContent = QStringLiteral("门宽不足");
    made->textBoxCorner2 = made->textBoxCorner4 = {100, 0, 0};
    made->textBoxCorner2.y = made->textBoxCorner3.y = 20;
    settleMark(*made, *database);
    const AcGePoint3d corner = made->textBoxCorner2;
    const AcDbObjectId id = append(std::move(made));
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    ASSERT_EQ(mark->transformBy(AcGeMatrix3d::scaling(3.0)), Acad::eOk);
    expectAt(mark->textBoxCorner2, {corner.x, 60, 0});
}

TEST_F(MarkRecord, TheClassTellsADrawingWhatItNeeds)
{
    AcRxClass *const registered = markClass();
    registerMarkClass();
    EXPECT_EQ(markClass(), registered);
    EXPECT_EQ(acrxClassDictionary().atDxfName("QUILLNOTE3"), registered);
    EXPECT_TRUE(registered->isDerivedFrom(AcDbEntity::desc()));
    EXPECT_EQ(registered->application()->drawingVersion, 31);
    EXPECT_EQ(registered->application()->maintenanceVersion, 81);
    EXPECT_TRUE(registered->application()->description.startsWith(
        u"\"QuillnoteObj3|Product Desc: Quillnote3|Company: "));
    append();
    EXPECT_EQ(database->classes().back().dxfName, "QUILLNOTE3");
    EXPECT_EQ(database->classes().back().proxyFlags, 0);
}

TEST_F(MarkRecord, UnregisteringMakesProxiesThatNobodyChangesAndThatComeBackWhole)
{
    auto mark = std::make_unique<QuillnoteObj3>();
    tests::setFullMark(*mark, *database);
    const QString before = tests::fieldLines(*mark);
    const AcDbObjectId id = append(std::move(mark));
    unregisterMarkClass();
    EXPECT_EQ(markClass(), nullptr);
    EXPECT_EQ(AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead).openStatus(), Acad::eNotThatKindOfClass);
    EXPECT_TRUE(AcDbObjectPointer<AcDbEntity>(id, AcDb::kForRead));
    EXPECT_EQ(AcDbObjectPointer<AcDbEntity>(id, AcDb::kForWrite).openStatus(), Acad::eNotAllowedForThisProxy);
    registerMarkClass();
    const AcDbObjectPointer<QuillnoteObj3> back(id, AcDb::kForRead);
    ASSERT_TRUE(back);
    EXPECT_EQ(tests::fieldLines(*back), before) << "DXF groups and carrier hold every field";
}

TEST(MarkClassDeath, AnotherClassWithTheNameEndsTheProcess)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            unregisterMarkClass();
            newAcRxClass(QStringLiteral("QuillnoteObj3"), AcDbEntity::desc());
            registerMarkClass();
        },
        "Class mismatch");
}
