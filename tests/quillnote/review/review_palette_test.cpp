// The palette over one open drawing, worked by dialog lines as a script works it.
#include "quillnote/entity/mark_dictionary.h"
#include "quillnote/review/review_palette.h"
#include "tests/quillnote/authoring/authoring_fixture.h"

#include "host/acdb/dbsymtb.h"
#include "host/acui/acuidialog.h"
#include "host/acui/acuiscript.h"

#include <QApplication>

namespace
{

struct ReviewPaletteTest : AuthoringTest {
    ReviewPaletteTest()
    {
        for (const char *reviewer : {"张工", "李工", "张工"})
            ids.push_back(make(QString::fromUtf8(reviewer), QStringLiteral("意见%1").arg(ids.size() + 1)));
        closeStep();
        steps = database().undo().position();
    }
    ~ReviewPaletteTest() override { closeReviewPalette(); }

    static QString act(const QString &line)
    {
        const auto action = acuiParseAction(QStringLiteral("in CMarkWnd2 ") + line);
        const auto done = acuiPerformOnWindow(*action);
        acedEditor()->runQueue();
        return done ? QString() : done.error();
    }
    static QString shown(int control)
    {
        acuiSettle();
        for (QWidget *widget : QApplication::allWidgets()) {
            if (qstrcmp(widget->metaObject()->className(), "CMarkWnd2") == 0)
                return acuiControlText(*acuiFindControl(*widget, control));
        }
        return QStringLiteral("no panel");
    }
    static bool isEnabled(int control)
    {
        for (QWidget *widget : QApplication::allWidgets()) {
            if (qstrcmp(widget->metaObject()->className(), "CMarkWnd2") == 0)
                return acuiFindControl(*widget, control)->isEnabled();
        }
        return false;
    }
    QString feedback(std::size_t mark) const
    {
        return AcDbObjectPointer<QuillnoteObj3>(ids[mark], AcDb::kForRead)->feedbackContent;
    }
    int status(std::size_t mark) const
    {
        return AcDbObjectPointer<QuillnoteObj3>(ids[mark], AcDb::kForRead)->feedbackType;
    }
    std::size_t newSteps() const { return database().undo().position() - steps; }

    tests::ScriptFrontEnd script;
    std::vector<AcDbObjectId> ids;
    std::size_t steps = 0;
};

} // namespace

TEST_F(ReviewPaletteTest, WalkingChangesNothing)
{
    const auto before = tests::wholeDrawing(database());
    const std::uint64_t changes = database().changeCount();
    openReviewPalette();
    EXPECT_EQ(shown(1017), u"1-1/3");
    EXPECT_FALSE(isEnabled(1005));
    EXPECT_EQ(act(QStringLiteral("click 1006")), QString());
    EXPECT_EQ(act(QStringLiteral("keys Alt+Down")), QString());
    EXPECT_EQ(shown(1017), u"3-3/3");
    EXPECT_EQ(shown(1003), u"意见3");
    EXPECT_FALSE(isEnabled(1006));
    EXPECT_EQ(act(QStringLiteral("click 1")), QString());
    EXPECT_EQ(newSteps(), 0u);
    EXPECT_EQ(database().changeCount(), changes);
    EXPECT_EQ(tests::wholeDifference(before, tests::wholeDrawing(database())), QStringList());
}

TEST_F(ReviewPaletteTest, OneAnswerIsOneNamedStep)
{
    AcDbObjectPointer<QuillnoteObj3>(ids[0], AcDb::kForWrite)->feedbackName = QStringLiteral("赵");
    closeStep();
    steps = database().undo().position();
    openReviewPalette(ids[0]);
    EXPECT_EQ(shown(1004), u"赵:\n");
    act(QStringLiteral("set 1004 \"赵:\\n已改\""));
    act(QStringLiteral("keys Alt+1"));
    act(QStringLiteral("keys Alt+Down"));
    EXPECT_EQ(feedback(0), u"已改");
    EXPECT_EQ(status(0), 3);
    EXPECT_EQ(newSteps(), 1u);
    EXPECT_EQ(database().undo().undoLabels().constFirst(), u"反馈保存");
    act(QStringLiteral("keys Alt+Up"));
    EXPECT_EQ(shown(1004), u"赵:\n已改");
    run(QStringLiteral("U"));
    EXPECT_EQ(shown(1004), u"赵:\n");
    EXPECT_EQ(status(0), 0);
}

