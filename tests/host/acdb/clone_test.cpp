// Copies: with all their parts, with references among themselves, under handles of their own.
#include "host/acdb/dbapi.h"
#include "host/acdb/dbdict.h"
#include "host/acdb/dbsymtb.h"
#include "tests/host/acdb/custom_note.h"
#include "tests/support/memory_drawing.h"

#include <gmock/gmock.h>

using tests::Groups;
using tests::MemoryDrawing;

TEST(Clone, CopiesPartsAndExtensionDictionaries)
{
    MemoryDrawing drawing;
    const auto insert = drawing.entity("INSERT", {{66, 1}, {2, "DOOR"}, {10, AcGePoint3d()}});
    drawing.subEntity("ATTRIB", {{1, "A1"}, {2, "TAG"}});
    drawing.subEntity("SEQEND", {{8, "0"}});
    const auto database = drawing.open();
    const AcDbObjectId original = database->getAcDbObjectId({insert});
    {
        AcDbObjectPointer<AcDbEntity> entity(original, AcDb::kForWrite);
        AcDbObjectPointer<AcDbDictionary> dictionary(entity->createExtensionDictionary(), AcDb::kForWrite);
        AcDbObjectId id;
        auto *const record = new AcDbXrecord;
        dictionary->setAt(QStringLiteral("DATA"), record, id);
        record->setFromRbChain({{330, original.handle()}});
        record->close();
    }
    std::vector<AcDbObjectId> copies;
    ASSERT_EQ(acdbDeepCloneEntities({original}, database->modelSpaceId(), copies), Acad::eOk);
    ASSERT_EQ(copies.size(), 1U);
    EXPECT_EQ(acdbSubEntities(copies[0]).size(), 2U);
    AcDbObjectPointer<AcDbEntity> copy(copies[0], AcDb::kForRead);
    AcDbObjectPointer<AcDbDictionary> dictionary(copy->extensionDictionary(), AcDb::kForRead);
    ASSERT_TRUE(dictionary);
    EXPECT_NE(dictionary->objectId(),
              AcDbObjectPointer<AcDbEntity>(original, AcDb::kForRead)->extensionDictionary());
    AcDbObjectPointer<AcDbXrecord> record(dictionary->getAt(QStringLiteral("DATA")), AcDb::kForRead);
    ASSERT_TRUE(record);
    EXPECT_EQ(record->rbChain(), ResbufList({{330, copies[0].handle()}}));
    EXPECT_EQ(record->ownerId(), dictionary->objectId());
}

TEST(Clone, CopiesEveryFieldOfACustomEntity)
{
    NoteClass known;
    const auto database = MemoryDrawing().open();
    const AcDbObjectId original = addNote(*database, QStringLiteral("t"), "secret");
    std::vector<AcDbObjectId> copies;
    ASSERT_EQ(acdbDeepCloneEntities({original}, database->paperSpaceId(), copies), Acad::eOk);
    AcDbObjectPointer<NoteEntity> copy(copies.at(0), AcDb::kForRead);
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->secret, "secret");
    EXPECT_EQ(copy->blockId(), database->paperSpaceId());
    EXPECT_TRUE(findGroup(copy->groups(), 67));
}

TEST(Clone, ADimensionGetsAPictureOfItsOwn)
{
    MemoryDrawing drawing;
    const auto picture = drawing.block("*D1");
    drawing.entity("LINE", {{10, AcGePoint3d()}, {11, AcGePoint3d(1, 0, 0)}}, picture);
    const auto handle = drawing.entity("DIMENSION", {{100, "AcDbDimension"},
                                                     {2, "*D1"},
                                                     {10, AcGePoint3d()},
                                                     {11, AcGePoint3d()},
                                                     {70, 0},
                                                     {100, "AcDbAlignedDimension"},
                                                     {13, AcGePoint3d()},
                                                     {14, AcGePoint3d(1, 0, 0)}});
    const auto database = drawing.open();
    std::vector<AcDbObjectId> copies;
    ASSERT_EQ(acdbDeepCloneEntities({database->getAcDbObjectId({handle})}, database->modelSpaceId(), copies),
              Acad::eOk);
    AcDbObjectPointer<AcDbEntity> copy(copies.at(0), AcDb::kForWrite);
    EXPECT_EQ(copy->transformBy(AcGeMatrix3d::translation({5, 0, 0})), Acad::eOk);
    const auto lineStart = [&](const QString &block) {
        AcDbObjectPointer<AcDbBlockTableRecord> record(database->tableRecord(SymbolTable::block, block),
                                                       AcDb::kForRead);
        return record ? findGroup(database->fileGroups(*record->entities().at(0).stub()), 10)->point()
                      : AcGePoint3d();
    };
    EXPECT_EQ(findGroup(copy->groups(), 2)->text(), "*D2");
    EXPECT_EQ(lineStart(QStringLiteral("*D1")), AcGePoint3d());
    EXPECT_EQ(lineStart(QStringLiteral("*D2")), AcGePoint3d(5, 0, 0));
}

// Structures that lead back to themselves ------------------------------------------------------------

TEST(Clone, ADimensionInItsOwnPictureIsCopiedOnce)
{
    MemoryDrawing drawing;
    const auto picture = drawing.block("*D1");
    const Groups groups{{100, "AcDbDimension"},
                        {2, "*D1"},
                        {10, AcGePoint3d()},
                        {11, AcGePoint3d()},
                        {70, 0},
                        {100, "AcDbAlignedDimension"},
                        {13, AcGePoint3d()},
                        {14, AcGePoint3d(1, 0, 0)}};
    drawing.entity("DIMENSION", groups, picture);
    const auto handle = drawing.entity("DIMENSION", groups);
    const auto database = drawing.open();
    std::vector<AcDbObjectId> copies;
    ASSERT_EQ(acdbDeepCloneEntities({database->getAcDbObjectId({handle})}, database->modelSpaceId(), copies),
              Acad::eOk);
    ASSERT_EQ(copies.size(), 1U);
    AcDbObjectPointer<AcDbEntity> copy(copies[0], AcDb::kForWrite);
    EXPECT_EQ(copy->transformBy(AcGeMatrix3d::translation({5, 0, 0})), Acad::eOk);
    EXPECT_FALSE(database->tableRecord(SymbolTable::block, QStringLiteral("*D3")).isValid());
}

TEST(Clone, AnExtensionDictionaryThatIsNoneIsNotCopied)
{
    MemoryDrawing drawing;
    const auto point = drawing.entity("POINT", {{10, AcGePoint3d()}});
    const auto insert = drawing.entity("INSERT", {{102, "{ACAD_XDICTIONARY"},
                                                  {360, AcDbHandle{point + 1}},
                                                  {102, "}"},
                                                  {2, "DOOR"},
                                                  {10, AcGePoint3d()}});
    ASSERT_EQ(insert, point + 1);
    const auto database = drawing.open();
    const std::uint32_t before = database->stubCount();
    std::vector<AcDbObjectId> copies;
    acdbDeepCloneEntities({database->getAcDbObjectId({insert})}, database->modelSpaceId(), copies);
    EXPECT_EQ(copies.size(), 1U);
    EXPECT_EQ(database->stubCount(), before + 1);
}
