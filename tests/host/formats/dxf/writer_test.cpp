// Saving: untouched drawings stay byte for byte; changes show up where they belong and nowhere else.
#include "dxf_support.h"

#include "host/acdb/dbdict.h"
#include "host/acdb/dbundo.h"
#include "host/formats/dxf/dxfencoder.h"

#include "tests/support/files.h"

#include <QFile>

#include <gmock/gmock.h>

using tests::append;
using tests::appendCircle;
using tests::dxfBinary;
using tests::dxfText;
using tests::openDxf;
using tests::saveDxf;

namespace
{

/// `expected` is the small drawing with these replacements, each of which must apply once.
QByteArray changedGroups(QByteArray groups,
                         const std::vector<std::pair<QByteArray, QByteArray>> &replacements)
{
    for (const auto &[before, after] : replacements) {
        EXPECT_EQ(groups.count(before), 1) << before.toStdString();
        groups.replace(before, after);
    }
    return groups;
}

const QByteArray kCircle =
    "0 CIRCLE|5 50|330 20|100 AcDbEntity|8 0|420 255|100 AcDbCircle|10 1.5|20 2.0|30 0.0|40 0.25";

void addLayer(AcDbDatabase &database, const QString &name)
{
    AcDbObjectId added;
    ASSERT_EQ(AcDbSymbolTable(database, SymbolTable::layer).addLike("0", name, added), Acad::eOk);
    AcDbObjectPointer<AcDbObject>(added.stub()->object).close();
}

} // namespace

TEST(DxfWriter, SavesUntouchedDrawingsByteForByte)
{
    for (const char *const version : {"AC1009", "AC1012", "AC1015", "AC1021", "AC1032"}) {
        const QByteArray groups = tests::smallDrawing(version);
        for (const QByteArray &bytes : {dxfText(groups), dxfText(groups, "\n", 0), dxfText(groups, "\r"),
                                        "\xef\xbb\xbf" + dxfText(groups, "\n"),
                                        dxfText(groups).chopped(2) + "\n\n trailing", dxfBinary(groups)}) {
            const auto database = openDxf(bytes);
            appendCircle(database->modelSpaceId());
            EXPECT_TRUE(database->undo().undo());
            EXPECT_EQ(saveDxf(*database), bytes);
        }
    }
}

