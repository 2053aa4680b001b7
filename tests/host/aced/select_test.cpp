// Selection sets: modes, filters, and what a person does.
#include "host/aced/edselect.h"

#include "host/acap/docman.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edfilter.h"
#include "tests/support/memory_drawing.h"
#include "tests/support/script_front_end.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;
using tests::MemoryDrawing;
using tests::ScriptFrontEnd;

namespace
{

/// Three lines and a circle in model space, a line each on a layer that is off, frozen, locked; one hidden
/// by its own switch; a circle on the sheet.
class Selection : public testing::Test
{
protected:
    static std::uint64_t line(MemoryDrawing &memory, double x, const char *layer, tests::Groups more = {})
    {
        more.insert(more.begin(), {{8, layer}, {10, AcGePoint3d(x, 0, 0)}, {11, AcGePoint3d(x, 10, 0)}});
        return memory.entity("LINE", more);
    }
    std::unique_ptr<AcDbDatabase> build()
    {
        MemoryDrawing memory;
        memory.layer("OFF", {.color = -1});
        memory.layer("ICE", {.flags = 1});
        memory.layer("LOCK", {.flags = 4});
        a = line(memory, 0, "0", {{62, 1}});
        b = line(memory, 10, "WALL-1", {{62, 5}, {39, 2.5}});
        circle = memory.entity("CIRCLE", {{10, AcGePoint3d(20, 5, 0)}, {40, 3.0}, {1001, "QN"}, {1070, 4}});
        off = line(memory, 30, "OFF");
        frozen = line(memory, 31, "ICE");
        hidden = line(memory, 32, "0", {{60, 1}});
        locked = line(memory, 40, "LOCK");
        sheet = memory.entity("CIRCLE", {{10, AcGePoint3d(0, 0, 0)}, {40, 1.0}}, memory.paperSpace());
        return memory.open();
    }

    std::vector<std::uint64_t> handles(const AcEdSelectionSet &set) const
    {
        std::vector<std::uint64_t> found;
        for (const AcDbObjectId id : set)
            found.push_back(id.handle().value);
        return found;
    }
    std::vector<std::uint64_t> get(const QString &mode, const ResbufList &filter = {})
    {
        AcEdSelectionSet set;
        m_result = acedSSGet(mode, nullptr, nullptr, filter, set);
        return handles(set);
    }
    std::vector<std::uint64_t> window(const QString &mode, AcGePoint3d p1, AcGePoint3d p2,
                                      const ResbufList &filter = {})
    {
        AcEdSelectionSet set;
        m_result = acedSSGet(mode, &p1, &p2, filter, set);
        return handles(set);
    }

    std::uint64_t a, b, circle, off, frozen, hidden, locked, sheet;
    int m_result = 0;
    const tests::OpenDrawing m_drawing{build()};
};

ResbufList kind(const char *name)
{
    return {{0, QString::fromLatin1(name)}};
}

resbuf op(const char *text)
{
    return {-4, QString::fromLatin1(text)};
}

} // namespace

TEST_F(Selection, ModesWithoutAsking)
{
    EXPECT_THAT(get("X"), ElementsAre(sheet, locked, hidden, frozen, off, circle, b, a)) << "all spaces";
    EXPECT_THAT(get("_x", kind("circle")), ElementsAre(sheet, circle));
    EXPECT_THAT(get("A"), ElementsAre(locked, circle, b, a));
    EXPECT_THAT(get("L"), ElementsAre(locked));
    EXPECT_THAT(get("L", kind("CIRCLE")), IsEmpty());
    EXPECT_EQ(m_result, RTERROR);
    EXPECT_THAT(window("W", {-1, -1, 0}, {15, 11, 0}), ElementsAre(b, a));
    EXPECT_THAT(window("W", {15, 11, 0}, {-1, 5, 0}), IsEmpty());
    EXPECT_THAT(window("C", {15, 11, 0}, {-1, 5, 0}), ElementsAre(b, a));
    EXPECT_THAT(window("C", {25, 4, 0}, {35, 6, 0}), IsEmpty()) << "all there is off, frozen or hidden";
    EXPECT_THAT(window("C", {-1, -1, 0}, {100, 11, 0}, kind("L*")), ElementsAre(locked, b, a));
    EXPECT_THAT(get("C"), IsEmpty()) << "no corners";
    EXPECT_THAT(get("Q"), IsEmpty());
    EXPECT_EQ(m_result, RTERROR);
}

TEST_F(Selection, WindowsStandUprightInTheView)
{
    m_drawing.document().view().twist = kGePi / 4;
    // Seen from the turned view this rectangle holds the line at x = 0; unturned it would have no width.
    EXPECT_THAT(window("W", {0, -1, 0}, {0, 11, 0}), ElementsAre(a));
    // Not by half a right angle: the view shows the world turned to the left, so its sides lie turned to the
    // right.
    const double twist = kGePi / 6;
    m_drawing.document().view().twist = twist;
    const auto world = [twist](double x, double y) {
        return AcGePoint3d(x, y, 0).rotateBy(-twist, AcGeVector3d::kZAxis);
    };
    EXPECT_THAT(window("W", world(-5.1, -0.1), world(0.1, 8.8)), ElementsAre(a));
    m_drawing.document().view().twist = 0;
    m_drawing.document().ucs().origin = {20, 0, 0};
    EXPECT_THAT(window("W", {-4, 1, 0}, {4, 9, 0}), ElementsAre(circle)) << "corners are in the UCS";
}

