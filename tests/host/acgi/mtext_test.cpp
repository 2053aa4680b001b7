// Multi-line text as it is drawn: what its codes show, where it stands and how it breaks.
#include "host/acdb/dbapi.h"
#include "host/acgi/kinds/draw_entity.h"
#include "host/acgi/text/mtext.h"

#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <set>

using tests::Group;
using tests::Groups;
using tests::MemoryDrawing;

namespace
{

/// Keeps what is drawn, with the colour of the pen.
class RecordingSink : public AcGiGeometry
{
public:
    struct Text : acgi::TextLine {
        AcCmEntityColor color;
    };
    std::vector<Text> texts;
    std::vector<std::pair<AcGePoint3d, AcGePoint3d>> bars;
    std::vector<std::vector<AcGePoint3d>> frames;
    std::vector<std::pair<acgi::Loop, AcCmEntityColor>> fills;

    void polyline(std::uint32_t count, const AcGePoint3d *points) override
    {
        if (count == 2)
            bars.emplace_back(points[0], points[1]);
        else
            frames.emplace_back(points, points + count);
    }
    void arc(const acgi::Arc &) override {}
    void fill(std::span<const acgi::Loop> loops) override { fills.emplace_back(loops.front(), color()); }
    void text(const acgi::TextLine &line) override { texts.push_back({line, color()}); }
    void infiniteLine(const AcGePoint3d &, const AcGeVector3d &, bool) override {}

    QStringList words() const
    {
        QStringList words;
        for (const Text &text : texts)
            words.append(text.text);
        return words;
    }

private:
    AcCmEntityColor color() { return subEntityTraits().traits().color; }
};

} // namespace

static RecordingSink drawn(const acgi::MText &text)
{
    RecordingSink sink;
    sink.subEntityTraits().setColor(3);
    acgi::drawMText(text, sink);
    EXPECT_EQ(sink.subEntityTraits().traits().color, AcCmEntityColor::fromIndex(3));
    return sink;
}

static RecordingSink drawn(const QString &coded, double wrapWidth = 0.0)
{
    acgi::MText text;
    text.coded = coded;
    text.wrapWidth = wrapWidth;
    return drawn(text);
}

static double widthOf(QStringView text)
{
    return acgi::defaultFont().width(text);
}

static double endOf(const acgi::TextLine &line)
{
    return line.position.x + line.direction.x * line.width;
}

TEST(MText, ShowsWhatTheCodesSay)
{
    const std::pair<QString, QStringList> rows[] = {
        {"one\\Ptwo", {"one", "two"}},
        {"{\\fArial|b1;bold} \\C1;red\\L line\\l", {"bold", "red", " line"}},
        {"a\\~b \\\\ \\{c\\}", {QString("a") + QChar(QChar::Nbsp) + "b \\ {c}"}},
        {"a^Ib^Jc^ d^e", {"a", "b", "c^d^e"}},
        {"a\tb\nc", {"a", "b", "c"}},
        {"\\pi0,l2;text", {"text"}},
        {"open {\\H2; and \\fArial", {"open ", " and"}}, // Damaged: no end of the font name.
        {"}}\\U+4E2D\\M+5D6D0%%d", {QString(QChar(0x4E2D)) + QChar(0x4E2D) + QChar(0xB0)}},
        {"\\", {"\\"}},
        {"\\C999;\\c;\\H.x;\\W0;a", {"a"}},
        {"{\\C1word} then; more",
         {"word", " then; more"}}, // No end of the number: the text is not swallowed.
        {"\\H2xtall; \\Q15slant; {\\fArial}a;", {"tall; ", "slant; a;"}},
        {"", {}},
    };
    for (const auto &[coded, words] : rows)
        EXPECT_EQ(drawn(coded).words(), words) << coded.toStdString();
}

TEST(MText, RunsCarryTheirFormat)
{
    const RecordingSink sink =
        drawn("a{\\fTimes New Roman|b0|i1;\\C1;b\\c255;c\\C0;d}{\\H2x;\\W0.5x;\\T2;ee}{\\Q45;f}");
    ASSERT_EQ(sink.texts.size(), 6u);
    const AcCmEntityColor colors[] = {AcCmEntityColor::fromIndex(3), AcCmEntityColor::fromIndex(1),
                                      AcCmEntityColor::fromRgb(0xFF0000), AcCmEntityColor::byBlock()};
    for (std::size_t i = 0; i < std::size(colors); ++i) {
        EXPECT_EQ(sink.texts[i].color, colors[i]) << i;
        EXPECT_EQ(sink.texts[i].font->request().italic, i > 0) << i;
        EXPECT_NEAR(sink.texts[i + 1].position.x, endOf(sink.texts[i]), 1e-12) << i;
    }
    EXPECT_EQ(sink.texts[4].up, AcGeVector3d(0, 2, 0));
    EXPECT_EQ(sink.texts[4].direction, AcGeVector3d(1, 0, 0));
    EXPECT_NEAR(sink.texts[4].width, 2.0 * widthOf(u"ee"), 1e-12);
    EXPECT_NEAR(sink.texts[5].up.x, 1.0, 1e-12);
}

