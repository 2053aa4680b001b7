// The drawing that new documents start from: sound, complete, and of the newest version.
#include "dxf_support.h"

#include "host/formats/dxf/dxftemplate.h"

#include <gmock/gmock.h>

TEST(NewDrawing, HasWhatEveryDrawingNeeds)
{
    const auto database = tests::openDxf(newDrawingDxf());
    EXPECT_THAT(database->repairs(), testing::IsEmpty());
    EXPECT_EQ(database->version(), DrawingVersion::r2018);
    const std::pair<SymbolTable, const char *> records[] = {
        {SymbolTable::layer, "0"},
        {SymbolTable::linetype, "ByLayer"},
        {SymbolTable::linetype, "Continuous"},
        {SymbolTable::textStyle, "Standard"},
        {SymbolTable::dimStyle, "Standard"},
        {SymbolTable::appId, "ACAD"},
        {SymbolTable::viewport, "*Active"},
        {SymbolTable::block, "*Paper_Space"},
    };
    for (const auto &[table, name] : records)
        EXPECT_TRUE(database->tableRecord(table, name).isValid()) << name;
    EXPECT_FALSE(database->namedObjectsDictionaryId().isNull());
    for (std::uint32_t index = 1; index < database->stubCount(); ++index) {
        const AcDbStub &stub = *database->stub(index);
        EXPECT_FALSE(stub.has(AcDbStub::kNoFileForm) || stub.has(AcDbStub::kNoFileHandle)) << index;
        EXPECT_LT(stub.handle, database->handseed().value);
    }

    tests::appendCircle(database->modelSpaceId());
    const auto again = tests::openDxf(tests::saveDxf(*database));
    EXPECT_EQ(tests::blockList(*again, again->modelSpaceId()), "CIRCLE 100");
}
