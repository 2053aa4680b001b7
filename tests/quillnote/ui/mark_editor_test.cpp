// The mark editor worked by scripts: phrases, recent list, "+", the phrase bank missing, keys, editing a
// mark.
#include "quillnote/authoring/keyword_text.h"
#include "quillnote/snapshot/pending_snapshot.h"
#include "quillnote/ui/mark_editor.h"
#include "quillnote/ui/phrase_folder.h"
#include "quillnote/ui/recent_phrases.h"

#include "host/acui/acuiinstall.h"
#include "tests/quillnote/authoring/authoring_fixture.h"
#include "tests/support/files.h"

struct MarkEditorTest : AuthoringTest {
    MarkEditorTest()
    {
        acuiInstall();
        library = folder.path(QStringLiteral("审图"));
        QDir().mkpath(library);
        folder.write(QStringLiteral("审图/a.txt"), "ByLine 0\n第一段\n第二行\n---------\n乙[[[权重=7]]]\n");
        folder.write(QStringLiteral("审图/b.txt"), "丙 & 丁\n");
        settings::setText(u"CYZSLocation", library);
        for (const settings::Number row : std::initializer_list<settings::Number>{
                 u"useXmlMenu", u"derectDraw", u"left", u"top", u"right", u"bottom"})
            settings::setNumber(row, 0);
        for (int i = 0; i < 15; ++i)
            settings::setText(u"savedNearTxt%d", i, u"");
    }
    ~MarkEditorTest() override
    {
        acuiUninstall();
        settings::setText(u"CYZSLocation", u"");
    }

    /// Draws a mark with the editor worked by the lines; what was printed.
    QString draw(const QStringList &lines) const
    {
        return run(QStringLiteral("QN3_Quillnote"), {"0,0", "40,30"}, lines);
    }
    /// The newest mark, copied out.
    MarkEditorValue newest() const
    {
        const AcDbObjectPointer<QuillnoteObj3> mark(collectMarks(database()).ids.back(), AcDb::kForRead);
        return {mark->suggestionContent, mark->weight, mark->bigCategory, mark->smallCategory, {}};
    }

    tests::TempDir folder;
    QString library;
};

TEST_F(MarkEditorTest, PhrasesAreAppendedOrDrawAtOnce)
{
    draw({"set 1003 \"前\"", "click 5000", "click 5001", "ok"});
    EXPECT_EQ(newest().text, QStringLiteral("前第一段\n第二行乙"));
    EXPECT_EQ(newest().weight, 7);
    EXPECT_EQ(newest().smallCategory, QStringLiteral("a"));
    EXPECT_EQ(newest().bigCategory, QStringLiteral("审图"));
    EXPECT_EQ(recentPhrases(), (QStringList{QStringLiteral("乙"), QStringLiteral("第一段\r\n第二行")}));

    // Replaced, and the window closes by itself. The recent list gives the text alone.
    draw({"set 1055 1", "set 1003 \"前\"", "click 5951"});
    EXPECT_EQ(newest().text, QStringLiteral("第一段\n第二行"));
    EXPECT_EQ(newest().weight, 5);
    EXPECT_EQ(newest().smallCategory, QString());
    EXPECT_EQ(settings::number(u"derectDraw"), 1);
    draw({"click 5002"});
    EXPECT_EQ(newest().text, QStringLiteral("丙 & 丁"));
    EXPECT_EQ(newest().weight, 0);
}

TEST_F(MarkEditorTest, PlusKeepsWhatWasTyped)
{
    draw(
        {"click 5900", "set 1003 \"新的\"", "click 5901", "click 5901", "set 1003 \"\"", "click 5003", "ok"});
    EXPECT_EQ(newest().text, QStringLiteral("新的"));
    EXPECT_EQ(newest().smallCategory, QStringLiteral("b"));
    EXPECT_EQ(tests::readFile(library + QStringLiteral("/b.txt")), "丙 & 丁\n新的\n");
    QFile::remove(library + QStringLiteral("/b.txt"));
    const QString printed = draw({"set 1003 x", "cancel"});
    EXPECT_FALSE(printed.contains(QStringLiteral("已经丢失")));
}

// Files that changed a while ago are not read for every mark; whatever becomes of them is seen at the next
// one.
TEST_F(MarkEditorTest, PhrasesFollowTheirFiles)
{
    const QString file = library + QStringLiteral("/b.txt");
    const auto age = [&](const QString &path, int hours) {
        QFile old(path);
        EXPECT_TRUE(old.open(QIODevice::ReadWrite));
        EXPECT_TRUE(old.setFileTime(QDateTime::currentDateTime().addSecs(-3600 * hours),
                                    QFileDevice::FileModificationTime));
    };
    age(library + QStringLiteral("/a.txt"), 2);
    age(file, 2);
    const auto third = [&] {
        draw({"click 5002", "ok"});
        return newest().text;
    };
    phraseFolderMemory().reset();
    EXPECT_EQ(third(), QStringLiteral("丙 & 丁"));
    EXPECT_EQ(phraseFolderMemory().library.phrases.size(), 3U);
    EXPECT_EQ(third(), QStringLiteral("丙 & 丁"));
    folder.write(QStringLiteral("审图/b.txt"), "戊 & 丁\n");
    EXPECT_EQ(third(), QStringLiteral("戊 & 丁")) << "the same length, just now";
    age(file, 1);
    EXPECT_EQ(third(), QStringLiteral("戊 & 丁"));
    folder.write(QStringLiteral("审图/0.txt"), "己\n");
    EXPECT_EQ(third(), QStringLiteral("乙")) << "a menu before the others";
}

