// Dialog lines: which are understood and what they say.
#include "host/acui/acuiscript.h"

#include <gtest/gtest.h>

TEST(DialogLines, AreRead)
{
    struct Case {
        const char *line;
        AcUiAction::Verb verb;
        int number;
        const char *text;
        const char *window;
    };
    const Case cases[] = {
        {"set 1003 \"two words\"", AcUiAction::set, 1003, "two words", ""},
        {"set 1003 two words ", AcUiAction::set, 1003, "two words", ""},
        {"set 1003 \"\"", AcUiAction::set, 1003, "", ""},
        {R"(set 1003 "a \"b\" \\ c\nd")", AcUiAction::set, 1003, "a \"b\" \\ c\nd", ""},
        {"set 1003 C:\\new", AcUiAction::set, 1003, "C:\\new", ""},
        {"set 1003 \" blanks \"", AcUiAction::set, 1003, " blanks ", ""},
        {"  click\t202 ", AcUiAction::click, 202, "", ""},
        {"doubleclick 1063 \"Li\"", AcUiAction::doubleClick, 1063, "Li", ""},
        {"ok", AcUiAction::ok, 0, "", ""},
        {"cancel", AcUiAction::cancel, 0, "", ""},
        {"yes", AcUiAction::yes, 0, "", ""},
        {"no ", AcUiAction::no, 0, "", ""},
        {"keys Ctrl+Enter", AcUiAction::keys, 0, "Ctrl+Enter", ""},
        {"keys", AcUiAction::keys, 0, "", ""},
        {"file \"a b.txt\"", AcUiAction::file, 0, "a b.txt", ""},
        {"in CMarkWnd2 click 1006", AcUiAction::click, 1006, "", "CMarkWnd2"},
        {"in CMarkWnd2 set 1007 \"3.1\"", AcUiAction::set, 1007, "3.1", "CMarkWnd2"},
    };
    for (const Case &c : cases) {
        const auto action = acuiParseAction(QString::fromUtf8(c.line));
        ASSERT_TRUE(action) << c.line << ": " << qPrintable(action.error());
        EXPECT_EQ(action->verb, c.verb) << c.line;
        EXPECT_EQ(action->number, c.number) << c.line;
        EXPECT_EQ(action->text, QString::fromUtf8(c.text)) << c.line;
        EXPECT_EQ(action->window, QString::fromUtf8(c.window)) << c.line;
    }
}

TEST(DialogLines, ThatMakeNoSenseAreRefusedWithAReason)
{
    struct Case {
        const char *line;
        const char *reason;
    };
    const Case cases[] = {
        {"", "no dialog line"},
        {"OK", "no dialog line \"OK\""},
        {"press 1", "no dialog line \"press\""},
        {"click", "needs the number"},
        {"click one", "needs the number"},
        {"click -1", "needs the number"},
        {"click 99999999999", "needs the number"},
        {"click 1 2", "more behind"},
        {"ok now", "more behind"},
        {"set 1003", "needs a text"},
        {"file", "needs a text"},
        {"set 1003 \"open", "closing quote"},
        {"set 1003 \"open\\\"", "closing quote"},
        {"set 1003 \"a\" b", "behind the closing quote"},
        {"set 1003 \"a\\tb\"", "backslash"},
        {"set 1003 \"a\\", "backslash"},
        {"in CMarkWnd2", "needs the class"},
        {"in", "needs the class"},
        {"in A in B click 1", "no dialog line \"in\""},
        {"in CMarkWnd2 file \"x\"", "does not work on a window"},
    };
    for (const Case &c : cases) {
        const auto action = acuiParseAction(QString::fromUtf8(c.line));
        ASSERT_FALSE(action) << c.line;
        EXPECT_TRUE(action.error().contains(QString::fromUtf8(c.reason)))
            << c.line << ": " << qPrintable(action.error());
    }
}

TEST(DialogLines, KnowTheKeysThatCanBeHeld)
{
    QStringList keys{QStringLiteral("before")};
    EXPECT_TRUE(acuiModifierKeys(QStringLiteral("shift + CTRL ctrl"), keys));
    EXPECT_EQ(keys, (QStringList{QStringLiteral("Shift"), QStringLiteral("Ctrl")}));
    EXPECT_FALSE(acuiModifierKeys(QStringLiteral("Ctrl Enter"), keys));
    EXPECT_EQ(keys.size(), 2) << "a refused text changes nothing";
    EXPECT_TRUE(acuiModifierKeys({}, keys));
    EXPECT_TRUE(keys.isEmpty());
}
