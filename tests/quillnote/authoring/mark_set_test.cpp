// Commands over all marks: display, numbers, text below the targets, and the number of one mark.
#include "quillnote/authoring/all_marks.h"
#include "quillnote/authoring/numbering.h"
#include "quillnote/entity/mark_dictionary.h"

#include "host/acdb/dbsymtb.h"
#include "tests/quillnote/authoring/authoring_fixture.h"

using testing::ElementsAre;

static void setNumber(AcDbObjectId id, std::uint16_t number, std::uint16_t subNumber = 0)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    mark->markNumber = number;
    mark->subNumber = subNumber;
}

/// "3", "4.2" ... in the collector's order.
static QStringList numbers(const AcDbDatabase &database)
{
    QStringList shown;
    for (const AcDbObjectId id : collectMarks(database).ids) {
        const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        shown += mark->subNumber ? QStringLiteral("%1.%2").arg(mark->markNumber).arg(mark->subNumber)
                                 : QString::number(mark->markNumber);
    }
    return shown;
}

static std::vector<DisplayMode> displayModes(const AcDbDatabase &database)
{
    std::vector<DisplayMode> modes;
    for (const AcDbObjectId id : collectMarks(database).ids)
        modes.push_back(AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead)->displayMode);
    return modes;
}

/// Puts a mark where nobody may write to it.
static void lock(AcDbObjectId id)
{
    AcDbObjectId layer;
    AcDbSymbolTable(*id.database(), SymbolTable::layer)
        .addLike(QStringLiteral("0"), QStringLiteral("L"), layer);
    AcDbObjectPointer<AcDbLayerTableRecord> record(static_cast<AcDbLayerTableRecord *>(layer.stub()->object));
    AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForWrite)->setLayer(QStringLiteral("L"));
    record->setIsLocked(true);
}

TEST_F(AuthoringTest, AllMarksAreHiddenShrunkAndShown)
{
    EXPECT_TRUE(run(QStringLiteral("QN3_Hide")).contains(QStringLiteral("本图中无评图标签。")));
    make();
    make();
    runAndBack(QStringLiteral("QN3_allMarksHide"));
    EXPECT_THAT(displayModes(database()), ElementsAre(DisplayMode::hidden, DisplayMode::hidden));
    runAndBack(QStringLiteral("QN3_Shrink"));
    EXPECT_THAT(displayModes(database()), ElementsAre(DisplayMode::shrunk, DisplayMode::shrunk));
    runAndBack(QStringLiteral("QN3_Show"));
    EXPECT_THAT(displayModes(database()), ElementsAre(DisplayMode::full, DisplayMode::full));
    const std::uint64_t changes = database().changeCount();
    run(QStringLiteral("QN3_Show"));
    EXPECT_EQ(database().changeCount(), changes) << "marks that are shown already are left alone";
}

TEST_F(AuthoringTest, MarksThatCannotBeWrittenToAreCounted)
{
    const AcDbObjectId locked = make();
    make();
    lock(locked);
    EXPECT_TRUE(run(QStringLiteral("QN3_Hide")).contains(QStringLiteral("1 个评图标签无法修改")));
    EXPECT_THAT(displayModes(database()), ElementsAre(DisplayMode::full, DisplayMode::hidden));
}

TEST_F(AuthoringTest, RenumberingWantsTheFullWord)
{
    setNumber(make(), 7);
    for (const char *const answer : {"Y", "no", ""}) {
        const QString printed = run(QStringLiteral("QN3_reNumber"), {answer});
        EXPECT_TRUE(printed.contains(QStringLiteral("必须输入完整的 YES 才能继续重新编号！"))) << answer;
    }
    EXPECT_EQ(numbers(database()), QStringList{"7"});
    EXPECT_FALSE(run(QStringLiteral("QN3_reNumber"), {"yes"}).contains(QStringLiteral("必须")));
    EXPECT_EQ(numbers(database()), QStringList{"1"});
}

