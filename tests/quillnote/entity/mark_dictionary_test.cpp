// The drawing's own records: last mark number and review position.
#include "quillnote/entity/mark_dictionary.h"

#include "host/acdb/dbdict.h"
#include "host/acdb/dbentity.h"
#include "tests/support/memory_drawing.h"

#include <gtest/gtest.h>

static AcDbObjectPointer<AcDbXrecord> record(AcDbDatabase &database, const char *name, AcDb::OpenMode mode)
{
    AcDbObjectPointer<AcDbDictionary> root(database.namedObjectsDictionaryId(), AcDb::kForRead);
    AcDbObjectPointer<AcDbDictionary> ours(root->getAt(QStringLiteral("QN_DICT")), AcDb::kForRead);
    return {ours->getAt(QString::fromLatin1(name)), mode};
}

static ResbufList chainOf(AcDbDatabase &database, const char *name)
{
    return record(database, name, AcDb::kForRead)->rbChain();
}

class MarkDictionary : public testing::Test
{
protected:
    MarkDictionary()
    {
        tests::MemoryDrawing drawing;
        line = drawing.entity("LINE", {{10, AcGePoint3d(0, 0, 0)}, {11, AcGePoint3d(1, 1, 0)}});
        database = drawing.open();
    }

    std::unique_ptr<AcDbDatabase> database;
    std::uint64_t line = 0;
};

TEST_F(MarkDictionary, StartsAtZeroAndKeepsTheLastNumber)
{
    EXPECT_EQ(readLastMarkNumber(*database), 0);
    EXPECT_FALSE(database->hasChanges()) << "reading made the dictionary";
    for (const std::uint16_t number : {1, 2, 40000, 65535}) {
        ASSERT_EQ(writeLastMarkNumber(*database, number), Acad::eOk);
        EXPECT_EQ(readLastMarkNumber(*database), number);
    }
    const ResbufList expected{{1, QStringLiteral("QuillnoteObj3 标志位")},
                              {1, QStringLiteral("****************************")},
                              {70, std::int64_t(-1)}};
    EXPECT_EQ(chainOf(*database, "XREC1"), expected);
}

TEST_F(MarkDictionary, KeepsThePositionWhileItsMarkLives)
{
    EXPECT_EQ(readReviewPosition(*database), ReviewPosition());
    const AcDbObjectId mark = database->getAcDbObjectId({line});
    ASSERT_EQ(writeReviewPosition(*database, {.index = 7, .mark = mark}), Acad::eOk);
    EXPECT_EQ(readReviewPosition(*database), (ReviewPosition{.index = 7, .mark = mark}));
    const ResbufList expected{{1, QStringLiteral("QuillnoteObj3 标志位2")},
                              {1, QStringLiteral("****************************")},
                              {70, std::int64_t(7)},
                              {330, AcDbHandle{line}}};
    EXPECT_EQ(chainOf(*database, "XREC2"), expected);

    AcDbObjectPointer<AcDbEntity>(mark, AcDb::kForWrite)->erase();
    EXPECT_EQ(readReviewPosition(*database), (ReviewPosition{.index = 7, .mark = {}}));
    ASSERT_EQ(writeReviewPosition(*database, {.index = 8, .mark = mark}), Acad::eOk);
    EXPECT_EQ(chainOf(*database, "XREC2").size(), 3u);
}

TEST_F(MarkDictionary, RecordsOfAnotherShapeReadAsNothing)
{
    ASSERT_EQ(writeLastMarkNumber(*database, 9), Acad::eOk);
    ASSERT_EQ(writeReviewPosition(*database, {.index = 9, .mark = database->getAcDbObjectId({line})}),
              Acad::eOk);
    const ResbufList shapes[] = {
        {},
        {{1, QStringLiteral("a")}, {1, QStringLiteral("b")}},
        {{1, QStringLiteral("a")}, {1, QStringLiteral("b")}, {40, 5.0}, {331, AcDbHandle{line}}},
        {{70, std::int64_t(5)}, {1, QStringLiteral("a")}, {1, QStringLiteral("b")}},
    };
    for (const ResbufList &shape : shapes) {
        for (const char *name : {"XREC1", "XREC2"})
            record(*database, name, AcDb::kForWrite)->setFromRbChain(shape);
        EXPECT_EQ(readLastMarkNumber(*database), 0);
        EXPECT_EQ(readReviewPosition(*database), ReviewPosition());
    }
}
