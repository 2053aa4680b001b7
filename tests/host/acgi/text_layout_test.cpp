// Codes of one-line text and the lines along it, fonts and text styles.
#include "host/acgi/text/text_layout.h"
#include "host/acgi/text/text_style.h"

#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

using tests::MemoryDrawing;

TEST(TextLayout, ResolvesControlCodes)
{
    const std::pair<QString, QString> rows[] = {
        {"plain", "plain"},
        {"90%%d", QString("90") + QChar(0xB0)},
        {"%%p0.5 %%c20", QChar(0xB1) + QString("0.5 ") + QChar(0x2205) + "20"},
        {"%%uunder%%u 50%%%", "under 50%"},
        {"%%065%%", "A%%"},
        {"%%127%%129", QString(QChar(0xB0)) + QChar(0x2205)},
        {"%%9 %%+12 %%", "%%9 %%+12 %%"},
        {"\\U+00e9t\\U+00", QChar(0xE9) + QString("t\\U+00")},
        {"\\M+5D6D0\\M+9D6D0", QChar(0x4E2D) + QString("\\M+9D6D0")},
    };
    for (const auto &[coded, plain] : rows)
        EXPECT_EQ(acgi::plainText(coded), plain);
}

TEST(TextLayout, LinesRunAlongTheirPartOfTheText)
{
    using acgi::CharacterCode;
    std::vector<acgi::TextRule> rules;
    EXPECT_EQ(acgi::plainText("a%%ubc%%ud%%o%%d%%k%%k", rules), QString("abcd") + QChar(0xB0));
    ASSERT_EQ(rules.size(), 2u);
    EXPECT_EQ(rules[0].kind, CharacterCode::underline);
    EXPECT_EQ(rules[0].from, 1);
    EXPECT_EQ(rules[0].to, 3);
    EXPECT_EQ(rules[1].kind, CharacterCode::overline); // Never switched off: to the end.
    EXPECT_EQ(rules[1].from, 4);
    EXPECT_EQ(rules[1].to, 5);
}

static acgi::FontRequest file(const QString &name, const QString &bigFont = {})
{
    return {name, bigFont, {}, false, false};
}

static acgi::FontRequest typeface(const QString &name, bool bold = false, bool italic = false)
{
    return {{}, {}, name, bold, italic};
}

static QRectF outlineOf(const acgi::Font &font, const QString &text)
{
    std::vector<acgi::PlacedGlyph> glyphs;
    font.layOut(text, glyphs);
    QRectF all;
    for (const acgi::PlacedGlyph &glyph : glyphs)
        all |= glyph.glyph->outline.boundingRect().translated(glyph.x, 0.0);
    return all;
}

TEST(Fonts, CapitalLettersAreOneHighAndStandOnTheBaseLine)
{
    const acgi::FontRequest rows[] = {
        {}, file("simsun.ttc"), typeface("Times New Roman", true, true), file("monotxt.shx")};
    for (const acgi::FontRequest &request : rows) {
        const acgi::Font &font = acgi::findFont(request);
        EXPECT_TRUE(font.isFound());
        const QRectF capitals = outlineOf(font, "HEH");
        EXPECT_NEAR(capitals.top(), 0.0, 1e-6);
        EXPECT_NEAR(capitals.bottom(), 1.0, request.bold ? 0.02 : 1e-6);
        EXPECT_NEAR(font.width(u"HEH"), capitals.width(), 0.5);
    }
}

TEST(Fonts, MeasureAndLayOutAlike)
{
    const acgi::Font &font = acgi::defaultFont();
    const QString text =
        QString("Room 5\t") + QChar(0x5BA4) + QChar(0x2205) + QString::fromUcs4(U"\U00020000", 1);
    std::vector<acgi::PlacedGlyph> glyphs;
    font.layOut(text, glyphs);
    ASSERT_EQ(glyphs.size(), 10u); // The surrogate pair is one character.
    EXPECT_DOUBLE_EQ(font.width(text), glyphs.back().x + glyphs.back().glyph->advance);
    for (const acgi::PlacedGlyph &glyph : glyphs)
        EXPECT_GT(glyph.glyph->advance, 0.1);
    EXPECT_EQ(glyphs[8].face, nullptr); // The diameter sign is drawn by us,
    EXPECT_FALSE(glyphs[8].glyph->outline.isEmpty());
    EXPECT_NE(glyphs[9].glyph->outline, glyphs[7].glyph->outline); // and what nobody has is a box.
}

