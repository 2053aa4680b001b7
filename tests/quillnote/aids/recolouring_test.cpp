// Painting a drawing in one colour and giving everything its own colour back: what is visited, what is kept,
// and that nothing but the kept colours is different afterwards.
#include "quillnote/aids/recolouring.h"

#include "host/acdb/dbsymtb.h"
#include "tests/quillnote/authoring/authoring_fixture.h"

#include <random>

namespace
{

using tests::Groups;

struct Recolouring : AuthoringTest {
    Recolouring()
    {
        settings::setNumber(u"WhiteAllColor", 0);
        settings::setNumber(u"DiTuColor", 0);
    }
    void open(const tests::MemoryDrawing &made)
    {
        drawing.reset();
        drawing = std::make_unique<tests::OpenDrawing>(made.open());
    }
    AcDbStatedColor colorOf(std::uint64_t handle) const
    {
        return AcDbObjectPointer<AcDbEntity>(drawing->id(handle), AcDb::kForRead)->statedColor();
    }
    ResbufList kept(std::uint64_t handle) const
    {
        return AcDbObjectPointer<AcDbEntity>(drawing->id(handle), AcDb::kForRead)->xData();
    }
    /// Without the colours that entities keep, and without the record of the application.
    std::vector<tests::WholeObject> withoutKept() const
    {
        std::vector<tests::WholeObject> whole = tests::wholeDrawing(database());
        std::erase_if(whole, [](const tests::WholeObject &object) {
            return !object.groups.empty() && object.groups.front().text() == u"APPID";
        });
        for (tests::WholeObject &object : whole) {
            const auto begin = std::ranges::find_if(object.groups, [](const resbuf &group) {
                return group.restype == 1001 && group.text() == kColorApplication;
            });
            const auto end =
                std::find_if(begin == object.groups.end() ? begin : begin + 1, object.groups.end(),
                             [](const resbuf &group) { return group.restype == 1001; });
            object.groups.erase(begin, end);
            std::erase_if(object.groups, [](const resbuf &group) { return group.restype == 5; });
        }
        std::erase_if(whole, [](const tests::WholeObject &object) {
            return !object.groups.empty() && object.groups.front().restype == 70 && object.handle == 0;
        });
        return whole;
    }
};

} // namespace

TEST_F(Recolouring, VisitsEverythingButMarksAndTickSymbols)
{
    tests::MemoryDrawing made;
    made.layer("LOCKED", {.flags = 4});
    const auto door = made.block("DOOR");
    const auto tick = made.block("MyQuillnoteYes");
    const auto small = made.block("quillnote");
    const Groups line{{8, "0"}, {62, 3}, {10, AcGePoint3d()}, {11, AcGePoint3d(1, 0, 0)}};
    const auto plain = made.entity("LINE", line);
    const auto onSheet = made.entity("LINE", line, made.paperSpace());
    const auto inDoor = made.entity("LINE", line, door);
    const auto inTick = made.entity("LINE", line, tick);
    const auto inSmall = made.entity("LINE", line, small);
    const auto locked = made.entity("LINE", {{8, "LOCKED"}, {10, AcGePoint3d()}, {11, AcGePoint3d(1, 0, 0)}});
    const auto insert = made.entity("INSERT", {{66, 1}, {2, "DOOR"}, {10, AcGePoint3d()}});
    const auto attribute =
        made.entity("ATTRIB", {{62, 0}, {10, AcGePoint3d()}, {40, 1.0}, {1, "a"}, {2, "T"}});
    made.entity("SEQEND", {});
    open(made);
    const AcDbObjectId mark = make();

    EXPECT_TRUE(runAndBack("QN3_whiteAll").contains(u"1 个图元无法修改"));
    for (const auto painted : {plain, onSheet, inDoor, inSmall, insert, attribute})
        EXPECT_EQ(colorOf(painted).index, 254) << painted;
    EXPECT_EQ(colorOf(inTick).index, 3);
    EXPECT_EQ(colorOf(locked).index, std::nullopt);
    EXPECT_TRUE(AcDbObjectPointer<AcDbEntity>(mark, AcDb::kForRead)->xData().empty());
    EXPECT_EQ(kept(plain), (ResbufList{{1001, kColorApplication.toString()}, {1070, std::int64_t(3)}}));

    settings::setNumber(u"WhiteAllColor", 9);
    runAndBack("QN3_whiteAll");
    EXPECT_EQ(kept(attribute),
              (ResbufList{
                  {1001, kColorApplication.toString()}, {1070, std::int64_t(0)}, {1070, std::int64_t(254)}}));
    runAndBack("QN3_restoreColorAll");
    EXPECT_EQ(colorOf(attribute).index, 0);
    EXPECT_EQ(colorOf(insert).index, std::nullopt);
    EXPECT_EQ(colorOf(plain).index, 3);
    EXPECT_EQ(kept(plain).size(), 3U);
}

