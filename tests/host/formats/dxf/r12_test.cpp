// R12: files without block records, owners, markers, and often without handles.
#include "dxf_support.h"

#include "host/acdb/dbdict.h"

#include <gmock/gmock.h>

#include <algorithm>

using tests::blockList;
using tests::dxfBinary;
using tests::dxfText;
using tests::openDxf;
using tests::saveDxf;

TEST(DxfR12, FindsObjectsAndMakesBlockRecords)
{
    for (const QByteArray &bytes :
         {dxfText(tests::smallR12Drawing(true)), dxfBinary(tests::smallR12Drawing(true), true)}) {
        const auto database = openDxf(bytes);
        EXPECT_THAT(database->repairs(), testing::IsEmpty());
        EXPECT_EQ(blockList(*database, database->modelSpaceId()), "CIRCLE A2 | POLYLINE A3");
        EXPECT_EQ(blockList(*database, database->paperSpaceId()), "TEXT A6");
        EXPECT_EQ(blockList(*database, database->tableRecord(SymbolTable::block, "DOOR")), "LINE A1");
        EXPECT_EQ(acdbSubEntities(tests::object(*database, 0xA3)).size(), 2u);
        EXPECT_TRUE(database->symbolTableId(SymbolTable::layer).isNull());
        EXPECT_TRUE(database->tableRecord(SymbolTable::layer, "WALL").isValid());
        EXPECT_EQ(saveDxf(*database), bytes);
    }
}

TEST(DxfR12, TakesItsNamesOfTheSpaces)
{
    const auto database = openDxf(
        dxfText(QByteArray(tests::smallR12Drawing(true))
                    .replace("2 BLOCKS|", "2 BLOCKS|0 BLOCK|5 B1|8 0|2 $MODEL_SPACE|70 0|0 ENDBLK|5 B2|")));
    EXPECT_EQ(blockList(*database, database->modelSpaceId()), "CIRCLE A2 | POLYLINE A3");
    EXPECT_EQ(database->tableRecords(SymbolTable::block).size(), 3u);
}

TEST(DxfR12, GivesTheSameHandlesAtEveryOpening)
{
    const QByteArray bytes = dxfText(tests::smallR12Drawing(false));
    const auto database = openDxf(bytes);
    const QString objects = tests::objectList(*database);
    EXPECT_EQ(objects, "LAYER 1 | LAYER 2 | BLOCK 3 | LINE 4 | ENDBLK 5 | CIRCLE 6 | POLYLINE 7 | VERTEX 8 | "
                       "SEQEND 9 | TEXT A");
    EXPECT_EQ(saveDxf(*database), bytes);

    tests::appendCircle(database->modelSpaceId());
    tests::setGroup(*database, 0x6, 40, 3.0);
    const QByteArray saved = saveDxf(*database);
    EXPECT_TRUE(tests::objectList(*openDxf(saved)).startsWith(objects.left(objects.size() - 6)));
    EXPECT_EQ(tests::groupsOf(*openDxf(saved), 0xA), tests::groupsOf(*database, 0xA));
    EXPECT_EQ(saved.count("\r\n  5\r\n"), 3) << "the changed circle, the new one and the seed, no others";
}

TEST(DxfR12, WritesHandlesWhenANumberedObjectGoes)
{
    const auto database = openDxf(dxfText(tests::smallR12Drawing(false)));
    tests::erase(*database, 0x6);
    const auto again = openDxf(saveDxf(*database));
    EXPECT_EQ(tests::objectList(*again),
              "LAYER 1 | LAYER 2 | BLOCK 3 | LINE 4 | ENDBLK 5 | POLYLINE 7 | VERTEX 8 | SEQEND 9 | TEXT A");
}

TEST(DxfR12, WritesNativeEntitiesAsR12KnowsThem)
{
    const auto database = openDxf(dxfText(tests::smallR12Drawing(true), "\n", 0));
    tests::appendCircle(database->paperSpaceId());
    const QByteArray handle = QByteArray::number(database->handseed().value - 1, 16).toUpper();
    EXPECT_TRUE(saveDxf(*database).contains(
        dxfText("0 CIRCLE|5 " + handle + "|8 0|67 1|10 1.5|20 2.0|30 0.0|40 0.25|0 ENDSEC|0 EOF", "\n", 0)));
}

