// A script answering prompts and dialogs in order, and ending the run at the first line that does not fit.
#include "app/console/script_front_end.h"

#include <gtest/gtest.h>

#include <QWidget>

using console::Script;
using console::ScriptFrontEnd;
using namespace Qt::StringLiterals;

namespace
{

Script scriptOf(const char *text)
{
    auto script = Script::parse(text, u"s"_s);
    EXPECT_TRUE(script) << qPrintable(script.error());
    return *script;
}

AcEdPrompt prompt(AcEdPromptKind kind)
{
    AcEdPrompt asked;
    asked.kind = kind;
    asked.message = u"\nFirst corner: "_s;
    return asked;
}

const AcEdPrompt kCommand = prompt(AcEdPromptKind::command);
const AcEdPrompt kPoint = prompt(AcEdPromptKind::point);

QString typed(const std::optional<AcEdAnswer> &answer)
{
    return answer ? answer->typed : u"(none)"_s;
}

/// Runs `work` and gives what went to standard error.
template <class Work>
std::string messages(Work work)
{
    testing::internal::CaptureStderr();
    work();
    return testing::internal::GetCapturedStderr();
}

} // namespace

TEST(ScriptRun, AnswersPromptsAndDialogsInOrder)
{
    const Script script = scriptOf("LINE\n0,0\n\n@set 1003 \"a\"\n@ok\n^C\n");
    ScriptFrontEnd face(script);
    const std::string printed = messages([&] {
        EXPECT_EQ(typed(face.answer(kCommand)), u"LINE"_s);
        EXPECT_EQ(typed(face.answer(kPoint)), u"0,0"_s);
        EXPECT_EQ(typed(face.answer(kPoint)), u""_s) << "an empty line is Enter";
        EXPECT_EQ(face.dialogLine(u"dialog"_s), u"set 1003 \"a\""_s);
        EXPECT_EQ(face.dialogLine(u"dialog"_s), u"ok"_s);
        const auto cancel = face.answer(kPoint);
        ASSERT_TRUE(cancel);
        EXPECT_EQ(cancel->kind, AcEdAnswer::cancel);
        EXPECT_FALSE(face.answer(kCommand)) << "the script has ended";
    });
    EXPECT_FALSE(face.hasFailed()) << "at the command prompt a script may end";
    EXPECT_EQ(printed, "");
}

TEST(ScriptRun, EndsAtTheFirstLineThatDoesNotFit)
{
    struct Case {
        const char *script;
        std::function<bool(ScriptFrontEnd &)> answered;
        const char *message;
    };
    const auto point = [](ScriptFrontEnd &face) { return face.answer(kPoint).has_value(); };
    const auto command = [](ScriptFrontEnd &face) { return face.answer(kCommand).has_value(); };
    const auto dialog = [](ScriptFrontEnd &face) { return face.dialogLine(u"dialog CSetup"_s).has_value(); };
    const Case cases[] = {
        {"; only this\n", point, "s, at its end: the prompt \"First corner:\" finds no answer\n"},
        {"", dialog, "s, at its end: dialog CSetup finds no answer\n"},
        {"LINE\n@ok\n", dialog, "s:1: dialog CSetup finds no answer, \"LINE\" works no dialog\n"},
        {"@1,1\n@ok\n", dialog, "s:1: dialog CSetup finds no answer, \"@1,1\" works no dialog\n"},
        {"@ok\n0,0\n", point, "s:1: @ok: no dialog is open; the prompt \"First corner:\" is waiting\n"},
        {"@yes\n", command, "s:1: @yes: no dialog is open; the command prompt is waiting\n"},
        {"@in CMarkWnd2 click 1006\n", command,
         "s:1: @in CMarkWnd2 click 1006: no window CMarkWnd2 is shown\n"},
        {"@keys Ctrl+Enter\nLINE\n", command,
         "s:1: @keys Ctrl+Enter: only Ctrl, Shift and Alt can be held\n"},
    };
    for (const Case &c : cases) {
        const Script script = scriptOf(c.script);
        ScriptFrontEnd face(script);
        bool wasAnswered = true;
        EXPECT_EQ(messages([&] { wasAnswered = c.answered(face); }), c.message);
        EXPECT_FALSE(wasAnswered) << c.script;
        EXPECT_TRUE(face.hasFailed()) << c.script;
        EXPECT_EQ(messages([&] {
                      EXPECT_FALSE(face.answer(kPoint));
                      EXPECT_FALSE(face.dialogLine(u"another"_s));
                      face.refuseAnswer(u"again"_s);
                  }),
                  "again\n")
            << "nothing is answered after the first reason, but what else is refused is told: " << c.script;
    }
}

TEST(ScriptRun, ARefusedAnswerEndsItAtTheLineThatGaveIt)
{
    const Script script = scriptOf("@set 1003 x\n@ok\n");
    ScriptFrontEnd face(script);
    EXPECT_TRUE(face.dialogLine(u"dialog"_s));
    EXPECT_EQ(messages([&] { face.refuseAnswer(u"there is no control 1003"_s); }),
              "s:1: there is no control 1003\n");
    EXPECT_FALSE(face.dialogLine(u"dialog"_s));
}

TEST(ScriptRun, HoldsKeysDuringTheNextAnswer)
{
    const Script script =
        scriptOf("A\n@keys Ctrl Shift\n1,1\n2,2\n@keys Alt\n@keys\n3,3\n@keys Shift\n@ok\n4,4\n");
    ScriptFrontEnd face(script);
    const QStringList none;
    face.answer(kCommand);
    EXPECT_EQ(face.heldKeys(), none);
    EXPECT_EQ(typed(face.answer(kPoint)), u"1,1"_s);
    EXPECT_EQ(face.heldKeys(), (QStringList{u"Ctrl"_s, u"Shift"_s})) << "still down when the command looks";
    EXPECT_EQ(typed(face.answer(kPoint)), u"2,2"_s);
    EXPECT_EQ(face.heldKeys(), none);
    EXPECT_EQ(typed(face.answer(kPoint)), u"3,3"_s);
    EXPECT_EQ(face.heldKeys(), none) << "released by the line without keys";
    EXPECT_EQ(face.dialogLine(u"dialog"_s), u"ok"_s);
    EXPECT_EQ(face.heldKeys(), QStringList{u"Shift"_s});
    EXPECT_EQ(typed(face.answer(kPoint)), u"4,4"_s);
    EXPECT_EQ(face.heldKeys(), none);
}
