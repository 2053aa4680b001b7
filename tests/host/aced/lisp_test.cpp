// The small LISP: reading, evaluating, functions of modules.
#include "host/aced/edlisp.h"

#include "host/aced/edcommands.h"
#include "host/aced/edinput.h"
#include "host/aced/edlisp_eval.h"
#include "host/aced/edmenu.h"
#include "host/acrx/rxmodule.h"
#include "tests/support/files.h"
#include "tests/support/script_front_end.h"

#include <gtest/gtest.h>

#include <QDir>

namespace
{

class Lisp : public testing::Test
{
protected:
    void SetUp() override { lisp::State::instance().reset(); }
    void TearDown() override { lisp::State::instance().reset(); }

    tests::ScriptFrontEnd frontEnd;
};

QString value(const QString &expression)
{
    const auto result = acedEvaluateLisp(expression);
    return result ? *result : QStringLiteral("error: ") + result.error();
}

struct Case {
    const char *expression;
    const char *value;
};

void expectAll(std::initializer_list<Case> cases)
{
    for (const Case &row : cases)
        EXPECT_EQ(value(QString::fromUtf8(row.expression)), QString::fromUtf8(row.value)) << row.expression;
}

} // namespace

TEST_F(Lisp, ReadsEveryKindOfValue)
{
    expectAll({
        {" ; first a comment\n 12 ; and one behind", "12"},
        {"-7", "-7"},
        {"+7", "7"},
        {"2147483647", "2147483647"},
        {"2147483648", "2.14748e+09"},
        {".5", "0.5"},
        {"-2.", "-2.0"},
        {"1e6", "1.0e+06"},
        {"-", "nil"},
        {"nil", "nil"},
        {"()", "nil"},
        {"T", "T"},
        {"never-set", "nil"},
        {"'abc", "ABC"},
        {"'(1 (2.5 \"x\") y)", "(1 (2.5 \"x\") Y)"},
        {"'(a'b)", "(A (QUOTE B))"},
        {R"("a\"b\\c\n\t\e\101\U+8BC4\q")", R"("a\"b\\c\n\t\eA评q")"},
        {R"("C:\\菜单\\a b.mnu")", R"("C:\\菜单\\a b.mnu")"},
    });
}

TEST_F(Lisp, ComputesWithNumbersTextsAndLists)
{
    expectAll({
        {"(+)", "0"},
        {"(+ 1 2 3)", "6"},
        {"(+ 1 2.0)", "3.0"},
        {"(- 5)", "-5"},
        {"(- 5 1 1)", "3"},
        {"(* 2 3.5)", "7.0"},
        {"(/ 7 2)", "3"},
        {"(/ -7 2)", "-3"},
        {"(/ 7 2.0)", "3.5"},
        {"(* 65536 65536)", "4.29497e+09"},
        {"(< 1 2 3)", "T"},
        {"(< 1 3 3)", "nil"},
        {"(<= 1 3 3)", "T"},
        {"(> \"b\" \"a\")", "T"},
        {"(= 1 1.0)", "T"},
        {"(= \"a\" \"A\")", "nil"},
        {"(/= 1 2)", "T"},
        {"(and 1 \"\" nil)", "nil"},
        {"(and)", "T"},
        {"(or nil 3)", "T"},
        {"(not 0)", "nil"},
        {"(strcat \"a\" \"\" \"b\")", "\"ab\""},
        {"(strcase \"aB评\")", "\"AB评\""},
        {"(strcase \"aB\" T)", "\"ab\""},
        {"(itoa -5)", "\"-5\""},
        {"(atoi \" 42abc\")", "42"},
        {"(atoi \"abc\")", "0"},
        {"(atof \"1.5e1x\")", "15.0"},
        {"(rtos 3.14159 2 2)", "\"3.14\""},
        {"(rtos 2.5 2 4)", "\"2.5\""},
        {"(rtos 12345.0 1 2)", "\"1.23E+04\""},
        {"(list)", "nil"},
        {"(list 1 (list 2))", "(1 (2))"},
        {"(car '(1 2))", "1"},
        {"(cdr '(1 2 3))", "(2 3)"},
        {"(cdr '(1))", "nil"},
        {"(cadr '(1 2))", "2"},
        {"(nth 2 '(1 2 3))", "3"},
        {"(nth 3 '(1 2 3))", "nil"},
        {"(length '(1 2 3))", "3"},
        {"(length nil)", "0"},
    });
}