TEST(DxfR12, KeepsWhatItHasNoSectionFor)
{
    const auto database = openDxf(dxfText(tests::smallR12Drawing(true), "\n", 0));
    const AcDbObjectId root = acdbEnsureNamedObjects(*database);
    AcDbObjectPointer<AcDbEntity> circle(tests::object(*database, 0xA2), AcDb::kForWrite);
    const AcDbHandle dictionary = circle->createExtensionDictionary().handle();
    circle.close();
    const AcDbObjectId special = tests::append(database->modelSpaceId(), {{0, QStringLiteral("QUILLTEST")},
                                                                          {100, QStringLiteral("AcDbEntity")},
                                                                          {8, QStringLiteral("0")},
                                                                          {100, QStringLiteral("QuillTest")},
                                                                          {90, std::int64_t(5)}});
    const auto again = openDxf(saveDxf(*database));
    EXPECT_EQ(again->version(), DrawingVersion::r12);
    EXPECT_EQ(again->namedObjectsDictionaryId().handle(), root.handle());
    AcDbObjectPointer<AcDbEntity> reread(tests::object(*again, 0xA2), AcDb::kForRead);
    ASSERT_TRUE(reread);
    EXPECT_EQ(reread->extensionDictionary().handle(), dictionary);
    const ResbufList kept = tests::groupsOf(*again, special.handle().value);
    const ResbufList expected{{0, QStringLiteral("QUILLTEST")},    {5, special.handle()},
                              {100, QStringLiteral("AcDbEntity")}, {8, QStringLiteral("0")},
                              {100, QStringLiteral("QuillTest")},  {90, std::int64_t(5)}};
    EXPECT_EQ(kept, expected);
    EXPECT_EQ(blockList(*again, again->modelSpaceId()), blockList(*database, database->modelSpaceId()));
}

/// A drawing of R12 with a dictionary and a record in it.
static QByteArray drawingWithRecord(const QByteArray &drawing)
{
    const auto database = openDxf(drawing);
    AcDbObjectPointer<AcDbDictionary> root(acdbEnsureNamedObjects(*database), AcDb::kForWrite);
    AcDbObjectId id;
    auto *const record = new AcDbXrecord;
    root->setAt(QStringLiteral("NOTE"), record, id);
    record->setFromRbChain({{1, QStringLiteral("  kept blanks ")}, {310, QByteArray(300, 'x')}});
    record->close();
    root.close();
    return saveDxf(*database);
}

static ResbufList recordOf(const AcDbDatabase &database)
{
    AcDbObjectPointer<AcDbDictionary> root(database.namedObjectsDictionaryId(), AcDb::kForRead);
    AcDbObjectPointer<AcDbXrecord> record(root ? root->getAt(QStringLiteral("NOTE")) : AcDbObjectId(),
                                          AcDb::kForRead);
    return record ? record->rbChain() : ResbufList();
}

TEST(DxfR12, KeepsWhatItLacksInComments)
{
    for (const QByteArray &lineEnd : {QByteArray("\r\n"), QByteArray("\n")}) {
        const QByteArray bytes = drawingWithRecord(dxfText(tests::smallR12Drawing(true), lineEnd));
        EXPECT_FALSE(bytes.contains(lineEnd + "OBJECTS" + lineEnd));
        const auto database = openDxf(bytes);
        EXPECT_THAT(database->repairs(), testing::IsEmpty());
        const ResbufList chain = recordOf(*database);
        ASSERT_EQ(chain.size(), 4u);
        EXPECT_EQ(chain[0].text(), "  kept blanks ");
        EXPECT_EQ(saveDxf(*database), bytes);

        tests::appendCircle(database->modelSpaceId());
        const QByteArray changed = saveDxf(*database);
        EXPECT_EQ(recordOf(*openDxf(changed)), chain);
        EXPECT_EQ(changed.count("QUILLNOTE SECTIONS 1"), 1);

        // With the last object the comments go.
        tests::erase(*database, database->namedObjectsDictionaryId().handle().value);
        EXPECT_FALSE(saveDxf(*database).contains("QUILLNOTE"));
    }
}

