// Layers, blocks, dictionaries, xrecords, extended data.
#include "host/acdb/dbdict.h"
#include "host/acdb/dbents.h"
#include "host/acdb/dbload.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbundo.h"
#include "tests/support/memory_drawing.h"

#include <gmock/gmock.h>

#include <set>

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
        DrawingForm form() const override { return DrawingForm::dxfText; }
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

TEST(Loading, GivesHandlesBelowWhenNoneIsLeftAbove)
{
    constexpr std::uint64_t kHighest = ~std::uint64_t(0);
    MemoryDrawing drawing;
    drawing.headerVariable("$HANDSEED", {{5, AcDbHandle{kHighest}}});
    const auto database = drawing.open();
    std::set<std::uint64_t> handles;
    for (std::uint32_t index = 1; index < database->stubCount(); ++index)
        handles.insert(database->stub(index)->handle);
    for (int i = 0; i < 3; ++i) {
        AcDbObjectId id;
        auto *const record = new AcDbXrecord;
        ASSERT_EQ(database->addAcDbObject(record, {}, &id), Acad::eOk);
        record->close();
        EXPECT_NE(id.handle().value, 0U);
        EXPECT_TRUE(handles.insert(id.handle().value).second);
        EXPECT_EQ(database->getAcDbObjectId(id.handle()), id);
    }
}

TEST(Kinds, OfADrawingGoWithIt)
{
    for (int round = 0; round < 2; ++round) {
        AcDbDatabase hostile;
        for (int i = 0; i < 70'000; ++i)
            hostile.kindNamed("NAME" + QByteArray::number(i) + "OF" + QByteArray::number(round));
        EXPECT_EQ(acdbKindName(hostile.kindNamed("SORTENTSTABLE")), "SORTENTSTABLE");
        EXPECT_NE(acdbKind("ASKED" + QByteArray::number(round)), 0);
        EXPECT_EQ(acdbKindName(acdbKind("LINE")), "LINE");
    }
    AcDbDatabase later;
    EXPECT_NE(later.kindNamed("LATER"), 0);
    EXPECT_EQ(acdbKnownKind("NAME1OF0"), 0);
}

// What a dictionary does not own only loses its key.
TEST(Dictionaries, EraseOnlyWhatIsTheirs)
{
    MemoryDrawing drawing;
    const auto line = drawing.entity("LINE", {{10, AcGePoint3d()}, {11, AcGePoint3d(1, 0, 0)}});
    const auto database = drawing.open();
    const AcDbObjectId foreign = database->getAcDbObjectId({line});
    AcDbObjectPointer<AcDbDictionary> root(database->namedObjectsDictionaryId(), AcDb::kForWrite);
    ASSERT_TRUE(root);
    root->link(QStringLiteral("XREC1"), foreign);
    AcDbObjectId record;
    auto *const added = new AcDbXrecord;
    ASSERT_EQ(root->setAt(QStringLiteral("XREC1"), added, record), Acad::eOk);
    added->close();
    EXPECT_EQ(root->getAt(QStringLiteral("XREC1")), record);
    EXPECT_TRUE(foreign.isValid());
    root->link(QStringLiteral("OTHER"), foreign);
    EXPECT_EQ(root->remove(QStringLiteral("OTHER")), Acad::eOk);
    EXPECT_TRUE(foreign.isValid());
}

TEST(Layers, AreFoundByTheNameThatTheyHaveNow)
{
    MemoryDrawing drawing;
    drawing.layer("WALLS");
    const auto database = drawing.open();
    const AcDbSymbolTable layers(*database, SymbolTable::layer);
    const AcDbObjectId walls = layers.getAt(QStringLiteral("walls"));
    ASSERT_TRUE(walls.isValid());
    database->undo().beginGroup(QStringLiteral("rename"));
    AcDbObjectPointer<AcDbLayerTableRecord>(walls, AcDb::kForWrite)->setGroup(2, QStringLiteral("DOORS"));
    database->undo().endGroup();
    EXPECT_EQ(layers.getAt(QStringLiteral("doors")), walls);
    EXPECT_FALSE(layers.has(QStringLiteral("WALLS")));
    database->undo().undo();
    EXPECT_EQ(layers.getAt(QStringLiteral("WALLS")), walls);
    EXPECT_FALSE(layers.has(QStringLiteral("DOORS")));
}