TEST(MText, LinesAreDrawnInTheirColour)
{
    const RecordingSink sink = drawn("a\\Lbc\\l\\O\\Kd");
    ASSERT_EQ(sink.bars.size(), 3u);
    const double a = widthOf(u"a"), abc = widthOf(u"abc"), abcd = widthOf(u"abcd");
    const double expected[][3] = {{a, abc, -1.2}, {abc, abcd, 0.2}, {abc, abcd, -0.5}};
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(sink.bars[i].first.x, expected[i][0], 1e-12);
        EXPECT_NEAR(sink.bars[i].second.x, expected[i][1], 1e-12);
        EXPECT_NEAR(sink.bars[i].second.y, expected[i][2], 1e-12);
    }
}

TEST(MText, StacksStandAboveEachOther)
{
    const auto parts = [](const QString &coded) {
        const RecordingSink sink = drawn(coded);
        EXPECT_EQ(sink.texts.size(), 2u);
        return sink;
    };
    const RecordingSink fraction = parts("\\S10/2;");
    ASSERT_EQ(fraction.bars.size(), 1u);
    const acgi::TextLine &upper = fraction.texts[0], &lower = fraction.texts[1];
    EXPECT_NEAR(upper.up.y, 0.7, 1e-12);
    EXPECT_NEAR(lower.position.x - upper.position.x, 0.35 * widthOf(u"1"), 1e-9); // Centred.
    EXPECT_GT(fraction.bars[0].first.y, lower.position.y + 0.7);
    EXPECT_LT(fraction.bars[0].first.y, upper.position.y);
    EXPECT_EQ(parts("\\S+0.1^ -0.2;").bars.size(), 0u);
    const RecordingSink diagonal = parts("\\S1#2;");
    EXPECT_GT(diagonal.texts[1].position.x, endOf(diagonal.texts[0]));
    EXPECT_EQ(drawn("\\S1\\/2/3;").words(), (QStringList{"1/2", "3"}));
    EXPECT_EQ(drawn("\\Sonly;x").words(), (QStringList{"only", "x"}));
    // Centred on the line, half of the stack is below the middle of the letters.
    const RecordingSink centred = parts("\\A1;\\S1/2;");
    EXPECT_NEAR(centred.bars[0].first.y - (fraction.bars[0].first.y), 0.0, 0.5);
    EXPECT_LT(centred.texts[1].position.y - centred.bars[0].first.y, 0.0);
}

TEST(MText, BreaksBetweenWordsAndIdeographs)
{
    const double word = widthOf(u"word");
    EXPECT_EQ(drawn("word word word", 2.5 * word).words(), (QStringList{"word word", "word"}));
    EXPECT_EQ(drawn("wordwordword", word).words(), (QStringList{"wordwordword"}));
    // A word of several formats stays whole.
    EXPECT_EQ(drawn("word wo{\\C1;rd}", 1.5 * word).words(), (QStringList{"word", "wo", "rd"}));
    const RecordingSink split = drawn("word wo{\\C1;rd}", 1.9 * word);
    EXPECT_EQ(split.texts[1].position.y, split.texts[2].position.y);
    const QString ideographs(3, QChar(0x5BA4));
    EXPECT_EQ(drawn(ideographs, 2.1 * widthOf(ideographs.left(1))).words(),
              (QStringList{ideographs.left(2), ideographs.left(1)}));
    EXPECT_EQ(drawn(ideographs).words(), (QStringList{ideographs}));
}