TEST_F(Selection, ErasedEntitiesAreGone)
{
    {
        const AcDbObjectPointer<AcDbEntity> entity(m_drawing.id(b), AcDb::kForWrite);
        entity->erase();
    }
    EXPECT_THAT(get("X", kind("LINE")), ElementsAre(locked, hidden, frozen, off, a));
    EXPECT_THAT(window("C", {-1, -1, 0}, {15, 11, 0}), ElementsAre(a));
    EXPECT_FALSE(acedPassesFilter(m_drawing.id(b), {}));
}

TEST_F(Selection, FiltersCompareData)
{
    struct Case {
        ResbufList filter;
        std::vector<std::uint64_t> found;
    };
    const Case cases[] = {
        {{{8, QStringLiteral("wall*")}}, {b}},
        {{{0, QStringLiteral("LINE,CIRCLE")}, {8, QStringLiteral("~WALL*,~LOCK")}}, {locked, circle, b, a}},
        {{{62, std::int64_t(5)}}, {b}},
        {{{62, std::int64_t(256)}}, {locked, circle}}, // By layer: the group is missing.
        {{{6, QStringLiteral("ByLayer")}, {0, QStringLiteral("CIRCLE")}}, {circle}},
        {{{40, 3.0 + 1e-12}}, {circle}},
        {{{410, QStringLiteral("Model")}, {40, 3.0}}, {circle}},
        {{{-3, resbuf::Value()}, {1001, QStringLiteral("Q*")}}, {circle}},
        {{{-3, resbuf::Value()}, {1001, QStringLiteral("OTHER")}}, {}},
        {{op("<not"), {0, QStringLiteral("LINE")}, op("not>")}, {circle}},
        {{op("<OR"),
          {0, QStringLiteral("CIRCLE")},
          op("<and"),
          {0, QStringLiteral("LINE")},
          {62, std::int64_t(1)},
          op("and>"),
          op("or>")},
         {circle, a}},
        {{op("<xor"), {0, QStringLiteral("LINE")}, {8, QStringLiteral("0")}, op("xor>")},
         {locked, circle, b}},
        {{op(">="), {62, std::int64_t(5)}}, {locked, circle, b}},
        {{op("<"), {40, 3.5}}, {circle}},
        {{op("!="), {8, QStringLiteral("0")}}, {locked, b}},
        {{op("/="), {39, 2.0}}, {b}},
        {{op("&"), {62, std::int64_t(4)}}, {b}},
        {{op("&="), {62, std::int64_t(257)}}, {}},
        {{op(">=,>,*"), {10, AcGePoint3d(10, 1, 0)}}, {circle}},
        {{op(">,*"), {10, AcGePoint3d(0, 0, 99)}}, {locked, circle, b}},
        {{op("*"), {39, 0.0}}, {b}},
        {{{10, AcGePoint3d(0, 0, 0)}}, {a}},
        {{{5, QString::number(b, 16).toUpper()}}, {b}},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(get("A", cases[i].filter), cases[i].found) << "case " << i;
}

TEST_F(Selection, MalformedFiltersAreRefusedWithAReason)
{
    const ResbufList cases[] = {
        {op("<and"), {0, QStringLiteral("LINE")}},
        {op("and>")},
        {op("<and"), op("and>")},
        {op("<not"), {0, QStringLiteral("LINE")}, {8, QStringLiteral("0")}, op("not>")},
        {op("<xor"), {0, QStringLiteral("LINE")}, op("xor>")},
        {op("<and"), {0, QStringLiteral("LINE")}, op("or>")},
        {op("=>"), {40, 1.0}},
        {op("<")},
        {op("<"), op("<"), {40, 1.0}},
        {op("<"), {8, QStringLiteral("0")}},
        {op("&"), {40, 1.0}},
        {op(">,>"), {40, 1.0}},
        {{-3, resbuf::Value()}},
        ResbufList(1000, op("<not")),
    };
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        ScriptFrontEnd script;
        EXPECT_THAT(get("X", cases[i]), IsEmpty()) << "case " << i;
        EXPECT_EQ(m_result, RTERROR);
        EXPECT_FALSE(script.printed.isEmpty()) << "case " << i;
    }
}

