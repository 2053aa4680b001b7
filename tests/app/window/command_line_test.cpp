// The command line: what confirms it, what it completes, links to keywords, lines typed before.
#include "app/window/command_line_panel.h"
#include "app/window/command_names.h"
#include "tests/app/front_end/window_session.h"
#include "tests/support/script_front_end.h"

#include "host/acdb/dbents.h"
#include "host/aced/edcommands.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QTranslator>

#include <algorithm>

namespace
{

class CommandLineTest : public testing::Test
{
protected:
    void key(int code, const QString &text = {})
    {
        QKeyEvent press(QEvent::KeyPress, code, Qt::NoModifier, text);
        QCoreApplication::sendEvent(&panel.edit(), &press);
    }
    void keys(const QString &text)
    {
        for (const QChar sign : text)
            key(sign == u' ' ? int(Qt::Key_Space) : int(sign.toUpper().unicode()), sign);
    }

    tests::OpenDrawing drawing{tests::MemoryDrawing().open()};
    tests::WindowSession session;
    window::CommandLinePanel panel{session.front};
};

} // namespace

TEST_F(CommandLineTest, BlankConfirmsExceptWhereItIsPartOfTheAnswer)
{
    session.play({
        [&] { keys(QStringLiteral("TEXT ")); },
        [&] { keys(QStringLiteral("0,0 ")); },
        [&] { keys(QStringLiteral("5 ")); },
        [&] { keys(QStringLiteral("0 ")); },
        [&] {
            EXPECT_TRUE(session.front.prompt()->allowsBlanks);
            keys(QStringLiteral("two words"));
            key(Qt::Key_Return);
        },
        [&] {
            if (!session.front.isIdle()) // Another line of text is asked for.
                key(Qt::Key_Return);
            else
                session.front.giveText({});
        },
        [&] {
            keys(QStringLiteral("(setq a 1)"));
            EXPECT_EQ(panel.edit().text(), u"(setq a 1)");
            key(Qt::Key_Return);
        },
    });
    const auto made = tests::currentEntities();
    ASSERT_EQ(made.size(), 1u);
    AcDbObjectPointer<AcDbText> text(made[0], AcDb::kForRead);
    EXPECT_EQ(text->textString(), u"two words");
    EXPECT_TRUE(panel.historyText().contains(u"two words"));
}

TEST_F(CommandLineTest, EmptyEnterRepeatsAndEscapeCancels)
{
    session.play({
        [&] { panel.type(QStringLiteral("CIRCLE ")); },
        [&] {
            panel.type(QStringLiteral("1,1"));
            key(Qt::Key_Escape);
            EXPECT_EQ(panel.edit().text(), u"");
        },
        [&] {
            EXPECT_TRUE(session.front.isIdle());
            key(Qt::Key_Return);
        },
        [&] {
            EXPECT_EQ(acedEditor()->activeCommands(), u"CIRCLE");
            key(Qt::Key_Escape);
        },
        [&] {
            key(Qt::Key_Up);
            EXPECT_EQ(panel.edit().text(), u"CIRCLE");
            key(Qt::Key_Down);
            EXPECT_EQ(panel.edit().text(), u"");
            session.front.giveText({});
        },
    });
    EXPECT_TRUE(tests::currentEntities().empty());
}

TEST_F(CommandLineTest, KeywordsAreLinksThatAnswer)
{
    drawing.document().view().height = 10.0;
    session.play({
        [&] { session.front.giveText(QStringLiteral("ZOOM")); },
        [&] {
            EXPECT_TRUE(panel.prompt().text().contains(u"<a href=\"S\""))
                << qPrintable(panel.prompt().text());
            Q_EMIT panel.prompt().linkActivated(QStringLiteral("S"));
        },
        [&] { session.front.giveText(QStringLiteral("2x")); },
    });
    EXPECT_DOUBLE_EQ(drawing.document().view().height, 5.0);
}

namespace
{

/// A language of the window, spoken while this lives.
struct Language {
    explicit Language(const QString &name)
    {
        const QString folder =
            QCoreApplication::applicationDirPath() + QStringLiteral("/../share/translations");
        EXPECT_TRUE(translator.load(name, folder) && QCoreApplication::installTranslator(&translator));
    }
    ~Language() { QCoreApplication::removeTranslator(&translator); }

    QTranslator translator;
};

} // namespace

