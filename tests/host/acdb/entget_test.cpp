// Data lists as programs see them: order, types, angles, applications.
#include "host/acdb/dbapi.h"
#include "host/acdb/dbload.h"
#include "tests/support/memory_drawing.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using tests::MemoryDrawing;

static std::vector<int> codes(const ResbufList &list)
{
    std::vector<int> all;
    for (const resbuf &group : list)
        all.push_back(group.restype);
    return all;
}

TEST(EntGet, FollowsThePlatformsOrder)
{
    MemoryDrawing drawing;
    const auto arc = drawing.entity("ARC", {{8, "0"},
                                            {62, 1},
                                            {100, "AcDbCircle"},
                                            {10, AcGePoint3d(1, 2, 3)},
                                            {40, 5.0},
                                            {100, "AcDbArc"},
                                            {50, 90.0},
                                            {51, 180.0},
                                            {1001, "ACAD"},
                                            {1000, "x"},
                                            {1001, "OTHER"},
                                            {1005, AcDbHandle{0xAB}}});
    const auto database = drawing.open();
    const AcDbObjectId id = database->getAcDbObjectId({arc});

    const ResbufList plain = acdbEntGetX(id);
    EXPECT_THAT(codes(plain), ElementsAre(-1, 0, 330, 5, 100, 67, 410, 8, 62, 100, 10, 40, 210, 100, 50, 51));
    EXPECT_EQ(plain[0].id(), id);
    EXPECT_EQ(plain[2].id(), database->modelSpaceId());
    EXPECT_EQ(plain[3].text(), QString::number(arc, 16).toUpper());
    EXPECT_EQ(plain[5].integer(), 0);
    EXPECT_EQ(plain[6].text(), "Model");
    EXPECT_DOUBLE_EQ(plain[14].real(), kGePi / 2);

    EXPECT_THAT(codes(acdbEntGetX(id, QStringLiteral("A*"))).back(), 1000);
    const ResbufList all = acdbEntGetX(id, QStringLiteral("*"));
    EXPECT_EQ(all[16].restype, -3);
    EXPECT_EQ(all.back(), resbuf(1005, QStringLiteral("AB")));
    EXPECT_THAT(acdbEntGetX(id, QStringLiteral("NONE")), plain);
}

/// What stands behind 410.
static ResbufList listed(const char *kind, const tests::Groups &groups, const tests::Groups &vertex = {})
{
    MemoryDrawing drawing;
    auto id = drawing.entity(kind, groups);
    if (!vertex.empty())
        id = drawing.subEntity("VERTEX", vertex);
    const auto database = drawing.open();
    const ResbufList list = acdbEntGetX(database->getAcDbObjectId({id}));
    return {findGroup(list, 410) - list.data() + 1 + list.begin(), list.end()};
}

/// The same entity written in two ways, and its list.
struct TwoWays {
    const char *kind;
    tests::Groups shortest;
    tests::Groups explicitly;
    std::vector<int> codes;
};

