// Reading DWG files made by hand: what objects decode to, and what damage does.
#include "host/acdb/dbentity.h"
#include "host/acdb/dbsymtb.h"
#include "host/formats/dwg/dwgkinds.h"
#include "host/formats/dwg/dwgreader.h"
#include "host/formats/dxf/dxfexport.h"
#include "host/formats/dxf/dxfreader.h"
#include "tests/host/formats/dwg/dwg_support.h"
#include "tests/support/files.h"

#include <gmock/gmock.h>

#include <random>

namespace
{

constexpr DrawingVersion kVersions[] = {DrawingVersion::r2000, DrawingVersion::r2004, DrawingVersion::r2007,
                                        DrawingVersion::r2010, DrawingVersion::r2013, DrawingVersion::r2018};

base::Result<std::unique_ptr<AcDbDatabase>, QString> open(const QByteArray &bytes)
{
    return readDwg(base::FileBytes::fromByteArray(bytes), QStringLiteral("test.dwg"));
}

ResbufList groupsOf(const AcDbDatabase &database, std::uint64_t handle)
{
    return database.fileGroups(*database.getAcDbObjectId({handle}).stub());
}

/// The object's own groups from a subclass on.
ResbufList from(const ResbufList &groups, const char *subclass)
{
    const std::size_t begin = subclassBegin(groups, QString::fromLatin1(subclass));
    return {groups.begin() + std::ptrdiff_t(begin), groups.end()};
}

TEST(DwgReader, DecodesIntoTheGroupsOfDxf)
{
    for (const DrawingVersion version : kVersions) {
        SCOPED_TRACE(int(version));
        const auto opened = open(tests::smallDwg(version));
        ASSERT_TRUE(opened) << qPrintable(opened.error());
        const AcDbDatabase &database = **opened;
        EXPECT_EQ(database.version(), version);
        EXPECT_EQ(database.source()->notUnderstood(), "1 TESTWALL");
        const BlockContents *const model = database.blockContents(database.modelSpaceId());
        ASSERT_TRUE(model);
        ASSERT_EQ(model->entities.size(), 4U);

        const ResbufList line = groupsOf(database, 0x30);
        EXPECT_EQ(findGroup(line, 8)->text(), u"H\u00e4user");
        EXPECT_EQ(findGroup(line, 62)->integer(), 1);
        EXPECT_EQ(findGroup(line, 330)->handle().value, 0x1FU);
        EXPECT_EQ(from(line, "AcDbLine"),
                  (ResbufList{{10, AcGePoint3d(1, 2, 0)}, {11, AcGePoint3d(5, 6.5, 0)}}));

        const ResbufList text = from(groupsOf(database, 0x31), "AcDbText");
        EXPECT_EQ(findGroup(text, 1)->text(), u"90\u00b0 ^J") << "carets are carets in DWG";
        EXPECT_EQ(findGroup(text, 7), nullptr);

        const ResbufList circle = from(groupsOf(database, 0x32), "AcDbCircle");
        EXPECT_EQ(circle, (ResbufList{{39, 0.5},
                                      {10, AcGePoint3d(7, 8, 9)},
                                      {40, 2.0},
                                      {1001, QStringLiteral("TESTAPP")},
                                      {1070, std::int64_t(7)}}));

        const ResbufList layer = groupsOf(database, 0x11);
        EXPECT_EQ(findGroup(layer, 62)->integer(), -3) << "off";
        EXPECT_EQ(findGroup(layer, 6)->text(), u"Continuous");
    }
}

TEST(DwgReader, ShowsTheBitsOfKindsWithoutTable)
{
    for (const DrawingVersion version : kVersions) {
        SCOPED_TRACE(int(version));
        const auto opened = open(tests::smallDwg(version));
        ASSERT_TRUE(opened);
        const ResbufList wall = groupsOf(**opened, 0x33);
        EXPECT_EQ(wall.front().text(), u"TESTWALL");
        EXPECT_EQ(findGroup(wall, version >= DrawingVersion::r2010 ? 160 : 92)->integer(), 8);
        const ResbufList own = from(wall, "AcDbProxyEntity");
        EXPECT_EQ(findGroup(own, 91)->integer(), 500);
        if (version >= DrawingVersion::r2010) {
            EXPECT_EQ(findGroup(own, 161)->integer(), 9);
            EXPECT_EQ(findGroup(own, 310)->bytes(), QByteArray::fromHex("a580"));
            EXPECT_EQ(findGroup(own, 162)->integer(), 18 + 4 * 16);
        }
        EXPECT_EQ(findGroup(own, 340)->handle().value, 0x12U);
    }
}

TEST(DwgReader, IsWrittenAsDxfThatHoldsTheSame)
{
    for (const DrawingVersion version : kVersions) {
        SCOPED_TRACE(int(version));
        const auto opened = open(tests::smallDwg(version));
        ASSERT_TRUE(opened);
        const dxf::Exported exported = dxf::exportDrawing(**opened);
        EXPECT_THAT(exported.losses.join(u'\n').toStdString(), testing::HasSubstr("1 TESTWALL"));
        const auto again =
            readDxf(base::FileBytes::fromByteArray(exported.bytes), QStringLiteral("test.dxf"));
        ASSERT_TRUE(again) << qPrintable(again.error().text());
        EXPECT_EQ((*again)->repairs(), QStringList());
        EXPECT_EQ((*again)->stubCount() - 2, exported.objects)
            << "and a paper space, which every drawing has";
        for (const std::uint64_t handle : {0x30, 0x31, 0x32, 0x11, 0x1F})
            EXPECT_EQ(groupsOf(**again, handle), groupsOf(**opened, handle)) << handle;
        EXPECT_EQ(groupsOf(**again, 0x33).front().text(), u"ACAD_PROXY_ENTITY");
    }
}

TEST(DwgReader, RefusesWhatItCannotRead)
{
    QByteArray encrypted = tests::smallDwg(DrawingVersion::r2013);
    encrypted[0x18] = 1;
    const std::pair<QByteArray, const char *> rows[] = {
        {encrypted, "test.dwg: the drawing is encrypted; save it without a password first"},
        {QByteArray("AC1027"), "test.dwg: the file is too short"},
        {QByteArray("AC1021") + QByteArray(0x500, '\0'), "test.dwg: the file's header is damaged"},
    };
    for (const auto &[bytes, reason] : rows) {
        const auto opened = open(bytes);
        ASSERT_FALSE(opened);
        EXPECT_EQ(opened.error(), reason);
    }
}

/// Opens it if it can and decodes everything; never fails the test by itself.
bool looksThrough(const QByteArray &bytes)
{
    const auto opened = open(bytes);
    if (!opened)
        return false;
    for (std::uint32_t index = 1; index < (*opened)->stubCount(); ++index)
        static_cast<void>((*opened)->fileGroups(*(*opened)->stub(index)));
    return true;
}

TEST(DwgReader, SurvivesCutsAndChangedBytes)
{
    std::mt19937 random(1);
    for (const DrawingVersion version : kVersions) {
        const QByteArray whole = tests::smallDwg(version, true);
        int opened = 0;
        for (int i = 0; i < 300; ++i)
            opened += looksThrough(whole.left(qsizetype(random() % std::size_t(whole.size()))));
        EXPECT_LT(opened, 200);
        for (int i = 0; i < 1000; ++i) {
            QByteArray changed = whole;
            for (unsigned bytes = 1 + random() % 3; bytes > 0; --bytes)
                changed[qsizetype(random() % std::size_t(whole.size()))] = char(random());
            opened += looksThrough(changed);
        }
        EXPECT_GT(opened, 200) << "many changes leave a drawing that can be read";
    }
}

TEST(DwgReader, TellsOfWrongChecksums)
{
    QByteArray bytes = tests::smallDwg(DrawingVersion::r2000);
    const qsizetype circle = bytes.indexOf(QByteArray("TESTAPP"));
    ASSERT_GT(circle, 0);
    bytes.replace("TESTAPP", "TEST!PP");
    const auto opened = open(bytes);
    ASSERT_TRUE(opened);
    EXPECT_THAT((*opened)->repairs(),
                testing::Contains("1 objects have a wrong checksum; they are read as they are"));
}

/// Every row is parsed; a mistake in it is a fault of the programmer and ends the program.
TEST(DwgKinds, EveryTypeHasARowOrAName)
{
    for (const int type : {0x01, 0x13, 0x2C, 0x4D, 0x4E, 0x52})
        EXPECT_TRUE(dwg::kindOfType(type)) << type;
    EXPECT_STREQ(dwg::nameOfType(0x21), "SHAPE");
    EXPECT_EQ(dwg::kindOfType(0x21), nullptr);
}

/// The fuzzer starts from these.
TEST(DwgReader, CorpusHoldsTheSmallDrawings)
{
    for (const DrawingVersion version : {DrawingVersion::r2000, DrawingVersion::r2013}) {
        const QString name = QStringLiteral("corpus/dwg/small_%1.dwg").arg(int(version));
        EXPECT_EQ(tests::readFile(tests::testDataPath(name)), tests::smallDwg(version));
    }
}

} // namespace
