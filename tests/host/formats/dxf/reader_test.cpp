// Reading: which objects a drawing has, who owns them, what its tables, blocks, variables and classes are.
#include "dxf_support.h"

#include "tests/support/files.h"

#include <QDir>

#include <gmock/gmock.h>

using tests::blockList;
using tests::dxfBinary;
using tests::dxfText;
using tests::objectList;
using tests::openDxf;

namespace
{

const QString kSmallDrawingObjects =
    QStringLiteral("TABLE 2 | LAYER 10 | LAYER 11 | TABLE 3 | APPID 12 | TABLE 1 | BLOCK_RECORD 20 | "
                   "BLOCK_RECORD 23 | BLOCK_RECORD 26 | "
                   "BLOCK 21 | ENDBLK 22 | BLOCK 24 | ENDBLK 25 | BLOCK 27 | LINE 28 | ENDBLK 29 | CIRCLE 30 "
                   "| INSERT 31 | ATTRIB 32 | "
                   "SEQEND 33 | TEXT 34 | DICTIONARY 40 | DICTIONARY 41 | DICTIONARY 42 | XRECORD 43");

std::uint64_t ownerOf(const AcDbDatabase &database, std::uint64_t handle)
{
    const AcDbObjectId id = tests::object(database, handle);
    return database.stub(id.stub()->owner)->handle;
}

} // namespace

TEST(DxfReader, FindsTheObjectsOfEveryForm)
{
    const QByteArray groups = tests::smallDrawing();
    const struct {
        const char *form;
        QByteArray bytes;
        DrawingForm format;
    } forms[] = {
        {"CR LF", dxfText(groups), DrawingForm::dxfText},
        {"LF, narrow codes", dxfText(groups, "\n", 0), DrawingForm::dxfText},
        {"CR", dxfText(groups, "\r"), DrawingForm::dxfText},
        {"byte-order mark", "\xef\xbb\xbf" + dxfText(groups), DrawingForm::dxfText},
        {"no last line end", dxfText(groups, "\n").chopped(1), DrawingForm::dxfText},
        {"comments",
         dxfText("999 made by hand|" + QByteArray(groups).replace("|0 ENDSEC", "|999 here|0 ENDSEC")),
         DrawingForm::dxfText},
        {"blanks behind EOF", dxfText(groups) + "\r\n \x1a", DrawingForm::dxfText},
        {"binary", dxfBinary(groups), DrawingForm::dxfBinary},
    };
    for (const auto &form : forms) {
        SCOPED_TRACE(form.form);
        const auto database = openDxf(form.bytes);
        EXPECT_EQ(objectList(*database), kSmallDrawingObjects);
        EXPECT_THAT(database->repairs(), testing::IsEmpty());
        EXPECT_EQ(database->source()->form(), form.format);
        EXPECT_EQ(database->version(), DrawingVersion::r2000);
    }
}

TEST(DxfReader, KnowsTheVersions)
{
    const struct {
        const char *text;
        DrawingVersion version;
    } rows[] = {
        {"AC1009", DrawingVersion::r12},   {"AC1012", DrawingVersion::r13},
        {"AC1014", DrawingVersion::r14},   {"AC1015", DrawingVersion::r2000},
        {"AC1018", DrawingVersion::r2004}, {"AC1021", DrawingVersion::r2007},
        {"AC1024", DrawingVersion::r2010}, {"AC1027", DrawingVersion::r2013},
        {"AC1032", DrawingVersion::r2018}, {"AC1006", DrawingVersion::r12},
        {"AC1099", DrawingVersion::r2018}, {"nonsense", DrawingVersion::r12},
    };
    for (const auto &row : rows) {
        const auto database = openDxf(dxfText(tests::smallDrawing(row.text)));
        EXPECT_EQ(database->version(), row.version) << row.text;
        EXPECT_EQ(objectList(*database), kSmallDrawingObjects) << row.text;
    }
}

TEST(DxfReader, PutsEntitiesIntoTheirBlocks)
{
    const auto database = openDxf(dxfText(tests::smallDrawing()));
    EXPECT_EQ(database->modelSpaceId().handle().value, 0x20u);
    EXPECT_EQ(blockList(*database, database->modelSpaceId()), "CIRCLE 30 | INSERT 31");
    EXPECT_EQ(blockList(*database, database->paperSpaceId()), "TEXT 34");
    EXPECT_EQ(blockList(*database, tests::object(*database, 0x26)), "LINE 28");
    const BlockContents *const door = database->blockContents(tests::object(*database, 0x26));
    ASSERT_TRUE(door && door->blockBegin && door->blockEnd);
    EXPECT_EQ(door->blockBegin->handle, 0x27u);
    EXPECT_EQ(door->blockEnd->handle, 0x29u);
    EXPECT_EQ(acdbSubEntities(tests::object(*database, 0x31)).size(), 2u);
}

TEST(DxfReader, KnowsOwners)
{
    const auto database = openDxf(dxfText(tests::smallDrawing()));
    const std::pair<std::uint64_t, std::uint64_t> owners[] = {
        {0x10, 0x2},  {0x12, 0x3},  {0x20, 0x1}, {0x28, 0x26}, {0x27, 0x26}, {0x30, 0x20}, {0x32, 0x31},
        {0x33, 0x31}, {0x34, 0x23}, {0x40, 0},   {0x41, 0x40}, {0x42, 0x31}, {0x43, 0x42},
    };
    for (const auto &[handle, owner] : owners)
        EXPECT_EQ(ownerOf(*database, handle), owner) << std::hex << handle;
    EXPECT_EQ(database->namedObjectsDictionaryId().handle().value, 0x40u);
    EXPECT_EQ(database->symbolTableId(SymbolTable::layer).handle().value, 0x2u);
    EXPECT_EQ(database->tableRecord(SymbolTable::layer, "wall").handle().value, 0x11u);
    EXPECT_EQ(database->handseed().value, 0x50u);
}