TEST_F(Lisp, ChoosesAndRemembers)
{
    expectAll({
        {"(if nil (/ 1 0) 2)", "2"},
        {"(if 1 2 (/ 1 0))", "2"},
        {"(if nil 1)", "nil"},
        {"(cond ((= 1 2) (/ 1 0)) (3))", "3"},
        {"(cond (T 1 2) ((/ 1 0)))", "2"},
        {"(cond)", "nil"},
        {"(or (setq hit 1) (setq missed 1))", "T"},
        {"(list hit missed)", "(1 nil)"},
        {"(setq A 1 b (+ a 1))", "2"},
        {"(list a B)", "(1 2)"},
        {"(setq a nil)", "nil"},
        {"a", "nil"},
        {"(progn (setq c 1) (setq c (+ c 1)) c)", "2"},
    });
}

TEST_F(Lisp, SaysWhatIsWrongAndWhere)
{
    expectAll({
        {"", "error: an expression is missing (line 1, column 1)"},
        {"(list 1\n (list 2)", "error: malformed list on input: the list is not closed (line 1, column 1)"},
        {"(list 1\n  \"abc", "error: malformed string on input: the text is not closed (line 2, column 3)"},
        {"(list 1))", "error: extra right parenthesis on input (line 1, column 9)"},
        {"(list) (list)", "error: there is more text behind the expression (line 1, column 8)"},
        {"'(1 . 2)", "error: malformed list on input: dotted pairs are not supported (line 1, column 5)"},
        {"(progn\n (foo 1))", "error: no function definition: FOO (line 2, column 2)"},
        {"(1 2)", "error: bad function: 1 (line 1, column 1)"},
        {"(+ 1 \"2\")", "error: bad argument type: \"2\" in + (line 1, column 1)"},
        {"(strcat \"a\" 1)", "error: bad argument type: 1 in STRCAT (line 1, column 1)"},
        {"(car 5)", "error: bad argument type: 5 in CAR (line 1, column 1)"},
        {"(nth -1 '(1))", "error: bad argument type: -1 in NTH (line 1, column 1)"},
        {"(nth 1)", "error: too few arguments: NTH (line 1, column 1)"},
        {"(itoa 1 2)", "error: too many arguments: ITOA (line 1, column 1)"},
        {"(/ 1 0)", "error: divide by zero (line 1, column 1)"},
        {"(setq T 1)", "error: bad argument type: SETQ cannot set T (line 1, column 1)"},
        {"(setvar \"NOSUCHVAR\" 1)", "error: unknown system variable: NOSUCHVAR (line 1, column 1)"},
        {"(setvar \"CMDECHO\" 7)", "error: system variable CMDECHO does not take 7 (line 1, column 1)"},
    });
    // What went wrong ends the expression: nothing behind it happens.
    EXPECT_TRUE(value(QStringLiteral("(progn (setq x (foo)) (setq y 1))")).startsWith(u"error"));
    EXPECT_EQ(value(QStringLiteral("(list x y)")), u"(nil nil)");
}

