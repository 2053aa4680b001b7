// Layers, blocks, dictionaries, xrecords, extended data.
#include "host/acdb/dbdict.h"
#include "host/acdb/dbents.h"
#include "host/acdb/dbload.h"
#include "host/acdb/dbsymtb.h"
#include "tests/support/memory_drawing.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using tests::MemoryDrawing;

TEST(Layers, ChangeOnlyTheirOwnFlag)
{
    MemoryDrawing drawing;
    drawing.layer("A", {.flags = 64, .color = -3});
    const auto database = drawing.open();
    AcDbObjectPointer<AcDbLayerTableRecord> layer(
        database->tableRecord(SymbolTable::layer, QStringLiteral("a")), AcDb::kForWrite);
    ASSERT_TRUE(layer);
    EXPECT_TRUE(layer->isOff());
    EXPECT_EQ(layer->colorIndex(), 3);
    layer->setIsFrozen(true);
    layer->setIsLocked(true);
    layer->setIsFrozen(false);
    EXPECT_EQ(layer->flags(), 64 | 4);
    layer->setColorIndex(5);
    EXPECT_TRUE(layer->isOff());
    layer->setIsOff(false);
    EXPECT_EQ(findGroup(layer->groups(), 62)->integer(), 5);
    EXPECT_TRUE(layer->isPlottable());
    layer->setIsPlottable(false);
    EXPECT_FALSE(layer->isPlottable());
}

TEST(Layers, NewOnesAreMadeLikeKnownOnes)
{
    const auto database = MemoryDrawing().open();
    AcDbSymbolTable layers(*database, SymbolTable::layer);
    AcDbObjectId added;
    EXPECT_EQ(layers.addLike(QStringLiteral("none"), QStringLiteral("B"), added), Acad::eKeyNotFound);
    EXPECT_EQ(layers.addLike(QStringLiteral("0"), QStringLiteral("0"), added), Acad::eDuplicateKey);
    ASSERT_EQ(layers.addLike(QStringLiteral("0"), QStringLiteral("B"), added), Acad::eOk);
    added.stub()->object->close();
    EXPECT_EQ(layers.getAt(QStringLiteral("b")), added);
    EXPECT_EQ(AcDbObjectPointer<AcDbSymbolTableRecord>(added, AcDb::kForRead)->getName(), "B");
    EXPECT_NE(added.handle(), layers.getAt(QStringLiteral("0")).handle());
}

TEST(Blocks, PaperSpaceEntitiesSayWhereTheyAre)
{
    MemoryDrawing drawing;
    const auto database = drawing.open();
    ASSERT_EQ(acdbLayoutBlocks(*database).size(), 2U);
    AcDbObjectPointer<AcDbBlockTableRecord> paper(database->paperSpaceId(), AcDb::kForWrite);
    AcDbObjectId id;
    ASSERT_EQ(paper->appendAcDbEntity(
                  id, acdbNewEntity("POINT", {{100, QStringLiteral("AcDbPoint")}, {10, AcGePoint3d(1, 1, 0)}})
                          .release()),
              Acad::eOk);
    id.stub()->object->close();
    AcDbObjectPointer<AcDbEntity> point(id, AcDb::kForRead);
    EXPECT_EQ(findGroup(point->groups(), 67)->integer(), 1);
    EXPECT_EQ(point->blockId(), database->paperSpaceId());
    EXPECT_THAT(paper->entities(), ElementsAre(id));
}

TEST(NewEntities, AreOfTheClassOfTheirKind)
{
    const auto text = acdbNewEntity("TEXT", {{1, QStringLiteral("door")}});
    const auto *const asText = dynamic_cast<const AcDbText *>(text.get());
    ASSERT_NE(asText, nullptr);
    EXPECT_EQ(text->layer(), u"0");
    EXPECT_EQ(acdbNewEntity("STRANGE", {})->dxfName(), "STRANGE");
}