// Boxes that drawings of other programs state for texts of height 1. Those of stroke letters end where the
// last stroke does, up to a third of the height before the next letter would begin.
TEST(Fonts, FillTheBoxesThatDrawingsState)
{
    struct Row {
        acgi::FontRequest font;
        const char *text;
        double stated;
    };
    const Row rows[] = {
        {file("txt"), "CENTER", 5.667},
        {file("txt.shx"), "RIGHT", 4.340},
        {file("txt"), "BOTTOM_CENTER_gjpqy", 18.5},
        {file("txt"), "Jen teksto simpla, cxu ne?", 23.833},
        {file("simplex.shx"), "Bottom", 5.190},
        {file("simplex.shx"), "Middle", 4.286},
        {file("simplex.shx"), "center align", 8.762},
        {file("hebtxt"), "888", 2.571},
        {file("arial.ttf"), "BOTTOM_CENTER_gjpqy", 16.599},
        {typeface("Arial"), "RIGHT", 4.343},
        {file("arialn.ttf"), "BOTTOM_CENTER_gjpqy", 13.626},
    };
    for (const Row &row : rows) {
        const double most = row.font.fontFile.contains(QLatin1String("arial")) ? 0.05 : 0.36;
        const double width = acgi::findFont(row.font).width(QString(row.text));
        EXPECT_GT(width, row.stated - 0.05) << row.text;
        EXPECT_LT(width, row.stated + most) << row.text;
    }
    // An accent makes no letter wider; what is no letter of the table is as wide as in the face.
    const acgi::Font &plain = acgi::findFont(file("romans"));
    EXPECT_EQ(plain.width(u"\u00E9"), plain.width(u"e"));
    EXPECT_EQ(plain.width(u"\u5BA4"), acgi::defaultFont().width(u"\u5BA4"));
}

TEST(Fonts, AreFoundByTheTable)
{
    const auto width = [](const acgi::FontRequest &request) {
        return acgi::findFont(request).width(u"Width mi");
    };
    const auto isFound = [](const acgi::FontRequest &request) { return acgi::findFont(request).isFound(); };
    EXPECT_EQ(width(file("C:\\Fonts\\TXT.SHX", "gbcbig")), acgi::defaultFont().width(u"Width mi"));
    const double sans = width(typeface("Arial"));
    EXPECT_EQ(width(file("ARIAL.ttf")), sans);
    EXPECT_NE(width(file("times.ttf")), sans);
    EXPECT_EQ(width(file("times.ttf")), width(typeface("Times New Roman")));
    EXPECT_EQ(acgi::findFont(typeface("Courier New")).width(u"i"),
              acgi::findFont(typeface("Courier New")).width(u"m"));
    EXPECT_EQ(width(file("arialbd.ttf")), width(typeface("Arial", true)));
    EXPECT_NE(width(file("arialbd.ttf")), sans);
    EXPECT_TRUE(isFound(file("somebody's own.shx")));
    EXPECT_TRUE(isFound(typeface(QString::fromUtf8("@宋体"))));
    EXPECT_FALSE(isFound(typeface("Nobody's Typeface")));
    EXPECT_FALSE(isFound(file("nobody.ttf")));
    // Letters of a tolerance font stand for symbols.
    EXPECT_EQ(outlineOf(acgi::findFont(file("gdt")), "n"),
              outlineOf(acgi::defaultFont(), QString(QChar(0x2205))));
    EXPECT_EQ(&acgi::findFont(typeface("Arial")), &acgi::findFont(typeface("Arial")));
}

TEST(TextStyle, ComesFromItsRecord)
{
    MemoryDrawing drawing;
    drawing.record(SymbolTable::textStyle, "STYLE", "Standard", {{3, "txt"}, {40, 0.0}, {41, 1.0}});
    drawing.record(SymbolTable::textStyle, "STYLE", "Notes",
                   {{70, 4},
                    {40, 2.5},
                    {41, 0.8},
                    {50, 15.0},
                    {71, 6},
                    {3, "arial.ttf"},
                    {4, "gbcbig"},
                    {1001, "ACAD"},
                    {1000, "Courier New"},
                    {1071, 0x2000022}});
    const std::unique_ptr<AcDbDatabase> database = drawing.open();
    const AcGiTextStyle style = acgi::namedTextStyle(*database, "NOTES");
    EXPECT_EQ(style.fontRequest(), (acgi::FontRequest{"arial.ttf", "gbcbig", "Courier New", true, false}));
    EXPECT_EQ(style.textSize(), 2.5);
    EXPECT_NEAR(style.obliquingAngle(), kGePi / 12, 1e-12);
    EXPECT_TRUE(style.isVertical() && style.isBackward() && style.isUpsideDown());
    const AcGePoint2d size = style.extents("a%%d");
    EXPECT_NEAR(size.x, 2.0 * style.font().width(u"a\u00B0"), 1e-12);
    EXPECT_EQ(size.y, 2.5);
    EXPECT_GT(style.extents("a%%d", true).x, size.x);

    AcGiTextStyle fallback = acgi::namedTextStyle(*database, "missing");
    EXPECT_EQ(fallback.fontRequest().fontFile, "txt");
    EXPECT_EQ(fallback.loadStyleRec(), 0);
    fallback.setFont("Nobody's Typeface", false, false);
    EXPECT_NE(fallback.loadStyleRec(), 0);
}