TEST_F(Recolouring, RestoringGivesBackWhatWasThere)
{
    std::mt19937 random(7);
    const auto upTo = [&random](int most) { return int(random() % unsigned(most + 1)); };
    for (int round = 0; round < 30; ++round) {
        tests::MemoryDrawing made(round % 5 == 0 ? DrawingVersion::r12 : DrawingVersion::r2004);
        made.record(SymbolTable::appId, "APPID", "OTHER", {{70, 0}});
        for (int i = 0; i < 20; ++i) {
            Groups groups{{8, "0"}};
            if (upTo(2) > 0)
                groups.push_back({62, upTo(256)});
            if (round % 5 != 0 && upTo(3) == 0) {
                groups.push_back({420, upTo(0xFFFFFF)});
                if (upTo(1))
                    groups.push_back({430, "RAL CLASSIC$RAL 1006"});
            }
            groups.push_back({48, 2.0});
            if (round % 5 != 0)
                groups.push_back({100, "AcDbLine"});
            groups.push_back({10, AcGePoint3d(i, 0, 0)});
            groups.push_back({11, AcGePoint3d(0, i, 0)});
            if (upTo(3) == 0) {
                groups.push_back({1001, "OTHER"});
                groups.push_back({1070, upTo(255)});
            }
            made.entity("LINE", groups);
        }
        open(made);
        const auto before = withoutKept();
        for (int painting = 0; painting <= upTo(3); ++painting) {
            settings::setNumber(u"WhiteAllColor", 1 + upTo(254));
            run("QN3_whiteAll");
        }
        run("QN3_restoreColorAll");
        ASSERT_EQ(tests::wholeDifference(before, withoutKept()), QStringList()) << round;
    }
}

TEST_F(Recolouring, OldDataWithoutAColourMeansByLayer)
{
    tests::MemoryDrawing made;
    const auto line = made.entity("LINE", {{8, "0"},
                                           {62, 7},
                                           {10, AcGePoint3d()},
                                           {11, AcGePoint3d(1, 0, 0)},
                                           {1001, "QuillnoteColor"},
                                           {1000, ""}});
    open(made);
    run("QN3_restoreColorAll");
    EXPECT_EQ(colorOf(line), AcDbStatedColor());
}

TEST_F(Recolouring, StoppingLeavesTheDrawingAsItWas)
{
    tests::MemoryDrawing made;
    for (int i = 0; i < 50; ++i)
        made.entity("LINE", {{8, "0"}, {10, AcGePoint3d()}, {11, AcGePoint3d(i, 1, 0)}});
    open(made);
    const auto before = tests::wholeDrawing(database());
    int told = 0;
    acDocManager()->setProgress([&told](const QString &, double) { return ++told < 1; });
    EXPECT_TRUE(run("QN3_whiteAll").contains(u"已停止"));
    acDocManager()->setProgress({});
    EXPECT_EQ(tests::wholeDifference(before, tests::wholeDrawing(database())), QStringList());
    EXPECT_FALSE(database().hasChanges());
}

TEST_F(Recolouring, TheOverlayColourKeepsItsRange)
{
    for (const auto &[typed, stored] : {std::pair("0", 254), std::pair("255", 255), std::pair("17", 17),
                                        std::pair("256", 17), std::pair("", 17)}) {
        const QString printed = run("QN8_setDiTuColor", {typed});
        EXPECT_EQ(settings::number(u"DiTuColor"), stored) << typed;
    }
    tests::ScriptFrontEnd script({""});
    acedEditor()->runCommand("setDiTuColor");
    EXPECT_EQ(script.prompts.front().message, QStringLiteral("\n请输入叠图色彩号(1-254)[17]："));
}