TEST(EntGet, DoesNotTellDefaultsThatFilesWriteFromThoseTheyLeaveOut)
{
    const AcGePoint3d up(0, 0, 1);
    const AcGePoint3d at(1, 2, 0);
    const TwoWays cases[] = {
        {"LINE",
         {{100, "AcDbLine"}, {10, at}, {11, AcGePoint3d(4, 5, 6)}},
         {{8, "0"},
          {6, "ByLayer"},
          {62, 256},
          {48, 1.0},
          {60, 0},
          {370, -1},
          {100, "AcDbLine"},
          {39, 0.0},
          {10, at},
          {11, AcGePoint3d(4, 5, 6)},
          {210, up}},
         {8, 100, 10, 11, 210}},
        {"TEXT",
         {{100, "AcDbText"}, {10, AcGePoint2d(1, 2)}, {40, 2.5}, {1, "A"}, {100, "AcDbText"}},
         {{100, "AcDbText"},
          {10, at},
          {40, 2.5},
          {1, "A"},
          {7, "STANDARD"},
          {41, 1.0},
          {50, 0.0},
          {51, 0.0},
          {71, 0},
          {72, 0},
          {11, AcGePoint3d()},
          {210, up},
          {100, "AcDbText"},
          {73, 0}},
         {8, 100, 10, 40, 1, 50, 41, 51, 7, 71, 72, 11, 210, 100, 73}},
        {"INSERT",
         {{100, "AcDbBlockReference"}, {2, "DOOR"}, {10, at}},
         {{100, "AcDbBlockReference"},
          {66, 0},
          {2, "DOOR"},
          {10, at},
          {70, 0},
          {71, 0},
          {41, 1.0},
          {42, 1.0},
          {43, 1.0},
          {50, 0.0},
          {44, 0.0},
          {45, 0.0}},
         {8, 100, 2, 10, 41, 42, 43, 50, 70, 71, 44, 45, 210}},
        {"LWPOLYLINE",
         {{100, "AcDbPolyline"}, {90, 2}, {10, AcGePoint2d(0, 0)}, {10, AcGePoint2d(1, 0)}, {42, 0.5}},
         {{100, "AcDbPolyline"},
          {90, 2},
          {70, 0},
          {43, 0.0},
          {38, 0.0},
          {39, 0.0},
          {10, AcGePoint2d(0, 0)},
          {42, 0.0},
          {40, 0.0},
          {41, 0.0},
          {91, 0},
          {10, AcGePoint2d(1, 0)},
          {42, 0.5},
          {210, up}},
         {8, 100, 90, 70, 43, 38, 39, 10, 40, 41, 42, 91, 10, 40, 41, 42, 91, 210}},
        {"LWPOLYLINE",
         {{100, "AcDbPolyline"}, {90, 1}, {43, 2.0}, {10, AcGePoint2d(0, 0)}},
         {{100, "AcDbPolyline"}, {90, 1}, {10, AcGePoint2d(0, 0)}, {40, 2.0}, {41, 2.0}},
         {8, 100, 90, 70, 43, 38, 39, 10, 40, 41, 42, 91, 210}},
        {"MTEXT",
         {{100, "AcDbMText"}, {10, at}, {40, 2.5}, {1, "A"}, {50, 0.0}, {75, 1}, {50, 30.0}},
         {{100, "AcDbMText"},
          {10, at},
          {40, 2.5},
          {41, 0.0},
          {71, 1},
          {72, 5},
          {1, "A"},
          {7, "Standard"},
          {11, AcGePoint3d(1, 0, 0)},
          {73, 1},
          {44, 1.0},
          {75, 1},
          {50, 30.0}},
         {8, 100, 10, 40, 41, 46, 71, 72, 1, 7, 210, 11, 50, 73, 44, 75, 50}},
        {"DIMENSION",
         {{100, "AcDbDimension"}, {10, at}, {3, "ISO-25"}, {100, "AcDbAlignedDimension"}, {13, at}},
         {{100, "AcDbDimension"},
          {10, at},
          {70, 0},
          {71, 5},
          {3, "ISO-25"},
          {1, ""},
          {100, "AcDbAlignedDimension"},
          {13, at}},
         {8, 100, 10, 11, 12, 70, 1, 71, 72, 41, 73, 74, 75, 52, 53, 54, 51, 210, 3, 100, 13}},
    };
    for (const TwoWays &each : cases) {
        SCOPED_TRACE(each.kind);
        const ResbufList list = listed(each.kind, each.shortest);
        EXPECT_THAT(codes(list), testing::ElementsAreArray(each.codes));
        EXPECT_EQ(listed(each.kind, each.explicitly), list);
    }
}

