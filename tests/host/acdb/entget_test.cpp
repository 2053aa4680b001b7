// Data lists as programs see them: order, types, angles, applications.
#include "host/acdb/dbapi.h"
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
    const auto arc = drawing.entity("ARC", {{8, "0"}, {62, 1}, {100, "AcDbCircle"},
                                            {10, AcGePoint3d(1, 2, 3)}, {40, 5.0}, {100, "AcDbArc"}, {50, 90.0}, {51, 180.0},
                                            {1001, "ACAD"}, {1000, "x"}, {1001, "OTHER"}, {1005, AcDbHandle{0xAB}}});
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

TEST(EntGet, PutsTheOwnerBehindBracesAndTellsThePaperSpace)
{
    MemoryDrawing drawing;
    const auto line = drawing.entity("LINE", {{102, "{ACAD_REACTORS"}, {330, AcDbHandle{0x999}}, {102, "}"},
                                              {330, AcDbHandle{drawing.paperSpace()}}, {67, 1}, {8, "0"},
                                              {100, "AcDbLine"}, {10, AcGePoint3d()}, {11, AcGePoint3d(1, 0, 0)}},
                                     drawing.paperSpace());
    const auto database = drawing.open();
    const ResbufList list = acdbEntGetX(database->getAcDbObjectId({line}));
    EXPECT_THAT(codes(list), ElementsAre(-1, 0, 5, 102, 330, 102, 330, 100, 67, 410, 8, 100, 10, 11));
    EXPECT_EQ(list[8].integer(), 1);
    EXPECT_EQ(list[9].text(), "Layout1");
    AcDbObjectPointer<AcDbEntity>(database->getAcDbObjectId({line}), AcDb::kForWrite)->erase();
    EXPECT_TRUE(acdbEntGetX(database->getAcDbObjectId({line})).empty());
}