// The whole file after each change, in three forms of the same drawing.
TEST(DxfWriter, PutsEachChangeWhereItBelongs)
{
    const QByteArray small = tests::smallDrawing();
    const std::pair<QByteArray, QByteArray> seed{"9 $HANDSEED|5 50", "9 $HANDSEED|5 51"};
    const struct {
        const char *name;
        std::function<void(AcDbDatabase &)> change;
        QByteArray expected;
    } rows[] = {
        {"changed entity", [](AcDbDatabase &db) { tests::setGroup(db, 0x30, 8, QStringLiteral("0")); },
         changedGroups(small, {{"0 CIRCLE|5 30|330 20|100 AcDbEntity|8 WALL",
                                "0 CIRCLE|5 30|330 20|100 AcDbEntity|8 0"}})},
        {"new in model space", [](AcDbDatabase &db) { appendCircle(db.modelSpaceId()); },
         changedGroups(small, {seed, {"1070 7|0 ENDSEC", "1070 7|" + kCircle + "|0 ENDSEC"}})},
        {"new in paper space", [](AcDbDatabase &db) { appendCircle(db.paperSpaceId()); },
         changedGroups(
             small, {seed,
                     {"1070 7|0 ENDSEC",
                      "1070 7|" +
                          QByteArray(kCircle).replace("330 20", "330 23").replace("420 255", "420 255|67 1") +
                          "|0 ENDSEC"}})},
        {"new in a block", [](AcDbDatabase &db) { appendCircle(tests::object(db, 0x26)); },
         changedGroups(small, {seed,
                               {"|0 ENDBLK|5 29",
                                "|" + QByteArray(kCircle).replace("330 20", "330 26") + "|0 ENDBLK|5 29"}})},
        {"new layer", [](AcDbDatabase &db) { addLayer(db, "NEW"); },
         changedGroups(small,
                       {seed,
                        {"5 2|330 0|100 AcDbSymbolTable|70 2", "5 2|330 0|100 AcDbSymbolTable|70 3"},
                        {"2 WALL|70 0|62 1|6 CONTINUOUS",
                         "2 WALL|70 0|62 1|6 CONTINUOUS|0 LAYER|5 50|330 2|100 AcDbSymbolTableRecord|100 "
                         "AcDbLayerTableRecord|2 NEW|70 0|62 7|6 CONTINUOUS"}})},
        {"erased circle", [](AcDbDatabase &db) { tests::erase(db, 0x30); },
         changedGroups(
             small,
             {{"0 CIRCLE|5 30|330 20|100 AcDbEntity|8 WALL|100 AcDbCircle|10 5.0|20 6.0|30 0.0|40 2.50|",
               ""}})},
        {"erased insert with all it owns", [](AcDbDatabase &db) { tests::erase(db, 0x31); },
         [&] {
             QByteArray groups = small;
             const qsizetype insert = groups.indexOf("|0 INSERT");
             groups.remove(insert, groups.indexOf("|0 TEXT") - insert);
             const qsizetype dictionary = groups.indexOf("|0 DICTIONARY|5 42");
             groups.remove(dictionary, groups.lastIndexOf("|0 ENDSEC") - dictionary);
             return groups;
         }()},
        {"variable",
         [](AcDbDatabase &db) {
             db.setHeaderVariable("$CLAYER", {{8, QStringLiteral("WALL")}});
         },
         changedGroups(small, {{"9 $CLAYER|8 0", "9 $CLAYER|8 WALL"}})},
        {"new variable",
         [](AcDbDatabase &db) {
             db.setHeaderVariable("$LTSCALE", {{40, 2.0}});
         },
         changedGroups(small, {{"5 50|0 ENDSEC", "5 50|9 $LTSCALE|40 2.0|0 ENDSEC"}})},
        {"new dictionary entry",
         [](AcDbDatabase &db) {
             AcDbObjectPointer<AcDbDictionary> root(db.namedObjectsDictionaryId(), AcDb::kForWrite);
             auto *const record = new AcDbXrecord;
             ASSERT_EQ(record->setFromRbChain({{1, QStringLiteral("a")}, {310, QByteArray(128, 'x')}}),
                       Acad::eOk);
             AcDbObjectId id;
             ASSERT_EQ(root->setAt("MARKS", record, id), Acad::eOk);
             record->close();
         },
         changedGroups(small,
                       {seed,
                        {"3 ACAD_GROUP|350 41", "3 ACAD_GROUP|350 41|3 MARKS|350 50"},
                        {"310 00FF10", "310 00FF10|0 XRECORD|5 50|330 40|100 AcDbXrecord|280 1|1 a|310 " +
                                           QByteArray(127, 'x').toHex() + "|310 78"}})},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const auto narrow = [](const QByteArray &groups) { return dxfText(groups, "\n", 0); };
        const auto wide = [](const QByteArray &groups) { return dxfText(groups); };
        const auto binary = [](const QByteArray &groups) { return dxfBinary(groups); };
        for (const std::function<QByteArray(const QByteArray &)> &form :
             {std::function<QByteArray(const QByteArray &)>(narrow),
              std::function<QByteArray(const QByteArray &)>(wide),
              std::function<QByteArray(const QByteArray &)>(binary)}) {
            const auto database = openDxf(form(small));
            row.change(*database);
            const QByteArray saved = saveDxf(*database);
            EXPECT_EQ(saved, form(row.expected));
            EXPECT_EQ(saveDxf(*database), saved) << "saved again";
            EXPECT_THAT(openDxf(saved)->repairs(), testing::IsEmpty());
        }
    }
}

