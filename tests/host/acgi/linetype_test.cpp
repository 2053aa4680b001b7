// Linetypes read from their records, and where their dashes, dots and texts come to lie.
#include "host/acgi/linetype/linetype.h"

#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using tests::Groups;
using tests::MemoryDrawing;

namespace
{

class Recorder : public acgi::DashSink
{
public:
    struct Text {
        QPointF place;
        double direction;
    };
    std::vector<std::vector<QPointF>> dashes;
    std::vector<Text> texts;

    void dash(std::span<const QPointF> points) override { dashes.emplace_back(points.begin(), points.end()); }
    void text(const acgi::PatternText &, QPointF place, double direction) override
    {
        texts.push_back({place, direction});
    }
};

constexpr double kPi = 3.14159265358979323846;
const QRectF kEverything(-1e15, -1e15, 2e15, 2e15);

acgi::Linetype pattern(std::initializer_list<double> lengths)
{
    acgi::Linetype linetype;
    for (const double length : lengths) {
        linetype.elements.push_back({length, std::nullopt});
        linetype.length += std::abs(length);
    }
    return linetype;
}

Recorder lay(const acgi::Linetype &linetype, const std::vector<QPointF> &chain, bool closed = false,
             const QRectF &visible = kEverything, double scale = 1.0, double finest = 0.0)
{
    Recorder recorder;
    acgi::layPattern(linetype, scale, chain, closed, visible, finest, recorder);
    return recorder;
}

/// "0-2 3-5 7" of dashes on a line along the X axis.
std::string onAxis(const Recorder &recorder)
{
    std::string text;
    for (const auto &dash : recorder.dashes) {
        text += (text.empty() ? "" : " ") + QString::number(dash.front().x(), 'g', 6).toStdString();
        if (dash.size() > 1)
            text += "-" + QString::number(dash.back().x(), 'g', 6).toStdString();
    }
    return text;
}

} // namespace

TEST(LayPattern, BothEndsOfALineGetADash)
{
    const acgi::Linetype dashed = pattern({2, -1});
    EXPECT_EQ(onAxis(lay(dashed, {{0, 0}, {9, 0}})), "0-1 2-4 5-7 8-9");
    // What is left over lengthens the dashes at the ends.
    EXPECT_EQ(onAxis(lay(dashed, {{0, 0}, {10, 0}})), "0-1.5 2.5-4.5 5.5-7.5 8.5-10");
    EXPECT_EQ(onAxis(lay(dashed, {{0, 0}, {10, 0}}, false, kEverything, 2.0)), "0-4 6-10");
    // Shorter than a pattern, without length, or a single point.
    EXPECT_EQ(onAxis(lay(dashed, {{0, 0}, {2.9, 0}})), "0-2.9");
    EXPECT_EQ(onAxis(lay(dashed, {{4, 0}, {4, 0}})), "4");
    EXPECT_EQ(onAxis(lay(dashed, {{4, 0}})), "4");
    EXPECT_EQ(onAxis(lay(dashed, {})), "");
    EXPECT_EQ(onAxis(lay(acgi::Linetype(), {{0, 0}, {9, 0}})), "0-9");
}

TEST(LayPattern, DotsAndLeadingGaps)
{
    EXPECT_EQ(onAxis(lay(pattern({0, -2}), {{0, 0}, {5, 0}})), "0 0.5 2.5 4.5 5");
    EXPECT_EQ(onAxis(lay(pattern({2, -1, 0, -1}), {{0, 0}, {8, 0}})), "0-1 2 3-5 6 7-8");
    EXPECT_EQ(onAxis(lay(pattern({-1, 2}), {{0, 0}, {6, 0}})), "0-1 2-4 5-6");
}

TEST(LayPattern, DashesRunThroughBends)
{
    const Recorder recorder = lay(pattern({4, -2}), {{0, 0}, {6, 0}, {6, 0}, {6, 6}});
    ASSERT_EQ(recorder.dashes.size(), 3u);
    const std::vector<QPointF> bent{{4, 0}, {6, 0}, {6, 2}};
    EXPECT_EQ(recorder.dashes[1], bent);
}

TEST(LayPattern, ClosedChainsHaveNoSeam)
{
    // 12 round the square; 2.5 patterns of 5 are made 2 or 3 whole ones.
    const std::vector<QPointF> square{{0, 0}, {3, 0}, {3, 3}, {0, 3}};
    std::vector<QPointF> repeated = square;
    repeated.push_back(square.front());
    for (const auto &chain : {square, repeated}) {
        const Recorder recorder = lay(pattern({2, -2}), chain, true);
        ASSERT_EQ(recorder.dashes.size(), 3u);
        const std::vector<QPointF> joint{{0, 1}, {0, 0}, {1, 0}};
        EXPECT_EQ(recorder.dashes[0], joint);
        const std::vector<QPointF> second{{3, 0}, {3, 2}};
        EXPECT_EQ(recorder.dashes[1], second);
    }
}

TEST(LayPattern, OnlyWhatIsSeenIsMade)
{
    const acgi::Linetype dashed = pattern({2, -1});
    const std::vector<QPointF> line{{0, 0}, {3e9, 0}};
    EXPECT_EQ(onAxis(lay(dashed, line, false, QRectF(1499999999, -1, 6, 2))),
              "1.5e+09-1.5e+09 1.5e+09-1.5e+09 1.5e+09-1.5e+09");
    EXPECT_EQ(lay(dashed, line, false, QRectF(0, 1, 100, 2)).dashes.size(), 0u);
    // A chain that comes back into view shows no dash twice.
    const std::vector<QPointF> zigzag{{0, 0}, {3000, 0}, {3000, 1}, {0, 1}};
    const Recorder recorder = lay(dashed, zigzag, false, QRectF(0, -1, 30, 3));
    EXPECT_GE(recorder.dashes.size(), 20u);
    EXPECT_LE(recorder.dashes.size(), 24u);
    // The joint of a closed chain is seen from both of its sides, and made once.
    const std::vector<QPointF> far{{0, 0}, {300, 0}, {300, 300}, {0, 300}};
    const Recorder joint = lay(dashed, far, true, QRectF(-0.5, -0.5, 1, 1));
    ASSERT_EQ(joint.dashes.size(), 1u);
    EXPECT_EQ(joint.dashes[0].size(), 3u);
}