TEST_F(MarkEditorTest, TheFolderAndTheSourceAreChosenFromTheMenu)
{
    const tests::TempDir other;
    other.write(QStringLiteral("c.txt"), "另一处\n");
    draw({"click 203", "file \"" + other.path() + "\"", "click 5000", "click 207", "click 202", "click 57670",
          "ok"});
    EXPECT_EQ(newest().text, QStringLiteral("另一处"));
    EXPECT_EQ(settings::text(u"CYZSLocation"), other.path());
    EXPECT_EQ(settings::number(u"useXmlMenu"), 1);
    settings::setText(u"XmlMenuFile", tests::testDataPath(QStringLiteral("corpus/phrase_xml/utf8.xml")));
    draw({"click 5001", "click 207", "ok"});
    EXPECT_EQ(newest().text, QStringLiteral("A & B"));
    EXPECT_EQ(newest().bigCategory, QStringLiteral("建筑"));
    EXPECT_EQ(settings::number(u"useXmlMenu"), 0);
    EXPECT_TRUE(
        draw({"click 206", "cancel"}).contains(QStringLiteral("请先登录QuillnoteYun评图云，再执行本命令.")));
}

TEST_F(MarkEditorTest, WithoutThePhraseBankNothingChanges)
{
    settings::setText(u"Location", folder.path());
    const QString printed = draw({"set 1003 \"文\"", "click 1036", "ok", "click 1037", "ok", "ok"});
    settings::setText(u"Location", u"");
    EXPECT_EQ(printed.count(QStringLiteral("调用PhraseBank_DLL.dll错误.")), 2);
    EXPECT_EQ(newest().text, QStringLiteral("文"));
}

TEST_F(MarkEditorTest, EscAsksBeforeTypedTextIsLost)
{
    draw({"set 1003 \"x\"", "keys Esc", "no", "keys Esc", "yes"});
    draw({"keys Esc"});
    EXPECT_TRUE(collectMarks(database()).ids.empty());
    draw({"set 1003 \" x\"", "keys Tab", "keys Enter", "keys Shift+Enter"});
    EXPECT_EQ(newest().text, QStringLiteral("x")) << "Tab left the text: Enter changed nothing in it";
}

TEST_F(MarkEditorTest, EditingCountsAndKeepsTheRest)
{
    const AcDbObjectId id = make(QStringLiteral("张工"), QStringLiteral("旧"));
    closeStep();
    runAndBack(QStringLiteral("QN3_Edit"), {"L"}, {"click 5001", "ok"});
    run(QStringLiteral("QN3_QNeditMark"), {"L"}, {"set 1003 \"不要\"", "cancel"});
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    EXPECT_EQ(mark->suggestionContent, QStringLiteral("旧乙"));
    EXPECT_EQ(mark->editVersion, 2);
    EXPECT_EQ(mark->weight, 5);
}

TEST_F(MarkEditorTest, OpensWhereItFits)
{
    EXPECT_EQ(markEditorRectangle({0, 0, 0, 0}, {1600, 900}), QRect(350, 0, 900, 180));
    EXPECT_EQ(markEditorRectangle({100, 50, 700, 300}, {1600, 900}), QRect(100, 50, 700, 300));
    for (const QRect &outside : {QRect(1000, 0, 700, 180), QRect(-1, 0, 700, 180), QRect(0, 800, 700, 180)})
        EXPECT_EQ(markEditorRectangle(outside, {1600, 900}), QRect(350, 0, 900, 180));
    EXPECT_EQ(markEditorRectangle({0, 0, 0, 0}, {683, 384}), QRect(0, 0, 683, 180));

    // A window that was left smaller than the texts of its buttons opens larger.
    settings::setNumber(u"right", 200);
    settings::setNumber(u"bottom", 60);
    draw({"set 1003 x", "ok"});
    EXPECT_GE(settings::number(u"right"), 400);
    EXPECT_GE(settings::number(u"bottom"), 100);
}

// Keyword text -----------------------------------------------------------------------------------

struct KeywordTest : AuthoringTest {
    static void command(const QString &name, const QStringList &answers) { run(name, answers); }
    QString ofEverything() const
    {
        AcDbDatabase &drawingNow = database();
        std::vector<AcDbObjectId> ids;
        for (const std::uint32_t index : drawingNow.blockContents(drawingNow.currentSpaceId())->entities)
            ids.emplace_back(drawingNow.stub(index));
        return keywordText(ids);
    }
};

TEST_F(KeywordTest, NamesWhatStandsThere)
{
    command(QStringLiteral("LINE"), {"0,0", "10,0", ""});
    command(QStringLiteral("TEXT"), {"0,0", "5", "0", "FM甲1021"});
    command(QStringLiteral("LINE"), {"0,0", "20,0", ""});
    EXPECT_EQ(ofEverything(), QStringLiteral(",AcDbLine,0,AcDbText,FM甲1021"));
}

TEST_F(KeywordTest, LooksAtNoMoreThanAHundredAndOne)
{
    for (int i = 0; i < 150; ++i)
        command(QStringLiteral("TEXT"), {"0,0", "5", "0", QStringLiteral("第%1个").arg(i)});
    const QString text = ofEverything();
    EXPECT_TRUE(text.contains(QStringLiteral("第100个")));
    EXPECT_FALSE(text.contains(QStringLiteral("第101个")));
}