TEST(Blocks, AnInsertPlacesItsBlock)
{
    MemoryDrawing drawing;
    drawing.block("DOOR", {1, 1, 0});
    const auto handle = drawing.entity(
        "INSERT", {{2, "DOOR"}, {10, AcGePoint3d(10, 20, 0)}, {41, 2.0}, {42, 3.0}, {50, 90.0}});
    const auto database = drawing.open();
    AcDbObjectPointer<AcDbBlockReference> insert(database->getAcDbObjectId({handle}), AcDb::kForRead);
    ASSERT_TRUE(insert);
    EXPECT_TRUE(insert->blockTableRecord().isValid());
    EXPECT_TRUE((insert->blockTransform() * AcGePoint3d(2, 2, 0)).isEqualTo({7, 22, 0}, 1e-9));
}

TEST(Dictionaries, ReplaceWhatTheyHold)
{
    const auto database = MemoryDrawing().open();
    AcDbObjectPointer<AcDbDictionary> root(acdbEnsureNamedObjects(*database), AcDb::kForWrite);
    ASSERT_TRUE(root);
    AcDbObjectId first;
    AcDbObjectId second;
    auto *record = new AcDbXrecord;
    ASSERT_EQ(root->setAt(QStringLiteral("KEY"), record, first), Acad::eOk);
    record->setFromRbChain({{1, QStringLiteral("text")}, {70, std::int64_t(7)}});
    record->close();
    auto *const next = new AcDbXrecord;
    ASSERT_EQ(root->setAt(QStringLiteral("key"), next, second), Acad::eOk);
    next->close();
    EXPECT_TRUE(first.isErased());
    EXPECT_EQ(root->getAt(QStringLiteral("Key")), second);
    EXPECT_EQ(root->remove(QStringLiteral("KEY")), Acad::eOk);
    EXPECT_EQ(root->remove(QStringLiteral("KEY")), Acad::eKeyNotFound);
    EXPECT_TRUE(second.isErased());
}

TEST(ExtendedData, IsKeptByApplication)
{
    MemoryDrawing drawing;
    const auto handle =
        drawing.entity("POINT", {{10, AcGePoint3d()}, {1001, "A"}, {1000, "a"}, {1001, "B"}, {1070, 2}});
    const auto database = drawing.open();
    AcDbObjectPointer<AcDbEntity> point(database->getAcDbObjectId({handle}), AcDb::kForWrite);
    point->setXData({{1001, QStringLiteral("a")}, {1000, QStringLiteral("new")}});
    EXPECT_EQ(point->xData(QStringLiteral("A")),
              (ResbufList{{1001, QStringLiteral("a")}, {1000, QStringLiteral("new")}}));
    EXPECT_EQ(point->xData(QStringLiteral("B")).size(), 2U);
    point->setXData({{1001, QStringLiteral("B")}});
    EXPECT_EQ(point->xData().size(), 2U);
    point->setGroup(62, std::int64_t(1));
    EXPECT_LT(std::size_t(findGroup(point->groups(), 62) - point->groups().data()),
              extendedDataBegin(point->groups()));
}

TEST(Loading, SettlesHandles)
{
    class Nothing : public DrawingSource
    {
        DrawingFormat format() const override { return DrawingFormat::dxfText; }
        DrawingVersion version() const override { return DrawingVersion::r12; }
        ResbufList read(const AcDbStub &) const override { return {{0, QStringLiteral("LINE")}}; }
    };
    AcDbDatabase database;
    AcDbLoader loader(database, std::make_unique<Nothing>());
    const AcDbKind line = acdbKind("LINE");
    const std::uint64_t given[] = {0, 2, 0x50, 2, 0, 1};
    std::vector<std::uint64_t> settled;
    std::vector<AcDbStub *> stubs;
    for (const std::uint64_t handle : given)
        stubs.push_back(loader.addObject(line, handle, 0, 1, AcDbStub::kEntity));
    loader.finish();
    for (const AcDbStub *stub : stubs) {
        settled.push_back(stub->handle);
        EXPECT_EQ(database.getAcDbObjectId({stub->handle}).stub(), stub);
    }
    EXPECT_THAT(settled, ElementsAre(3U, 2U, 0x50U, 0x51U, 4U, 1U));
    EXPECT_EQ(database.repairs().size(), 1);
    EXPECT_EQ(database.handseed().value, 0x52U);
}
