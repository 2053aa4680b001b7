// Running commands: names, undo groups, locks, notifications, calls from other commands, queued lines.
#include "host/aced/edcommands.h"

#include "host/acdb/dbundo.h"
#include "host/aced/edinput.h"
#include "host/aced/edsysvar.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using tests::ScriptFrontEnd;

namespace
{

class Recorder : public AcEditorReactor
{
public:
    Recorder() { acedEditor()->addReactor(this); }
    ~Recorder() override { acedEditor()->removeReactor(this); }
    void commandWillStart(const QString &name) override { events.push_back("start " + name.toStdString()); }
    void commandEnded(const QString &name) override { events.push_back("end " + name.toStdString()); }
    void commandCancelled(const QString &name) override { events.push_back("cancel " + name.toStdString()); }
    void lispWillStart(const QString &line) override { events.push_back("lisp " + line.toStdString()); }
    void lispEnded() override { events.push_back("lisp ended"); }

    std::vector<std::string> events;
};

/// Commands of group "TEST" and an open drawing.
class Commands : public testing::Test
{
protected:
    ~Commands() override { acedRegCmds()->removeGroup("TEST"); }

    void add(const QString &name, std::function<void()> function, int flags = ACRX_CMD_MODAL)
    {
        ASSERT_TRUE(acedRegCmds()->addCommand({"TEST", name, name, flags, std::move(function)}));
    }
    void setUserNumber(const QByteArray &name, int number)
    {
        m_drawing.database().setHeaderVariable(name, {{70, std::int64_t(number)}});
    }

    const tests::OpenDrawing m_drawing{tests::MemoryDrawing().open()};
};

} // namespace

TEST(CommandStack, FindsByLocalThenGlobalName)
{
    AcEdCommandStack stack;
    std::string ran;
    const auto run = [&ran](const char *what) { return [&ran, what] { ran = what; }; };
    EXPECT_TRUE(stack.addCommand({"A", "ERASE", "shanchu", 0, run("erase")}));
    EXPECT_TRUE(stack.addCommand({"A", "-LAYER", "-tuceng", 0, run("layer")}));
    EXPECT_TRUE(stack.addCommand({"B", "MARK", "erase", 0, run("mark")}));
    EXPECT_FALSE(stack.addCommand({"a", "erase", "other", 0, run("")}));

    const std::pair<const char *, const char *> cases[] = {
        {"ERASE", "mark"},    {"_ERASE", "erase"}, {"._erase", "erase"}, {"shanchu", "erase"},
        {"_MARK", "mark"},    {"-layer", "layer"}, {"_-LAYER", "layer"}, {"-_LAYER", "layer"},
        {"'_ERASE", "erase"}, {"-TUCENG", "layer"}};
    for (const auto &[name, expected] : cases) {
        const AcEdCommand *const command = stack.lookup(name);
        ASSERT_TRUE(command) << name;
        command->function();
        EXPECT_EQ(ran, expected) << name;
    }
    for (const char *name : {"LAYER", "", "_", "_shanchu", "-ERASE"})
        EXPECT_EQ(stack.lookup(name), nullptr) << name;

    stack.removeGroup("b");
    EXPECT_EQ(stack.lookup("ERASE")->group, "A");
    EXPECT_TRUE(stack.removeCmd("A", "erase"));
    EXPECT_FALSE(stack.removeCmd("A", "erase"));
}

TEST_F(Commands, OneCommandIsOneUndoStep)
{
    add("TWICE", [this] {
        EXPECT_EQ(m_drawing.document().lockMode(), AcAp::kWrite);
        EXPECT_EQ(acedTextVar("CMDNAMES"), "TWICE");
        setUserNumber("$USERI1", 1);
        acedCommandS({"INNER"});
    });
    add("INNER", [this] {
        EXPECT_EQ(acedTextVar("CMDNAMES"), "TWICE'INNER");
        setUserNumber("$USERI2", 2);
    });
    add("LOOK", [] {});
    add(
        "QUIET", [this] { EXPECT_FALSE(m_drawing.database().undo().isOpen()); }, ACRX_CMD_NOUNDO);

    ScriptFrontEnd script;
    EXPECT_EQ(acedEditor()->runCommand("twice"), RTNORM);
    EXPECT_EQ(acedEditor()->runCommand("LOOK"), RTNORM);
    EXPECT_EQ(acedEditor()->runCommand("QUIET"), RTNORM);
    EXPECT_EQ(m_drawing.document().lockMode(), AcAp::kNone);
    EXPECT_EQ(m_drawing.database().undo().undoLabels(), QStringList{"TWICE"});
    EXPECT_TRUE(m_drawing.database().undo().undo());
    EXPECT_EQ(m_drawing.database().headerInteger("$USERI1", -1), -1);
    EXPECT_EQ(m_drawing.database().headerInteger("$USERI2", -1), -1);
}

