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
    EXPECT_THAT(codes(plain), ElementsAre(-1, 0, 330, 5, 100, 67, 410, 8, 62, 100, 10, 40, 100, 50, 51));
    EXPECT_EQ(plain[0].id(), id);
    EXPECT_EQ(plain[2].id(), database->modelSpaceId());
    EXPECT_EQ(plain[3].text(), QString::number(arc, 16).toUpper());
    EXPECT_EQ(plain[5].integer(), 0);
    EXPECT_EQ(plain[6].text(), "Model");
    EXPECT_DOUBLE_EQ(plain[13].real(), kGePi / 2);

    EXPECT_THAT(codes(acdbEntGetX(id, QStringLiteral("A*"))).back(), 1000);
    const ResbufList all = acdbEntGetX(id, QStringLiteral("*"));
    EXPECT_EQ(all[15].restype, -3);
    EXPECT_EQ(all.back(), resbuf(1005, QStringLiteral("AB")));
    EXPECT_THAT(acdbEntGetX(id, QStringLiteral("NONE")), plain);
}

/// An R2000 line as files hold it, braces and all; MemoryDrawing's own lists have no braces.
class OneLine : public DrawingSource
{
public:
    DrawingFormat format() const override { return DrawingFormat::dxfText; }
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
    EXPECT_THAT(codes(list), ElementsAre(-1, 0, 5, 102, 330, 102, 330, 100, 67, 410, 8, 100, 10, 11));
    EXPECT_EQ(list[8].integer(), 1);
    EXPECT_EQ(list[9].text(), "Layout1");
    AcDbObjectPointer<AcDbEntity>(line, AcDb::kForWrite)->erase();
    EXPECT_TRUE(acdbEntGetX(line).empty());
}