TEST(DxfWriter, WritesNumbersInTheFilesStyle)
{
    QByteArray padded = dxfText(tests::smallDrawing());
    padded.replace("280\r\n0\r\n", "280\r\n     0\r\n"); // The first integer tells.
    padded.replace(padded.indexOf('\r'), 1, {});         // One line with another end tells nothing.
    const auto database = openDxf(padded);
    append(database->modelSpaceId(), {{0, QStringLiteral("SPECIAL")},
                                      {100, QStringLiteral("AcDbEntity")},
                                      {62, std::int64_t(-7)},
                                      {90, std::int64_t(12)},
                                      {160, std::int64_t(1)},
                                      {290, std::int64_t(1)},
                                      {40, 1e20},
                                      {41, 1.0 / 3.0},
                                      {1005, AcDbHandle{0xABC}}});
    EXPECT_TRUE(saveDxf(*database).contains(
        " 62\r\n    -7\r\n 90\r\n       12\r\n160\r\n                 1\r\n290\r\n     1\r\n"
        " 40\r\n1.0E+20\r\n 41\r\n0.3333333333333333\r\n1005\r\nABC\r\n"));
}

TEST(DxfWriter, WritesTextInTheFilesCodePage)
{
    const struct {
        QByteArray version;
        QByteArray page;
        QByteArray bytes;
    } rows[] = {
        {"AC1015", "ANSI_1252", "caf\xe9 \\U+56FE a^Jb^ c"},
        {"AC1015", "ANSI_936", "caf\xa8\xa6 \xcd\xbc a^Jb^ c"},
        {"AC1021", "ANSI_1252", "caf\xc3\xa9 \xe5\x9b\xbe a^Jb^ c"},
    };
    for (const auto &row : rows) {
        const QByteArray groups = tests::smallDrawing(row.version).replace("ANSI_1252", row.page);
        for (const QByteArray &bytes : {dxfText(groups), dxfBinary(groups)}) {
            const auto database = openDxf(bytes);
            const QString text = QStringLiteral("café 图 a\nb^c");
            tests::setGroup(*database, 0x34, 1, text);
            const QByteArray saved = saveDxf(*database);
            EXPECT_TRUE(saved.contains(row.bytes)) << row.page.toStdString();
            EXPECT_EQ(findGroup(tests::groupsOf(*openDxf(saved), 0x34), 1)->text(), text);
        }
    }
}

TEST(DxfWriter, EveryTextComesBackWhateverTheFileHolds)
{
    const QString texts[] = {QStringLiteral("Ø½\" pipe"), QStringLiteral("Â²Ã©"),
                             QStringLiteral("К–1"),       QStringLiteral("臧红波"),
                             QStringLiteral("岑宏宝"),    QStringLiteral("Größe ^ \\U+00B0")};
    for (const char *const page : {"ANSI_1252", "ANSI_1251", "ANSI_936"}) {
        // A file in its code page, and a UTF-8 file that names it.
        for (const char *const present : {"plain", "\xc6\xbd\xc3\xe6\xcd\xbc", "平面图"}) {
            const QByteArray groups = tests::smallDrawing()
                                          .replace("ANSI_1252", page)
                                          .replace("|1 12", QByteArray("|1 ") + present);
            for (const QString &text : texts) {
                const auto database = openDxf(dxfText(groups));
                tests::setGroup(*database, 0x34, 1, text);
                const auto again = openDxf(saveDxf(*database));
                EXPECT_EQ(findGroup(tests::groupsOf(*again, 0x34), 1)->text(), text)
                    << page << ' ' << present;
            }
        }
    }
}

TEST(DxfWriter, AddsClassesAndCountsInstances)
{
    for (const char *const version : {"AC1015", "AC1018"}) {
        const bool counted = QByteArrayView(version) == "AC1018";
        const auto database = openDxf(dxfText(tests::smallDrawing(version), "\n", 0));
        append(
            database->modelSpaceId(),
            {{0, QStringLiteral("SPECIAL")}, {100, QStringLiteral("AcDbEntity")}, {8, QStringLiteral("0")}});
        append(
            database->modelSpaceId(),
            {{0, QStringLiteral("SPECIAL")}, {100, QStringLiteral("AcDbEntity")}, {8, QStringLiteral("0")}});
        const QByteArray saved = saveDxf(*database);
        EXPECT_EQ(saved.contains(dxfText("90 0|91 2|280 0", "\n", 0)), counted);
        EXPECT_EQ(saved.contains(dxfText("90 0|280 0", "\n", 0)), !counted);
    }
}