TEST_F(Commands, ReactorsHearOfStartEndAndCancel)
{
    add("ASK", [] {
        int value = 0;
        acedGetInt("n", value);
    });
    add("OUTER", [] { EXPECT_EQ(acedCommandS({"ASK"}), RTCAN); });
    ScriptFrontEnd script({"^C"});
    Recorder recorder;
    EXPECT_EQ(acedEditor()->runCommand("ASK"), RTCAN);
    // A command that was called ends alone: its caller goes on.
    EXPECT_EQ(acedEditor()->runCommand("OUTER"), RTNORM);
    EXPECT_EQ(acedEditor()->execute("(+ 1 2)"), RTNORM);
    EXPECT_EQ(acedEditor()->runCommand("NOSUCH"), RTERROR);
    EXPECT_TRUE(script.printed.contains("NOSUCH"));
    EXPECT_THAT(recorder.events, ElementsAre("start ASK", "cancel ASK", "start OUTER", "start ASK",
                                             "cancel ASK", "end OUTER", "lisp (+ 1 2)", "lisp ended"));
}

TEST_F(Commands, CallsAnswerPromptsFromTheirArguments)
{
    QStringList heard;
    add("ASK", [&heard, this] {
        QString text;
        double real = 0;
        AcGePoint3d point;
        AcDbObjectId entity;
        if (acedGetString(true, "t", text) != RTNORM || acedGetReal("r", real) != RTNORM ||
            acedGetPoint(nullptr, "p", point) != RTNORM)
            return;
        heard << text << QString::number(real) << QStringLiteral("%1 %2").arg(point.x).arg(point.y);
    });
    m_drawing.document().ucs().origin = {100, 0, 0};

    ScriptFrontEnd script({"typed"});
    EXPECT_EQ(acedCommandS({"ASK", "a b", 2.5, AcGePoint3d(1, 2, 0), "left over"}), RTNORM);
    EXPECT_EQ(acedCommandS({"ASK", PAUSE, 7, "3,4"}), RTNORM);
    EXPECT_EQ(heard, (QStringList{"a b", "2.5", "1 2", "typed", "7", "3 4"}));
    EXPECT_EQ(script.prompts.size(), 1u) << "only PAUSE asks the user";

    EXPECT_EQ(acedCommandS({"ASK", "x"}), RTCAN) << "an argument is missing";
    EXPECT_EQ(script.prompts.size(), 1u);
    EXPECT_EQ(acedCommandS({"NOSUCH"}), RTERROR);
    EXPECT_EQ(acedCommandS({}), RTERROR);
}

TEST_F(Commands, ALineCarriesAnswers)
{
    QStringList heard;
    add("ASK", [&heard] {
        int a = 0;
        int b = -1;
        acedGetInt("a", a);
        acedGetInt("b", b);
        heard << QString::number(a) << QString::number(b);
    });
    ScriptFrontEnd script({"9"});
    EXPECT_EQ(acedEditor()->execute("ASK 1 2"), RTNORM);
    EXPECT_EQ(acedEditor()->execute("^C^C_ASK 3  "), RTNORM); // Two blanks: Enter for the second.
    EXPECT_EQ(acedEditor()->execute("ASK 4"), RTNORM);        // The user is asked for the second.
    EXPECT_EQ(acedEditor()->execute("ASK 5 6 ASK 7 8 "), RTNORM);
    EXPECT_EQ(heard, (QStringList{"1", "2", "3", "-1", "4", "9", "5", "6", "7", "8"}));
    EXPECT_EQ(acedEditor()->execute(""), RTNONE);
}