TEST(EntGet, ListsWhatDiffersFromTheDefault)
{
    const ResbufList line = listed("LINE", {{8, "A"},
                                            {62, 3},
                                            {100, "AcDbLine"},
                                            {39, 2.0},
                                            {10, AcGePoint3d()},
                                            {420, 255},
                                            {11, AcGePoint3d()},
                                            {101, "Embedded Object"},
                                            {39, 0.0}});
    EXPECT_THAT(codes(line), ElementsAre(8, 62, 100, 39, 10, 420, 11, 210, 101, 39));
    // Widths that vary take the common one away; a vertex without its own has the common one.
    const ResbufList tapered = listed("LWPOLYLINE", {{100, "AcDbPolyline"},
                                                     {90, 2},
                                                     {43, 3.0},
                                                     {10, AcGePoint2d(0, 0)},
                                                     {40, 1.0},
                                                     {10, AcGePoint2d(1, 0)}});
    EXPECT_EQ(findGroup(tapered, 43), nullptr);
    EXPECT_EQ(findGroup(tapered, 41)->real(), 3.0);
    // The direction of a paragraph is listed as vector and as angle, whichever the file gives.
    const ResbufList turned =
        listed("MTEXT", {{100, "AcDbMText"}, {10, AcGePoint3d()}, {1, "A"}, {11, AcGePoint3d(0, 2, 0)}});
    EXPECT_DOUBLE_EQ(findGroup(turned, 50)->real(), kGePi / 2);
    const ResbufList byAngle =
        listed("MTEXT", {{100, "AcDbMText"}, {10, AcGePoint3d()}, {1, "A"}, {50, 90.0}});
    EXPECT_TRUE(findGroup(byAngle, 11)->point().isEqualTo({0, 1, 0}, 1e-12));
}

TEST(EntGet, GivesMarkersToEntitiesOfOldFilesWhereTheyAreCertain)
{
    const ResbufList arc = listed("ARC", {{10, AcGePoint3d()}, {40, 1.0}, {8, "A"}, {50, 0.0}, {51, 90.0}});
    EXPECT_EQ(arc, listed("ARC", {{8, "A"},
                                  {100, "AcDbCircle"},
                                  {10, AcGePoint3d()},
                                  {40, 1.0},
                                  {100, "AcDbArc"},
                                  {50, 0.0},
                                  {51, 90.0}}));
    const ResbufList vertex = listed("POLYLINE", {{66, 1}}, {{8, "A"}, {10, AcGePoint3d(1, 1, 1)}});
    EXPECT_THAT(codes(vertex), ElementsAre(8, 100, 10, 40, 41, 42, 91, 70, 50, 71, 72, 73, 74));
}

/// An R2000 line as files hold it, braces and all; MemoryDrawing's own lists have no braces.
class OneLine : public DrawingSource
{
public:
    DrawingForm form() const override { return DrawingForm::dxfText; }
    DrawingVersion version() const override { return DrawingVersion::r2000; }
    ResbufList read(const AcDbStub &stub) const override
    {
        if (stub.kind == acdbKind("BLOCK_RECORD"))
            return {{0, QStringLiteral("BLOCK_RECORD")}, {2, QStringLiteral("*Paper_Space")}};
        return {{0, QStringLiteral("LINE")},
                {5, AcDbHandle{0x20}},
                {102, QStringLiteral("{ACAD_REACTORS")},
                {330, AcDbHandle{0x10}},
                {102, QStringLiteral("}")},
                {330, AcDbHandle{0x10}},
                {100, QStringLiteral("AcDbEntity")},
                {67, std::int64_t(1)},
                {8, QStringLiteral("0")},
                {100, QStringLiteral("AcDbLine")},
                {10, AcGePoint3d()},
                {11, AcGePoint3d(1, 0, 0)}};
    }
};

TEST(EntGet, PutsTheOwnerBehindBracesAndTellsThePaperSpace)
{
    AcDbDatabase database;
    AcDbLoader loader(database, std::make_unique<OneLine>());
    AcDbStub *const space = loader.addObject(acdbKind("BLOCK_RECORD"), 0x10, 0, 1, 0);
    loader.addRecord(SymbolTable::block, space);
    loader.addEntity(space, loader.addObject(acdbKind("LINE"), 0x20, 0, 1, AcDbStub::kEntity));
    loader.finish();
    const AcDbObjectId line = database.getAcDbObjectId({0x20});
    const ResbufList list = acdbEntGetX(line);
    EXPECT_THAT(codes(list), ElementsAre(-1, 0, 5, 102, 330, 102, 330, 100, 67, 410, 8, 100, 10, 11, 210));
    EXPECT_EQ(list[8].integer(), 1);
    EXPECT_EQ(list[9].text(), "Layout1");
    AcDbObjectPointer<AcDbEntity>(line, AcDb::kForWrite)->erase();
    EXPECT_TRUE(acdbEntGetX(line).empty());
}