TEST(DxfWriter, WritesNewBlocks)
{
    for (const QByteArray &groups :
         {tests::smallDrawing(), tests::smallR12Drawing(true), tests::smallR12Drawing(false)}) {
        const auto database = openDxf(dxfText(groups));
        AcDbObjectId gate;
        ASSERT_EQ(AcDbSymbolTable(*database, SymbolTable::block).addLike("DOOR", "GATE", gate), Acad::eOk);
        AcDbObjectPointer<AcDbObject>(gate.stub()->object).close();
        appendCircle(gate);
        appendCircle(database->modelSpaceId());
        const auto again = openDxf(saveDxf(*database));
        EXPECT_THAT(again->repairs(), testing::IsEmpty());
        const AcDbObjectId reread = again->tableRecord(SymbolTable::block, "GATE");
        EXPECT_EQ(tests::blockList(*again, reread), tests::blockList(*database, gate));
        const BlockContents *const contents = again->blockContents(reread);
        ASSERT_TRUE(contents && contents->blockBegin && contents->blockEnd);
        EXPECT_GT(again->handseed().value, contents->blockEnd->handle);
    }
}

TEST(DxfWriter, MakesMissingSectionsAndTablesInTheirPlaces)
{
    const auto database = openDxf(
        dxfText("0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|0 ENDSEC|0 SECTION|2 ENTITIES|0 ENDSEC|0 EOF"));
    AcDbSymbolTable::ensureApplicationId(*database, "QUILL");
    acdbEnsureNamedObjects(*database);
    appendCircle(database->modelSpaceId());
    const QByteArray saved = saveDxf(*database);
    QList<qsizetype> places;
    for (const char *const part :
         {"HEADER\r\n", "TABLES\r\n", "TABLE\r\n", "APPID\r\n", "QUILL\r\n", "ENDTAB\r\n", "ENTITIES\r\n",
          "CIRCLE\r\n", "OBJECTS\r\n", "DICTIONARY\r\n", "EOF\r\n"})
        places += saved.indexOf(part);
    EXPECT_TRUE(std::ranges::is_sorted(places) && places.front() > 0) << saved.toStdString();
    EXPECT_TRUE(saved.contains("$HANDSEED"));
    const auto again = openDxf(saved);
    EXPECT_THAT(again->repairs(), testing::IsEmpty());
    EXPECT_TRUE(again->tableRecord(SymbolTable::appId, "QUILL").isValid());
    EXPECT_FALSE(again->namedObjectsDictionaryId().isNull());
}

TEST(DxfWriter, WritesTheHandlesThatWereSettledAtOpening)
{
    const QByteArray groups = tests::smallDrawing().replace("0 TEXT|5 34", "0 TEXT|5 30");
    const auto database = openDxf(dxfText(groups));
    EXPECT_EQ(database->repairs().size(), 1);
    appendCircle(database->modelSpaceId());
    const auto again = openDxf(saveDxf(*database));
    EXPECT_THAT(again->repairs(), testing::IsEmpty());
    EXPECT_EQ(tests::blockList(*again, again->paperSpaceId()), "TEXT 50");
    EXPECT_EQ(tests::blockList(*again, again->modelSpaceId()), "CIRCLE 30 | INSERT 31 | CIRCLE 51");
}

TEST(DxfWriter, ReplacesTheFileOrLeavesIt)
{
    const tests::TempDir folder;
    const QByteArray bytes = dxfText(tests::smallDrawing());
    const QString path = folder.write("plan.dxf", bytes);
    auto opened = readDxf(path);
    ASSERT_TRUE(opened);
    AcDbDatabase &database = **opened;
    appendCircle(database.modelSpaceId());
    ASSERT_TRUE(writeDxf(database, path));
    EXPECT_EQ(tests::readFile(path), saveDxf(database));
    EXPECT_EQ(folder.fileNames(), QStringList("plan.dxf"));

    const auto refused = writeDxf(database, folder.path("missing/plan.dxf"));
    ASSERT_FALSE(refused);
    EXPECT_TRUE(refused.error().text().contains("missing/plan.dxf"));
    AcDbDatabase fromNowhere;
    EXPECT_FALSE(writeDxf(fromNowhere));
}
