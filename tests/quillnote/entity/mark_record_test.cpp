// The mark as an entity of a drawing: defaults, erase protection, list, extents, transforms, undo, class.
#include "quillnote/entity/mark_class.h"
#include "quillnote/entity/mark_fields.h"
#include "quillnote/entity/mark_state.h"
#include "quillnote/entity/password.h"
#include "quillnote/frame/settings/settings.h"

#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "host/os/clock.h"
#include "host/os/settings_store.h"
#include "tests/quillnote/entity/mark_streams.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QSet>

#include <limits>

class MarkRecord : public testing::Test
{
protected:
    MarkRecord() { registerMarkClass(); }
    ~MarkRecord() override
    {
        setPasswordPrompt({});
        passwordState().reset();
    }

    AcDbObjectId append(std::unique_ptr<QuillnoteObj3> mark)
    {
        AcDbObjectPointer<AcDbBlockTableRecord> space(database->modelSpaceId(), AcDb::kForWrite);
        AcDbObjectId id;
        EXPECT_EQ(space->appendAcDbEntity(id, mark.get()), Acad::eOk);
        mark.release()->close();
        return id;
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

TEST_F(MarkRecord, AMarkThatIsNotErasableStays)
{
    auto mark = std::make_unique<QuillnoteObj3>();
    mark->erasable = false;
    const AcDbObjectId id = append(std::move(mark));
    EXPECT_EQ(erase(id), Acad::eInvalidInput);
    EXPECT_FALSE(id.isErased());
}

TEST_F(MarkRecord, APasswordProtectsAgainstErasingAndBack)
{
    auto mark = std::make_unique<QuillnoteObj3>();
    mark->chPwMD5 = hashPassword(QStringLiteral("secret")).toUpper();
    const AcDbObjectId id = append(std::move(mark));
    int asked = 0;
    std::optional<QString> typed;
    setPasswordPrompt([&] {
        ++asked;
        return typed;
    });
    EXPECT_EQ(erase(id), Acad::eInvalidInput);
    EXPECT_FALSE(id.isErased());
    typed = QStringLiteral("secret");
    EXPECT_EQ(erase(id), Acad::eOk);
    EXPECT_TRUE(id.isErased());
    EXPECT_EQ(erase(id, false), Acad::eOk);
    EXPECT_FALSE(id.isErased());
    EXPECT_EQ(asked, 2) << "the right password is asked for once";

    passwordState().reset();
    typed.reset();
    EXPECT_EQ(erase(id), Acad::eInvalidInput);
    EXPECT_EQ(erase(append(std::make_unique<QuillnoteObj3>())), Acad::eOk) << "a mark without a password";
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
    const AcDbObjectId id = append(std::make_unique<QuillnoteObj3>());
    database->undo().clear();
    QuillnoteObj3 before;
    QuillnoteObj3 after;
    tests::setFullMark(after, *database);
    {
        const AcDbUndoGroup step(*database, QStringLiteral("edit"));
        AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
        before.createTime = mark->createTime;
        tests::setFullMark(*mark, *database);
    }
    const auto state = [&](const QuillnoteObj3 &expected) {
        AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        return differingMarkFields(*mark, expected);
    };
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(database->undo().undo());
        EXPECT_EQ(state(before), QStringList());
        ASSERT_TRUE(database->undo().redo());
        EXPECT_EQ(state(after), QStringList());
    }
}

static bool isBox(const AcDbExtents &box, const AcGePoint3d &low, const AcGePoint3d &high)
{
    return box.minPoint() == low && box.maxPoint() == high;
}

TEST_F(MarkRecord, ExtentsHoldWhatTheMarkShows)
{
    QuillnoteObj3 mark;
    mark.targetCorner1 = {100, 100, 0};
    mark.targetCorner2 = {110, 105, 0};
    AcDbExtents box;
    ASSERT_EQ(mark.getGeomExtents(box), Acad::eOk);
    EXPECT_TRUE(isBox(box, {100, 100, 0}, {110, 105, 0})) << "corners not computed yet lie at the origin";

    mark.cornersValid = true;
    mark.targetCorner3 = {100, 107, 0};
    mark.targetCorner4 = {112, 100, 0};
    mark.leaderEnds[3] = {90, 90, 0};
    ASSERT_EQ(mark.getGeomExtents(box), Acad::eOk);
    EXPECT_TRUE(isBox(box, {100, 100, 0}, {112, 107, 0}));

    mark.leaderMode = 1;
    mark.leaderUsed[3] = true;
    mark.leaderEnds[4] = {-1, -1, 0};
    mark.textBoxCorner1 = mark.textBoxCorner2 = mark.textBoxCorner3 = mark.textBoxCorner4 = {200, 101, 0};
    mark.targetStyle = 0;
    ASSERT_EQ(mark.getGeomExtents(box), Acad::eOk);
    EXPECT_TRUE(isBox(box, {90, 90, 0}, {200, 101, 0})) << "no outline: box and used leaders";

    mark.leaderMode = 0;
    ASSERT_EQ(mark.getGeomExtents(box), Acad::eOk);
    EXPECT_TRUE(isBox(box, {100, 100, 0}, {112, 107, 0})) << "a sketch not drawn yet";
    mark.textEndPoint = AcGePoint3d(95, 80, 0);
    ASSERT_EQ(mark.getGeomExtents(box), Acad::eOk);
    EXPECT_TRUE(isBox(box, {95, 80, 0}, {95, 80, 0}));

    mark.textEndPoint.reset();
    mark.targetCorner1.x = mark.targetCorner2.x = mark.targetCorner3.x = mark.targetCorner4.x =
        std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(mark.getGeomExtents(box), Acad::eInvalidExtents);
}

TEST_F(MarkRecord, TransformMovesWhatIsInUse)
{
    QuillnoteObj3 mark;
    tests::setFullMark(mark, *database);
    mark.syncDone = true;
    const AcGeMatrix3d turn = AcGeMatrix3d::translation({10, 0, 0}) * AcGeMatrix3d::scaling(2.0) *
                              AcGeMatrix3d::rotation(kGePi / 2, AcGeVector3d::kZAxis);
    ASSERT_EQ(mark.transformBy(turn), Acad::eOk);
    const auto at = [](const AcGePoint3d &actual, const AcGePoint3d &expected) {
        return actual.isEqualTo(expected, 1e-9);
    };
    EXPECT_TRUE(at(mark.targetCorner1, {6, 2, 6}));
    EXPECT_TRUE(at(mark.textBoxCorner4, {-58, 48, 88}));
    EXPECT_TRUE(at(mark.vertices[2], {-134, 124, 0}));
    EXPECT_TRUE(at(mark.leaderEnds[3], {-396, 206, 0}));
    EXPECT_TRUE(at(mark.leaderEnds[1], {101, 201, 0})) << "a free slot";
    EXPECT_NEAR(mark.xDirection.x, -1.0, 1e-9);
    EXPECT_NEAR(mark.xDirection.length(), 1.0, 1e-9);
    EXPECT_FALSE(mark.syncDone);

    mark.targetStyle = 5;
    const AcGePoint3d vertex = mark.vertices[0];
    mark.transformBy(turn);
    EXPECT_EQ(mark.vertices[0], vertex) << "not a polygon";
}

TEST_F(MarkRecord, TheDumpNamesEveryFieldOnceAndHashesPictures)
{
    QuillnoteObj3 mark;
    tests::setFullMark(mark, *database);
    QJsonObject dump;
    for (const auto &[name, value] : markFieldValues(mark)) {
        EXPECT_FALSE(dump.contains(name)) << name.toStdString();
        dump.insert(name, value);
    }
    EXPECT_EQ(dump.size(), qsizetype(markFields().size()));
    EXPECT_EQ(dump[QStringLiteral("suggestionContent")].toString(), u"墙\n厚");
    EXPECT_EQ(dump[QStringLiteral("vertices")].toArray().size(), 3);
    const QJsonObject sketch = dump[QStringLiteral("sketchData")].toObject();
    EXPECT_EQ(sketch[QStringLiteral("size")].toInt(), 5);
    EXPECT_EQ(sketch[QStringLiteral("sha256")].toString(),
              u"74f81fe167d99b4cb41d6d0ccda82278caee9f3e2f25d5e5a3936ff3dcec60d0");
}

TEST_F(MarkRecord, DxfCodesAndPlacesDoNotClash)
{
    QSet<int> places;
    for (const MarkField *field : markDxfSequence()) {
        EXPECT_FALSE(places.contains(field->dxf.place)) << field->name.toString().toStdString();
        places.insert(field->dxf.place);
    }
    for (const MarkField &field : markFields())
        EXPECT_LE(field.since, QuillnoteObj3::kFormatVersion) << field.name.toString().toStdString();
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
    EXPECT_EQ(registered->application()->proxyFlags, 0);
    EXPECT_TRUE(registered->application()->description.startsWith(
        u"\"QuillnoteObj3|Product Desc: Quillnote3|Company: "));
    append(std::make_unique<QuillnoteObj3>());
    EXPECT_EQ(database->classes().back().dxfName, "QUILLNOTE3");
}

TEST_F(MarkRecord, UnregisteringMakesProxiesThatComeBackWhole)
{
    auto mark = std::make_unique<QuillnoteObj3>();
    tests::setFullMark(*mark, *database);
    mark->snapEntityIds.clear();
    const AcDbObjectId id = append(std::move(mark));
    unregisterMarkClass();
    EXPECT_EQ(markClass(), nullptr);
    EXPECT_EQ(AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead).openStatus(), Acad::eNotThatKindOfClass);
    EXPECT_TRUE(AcDbObjectPointer<AcDbEntity>(id, AcDb::kForRead));
    registerMarkClass();
    AcDbObjectPointer<QuillnoteObj3> back(id, AcDb::kForRead);
    ASSERT_TRUE(back);
    QuillnoteObj3 expected;
    tests::setFullMark(expected, *database);
    expected.snapEntityIds.clear();
    EXPECT_EQ(differingMarkFields(*back, expected), QStringList())
        << "DXF groups and carrier hold every field";
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