TEST(MText, ParagraphsIndentTabAndAlign)
{
    const RecordingSink indented =
        drawn("\\pi2,l1,t10,c20,r30;a\tb\tcc\td\\Pword word", widthOf(u"word ") + 1.1);
    ASSERT_EQ(indented.texts.size(), 6u);
    EXPECT_DOUBLE_EQ(indented.texts[0].position.x, 3.0);
    EXPECT_DOUBLE_EQ(indented.texts[5].position.x, 1.0); // Wrapped.
    const RecordingSink tabbed = drawn("\\pt10,c20,r30;a\tb\tcc\td");
    EXPECT_DOUBLE_EQ(tabbed.texts[1].position.x, 10.0);
    EXPECT_NEAR(tabbed.texts[2].position.x + widthOf(u"cc") / 2, 20.0, 1e-9);
    EXPECT_NEAR(endOf(tabbed.texts[3]), 30.0, 1e-9);

    const RecordingSink sides =
        drawn("\\pqc;ab\\P\\pqr,r1;ab\\P\\pqj,r*;aa aa aa aa\\P\\pql;ab", widthOf(u"aa aa aa") + 0.2);
    const double width = widthOf(u"aa aa aa") + 0.2, ab = widthOf(u"ab");
    EXPECT_NEAR(sides.texts[0].position.x, (width - ab) / 2, 1e-9);
    EXPECT_NEAR(endOf(sides.texts[1]), width - 1.0, 1e-9);
    EXPECT_NEAR(endOf(sides.texts[4]), width, 1e-9);  // Justified,
    EXPECT_DOUBLE_EQ(sides.texts[5].position.x, 0.0); // but not its last line.
    EXPECT_DOUBLE_EQ(sides.texts.back().position.x, 0.0);
}

TEST(MText, LineDistanceFollowsHeightsAndSpacing)
{
    const auto rises = [](const QString &coded, double factor, bool exact) {
        acgi::MText text;
        text.coded = coded;
        text.height = 3.0;
        text.spacingFactor = factor;
        text.exactSpacing = exact;
        std::vector<double> y;
        for (const acgi::TextLine &line : drawn(text).texts)
            y.push_back(line.position.y);
        return y;
    };
    EXPECT_EQ(rises("a\\Pb", 1.0, false), (std::vector<double>{-3, -8}));
    EXPECT_EQ(rises("a\\P\\Pb", 1.2, true), (std::vector<double>{-3, -15}));
    EXPECT_EQ(rises("a{\\H2x;b}\\Pc", 1.0, false), (std::vector<double>{-6, -6, -11}));
    EXPECT_EQ(rises("a\\P{\\H2x;b}", 1.0, false), (std::vector<double>{-3, -13}));
    EXPECT_EQ(rises("a\\P{\\H2x;b}", 1.0, true), (std::vector<double>{-3, -8}));
    EXPECT_EQ(rises("\\pse2;a\\Pb\\ps*;\\Pc", 1.0, false), (std::vector<double>{-3, -13, -18}));
    EXPECT_EQ(rises("\\A1;b{\\H6;a}", 1.0, false), (std::vector<double>{-4.5, -6})); // Middle in the line.
}

TEST(MText, FillsColumns)
{
    acgi::MText text;
    text.coded = "a\\Pb\\Pc\\Pd\\Ne\\Pf";
    text.columns = 3;
    text.columnWidth = 10.0;
    text.columnGap = 2.0;
    text.columnHeights = {3.0, 5.0};
    const RecordingSink sink = drawn(text);
    const AcGePoint3d expected[] = {{0, -1, 0},  {0, -1 - 5.0 / 3, 0}, {12, -1, 0}, {12, -1 - 5.0 / 3, 0},
                                    {24, -1, 0}, {24, -1 - 5.0 / 3, 0}};
    ASSERT_EQ(sink.texts.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i)
        EXPECT_TRUE(sink.texts[i].position.isEqualTo(expected[i])) << i;
}

TEST(MText, MaskCoversTheWholeWidthFirst)
{
    acgi::MText text;
    text.coded = "ab";
    text.attachment = 5;
    text.wrapWidth = 10.0;
    text.maskFactor = 1.5;
    text.maskColor = AcCmEntityColor::fromIndex(2);
    const RecordingSink sink = drawn(text);
    ASSERT_EQ(sink.fills.size(), 1u);
    EXPECT_EQ(sink.fills[0].second, AcCmEntityColor::fromIndex(2));
    EXPECT_TRUE(sink.fills[0].first[0].isEqualTo({-5.5, -1.0, 0}));
    EXPECT_TRUE(sink.fills[0].first[2].isEqualTo({5.5, 1.0, 0}));
    EXPECT_EQ(sink.texts[0].color, AcCmEntityColor::fromIndex(3));
    const acgi::MTextBox box = acgi::mtextBox(text);
    EXPECT_NEAR(box.high.x - box.low.x, widthOf(u"ab"), 1e-12);
    EXPECT_NEAR(box.low.y, -0.5, 1e-12);
}

