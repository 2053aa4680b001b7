// The front end of the window: macros, answers in advance, what waits for a free editor, leaving.
#include "tests/app/front_end/window_session.h"
#include "tests/support/script_front_end.h"

#include "host/aced/edcommands.h"

#include <gtest/gtest.h>

namespace
{

QStringList answersOf(const QString &macro)
{
    QStringList texts;
    for (const auto &answer : window::readMacro(macro))
        texts += !answer                              ? QStringLiteral("<ask>")
                 : answer->kind == AcEdAnswer::cancel ? QStringLiteral("^C")
                                                      : answer->typed;
    return texts;
}

class WindowFrontEndTest : public testing::Test
{
protected:
    tests::OpenDrawing drawing{tests::MemoryDrawing().open()};
    tests::WindowSession session;
    window::WindowFrontEnd &front = session.front;
};

} // namespace

TEST(Macro, IsReadAsAnswers)
{
    const std::pair<const char *, QStringList> rows[] = {
        {"^C^C_LINE ", {"^C", "^C", "_LINE"}},
        {"ZOOM;_E", {"ZOOM", "_E"}},
        {"_CIRCLE \\5 ", {"_CIRCLE", "<ask>", "5"}},
        {"_LAYER  ", {"_LAYER", ""}},
        {"(command \"_LINE\" \"a (b\") ", {"(command \"_LINE\" \"a (b\")"}},
        {"(setq a", {"(setq a"}},
        {"", {}},
    };
    for (const auto &[macro, expected] : rows)
        EXPECT_EQ(answersOf(QString::fromUtf8(macro)), expected) << macro;
}

TEST_F(WindowFrontEndTest, MacroWaitsForThePersonWhereItSaysSo)
{
    session.play({
        [&] { front.runMacro(QStringLiteral("^C^C_LINE 0,0 \\ ")); },
        [&] { front.giveText(QStringLiteral("10,0")); },
        [&] {
            EXPECT_TRUE(front.isIdle());
            front.giveText(QStringLiteral("DONE"));
        },
    });
    EXPECT_EQ(tests::currentEntities().size(), 1u);
    EXPECT_EQ(front.lastCommand(), u"DONE");
}

TEST_F(WindowFrontEndTest, MacroBeginsByCancellingWhatRuns)
{
    session.play({
        [&] { front.giveText(QStringLiteral("CIRCLE")); },
        [&] { front.runMacro(QStringLiteral("^C^C_POINT 1,1 ")); },
        [&] {
            EXPECT_TRUE(front.isIdle());
            front.print(QStringLiteral("behind"));
            EXPECT_TRUE(session.printed.endsWith(u"1,1\nbehind")) << "Enter ended the line of the answer";
            front.giveText({});
        },
    });
    EXPECT_EQ(tests::currentEntities().size(), 1u);
    EXPECT_TRUE(session.printed.contains(u"*取消*"));
}

TEST_F(WindowFrontEndTest, ARefusedAnswerEndsItsMacro)
{
    session.play({
        [&] { front.runMacro(QStringLiteral("^C^C_LINE 0,0 nowhere 10,0  _POINT 1,1 ")); },
        [&] { front.giveText(QStringLiteral("5,0")); }, [&] { front.giveText({}); },
        [&] { front.runMacro(QStringLiteral("^C^C_NOSUCH;_POINT 1,1 ")); },
        [&] { front.runMacro(QStringLiteral("^C^C_CIRCLE \\2 ")); },
        [&] { front.giveText(QStringLiteral("where?")); },
        [&] { front.giveText(QStringLiteral("1,1")); }, // The macro waited for a person, who was wrong.
    });
    EXPECT_TRUE(session.printed.contains(u"“nowhere”"));
    EXPECT_EQ(tests::currentEntities().size(), 2u) << "the line to 5,0 and the circle";
}