TEST_F(CommandLineTest, EnglishPromptsTakeTheSameKeywords)
{
    const Language english(QStringLiteral("quillnote_en"));
    session.play({
        [&] { session.front.giveText(QStringLiteral("LINE")); },
        [&] {
            EXPECT_EQ(session.prompt(), u"Specify first point:");
            session.front.giveText(QStringLiteral("0,0"));
        },
        [&] { session.front.giveText(QStringLiteral("10,0")); },
        [&] { session.front.giveText(QStringLiteral("10,10")); },
        [&] {
            EXPECT_TRUE(panel.prompt().text().contains(u"[<a href=\"Close\""))
                << qPrintable(panel.prompt().text());
            Q_EMIT panel.prompt().linkActivated(QStringLiteral("Close"));
        },
    });
    EXPECT_EQ(tests::currentEntities().size(), 3u);
}

TEST_F(CommandLineTest, ReasonsAreInTheLanguageOfTheWindow)
{
    const QString missing = QStringLiteral("missing/drawing.dxf");
    EXPECT_TRUE(acDocManager()->openDocument(missing).error().endsWith(u": not found"));
    const Language chinese(QStringLiteral("quillnote_zh_CN"));
    EXPECT_TRUE(acDocManager()->openDocument(missing).error().endsWith(u": 找不到"));
}

TEST(Prompt, ShowsItsOptionsAsLinks)
{
    AcEdPrompt prompt;
    prompt.message = QStringLiteral("\nold line\n点 <1&2> 或 [全部(A)/比例(S)/其他]: ");
    prompt.keywords = QStringList{QStringLiteral("All"), QStringLiteral("Scale")};
    const QString html = window::promptAsHtml(prompt, Qt::blue);
    EXPECT_TRUE(html.startsWith(u"点 &lt;1&amp;2&gt; 或 [<a href=\"A\"")) << qPrintable(html);
    EXPECT_TRUE(html.contains(u"<a href=\"S\" style=\"color:#0000ff\">比例(S)</a>/其他]:"))
        << qPrintable(html);

    prompt.message = QStringLiteral("\n继续吗? ");
    EXPECT_EQ(window::promptAsHtml(prompt, Qt::blue),
              u"继续吗? [<a href=\"All\" style=\"color:#0000ff\">All</a>/"
              u"<a href=\"Scale\" style=\"color:#0000ff\">Scale</a>]");
    prompt.kind = AcEdPromptKind::selection;
    prompt.message = QStringLiteral("\n选择对象: ");
    prompt.keywords = QStringLiteral("Window Crossing BOX ALL Last Previous Add Remove SIngle").split(u' ');
    const QString selection = window::promptAsHtml(prompt, Qt::blue);
    EXPECT_TRUE(selection.startsWith(u"选择对象 [<a href=\"W\"")) << qPrintable(selection);
    EXPECT_TRUE(selection.endsWith(u">单个(SI)</a>]:")) << qPrintable(selection);
    EXPECT_EQ(selection.count(u"<a "), prompt.keywords.size()) << "every way to select answers";
    prompt.kind = AcEdPromptKind::keyword;
    prompt.message = QStringLiteral("\n继续吗? ");
    prompt.keywords.clear();
    EXPECT_EQ(window::promptAsHtml(prompt, Qt::blue), u"继续吗?");
}

TEST(CommandNames, StandModulesFirstAndOnce)
{
    tests::WindowSession session;
    acedRegCmds()->addCommand(
        {QStringLiteral("REVIEW"), QStringLiteral("RV_Note"), QStringLiteral("Note"), 0, [] {}});
    const auto names = window::commandNames();
    acedRegCmds()->removeGroup(QStringLiteral("REVIEW"));
    const auto place = [&](const char *name) {
        return std::ranges::find(names, QLatin1String(name), &window::CommandName::name) - names.begin();
    };
    EXPECT_LT(place("Note"), place("LINE"));
    EXPECT_LT(place("RV_Note"), place("LINE"));
    EXPECT_LT(place("LINE"), place("L"));
    ASSERT_LT(place("L"), std::ptrdiff_t(names.size()));
    EXPECT_EQ(names[std::size_t(place("L"))].meaning, u"直线");
    EXPECT_EQ(std::ranges::count(names, QStringLiteral("LINE"), &window::CommandName::name), 1);
}