TEST_F(Lisp, BoundsDepthAndSize)
{
    const QString deep = QStringLiteral("(list ").repeated(150) + QStringLiteral(")").repeated(150);
    EXPECT_FALSE(value(deep).startsWith(u"error"));
    for (const QString &opening : {QStringLiteral("("), QStringLiteral("'"), QStringLiteral("(list ")})
        EXPECT_TRUE(value(opening.repeated(100'000)).startsWith(u"error")) << qPrintable(opening);

    // Values that double or deepen at every step end in an error, not in the memory.
    const auto grows = [](const QString &start, const QString &step) {
        value(start);
        for (int i = 0; i < 300; ++i) {
            if (value(step).startsWith(u"error"))
                return false;
        }
        return true;
    };
    EXPECT_FALSE(grows(QStringLiteral("(setq s \"ab\")"), QStringLiteral("(setq s (strcat s s))")));
    EXPECT_FALSE(grows(QStringLiteral("(setq l '(1))"), QStringLiteral("(setq l (list l l))")));
    EXPECT_FALSE(grows(QStringLiteral("(setq d '(1))"), QStringLiteral("(setq d (list d))")));
}

TEST_F(Lisp, RefusesEveryTruncation)
{
    const QString whole = QStringLiteral("(setq a '(1 \"b\\\"\" (c 2.5)) b (if a (list 'x) \"y\"))");
    ASSERT_FALSE(value(whole).startsWith(u"error"));
    for (qsizetype length = 0; length < whole.size(); ++length)
        EXPECT_TRUE(value(whole.left(length)).startsWith(u"error")) << length;
}

TEST_F(Lisp, PrintsOnTheCommandLine)
{
    EXPECT_EQ(value(QStringLiteral("(princ \"a\\nb\")")), u"\"a\\nb\"");
    EXPECT_EQ(value(QStringLiteral("(print '(\"c\" 1))")), u"(\"c\" 1)");
    EXPECT_EQ(value(QStringLiteral("(princ)")), u"");
    EXPECT_EQ(frontEnd.printed, u"a\nb\n(\"c\" 1) ");
}

TEST_F(Lisp, RunsCommandsWithItsValuesAsAnswers)
{
    QString text;
    int whole = 0;
    double real = 0.0;
    acedRegCmds()->addCommand({QStringLiteral("LISPTEST"), QStringLiteral("ASKALL"), QStringLiteral("ASKALL"),
                               ACRX_CMD_SESSION | ACRX_CMD_NOUNDO, [&] {
                                   acedGetString(true, QStringLiteral("text: "), text);
                                   acedGetInt(QStringLiteral("whole: "), whole);
                                   acedGetReal(QStringLiteral("real: "), real);
                               }});
    EXPECT_EQ(value(QStringLiteral("(command \"_ASKALL\" \"a b\\\\c\" 7 (+ 1 0.5))")), u"nil");
    acedRegCmds()->removeGroup(QStringLiteral("LISPTEST"));
    EXPECT_EQ(text, u"a b\\c");
    EXPECT_EQ(whole, 7);
    EXPECT_EQ(real, 1.5);
    EXPECT_EQ(value(QStringLiteral("(command 'x)")),
              u"error: bad argument type: X in COMMAND (line 1, column 1)");
}

TEST_F(Lisp, ReachesMenusVariablesAndFiles)
{
    const tests::TempDir folder;
    const QString menu = folder.write(
        QStringLiteral("a.mnu"),
        R"(<menu-file version="1"><group name="LT"><popup id="POP1" label="x"/></group></menu-file>)");
    ASSERT_TRUE(acedMenus().load(menu));
    EXPECT_EQ(value(QStringLiteral("(menugroup \"lt\")")), u"\"lt\"");
    EXPECT_EQ(value(QStringLiteral("(menucmd \"P3=+LT.POP1\")")), u"nil");
    ASSERT_EQ(acedMenus().bar().size(), 1u);
    EXPECT_EQ(acedMenus().bar()[0].place, 3);
    acedMenus().unload(QStringLiteral("LT"));
    EXPECT_EQ(value(QStringLiteral("(menugroup \"LT\")")), u"nil");

    EXPECT_EQ(value(QStringLiteral("(progn (setvar \"cmdecho\" 0) (getvar \"CMDECHO\"))")), u"0");
    EXPECT_EQ(value(QStringLiteral("(setvar \"CMDECHO\" 1)")), u"1");
    EXPECT_EQ(value(QStringLiteral("(getvar \"NOSUCHVAR\")")), u"nil");

    EXPECT_EQ(value(QStringLiteral("(findfile \"%1\")").arg(menu)), QStringLiteral("\"%1\"").arg(menu));
    EXPECT_EQ(value(QStringLiteral("(findfile \"%1x\")").arg(menu)), u"nil");
}

// Functions of modules ---------------------------------------------------------------------------------

namespace
{

struct ModuleCall {
    int code = 0;
    ResbufList arguments;
};
std::vector<ModuleCall> moduleCalls;

AcRx::AppRetCode moduleEntry(AcRx::AppMsgCode message, void *packet)
{
    if (message == AcRx::kInitAppMsg) {
        acrxDynamicLinker()->unlockApplication(packet);
        EXPECT_EQ(acedDefun(QStringLiteral("tst_Add"), 4), RTNORM);
        EXPECT_EQ(acedDefun(QStringLiteral("tst_Fail"), 5), RTNORM);
        EXPECT_EQ(acedDefun(QStringLiteral("tst_Outer"), 6), RTNORM);
    }
    if (message != AcRx::kInvkSubrMsg)
        return AcRx::kRetOK;
    moduleCalls.push_back({acedGetFunCode(), acedGetArgs()});
    switch (acedGetFunCode()) {
    case 4:
        acedRetInt(int(acedGetArgs().at(0).integer() + 1));
        return AcRx::kRetOK;
    case 5:
        return AcRx::kRetError;
    default:
        // A function may evaluate others and still has its own code and result.
        EXPECT_EQ(value(QStringLiteral("(tst_add 41)")), u"42");
        EXPECT_EQ(acedGetFunCode(), 6);
        acedRetNil();
        return AcRx::kRetOK;
    }
}

} // namespace

TEST_F(Lisp, CallsTheFunctionsOfModules)
{
    EXPECT_EQ(acedDefun(QStringLiteral("tst_Nobody"), 1), RTERROR);
    moduleCalls.clear();
    acrxDynamicLinker()->attachModule(QStringLiteral("lisp-test-module"), moduleEntry);

    EXPECT_EQ(value(QStringLiteral("(+ 1 (TST_ADD 70000 2.5 \"t\" nil T '(1 2.0 0) '(\"a\" 1)))")), u"70002");
    EXPECT_EQ(value(QStringLiteral("(tst_fail)")),
              u"error: the function failed: TST_FAIL (line 1, column 1)");
    EXPECT_EQ(value(QStringLiteral("(tst_outer)")), u"nil");
    ASSERT_EQ(moduleCalls.size(), 4u);
    const ResbufList expected{{5010, std::int64_t(70000)}, {5001, 2.5},
                              {5005, QStringLiteral("t")}, {5019, std::monostate()},
                              {5021, std::monostate()},    {5009, AcGePoint3d(1, 2, 0)},
                              {5016, std::monostate()},    {5005, QStringLiteral("a")},
                              {5003, std::int64_t(1)},     {5017, std::monostate()}};
    EXPECT_EQ(moduleCalls[0].code, 4);
    EXPECT_TRUE(moduleCalls[0].arguments == expected);

    EXPECT_EQ(acedUndef(QStringLiteral("tst_FAIL")), RTNORM);
    EXPECT_EQ(acedUndef(QStringLiteral("tst_FAIL")), RTERROR);
    EXPECT_TRUE(value(QStringLiteral("(tst_fail)")).startsWith(u"error: no function definition"));
    ASSERT_TRUE(acrxDynamicLinker()->unloadModule(QStringLiteral("lisp-test-module")));
    EXPECT_TRUE(value(QStringLiteral("(tst_add 1)")).startsWith(u"error"));
}