TEST_F(AuthoringTest, NumbersRunThroughTheReviewersInTheirOrder)
{
    struct Case {
        QStringList reviewers; ///< Of the marks, in drawing order.
        QStringList numbers;
    };
    QStringList many;
    QStringList manyNumbers;
    for (int i = 0; i < 18; ++i) {
        many += QString::number(i);
        manyNumbers += QString::number(i + 1);
    }
    const Case cases[] = {
        {{"A", "A", "B", "A"}, {"1", "2", "4", "3"}},
        {{"Li", "", "LI ", "*未命名*", "Wang"}, {"1", "3", "2", "4", "5"}},
        {{"all", "B", "ALL"}, {"1", "3", "2"}},
        // The collector names 16 reviewers: the marks of the 17th and 18th stay in drawing order.
        {many + QStringList{"16", "17", "16", "3"},
         QStringList{"1",  "2",  "3",  "4",  "6",  "7",  "8",  "9",  "10", "11", "12",
                     "13", "14", "15", "16", "17", "18", "19", "20", "21", "22", "5"}},
    };
    for (const Case &each : cases) {
        drawing.reset();
        drawing = std::make_unique<tests::OpenDrawing>(tests::MemoryDrawing().open());
        for (const QString &reviewer : each.reviewers)
            setNumber(make(reviewer), 12, 3);
        runAndBack(QStringLiteral("QN3_reNumber"), {"YES"});
        EXPECT_EQ(numbers(database()), each.numbers);
        EXPECT_EQ(readLastMarkNumber(database()), each.reviewers.size());
        EXPECT_EQ(AcDbObjectPointer<QuillnoteObj3>(make(), AcDb::kForRead)->markNumber,
                  each.reviewers.size() + 1);
    }
}

TEST_F(AuthoringTest, AMarkThatKeepsItsNumberIsNotMetAgain)
{
    const AcDbObjectId locked = make();
    make();
    setNumber(locked, 40);
    lock(locked);
    EXPECT_TRUE(
        run(QStringLiteral("QN3_reNumber"), {"YES"}).contains(QStringLiteral("1 个评图标签无法修改")));
    EXPECT_EQ(numbers(database()), (QStringList{"40", "1"}));
    EXPECT_EQ(AcDbObjectPointer<QuillnoteObj3>(make(), AcDb::kForRead)->markNumber, 41);
}

struct EditNumberTest : AuthoringTest {
    QString edit(AcDbObjectId id, const QStringList &answers) const
    {
        const QString pick = QStringLiteral("handle %1").arg(id.handle().value, 0, 16);
        return run(QStringLiteral("QN8_editNumber"), QStringList{pick} + answers);
    }
};

TEST_F(EditNumberTest, OneMarkGetsItsNumberByHand)
{
    const AcDbObjectId id = make();
    for (int i = 0; i < 3; ++i)
        make();
    ASSERT_EQ(writeLastMarkNumber(database(), 12), Acad::eOk);
    setNumber(id, 4, 2);
    // Nothing, zero, less and too much are asked again.
    edit(id, {"", "0", "-3", "70000", "9"});
    EXPECT_EQ(numbers(database()), (QStringList{"9", "2", "3", "4"}));
    EXPECT_EQ(readLastMarkNumber(database()), 12) << "a lower number leaves the last one";
    edit(id, {"20"});
    EXPECT_EQ(AcDbObjectPointer<QuillnoteObj3>(make(), AcDb::kForRead)->markNumber, 21);
    EXPECT_TRUE(edit(id, {"^C"}).contains(QStringLiteral("未输入，退出。")));
    EXPECT_TRUE(run(QStringLiteral("QN8_editNumber"), {"^C"}).contains(QStringLiteral("\n未选择。")));
}

TEST_F(EditNumberTest, TheOldNumberIsShownAsItIsWritten)
{
    const AcDbObjectId id = make();
    setNumber(id, 4, 2);
    tests::ScriptFrontEnd script({QStringLiteral("handle %1").arg(id.handle().value, 0, 16), "5"});
    acedEditor()->runCommand(QStringLiteral("QN8_editNumber"));
    EXPECT_EQ(script.prompts.back().message, QStringLiteral("\n旧编号是[4.2]，请输入新编号："));
}

TEST_F(AuthoringTest, TextBelowTheTargetsIsSwitchedForThisRun)
{
    make();
    const int stored = settings::number(u"NoDisplayText");
    struct Case {
        const char *answer;
        bool shown;
    };
    for (const Case each :
         {Case{"N", false}, Case{"^C", false}, Case{"", true}, Case{"no", false}, Case{"Y", true}}) {
        run(QStringLiteral("QN3_ShowText"), {each.answer});
        EXPECT_EQ(startUpSettings().showMarkText, each.shown) << each.answer;
    }
    EXPECT_EQ(settings::number(u"NoDisplayText"), stored);
}