TEST_F(WindowFrontEndTest, ClosingAndLeavingAskTheWindow)
{
    struct Keeper : AcEdDrawingKeeper {
        bool open(const QString &) override { return false; }
        bool save(AcApDocument *, const QString &) override { return false; }
        bool mayClose(const std::vector<AcApDocument *> &documents) override
        {
            asked += documents.size();
            return answer;
        }
        std::size_t asked = 0;
        bool answer = false;
    } keeper;
    front.setDrawingKeeper(&keeper);
    session.play({
        [&] { front.giveText(QStringLiteral("POINT 1,1")); },
        [&] { front.giveText(QStringLiteral("CLOSE")); },
        [&] {
            EXPECT_EQ(acDocManager()->documents().size(), 1u);
            front.giveText(QStringLiteral("QUIT"));
        },
        [&] {
            EXPECT_TRUE(front.isIdle()) << "the window was to stay";
            EXPECT_EQ(keeper.asked, 2u);
            keeper.answer = true;
            front.giveText(QStringLiteral("QUIT"));
        },
    });
    EXPECT_EQ(keeper.asked, 3u);
}

TEST_F(WindowFrontEndTest, WhatIsTypedAheadAnswersTheNextPrompts)
{
    session.play({
        [&] {
            front.giveText(QStringLiteral("POINT"));
            front.giveText(QStringLiteral("3,4"));
        },
        [&] { front.giveText({}); },
    });
    EXPECT_EQ(tests::currentEntities().size(), 1u);
}

TEST_F(WindowFrontEndTest, WhatWaitsForTheEditorCancelsTheCommandAndThenRuns)
{
    QStringList order;
    session.play({
        [&] {
            front.whenIdle([&] { order += acedEditor()->activeCommands(); });
            EXPECT_EQ(order.size(), 1); // At once.
        },
        [&] { front.giveText(QStringLiteral("LINE")); },
        [&] { front.giveText(QStringLiteral("0,0")); },
        [&] {
            front.whenIdle([&] {
                order += QStringLiteral("first") + acedEditor()->activeCommands();
                front.whenIdle([&] { order += QStringLiteral("second"); });
            });
            EXPECT_EQ(order.size(), 1);
        },
    });
    EXPECT_EQ(order, (QStringList{QString(), QStringLiteral("first"), QStringLiteral("second")}));
    EXPECT_TRUE(tests::currentEntities().empty());
}

TEST_F(WindowFrontEndTest, AnswersGivenByWhatWaitedAreNotLost)
{
    AcEdAnswer point;
    point.typed = QStringLiteral("_POINT");
    AcEdAnswer place;
    place.typed = QStringLiteral("2,3");
    session.play({
        [&] { front.whenIdle([&] {
                  front.queue({point, place});
              }); },
        [&] { front.giveText(QStringLiteral("LINE")); },
        [&] { front.whenIdle([&] {
                  front.queue({point, place});
              }); },
        [&] {
            EXPECT_TRUE(front.isIdle());
            front.giveText({});
        },
    });
    EXPECT_EQ(tests::currentEntities().size(), 2u);
}

TEST_F(WindowFrontEndTest, LeavingCancelsTheCommandAndNothingIsAskedAgain)
{
    bool ran = false;
    session.play({
        [&] { front.giveText(QStringLiteral("LINE")); },
        [&] {
            front.giveText(QStringLiteral("0,0"));
            front.leave();
            front.whenIdle([&] { ran = true; });
        },
    });
    EXPECT_FALSE(ran);
    EXPECT_EQ(drawing.document().lockMode(), AcAp::kNone);
    EXPECT_EQ(acedEditor()->activeCommands(), u"");
}

TEST_F(WindowFrontEndTest, WorkIsStoppedByWhoeverListens)
{
    EXPECT_TRUE(front.progress(QStringLiteral("work"), 0.5));
    QObject::connect(&front, &window::WindowFrontEnd::progressed, &front, [&](const QString &, double share) {
        if (share > 0.5)
            front.stopWork();
    });
    EXPECT_TRUE(front.progress(QStringLiteral("work"), 0.5));
    EXPECT_FALSE(front.progress(QStringLiteral("work"), 0.6));
    EXPECT_TRUE(front.progress(QStringLiteral("other"), 0.1));
}