TEST(DxfR12, ReadsWhatIsLeftOfDamagedComments)
{
    const QByteArray whole = drawingWithRecord(dxfText(tests::smallR12Drawing(true)));
    const auto foreign =
        openDxf(QByteArray(whole).replace("999\r\n|XRECORD", "999\r\nsomebody else\r\n999\r\n|XRECORD"));
    EXPECT_EQ(recordOf(*foreign).size(), 4u);
    EXPECT_TRUE(saveDxf(*foreign).contains("somebody else"));

    QByteArray endless = whole;
    endless.replace("999\r\nQUILLNOTE END\r\n", "");
    EXPECT_EQ(openDxf(endless)->repairs().size(), 1);
    EXPECT_EQ(recordOf(*openDxf(endless)).size(), 4u);

    for (qsizetype size = whole.indexOf("QUILLNOTE SECTIONS"); size < whole.size(); ++size) {
        const auto cut = openDxf(whole.left(size));
        tests::appendCircle(cut->modelSpaceId());
        const auto again = openDxf(saveDxf(*cut));
        EXPECT_TRUE(blockList(*again, again->modelSpaceId())
                        .startsWith(QStringLiteral("CIRCLE A2 | POLYLINE A3 | ")));
    }
}

/// Lines of kept objects in a file.
static QByteArrayList keptLines(const QByteArray &file)
{
    QByteArrayList kept;
    for (const QByteArray &line : file.split('\n')) {
        if (line.startsWith('|'))
            kept.append(line);
    }
    std::ranges::sort(kept);
    return kept;
}

// Whatever stands around them: a blank line, an open section, damage in the comments themselves.
TEST(DxfR12, FindsKeptObjectsByThemselves)
{
    const QByteArray whole = drawingWithRecord(dxfText(tests::smallR12Drawing(true)));
    const QByteArray plain = dxfText(tests::smallR12Drawing(true));
    const QByteArray blank = drawingWithRecord(QByteArray(plain).replace("  0\r\nEOF", "\r\n  0\r\nEOF"));
    EXPECT_EQ(recordOf(*openDxf(blank)).size(), 4u);
    const QByteArray open =
        QByteArray(whole).replace("  0\r\nENDSEC\r\n999\r\nQUILLNOTE", "999\r\nQUILLNOTE");
    ASSERT_NE(open, whole);
    for (const QByteArray &file : {blank, open}) {
        const auto database = openDxf(file);
        EXPECT_EQ(recordOf(*database).size(), 4u);
        tests::setGroup(*database, database->getAcDbObjectId({0xA9}).isValid() ? 0xA9 : 0xA2, 62,
                        std::int64_t(3));
        const auto again = openDxf(saveDxf(*database));
        EXPECT_EQ(recordOf(*again).size(), 4u);
        EXPECT_EQ(keptLines(saveDxf(*database)), keptLines(file));
    }
}

TEST(DxfR12, LosesNoKeptLineToOneWrongByte)
{
    const QByteArray whole = drawingWithRecord(dxfText(tests::smallR12Drawing(true)));
    const QByteArrayList lines = keptLines(whole);
    for (qsizetype at = whole.indexOf("999\r\nQUILLNOTE"); at < whole.size(); ++at) {
        for (const char byte : {'\n', 'x', '9'}) {
            QByteArray damaged = whole;
            damaged[at] = byte;
            const auto database = openDxf(damaged);
            tests::appendCircle(database->modelSpaceId());
            const QByteArray saved = saveDxf(*database);
            // Lines that are no kept ones any more stay as they are.
            qsizetype lost = 0;
            for (const QByteArray &line : lines)
                lost += !saved.contains(line.mid(1).trimmed());
            EXPECT_LE(lost, 1) << "byte " << at << ", " << int(byte);
            EXPECT_LE(keptLines(damaged).size(), keptLines(saved).size() + 2) << "byte " << at;
        }
    }
}

// What saving mends at the file's end stands before the comments, or they would not be found again.
TEST(DxfR12, PutsCommentsBehindWhatItMends)
{
    const QByteArray groups = tests::smallR12Drawing(true);
    const QByteArray noEnds = groups.chopped(QByteArrayView("|0 ENDSEC|0 EOF").size());
    const QByteArray noEntities = groups.left(groups.indexOf("0 SECTION|2 ENTITIES")) + "0 EOF";
    for (const QByteArray &damaged : {dxfText(noEnds), dxfText(noEnds).chopped(2), dxfText(noEntities)}) {
        const QByteArray bytes = drawingWithRecord(damaged);
        EXPECT_TRUE(bytes.endsWith("999\r\nQUILLNOTE END\r\n  0\r\nEOF\r\n"));
        const auto database = openDxf(bytes);
        EXPECT_THAT(database->repairs(), testing::IsEmpty());
        EXPECT_EQ(recordOf(*database).size(), 4u);
        tests::appendCircle(database->modelSpaceId());
        const auto again = openDxf(saveDxf(*database));
        EXPECT_THAT(again->repairs(), testing::IsEmpty());
        EXPECT_EQ(recordOf(*again), recordOf(*database));
    }
}