TEST_F(ReviewPaletteTest, FilterSearchAndNumber)
{
    openReviewPalette();
    act(QStringLiteral("set 1030 张工"));
    EXPECT_EQ(shown(1017), u"1-1/2");
    EXPECT_EQ(shown(1034), u"校审人:");
    act(QStringLiteral("set 1007 2"));
    act(QStringLiteral("keys Enter"));
    EXPECT_EQ(shown(1017), u"2-2/3");
    EXPECT_EQ(shown(1030), u"显示全部");
    EXPECT_EQ(shown(1034), u"校审人:李工");
    act(QStringLiteral("set 1016 意见"));
    act(QStringLiteral("click 1042"));
    EXPECT_TRUE(script.printed.endsWith(QStringLiteral("\n总共检索出 3 个评图标签，编号是：1, 2, 3")));
    EXPECT_EQ(act(QStringLiteral("click 1047")), u"CMarkWnd2: control 1047 is disabled");
    act(QStringLiteral("keys F3"));
    act(QStringLiteral("keys F3"));
    EXPECT_EQ(shown(1017), u"3-3/3");
    EXPECT_FALSE(isEnabled(1049));
    script.printed.clear();
    act(QStringLiteral("set 1016 nothing"));
    act(QStringLiteral("keys Enter"));
    act(QStringLiteral("set 1007 9.1"));
    act(QStringLiteral("click 1008"));
    act(QStringLiteral("set 1007 \"\""));
    act(QStringLiteral("click 1008"));
    EXPECT_EQ(script.printed,
              QStringLiteral(
                  "\n未找到包含字符串 <nothing> 的评图标签。没找到这个编号的评图标签!请先输入评图标签编号!"));
}

TEST_F(ReviewPaletteTest, AnAnswerNeverGoesToAnotherMark)
{
    openReviewPalette(ids[1]);
    act(QStringLiteral("set 1004 \"for the second\""));
    {
        const AcDbUndoGroup step(database(), QStringLiteral("ERASE"));
        AcDbObjectPointer<QuillnoteObj3>(ids[1], AcDb::kForWrite)->erase();
    }
    EXPECT_EQ(shown(1004), QString());
    EXPECT_EQ(shown(1017), QString());
    EXPECT_EQ(act(QStringLiteral("click 1")), u"CMarkWnd2: control 1 is disabled");
    act(QStringLiteral("click 1006"));
    EXPECT_EQ(shown(1017), u"3-2/2");
    for (const std::size_t other : {0, 2})
        EXPECT_EQ(feedback(other), QString());
    run(QStringLiteral("U"));
    EXPECT_EQ(shown(1017), u"3-3/3");
}

TEST_F(ReviewPaletteTest, FollowsTheCurrentDrawing)
{
    openReviewPalette(ids[2]);
    act(QStringLiteral("set 1004 typed"));
    {
        const tests::OpenDrawing other(tests::MemoryDrawing().open());
        acDocManager()->activateDocument(&other.document());
        EXPECT_EQ(feedback(2), u"typed"); // Stored when the drawing was left.
        EXPECT_EQ(shown(1017), QString());
        EXPECT_FALSE(isEnabled(1006));
        acDocManager()->activateDocument(&drawing->document());
        EXPECT_EQ(shown(1017), u"3-3/3");
    }
    EXPECT_EQ(shown(1004), u"typed");
}

TEST_F(ReviewPaletteTest, ThePlaceGoesAlongWithTheNextSave)
{
    openReviewPalette(ids[1]);
    const std::uint64_t changes = database().changeCount();
    EXPECT_EQ(readReviewPosition(database()), ReviewPosition());
    storeReviewInput(drawing->document(), true);
    EXPECT_EQ(readReviewPosition(database()), (ReviewPosition{1, ids[1]}));
    EXPECT_EQ(database().changeCount(), changes);
    EXPECT_EQ(newSteps(), 0u);
    closeReviewPalette();
    openReviewPalette();
    EXPECT_EQ(shown(1017), u"2-2/3");
    act(QStringLiteral("set 1004 late"));
    storeReviewInput(drawing->document(), false);
    EXPECT_EQ(feedback(1), u"late");
}