TEST(DxfReader, TakesModelSpaceFromGroup67WithoutOwners)
{
    const auto database = openDxf(dxfText(tests::smallDrawing("AC1014")
                                              .replace("|330 20|100 AcDbE", "|100 AcDbE")
                                              .replace("|330 23|100 AcDbE", "|100 AcDbE")
                                              .replace("|330 26|100 AcDbE", "|100 AcDbE")));
    EXPECT_EQ(blockList(*database, database->modelSpaceId()), "CIRCLE 30 | INSERT 31");
    EXPECT_EQ(blockList(*database, database->paperSpaceId()), "TEXT 34");
    EXPECT_EQ(blockList(*database, tests::object(*database, 0x26)), "LINE 28");
    EXPECT_THAT(database->repairs(), testing::IsEmpty());
}

TEST(DxfReader, DoesNotMistakeOtherGroupsForIdentity)
{
    // Reactors before the owner; 5, 330 and 67 behind the marker belong to the class.
    const auto database =
        openDxf(dxfText(QByteArray(tests::smallDrawing())
                            .replace("0 CIRCLE|5 30|330 20|100 AcDbEntity",
                                     "0 CIRCLE|5 30|102 {ACAD_REACTORS|330 40|330 41|102 }|102 {X|5 77|102 X}"
                                     "|330 20|100 AcDbEntity|5 99|330 23|67 1")));
    EXPECT_EQ(blockList(*database, database->modelSpaceId()), "CIRCLE 30 | INSERT 31");
}

TEST(DxfReader, ReadsVariablesAndClasses)
{
    for (const bool binary : {false, true}) {
        const QByteArray groups = tests::smallDrawing("AC1018");
        const auto database = openDxf(binary ? dxfBinary(groups) : dxfText(groups));
        EXPECT_THAT(database->headerNames(),
                    testing::ElementsAre("$ACADVER", "$DWGCODEPAGE", "$INSBASE", "$CLAYER", "$HANDSEED"));
        EXPECT_EQ(database->headerText("$CLAYER"), "0");
        ASSERT_TRUE(database->headerVariable("$INSBASE"));
        EXPECT_EQ(*database->headerVariable("$INSBASE"), (ResbufList{{10, AcGePoint3d()}}));
        ASSERT_EQ(database->classes().size(), 1u);
        const DrawingClass &special = database->classes().front();
        EXPECT_EQ(special.dxfName, "SPECIAL");
        EXPECT_EQ(special.className, "AcDbSpecial");
        EXPECT_TRUE(special.isEntity && special.fromSource && !special.wasProxy);
    }
}

TEST(DxfReader, KeepsUnknownTablesAndSections)
{
    QByteArray groups = tests::smallDrawing();
    groups.replace("0 TABLE|2 APPID",
                   "0 TABLE|2 FUTURE|5 4|330 0|70 1|0 FUTURE|5 13|330 4|1 x|0 ENDTAB|0 TABLE|2 APPID");
    groups.replace(
        "|0 EOF",
        "|0 SECTION|2 ACDSDATA|70 2|0 ACDSSCHEMA|90 1|0 ENDSEC|0 SECTION|2 THUMBNAILIMAGE|90 3|310 00FF01"
        "|0 ENDSEC|0 EOF");
    const QByteArray bytes = dxfText(groups);
    const auto database = openDxf(bytes);
    EXPECT_THAT(database->repairs(), testing::IsEmpty());
    EXPECT_EQ(ownerOf(*database, 0x13), 0x4u);
    EXPECT_EQ(tests::saveDxf(*database), bytes);
}

TEST(DxfReader, RefusesWhatIsNoDrawing)
{
    const std::pair<QByteArray, const char *> files[] = {
        {"", "test.dxf: the file is empty"},
        {"hello world\n", "test.dxf, line 1: this is no DXF drawing, it has no section"},
        {dxfText("0 EOF"), "test.dxf, line 1: this is no DXF drawing, it has no section"},
        {QByteArray(5000, '\xff'), "test.dxf, line 1: this is no DXF drawing, it has no section"},
        {QByteArray("AutoCAD Binary DXF\r\n\x1a\0", 22),
         "test.dxf, byte 22: this is no DXF drawing, it has no section"},
    };
    for (const auto &[bytes, message] : files) {
        const auto opened = readDxf(base::FileBytes::fromByteArray(bytes), QStringLiteral("test.dxf"));
        ASSERT_FALSE(opened);
        EXPECT_EQ(opened.error().text(), message);
    }
    const auto missing = readDxf(QStringLiteral("/nowhere/plan.dxf"));
    ASSERT_FALSE(missing);
    EXPECT_TRUE(missing.error().text().startsWith(u"/nowhere/plan.dxf"))
        << missing.error().text().toStdString();
}

// The files that the fuzzer starts from: forms and damages of the small drawings.
TEST(DxfReader, OpensTheCorpus)
{
    const QDir folder(tests::testDataPath("corpus/dxf"));
    const QStringList names = folder.entryList({"*.dxf"}, QDir::Files);
    ASSERT_FALSE(names.isEmpty());
    for (const QString &name : names) {
        SCOPED_TRACE(name.toStdString());
        const QByteArray bytes = tests::readFile(folder.filePath(name));
        const auto database = openDxf(bytes);
        EXPECT_EQ(database->repairs().isEmpty(), name.startsWith("small_"));
        EXPECT_NE(blockList(*database, database->modelSpaceId()), "");
        EXPECT_EQ(tests::saveDxf(*database), bytes);
    }
}