TEST(MText, EndlessNestingAndBreaksStayBounded)
{
    EXPECT_EQ(drawn(QString(100000, u'{') + "a" + QString(100000, u'}') + "b").texts.size(), 1u);
    EXPECT_EQ(drawn(QString("{\\H2x;").repeated(5000) + "a").texts.size(), 1u);
    EXPECT_EQ(drawn(QString("\\pt1,2,3;a\t").repeated(20000), 5.0).texts.size(), 20000u);
    acgi::MText text;
    text.coded = "a";
    text.height = 0.0;
    EXPECT_TRUE(drawn(text).texts.empty());
}

// Entities -----------------------------------------------------------------------------------

static RecordingSink drawnEntity(const char *kind, const Groups &groups)
{
    MemoryDrawing drawing;
    drawing.record(SymbolTable::textStyle, "STYLE", "DOWN", {{3, "txt"}, {70, 4}});
    drawing.record(SymbolTable::textStyle, "STYLE", "WIDE", {{3, "txt"}, {41, 2.0}});
    const std::uint64_t handle = drawing.entity(kind, groups);
    const std::unique_ptr<AcDbDatabase> database = drawing.open();
    const AcDbObjectPointer<AcDbEntity> entity(database->getAcDbObjectId({handle}), AcDb::kForRead);
    RecordingSink sink;
    acgi::drawEntity(*entity, sink);
    return sink;
}

TEST(TextEntities, StandInTheirStyle)
{
    const RecordingSink down =
        drawnEntity("TEXT", {{1, "ab"}, {7, "down"}, {10, AcGePoint3d(5, 5, 0)}, {40, 3.0}});
    EXPECT_EQ(down.words(), (QStringList{"a", "b"}));
    EXPECT_NEAR(down.texts[0].position.y, 2.0, 1e-12);
    EXPECT_NEAR(down.texts[1].position.y, -2.0, 1e-12);
    EXPECT_NEAR((down.texts[0].position.x + endOf(down.texts[0])) / 2, 5.0, 1e-12);

    const RecordingSink under = drawnEntity("TEXT", {{1, "a%%ub"}, {10, AcGePoint3d(1, 0, 0)}, {40, 2.0}});
    ASSERT_EQ(under.bars.size(), 1u);
    EXPECT_NEAR(under.bars[0].first.x, 1.0 + 2.0 * widthOf(u"a"), 1e-12);
    EXPECT_NEAR(under.bars[0].first.y, -0.4, 1e-12);
}

TEST(TextEntities, MTextReadsItsGroups)
{
    const RecordingSink sink = drawnEntity("MTEXT", {{100, "AcDbMText"},
                                                     {10, AcGePoint3d(1, 2, 0)},
                                                     {40, 2.0},
                                                     {41, 99.0},
                                                     {71, 1},
                                                     {3, "a"},
                                                     {1, "\\Pb"},
                                                     {7, "WIDE"},
                                                     {11, AcGePoint3d(0, 5, 0)},
                                                     {90, 1},
                                                     {63, 4},
                                                     {45, 2.0},
                                                     {73, 2},
                                                     {44, 0.6},
                                                     {101, "Embedded Object"},
                                                     {71, 1},
                                                     {72, 2},
                                                     {44, 10.0},
                                                     {45, 4.0},
                                                     {41, 2.5}});
    ASSERT_EQ(sink.texts.size(), 2u);
    EXPECT_TRUE(sink.texts[0].position.isEqualTo({3, 2, 0}));
    EXPECT_TRUE(sink.texts[1].position.isEqualTo({3, 16, 0})); // In the second column.
    EXPECT_NEAR(sink.texts[0].direction.y, 4.0, 1e-12);
    ASSERT_EQ(sink.fills.size(), 1u);
    EXPECT_EQ(sink.fills[0].second, AcCmEntityColor::fromIndex(4));
}

