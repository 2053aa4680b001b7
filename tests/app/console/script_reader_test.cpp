// Scripts: lines, comments, places, and what is refused before anything runs.
#include "app/console/script_reader.h"

#include <gtest/gtest.h>

using console::Script;
using console::ScriptLine;
using console::ScriptReader;
using namespace Qt::StringLiterals;

TEST(Script, ServesLinesWithTheirPlaces)
{
    const auto script = Script::parse(
        "\xEF\xBB\xBF; a comment\r\nLINE\r\n 0,0 \n\n;\n@ set 1003 \"\\u00e9\"\n(princ)\n^C", u"s"_s);
    ASSERT_FALSE(script) << "the dialog line holds a wrong escape";
    EXPECT_TRUE(script.error().startsWith(u"s:6: @ set"_s)) << qPrintable(script.error());

    const auto good = Script::parse(
        "\xEF\xBB\xBF; a comment\r\nLINE\r\n 0,0 \n\n;\n@ set 1003 \"\xC3\xA9\"\n(princ)\n^C", u"s"_s);
    ASSERT_TRUE(good) << qPrintable(good.error());
    struct Expected {
        int number;
        ScriptLine::Kind kind;
        QString text;
    };
    const Expected expected[] = {
        {2, ScriptLine::typed, u"LINE"_s},    {3, ScriptLine::typed, u" 0,0 "_s},
        {4, ScriptLine::typed, u""_s},        {6, ScriptLine::dialog, u"set 1003 \"é\""_s},
        {7, ScriptLine::typed, u"(princ)"_s}, {8, ScriptLine::typed, u"^C"_s},
    };
    ScriptReader reader(*good);
    EXPECT_EQ(reader.position(), u"s"_s);
    for (const Expected &line : expected) {
        EXPECT_EQ(reader.nextPosition(), u"s:%1"_s.arg(line.number));
        const ScriptLine *taken = reader.take();
        ASSERT_TRUE(taken);
        EXPECT_EQ(taken->number, line.number);
        EXPECT_EQ(taken->kind, line.kind);
        EXPECT_EQ(taken->text, line.text);
        EXPECT_EQ(reader.position(), u"s:%1"_s.arg(line.number));
    }
    EXPECT_EQ(reader.take(), nullptr);
    EXPECT_EQ(reader.take(), nullptr);
    EXPECT_EQ(reader.nextPosition(), u"s, at its end"_s);
    EXPECT_EQ(good->lines()[3].action.text, u"é"_s);
}

TEST(Script, AnEndOfLineEndsALineAndBeginsNone)
{
    EXPECT_EQ(Script::parse("", u"s"_s)->lines().size(), 0u);
    EXPECT_EQ(Script::parse("A", u"s"_s)->lines().size(), 1u);
    EXPECT_EQ(Script::parse("A\n", u"s"_s)->lines().size(), 1u);
    EXPECT_EQ(Script::parse("A\n\n", u"s"_s)->lines().size(), 2u) << "an empty line is Enter";
}

TEST(Script, PointsThatCountFromTheLastOneAreNoDialogLines)
{
    for (const char *point : {"@100,0", "@-5,.5", "@5<90", "@*1,2", "@"}) {
        const auto script = Script::parse(point, u"s"_s);
        ASSERT_TRUE(script) << qPrintable(script.error());
        EXPECT_EQ(script->lines()[0].kind, ScriptLine::typed) << point;
        EXPECT_EQ(script->lines()[0].text, QLatin1String(point));
    }
}

TEST(Script, IsRefusedWithTheLine)
{
    struct Case {
        QByteArray bytes;
        const char *message;
    };
    const Case cases[] = {
        {"A\n\xC4\xE3\xBA\xC3\nB", "s:2: the line is not UTF-8"},
        {"A\n\xE4\xBD", "s:2: the line is not UTF-8"},
        {QByteArray("A\0B\n", 4), "s:1: the line holds a zero byte"},
        {"; x\n@push 1\n", "s:2: @push 1: there is no dialog line \"push\""},
    };
    for (const Case &c : cases) {
        const auto script = Script::parse(c.bytes, u"s"_s);
        ASSERT_FALSE(script) << c.message;
        EXPECT_EQ(script.error().toStdString(), c.message);
    }
}
