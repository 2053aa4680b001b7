// Damage: what is mended at opening is said with its line, and what saving makes of it.
#include "dxf_support.h"

#include <gmock/gmock.h>

using tests::blockList;
using tests::dxfBinary;
using tests::dxfText;
using tests::openDxf;
using tests::saveDxf;

namespace
{

const QByteArray kEntities = "0 SECTION|2 ENTITIES|0 LINE|5 A|8 0|0 CIRCLE|5 B|8 0";

struct Damage {
    const char *name;
    QByteArray bytes;
    QString repair; ///< The beginning of the first repair.
    QString model;  ///< What model space holds all the same.
};

std::vector<Damage> damages()
{
    const QByteArray stray = dxfText("0 SECTION|2 ENTITIES|0 LINE|5 A|8 0", "\n") + "torn text\n" +
                             dxfText("0 CIRCLE|5 B|8 0|0 ENDSEC|0 EOF", "\n");
    return {
        {"no EOF", dxfText(kEntities + "|0 ENDSEC"), "Line 19: the file ends without EOF.",
         "LINE A | CIRCLE B"},
        {"no ENDSEC", dxfText(kEntities + "|0 EOF"), "Line 17: the section ENTITIES has no end.",
         "LINE A | CIRCLE B"},
        {"next section", dxfText(kEntities + "|0 SECTION|2 OBJECTS|0 ENDSEC|0 EOF"),
         "Line 17: the section ENTITIES has no end.", "LINE A | CIRCLE B"},
        {"an odd line", stray, "Line 11: a group code is missing here, reading went on at line 12.",
         "LINE A | CIRCLE B"},
        {"no kind", dxfText("0 SECTION|2 ENTITIES|0 LINE|5 A|8 0|0 ?!|0 CIRCLE|5 B|8 0|0 ENDSEC|0 EOF"),
         "Line 11: \"?!\" is no kind of object.", "LINE A | CIRCLE B"},
        {"a handle twice", dxfText(kEntities + "|0 ARC|5 A|8 0|0 ENDSEC|0 EOF"),
         "ARC: handle A is used twice", "LINE A | CIRCLE B | ARC C"},
        {"no table end",
         dxfText(
             "0 SECTION|2 TABLES|0 TABLE|2 LAYER|70 1|0 LAYER|2 0|0 TABLE|2 STYLE|70 0|0 ENDTAB|0 ENDSEC|" +
             kEntities + "|0 ENDSEC|0 EOF"),
         "Line 15: the table LAYER has no end.", "LINE A | CIRCLE B"},
        {"no block end",
         dxfText("0 SECTION|2 BLOCKS|0 BLOCK|8 0|2 X|0 POINT|8 0|0 ENDSEC|" + kEntities + "|0 ENDSEC|0 EOF"),
         "Line 15: the block X has no end.", "LINE A | CIRCLE B"},
        {"outside of sections", dxfText(kEntities + "|0 ENDSEC|0 ARC|5 C|0 EOF"),
         "Line 19: ARC stands outside of any section, it is kept but not used.", "LINE A | CIRCLE B"},
        {"in the wrong table",
         dxfText("0 SECTION|2 TABLES|0 TABLE|2 BLOCK_RECORD|5 1|70 1|0 LAYER|5 2|2 *Model_Space|0 ENDTAB|0 "
                 "ENDSEC|" +
                 kEntities + "|0 ENDSEC|0 EOF"),
         "Line 13: LAYER stands in the table BLOCK_RECORD, it is used all the same.", "LINE A | CIRCLE B"},
        {"block records outside of a table",
         dxfText("0 SECTION|2 TABLES|0 BLOCK_RECORD|5 1F|2 *Model_Space|0 ENDSEC|0 SECTION|2 ENTITIES|0 "
                 "LINE|5 A|330 1F|"
                 "100 AcDbEntity|8 0|0 ENDSEC|0 EOF"),
         "Line 5: BLOCK_RECORD stands outside of any table, it is used all the same.", "LINE A"},
        {"a lone vertex", dxfText(kEntities + "|0 VERTEX|5 C|8 0|0 ENDSEC|0 EOF"),
         "Line 17: a part of a polyline or insert stands alone.", "LINE A | CIRCLE B | VERTEX C"},
        {"cut in a code", dxfText(kEntities + "|62").chopped(4), "Line 17: the file ends inside a group.",
         "LINE A | CIRCLE B"},
        {"nothing readable behind", dxfText(kEntities) + "torn\r\nmore\r\n",
         "Line 17: a group code is missing here, nothing behind it could be read.", "LINE A | CIRCLE B"},
    };
}

} // namespace

TEST(DxfRepair, MendsAndSaysWhere)
{
    for (const Damage &damage : damages()) {
        SCOPED_TRACE(damage.name);
        const auto database = openDxf(damage.bytes);
        ASSERT_FALSE(database->repairs().isEmpty());
        EXPECT_TRUE(database->repairs().front().startsWith(damage.repair))
            << database->repairs().front().toStdString();
        EXPECT_EQ(blockList(*database, database->modelSpaceId()), damage.model);
        EXPECT_EQ(saveDxf(*database), damage.bytes) << "saved untouched";
    }
}