// The first text names the others; all of them state the width of the whole. What is made or changed later
// counts too.
TEST(TextEntities, TextsOfOlderFilesHaveTheWidthOfTheirColumn)
{
    MemoryDrawing drawing(DrawingVersion::r2000, DrawingForm::dwg);
    const auto add = [&](const Groups &data) {
        Groups groups{
            {100, "AcDbMText"}, {10, AcGePoint3d(0, 0, 0)}, {40, 1.0}, {41, 99.0}, {1, "aaaa bbbb"}};
        groups.insert(groups.end(), data.begin(), data.end());
        return drawing.entity("MTEXT", groups);
    };
    const std::uint64_t plain = add({});
    const std::uint64_t second = add({});
    const std::uint64_t first = add({{1001, "ACAD"},
                                     {1000, "ACAD_MTEXT_COLUMN_INFO_BEGIN"},
                                     {1070, 75},
                                     {1070, 2},
                                     {1070, 48},
                                     {1040, 4.5},
                                     {1070, 50},
                                     {1070, 2},
                                     {1040, 48.0},
                                     {1040, 75.0},
                                     {1000, "ACAD_MTEXT_COLUMN_INFO_END"},
                                     {1000, "ACAD_MTEXT_COLUMNS_BEGIN"},
                                     {1070, 47},
                                     {1070, 2},
                                     {1005, AcDbHandle{second}},
                                     {1000, "ACAD_MTEXT_COLUMNS_END"}});
    const std::unique_ptr<AcDbDatabase> database = drawing.open();
    const auto lines = [&](std::uint64_t handle) {
        const AcDbObjectPointer<AcDbEntity> entity(database->getAcDbObjectId({handle}), AcDb::kForRead);
        RecordingSink sink;
        acgi::drawEntity(*entity, sink);
        std::set<double> heights;
        for (const auto &text : sink.texts)
            heights.insert(text.position.y);
        return heights.size();
    };
    EXPECT_EQ(lines(plain), 1u);
    EXPECT_EQ(lines(second), 2u);
    EXPECT_EQ(lines(first), 2u);
    // Columns that are copied together belong together, whatever becomes of the first ones.
    std::vector<AcDbObjectId> copies;
    const auto id = [&](std::uint64_t handle) { return database->getAcDbObjectId({handle}); };
    ASSERT_EQ(acdbDeepCloneEntities({id(second), id(first)}, database->modelSpaceId(), copies), Acad::eOk);
    ASSERT_EQ(copies.size(), 2u);
    for (const AcDbObjectId moved : {copies[1], id(first)}) {
        AcDbObjectPointer<AcDbEntity> entity(moved, AcDb::kForWrite);
        ASSERT_EQ(entity->transformBy(AcGeMatrix3d::translation({0, -20, 0})), Acad::eOk);
    }
    for (const std::uint64_t text : {first, second, copies[0].handle().value, copies[1].handle().value})
        EXPECT_EQ(lines(text), 2u);
    {
        AcDbObjectPointer<AcDbEntity> entity(database->getAcDbObjectId({first}), AcDb::kForWrite);
        ResbufList data = entity->xData(QStringLiteral("ACAD"));
        for (resbuf &group : data) {
            if (group.restype == 1040)
                group = resbuf(1040, 50.0);
        }
        ASSERT_EQ(entity->setXData(data), Acad::eOk);
    }
    EXPECT_EQ(lines(second), 1u);
    EXPECT_EQ(lines(copies[0].handle().value), 2u);
}

TEST(TextEntities, AnEmptyMTextHasNoBackground)
{
    const RecordingSink sink = drawnEntity(
        "MTEXT", {{100, "AcDbMText"}, {40, 2.0}, {41, 9.0}, {1, ""}, {90, 1}, {63, 4}, {45, 1.5}});
    EXPECT_TRUE(sink.fills.empty());
}

TEST(TextEntities, AttributesShowTheirMultiLineText)
{
    const RecordingSink sink = drawnEntity("ATTRIB", {{1, "one line"},
                                                      {10, AcGePoint3d(9, 9, 0)},
                                                      {40, 1.0},
                                                      {101, "Embedded Object"},
                                                      {10, AcGePoint3d(1, 1, 0)},
                                                      {40, 2.0},
                                                      {71, 1},
                                                      {1, "two\\Plines"}});
    EXPECT_EQ(sink.words(), (QStringList{"two", "lines"}));
    EXPECT_TRUE(sink.texts[0].position.isEqualTo({1, -1, 0}));
}

TEST(TextEntities, TolerancesAreFramedCells)
{
    const RecordingSink sink = drawnEntity(
        "TOLERANCE", {{100, "AcDbFcf"}, {10, AcGePoint3d(0, 0, 0)}, {1, "{\\Fgdt;j}%%v0.2%%V%%vA^J%%vB"}});
    EXPECT_EQ(sink.words(), (QStringList{"j", "0.2", "A", "B"}));
    ASSERT_EQ(sink.frames.size(), 4u);
    EXPECT_EQ(sink.texts[0].font->request().fontFile, "gdt");
    EXPECT_NEAR(sink.frames[1][0].x, sink.frames[0][1].x, 1e-12);
    EXPECT_NEAR(sink.frames[1][1].x - sink.frames[1][0].x, widthOf(u"0.2") + 1.0, 1e-12);
    EXPECT_TRUE(sink.frames[3][0].isEqualTo({0, -1, 0}));
}