TEST_F(ReviewPaletteTest, ALockedLayerIsSaid)
{
    AcDbObjectId layer;
    AcDbSymbolTable(database(), SymbolTable::layer).addLike(QStringLiteral("0"), QStringLiteral("L"), layer);
    AcDbObjectPointer<QuillnoteObj3>(ids[1], AcDb::kForWrite)->setLayer(QStringLiteral("L"));
    // New objects stay open until somebody closes them.
    AcDbObjectPointer<AcDbLayerTableRecord>(static_cast<AcDbLayerTableRecord *>(layer.stub()->object))
        ->setIsLocked(true);
    openReviewPalette(ids[1]);
    EXPECT_EQ(act(QStringLiteral("set 1004 x")), u"CMarkWnd2: control 1004 is read-only");
    EXPECT_FALSE(isEnabled(1009));
    act(QStringLiteral("keys Alt+Up"));
    EXPECT_EQ(act(QStringLiteral("set 1004 x")), QString());
}

TEST_F(ReviewPaletteTest, ARunningCommandKeepsItsStep)
{
    openReviewPalette(ids[0]);
    act(QStringLiteral("set 1004 x"));
    {
        const AcEdRunningAs command(QStringLiteral("LINE"));
        act(QStringLiteral("click 1"));
        act(QStringLiteral("click 1006"));
    }
    EXPECT_EQ(feedback(0), QString());
    EXPECT_EQ(shown(1017), u"1-1/3");
    EXPECT_EQ(shown(1004), u"x");
    EXPECT_TRUE(script.printed.contains(QStringLiteral("有命令正在执行")));
    act(QStringLiteral("click 1"));
    EXPECT_EQ(feedback(0), u"x");
}

TEST_F(ReviewPaletteTest, DoubleClickDoesWhatTheSettingWants)
{
    settings::setNumber(u"doubleClick", 1);
    EXPECT_EQ(run(QStringLiteral("QN3_QNAsk2")),
              QStringLiteral("\n评图标签双击功能已经关闭，若需要使用请在[设置]中打开。"));
    EXPECT_EQ(shown(1017), u"no panel");
    settings::setNumber(u"doubleClick", 2);
    drawing->document().pickSet() = {ids[1]};
    run(QStringLiteral("QN3_QNAsk2"));
    EXPECT_EQ(shown(1017), u"2-2/3");
    settings::setNumber(u"doubleClick", 0);
    drawing->document().pickSet() = {ids[1]};
    run(QStringLiteral("QN3_QNAsk2"), {}, {QStringLiteral("set 1003 \"edited\""), QStringLiteral("ok")});
    EXPECT_EQ(shown(1003), u"edited");
}

TEST_F(ReviewPaletteTest, ViewByNameShowsOneReviewersMarks)
{
    const auto modes = [this] {
        std::vector<DisplayMode> all;
        for (const AcDbObjectId id : ids)
            all.push_back(AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead)->displayMode);
        return all;
    };
    run(QStringLiteral("QN3_ViewByName"), {}, {QStringLiteral("doubleclick 1063 李工")});
    EXPECT_THAT(modes(), testing::ElementsAre(DisplayMode::hidden, DisplayMode::full, DisplayMode::hidden));
    run(QStringLiteral("QN3_ViewByName"), {}, {QStringLiteral("cancel")});
    EXPECT_THAT(modes(), testing::ElementsAre(DisplayMode::hidden, DisplayMode::full, DisplayMode::hidden));
    run(QStringLiteral("QN3_ViewByName"), {}, {QStringLiteral("ok")});
    EXPECT_THAT(modes(), testing::ElementsAre(DisplayMode::full, DisplayMode::full, DisplayMode::full));
}
