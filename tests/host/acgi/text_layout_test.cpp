// Control codes, inline codes and line breaks of text.
#include "host/acgi/gitextlayout.h"

#include <QStringList>

#include <gtest/gtest.h>

static QStringList lineTexts(const QString &coded, double wrapWidth = 0.0)
{
    QStringList texts;
    for (const acgi::MTextLine &line : acgi::layOutMText(coded, 1.0, 1.0, wrapWidth))
        texts.append(line.text);
    return texts;
}

TEST(TextLayout, ResolvesControlCodes)
{
    const std::pair<QString, QString> rows[] = {
        {"plain", "plain"},
        {"90%%d", QString("90") + QChar(0xB0)},
        {"%%p0.5 %%c20", QChar(0xB1) + QString("0.5 ") + QChar(0x2205) + "20"},
        {"%%uunder%%u 50%%%", "under 50%"},
        {"%%065%%", "A%%"},
        {"%%9", "%%9"},
        {"\\U+00e9t\\U+00", QChar(0xE9) + QString("t\\U+00")},
    };
    for (const auto &[coded, plain] : rows)
        EXPECT_EQ(acgi::plainText(coded), plain);
}

TEST(TextLayout, DropsInlineCodes)
{
    const std::pair<QString, QStringList> rows[] = {
        {"one\\Ptwo", {"one", "two"}},
        {"{\\fArial|b1;bold} \\C1;red\\L line\\l", {"bold red line"}},
        {"a\\~b \\\\ \\{c\\}", {QString("a") + QChar(QChar::Nbsp) + "b \\ {c}"}},
        {"1\\S1/2;x", {"11/2x"}},
        {"a^Ib^Jc^ d", {"a b", "c^d"}},
        {"\\pi0,l2;text", {"text"}},
        {"open {\\H2; and \\fArial", {"open  and"}}, // Damaged: no end of the font name.
        {"\\", {"\\"}},
        {"", {""}},
    };
    for (const auto &[coded, lines] : rows)
        EXPECT_EQ(lineTexts(coded), lines) << coded.toStdString();
}

TEST(TextLayout, HeightsEndWithTheirBraces)
{
    const auto lines = acgi::layOutMText("a{\\H2x;b\\Pc}\\Pd\\H7;\\P", 3.0, 1.0, 0.0);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0].height, 6.0);
    EXPECT_EQ(lines[1].height, 6.0);
    EXPECT_EQ(lines[2].height, 3.0);
    EXPECT_EQ(lines[3].height, 7.0);
    EXPECT_NEAR(lines[0].width, 3.0 * lines[2].width, 1e-9);
}

TEST(TextLayout, BreaksBetweenWordsAndIdeographs)
{
    const double word = acgi::textWidth("word");
    EXPECT_EQ(lineTexts("word word word", 2.5 * word), (QStringList{"word word", "word"}));
    EXPECT_EQ(lineTexts("wordwordword", word), (QStringList{"wordwordword"}));
    const QString ideographs(3, QChar(0x5BA4));
    const double ideograph = acgi::textWidth(QString(QChar(0x5BA4)));
    EXPECT_EQ(lineTexts(ideographs, 2.1 * ideograph), (QStringList{ideographs.left(2), ideographs.left(1)}));
    EXPECT_EQ(lineTexts(ideographs), (QStringList{ideographs}));
    EXPECT_GT(ideograph, acgi::textWidth("a"));
}