TEST(SelectionCost, AKindFilterDecodesNothing)
{
    // A stub without a drawing: whoever tried to decode it would crash.
    AcDbStub stub;
    stub.index = 1;
    stub.flags = AcDbStub::kEntity;
    stub.kind = acdbKind("QUILLNOTE3");
    const auto passes = [&stub](const ResbufList &list) {
        const auto filter = AcEdFilter::compile(list);
        EXPECT_TRUE(filter);
        return filter && filter->passes(AcDbObjectId(&stub));
    };
    EXPECT_TRUE(passes({}));
    EXPECT_TRUE(passes(kind("QUILLNOTE*")));
    EXPECT_FALSE(passes({op("<not"), {0, QStringLiteral("QUILLNOTE*")}, op("not>")}));
    EXPECT_FALSE(passes({{0, QStringLiteral("LINE")}, {8, QStringLiteral("0")}}));
    EXPECT_TRUE(passes({op("<or"), {0, QStringLiteral("QUILL*")}, {8, QStringLiteral("0")}, op("or>")}));
}

TEST_F(Selection, ShiftTakesAwayWhatIsPointedAt)
{
    struct Shifting : ScriptFrontEnd {
        using ScriptFrontEnd::ScriptFrontEnd;
        std::optional<AcEdAnswer> answer(const AcEdPrompt &prompt) override
        {
            held = prompts.size() == 1 ? QStringList{QStringLiteral("Shift")} : QStringList();
            return ScriptFrontEnd::answer(prompt);
        }
    } script({"all", "10,5", ""});
    m_drawing.document().view() = {
        .centre = {20, 5, 0}, .height = 100, .pixelWidth = 100, .pixelHeight = 100};
    EXPECT_THAT(get(""), ElementsAre(locked, circle, a));
}

TEST_F(Selection, AUserBuildsASetStepByStep)
{
    m_drawing.document().view() = {
        .centre = {20, 5, 0}, .height = 100, .pixelWidth = 100, .pixelHeight = 100};
    struct Case {
        QStringList answers;
        std::vector<std::uint64_t> chosen;
    };
    const Case cases[] = {
        {{
             "0,5",
             "",
         },
         {a}},
        {{"0,5", "0,5", "10,5", ""}, {a, b}}, // Twice is once.
        {{"all", ""}, {locked, circle, b, a}},
        {{"all", "r", "10,5", "a", "10,5", ""}, {locked, circle, a, b}}, // Taken out and put back.
        {{"w", "-5,-5", "15,15", ""}, {b, a}},
        {{"-5,-5", "5,8", "13.5,8", "5,2", ""}, {b}}, // To the right: only what is inside.
        {{"5,2", "-5,8", ""}, {a}},                   // To the left: also what is crossed.
        {{"c", "18,0", "45,4", ""}, {locked, circle}},
        {{"l", "nonsense", ""}, {locked}},
        {{"si", "13.5,12", "5,8"}, {b}},
        {{QStringLiteral("handle %1").arg(circle, 0, 16), ""}, {circle}},
    };
    for (const Case &c : cases) {
        ScriptFrontEnd script(c.answers);
        EXPECT_EQ(get(""), c.chosen) << qPrintable(c.answers.join(' '));
        EXPECT_EQ(m_result, RTNORM);
        EXPECT_TRUE(script.isUsedUp()) << qPrintable(c.answers.join(' '));
        EXPECT_EQ(handles(m_drawing.document().previousSet()), c.chosen);
    }
    ScriptFrontEnd once({"10,5"});
    EXPECT_THAT(get(":S"), ElementsAre(b));
    ScriptFrontEnd filtered({"all", "20,8", "21,9", ""}); // The circle there does not count.
    EXPECT_THAT(get("", kind("LINE")), ElementsAre(locked, b, a));
    ScriptFrontEnd previous({"p", ""});
    EXPECT_THAT(get("", {{62, std::int64_t(1)}}), ElementsAre(a));
    ScriptFrontEnd cancelled({"all", "^C"});
    EXPECT_THAT(get(""), IsEmpty());
    EXPECT_EQ(m_result, RTCAN);
    ScriptFrontEnd nothing({""});
    EXPECT_THAT(get(""), IsEmpty());
    EXPECT_EQ(m_result, RTERROR);
}

TEST_F(Selection, WhatIsPickedFirstNeedsNoAsking)
{
    AcApDocument &document = m_drawing.document();
    document.pickSet() = {m_drawing.id(b), m_drawing.id(circle)};
    EXPECT_THAT(get("I", kind("LINE")), ElementsAre(b));
    ScriptFrontEnd script;
    EXPECT_THAT(get(""), ElementsAre(b, circle));
    EXPECT_TRUE(script.prompts.empty());
    EXPECT_TRUE(document.pickSet().empty()) << "used up";
    EXPECT_THAT(get("P"), ElementsAre(b, circle));
    EXPECT_THAT(get("I"), IsEmpty());
}

TEST_F(Selection, PromptTextsAreTheCallers)
{
    ScriptFrontEnd script({"all", "r", ""});
    AcEdSelectionSet set;
    EXPECT_EQ(acedSSGetPrompt("", "\nPick the ticks: ", kind("CIRCLE"), set), RTNORM);
    EXPECT_THAT(handles(set), ElementsAre(circle));
    EXPECT_EQ(script.prompts.front().message, "\nPick the ticks: ");
    EXPECT_EQ(script.prompts.front().kind, AcEdPromptKind::selection);
    EXPECT_NE(script.prompts.back().message, "\nPick the ticks: ");
}