TEST(DxfRepair, SavingWithAChangeLeavesASoundFile)
{
    for (const Damage &damage : damages()) {
        SCOPED_TRACE(damage.name);
        const auto database = openDxf(damage.bytes);
        tests::appendCircle(database->modelSpaceId());
        const auto again = openDxf(saveDxf(*database));
        QStringList left = again->repairs();
        left.removeIf([](const QString &repair) {
            // Bytes that are no part of the drawing stay as they are.
            return repair.contains(u"group code") || repair.contains(u"no kind") ||
                   repair.contains(u"outside") || repair.contains(u"stands ");
        });
        EXPECT_THAT(left, testing::IsEmpty());
        const QString before = blockList(*database, database->modelSpaceId());
        EXPECT_EQ(blockList(*again, again->modelSpaceId()), before);
    }
}

TEST(DxfRepair, KeepsTheDamagedBytesOfAChangedObject)
{
    const QByteArray before = dxfText("0 SECTION|2 ENTITIES|0 LINE|5 A|8 0", "\n");
    const QByteArray after = "torn\ntext\n" + dxfText("0 CIRCLE|5 B|8 0|0 ENDSEC|0 EOF", "\n");
    const auto database = openDxf(before + after);
    tests::setGroup(*database, 0xA, 8, QStringLiteral("WALL"));
    EXPECT_EQ(saveDxf(*database), dxfText("0 SECTION|2 ENTITIES|0 LINE|5 A|8 WALL", "\n") + after);
}

TEST(DxfRepair, MakesMissingBlockRecordsAndOwners)
{
    QByteArray groups = tests::smallDrawing();
    groups.replace("|0 BLOCK_RECORD|5 26|330 1|100 AcDbSymbolTableRecord|100 AcDbBlockTableRecord|2 DOOR",
                   "");
    groups.replace("0 CIRCLE|5 30|330 20", "0 CIRCLE|5 30|330 FFF");
    const auto database = openDxf(dxfText(groups));
    const AcDbObjectId door = database->tableRecord(SymbolTable::block, "DOOR");
    EXPECT_EQ(blockList(*database, door), "LINE 28");
    EXPECT_EQ(blockList(*database, database->modelSpaceId()), "CIRCLE 30 | INSERT 31");
    EXPECT_THAT(
        database->repairs(),
        testing::UnorderedElementsAre(
            testing::ResultOf(
                [](const QString &s) { return s.contains(u"the block DOOR has no block record"); }, true),
            testing::ResultOf([](const QString &s) { return s.contains(u"the owner FFF is no layout"); },
                              true)));
}

TEST(DxfRepair, SayingWhereStaysShort)
{
    QByteArray bytes = dxfText("0 SECTION|2 ENTITIES", "\n");
    for (int i = 0; i < 5000; ++i)
        bytes += "torn\n" + dxfText("0 LINE|8 0", "\n");
    const auto database = openDxf(bytes + dxfText("0 ENDSEC|0 EOF", "\n"));
    EXPECT_EQ(database->repairs().size(), 1001);
    EXPECT_EQ(database->repairs().back(), "4000 more repairs are not listed.");
}

// Every truncation opens or is refused; what opens is saved as the same bytes, and changed it can be read
// again.
TEST(DxfRepair, TakesEveryTruncation)
{
    struct Form {
        const char *name;
        QByteArray whole;
        bool binary;
    };
    const QByteArray groups = tests::smallDrawing();
    const QByteArray old = tests::smallR12Drawing(true);
    const Form forms[] = {{"text", dxfText(groups), false},
                          {"binary", dxfBinary(groups), true},
                          {"text of R12", dxfText(old), false},
                          {"binary of R12", dxfBinary(old, true), true}};
    for (const auto &[name, whole, binary] : forms) {
        int opened = 0;
        for (qsizetype size = 0; size < whole.size(); ++size) {
            SCOPED_TRACE(QStringLiteral("%1 bytes, %2").arg(size).arg(QLatin1String(name)).toStdString());
            auto result = readDxf(base::FileBytes::fromByteArray(QByteArrayView(whole).first(size)),
                                  QStringLiteral("cut"));
            if (!result)
                continue;
            ++opened;
            AcDbDatabase &database = **result;
            for (std::uint32_t index = 1; index < database.stubCount(); ++index)
                (void)database.fileGroups(*database.stub(index));
            ASSERT_EQ(saveDxf(database), whole.first(size));
            const bool onlyBlanksCut = size + 2 >= whole.size();
            EXPECT_EQ(database.repairs().isEmpty(), onlyBlanksCut && !binary);
            tests::appendCircle(database.modelSpaceId());
            const auto again = openDxf(saveDxf(database));
            ASSERT_EQ(blockList(*again, again->modelSpaceId()), blockList(database, database.modelSpaceId()));
            if (HasFatalFailure())
                return;
        }
        EXPECT_GT(opened, whole.size() * 9 / 10);
    }
}