TEST_F(Commands, WhatFollowsARefusedAnswerIsDropped)
{
    QStringList heard;
    add("ASK", [&heard] {
        int a = 0;
        int b = 0;
        if (acedGetInt("a", a) == RTNORM && acedGetInt("b", b) == RTNORM)
            heard << QString::number(a) << QString::number(b);
    });
    ScriptFrontEnd script({"1", "2", "wrong", "3"});
    EXPECT_EQ(acedEditor()->execute("ASK nonsense 8 ASK 9 9"), RTNORM);
    EXPECT_EQ(heard, (QStringList{"1", "2"}));
    EXPECT_EQ(acedCommandS({"ASK", "nonsense", 8, 9}), RTCAN) << "nobody else is asked";
    EXPECT_EQ(acedCommandS({"ASK", PAUSE, 4}), RTNORM) << "a person may try again";
    EXPECT_EQ(heard, (QStringList{"1", "2", "3", "4"}));
    ASSERT_EQ(script.refusals.size(), 4) << qPrintable(script.printed);
    EXPECT_EQ(script.refusals.first(), "“nonsense”: 需要整数。");
}

TEST_F(Commands, QueuedTextsRunBetweenCommands)
{
    QStringList order;
    add("FIRST", [&order] {
        ads_queueexpr("(command \"THIRD\")");
        ads_queueexpr("FOURTH");
        acedEditor()->runQueue(); // A command is running: nothing happens yet.
        order << "first";
    });
    add("SECOND", [&order] { order << "second"; });
    add("THIRD", [&order] { order << "third"; });
    add("FOURTH", [&order] { order << "fourth"; });
    add("STOP", [&order] {
        acedEditor()->requestQuit();
        order << "stop";
    });
    ScriptFrontEnd script({"FIRST", "SECOND", "STOP", "SECOND"});
    acedEditor()->processInput();
    EXPECT_EQ(order, (QStringList{"first", "third", "fourth", "second", "stop"}));
    EXPECT_FALSE(script.isUsedUp());
}

TEST_F(Commands, TransparentCommandsRunInsideAPrompt)
{
    QStringList order;
    add("ASK", [&order] {
        int value = 0;
        acedGetInt("n", value);
        order << QString::number(value);
    });
    add(
        "PEEK", [&order] { order << acedEditor()->activeCommands(); }, ACRX_CMD_TRANSPARENT);
    add("LOUD", [&order] { order << "loud"; });
    ScriptFrontEnd script({"'PEEK", "'LOUD", "5"});
    EXPECT_EQ(acedEditor()->runCommand("ASK"), RTNORM);
    EXPECT_EQ(order, (QStringList{"ASK'PEEK", "5"})) << "LOUD cannot run inside another command";
}

TEST_F(Commands, ThePickSetIsForCommandsThatUseIt)
{
    std::size_t seen = 99;
    add(
        "USES", [&seen, this] { seen = m_drawing.document().pickSet().size(); }, ACRX_CMD_USEPICKSET);
    add("IGNORES", [&seen, this] { seen = m_drawing.document().pickSet().size(); });
    add(
        "CALLS", [] { acedCommandS({"IGNORES"}); }, ACRX_CMD_USEPICKSET);
    ScriptFrontEnd script;
    m_drawing.document().pickSet() = {m_drawing.database().modelSpaceId()};
    acedEditor()->runCommand("USES");
    EXPECT_EQ(seen, 1u);
    acedEditor()->runCommand("CALLS"); // What a command calls leaves its caller's pick set alone.
    EXPECT_EQ(seen, 1u);
    acedEditor()->runCommand("IGNORES");
    EXPECT_EQ(seen, 0u);
}

TEST_F(Commands, ACommandMayCloseItsDrawing)
{
    AcApDocument *const other = acDocManager()->addDocument(tests::MemoryDrawing().open(), {});
    add(
        "SHUT", [other] { acDocManager()->closeDocument(other); }, ACRX_CMD_SESSION);
    ScriptFrontEnd script;
    EXPECT_EQ(acedEditor()->runCommand("SHUT"), RTNORM);
    EXPECT_EQ(curDoc(), &m_drawing.document());
}

TEST(CommandsWithoutDrawing, OnlySessionCommandsRun)
{
    int runs = 0;
    acedRegCmds()->addCommand({"TEST", "OPENIT", "OPENIT", ACRX_CMD_SESSION, [&runs] { ++runs; }});
    acedRegCmds()->addCommand({"TEST", "DRAWIT", "DRAWIT", ACRX_CMD_MODAL, [&runs] { ++runs; }});
    ScriptFrontEnd script;
    ASSERT_EQ(curDoc(), nullptr);
    EXPECT_EQ(acedEditor()->runCommand("DRAWIT"), RTERROR);
    EXPECT_EQ(acedEditor()->runCommand("OPENIT"), RTNORM);
    EXPECT_EQ(runs, 1);
    acedRegCmds()->removeGroup("TEST");
}