TEST(LayPattern, DenseAndSenselessPatternsAreOneDash)
{
    const acgi::Linetype dashed = pattern({2, -1});
    const std::vector<QPointF> line{{0, 0}, {3e9, 0}};
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(lay(dashed, line).dashes.size(), 1u); // All of it is in view.
    EXPECT_EQ(lay(dashed, {{0, 0}, {30, 0}}, false, kEverything, 0.1, 2.0).dashes.size(), 1u);
    for (const double scale : {0.0, -1.0, kNan, kInfinity, 1e-300})
        EXPECT_EQ(lay(dashed, {{0, 0}, {30, 0}}, false, kEverything, scale).dashes.size(), 1u) << scale;
    for (const double x : {kNan, kInfinity, 1e300})
        EXPECT_EQ(lay(dashed, {{0, 0}, {x, 0}}).dashes.size(), 1u) << x;
}

TEST(ReadLinetype, TextsAndShapesStandInThePattern)
{
    MemoryDrawing drawing;
    const std::uint64_t font = drawing.record(SymbolTable::textStyle, "STYLE", "",
                                              {{70, 1}, {40, 0.0}, {3, "C:\\fonts\\LTypeShp.shx"}});
    const std::uint64_t record = drawing.record(SymbolTable::linetype, "LTYPE", "GAS",
                                                {{70, 0},
                                                 {3, ""},
                                                 {72, 65},
                                                 {73, 4},
                                                 {40, 9.0},
                                                 {49, 4.0},
                                                 {74, 0},
                                                 {49, -2.0},
                                                 {74, 3},
                                                 {75, 0},
                                                 {46, 0.5},
                                                 {50, 90.0},
                                                 {44, -0.5},
                                                 {45, -0.25},
                                                 {9, "GAS"},
                                                 {49, -1.0},
                                                 {74, 4},
                                                 {75, 132},
                                                 {340, AcDbHandle{font}},
                                                 {46, 0.1},
                                                 {50, 0.0},
                                                 {44, 0.0},
                                                 {45, 0.0},
                                                 {49, -2.0},
                                                 {74, 0}});
    const std::unique_ptr<AcDbDatabase> database = drawing.open();
    const acgi::Linetype linetype = acgi::readLinetype(database->getAcDbObjectId({record}));
    ASSERT_EQ(linetype.elements.size(), 4u);
    EXPECT_EQ(linetype.length, 9.0);
    const acgi::PatternText &text = linetype.elements[1].text.value();
    EXPECT_EQ(text.text, "GAS");
    EXPECT_TRUE(text.upright);
    EXPECT_NEAR(text.rotation, kPi / 2, 1e-12);
    EXPECT_EQ(text.xOffset, -0.5);
    EXPECT_TRUE(acgi::patternShape(text).empty());
    const acgi::PatternText &box = linetype.elements[2].text.value();
    EXPECT_FALSE(box.upright);
    ASSERT_EQ(acgi::patternShape(box).size(), 1u);
    EXPECT_EQ(acgi::patternShape(box)[0].size(), 6u);

    // 4 dash, 2 gap, text, 1 gap, shape, 2 gap; up the Y axis, half a dash at either end.
    const Recorder recorder = lay(linetype, {{0, 0}, {0, 9}});
    ASSERT_EQ(recorder.texts.size(), 2u);
    EXPECT_EQ(recorder.texts[0].place, QPointF(0, 4));
    EXPECT_EQ(recorder.texts[1].place, QPointF(0, 5));
    EXPECT_NEAR(recorder.texts[0].direction, kPi / 2, 1e-12);
}

TEST(ReadLinetype, OldFormAndSenselessRecords)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    Groups endless;
    for (int i = 0; i < 1001; ++i)
        endless.emplace_back(49, 1.0);
    MemoryDrawing drawing;
    const auto record = [&](const char *name, const Groups &groups) {
        return drawing.record(SymbolTable::linetype, "LTYPE", name, groups);
    };
    const std::uint64_t old = record("DASHED", {{72, 65}, {73, 2}, {40, 0.75}, {49, 0.5}, {49, -0.25}});
    const std::uint64_t senseless[] = {
        record("SOLID", {{73, 0}, {40, 0.0}}), record("DOTS", {{73, 1}, {49, 0.0}}),
        record("GAPS", {{73, 2}, {49, -1.0}, {49, -2.0}}),
        record("FAR", {{73, 2}, {49, kInfinity}, {49, -1.0}}), record("LONG", endless)};
    const std::uint64_t layer = drawing.layer("NO LINETYPE");
    const std::unique_ptr<AcDbDatabase> database = drawing.open();
    const auto read = [&](std::uint64_t handle) {
        return acgi::readLinetype(database->getAcDbObjectId({handle}));
    };
    EXPECT_EQ(read(old).elements.size(), 2u);
    EXPECT_EQ(read(old).length, 0.75);
    for (const std::uint64_t handle : senseless)
        EXPECT_TRUE(read(handle).isContinuous());
    EXPECT_TRUE(read(layer).isContinuous());
    EXPECT_TRUE(acgi::readLinetype(AcDbObjectId()).isContinuous());
}
