// Decoding: the values of groups, in text and binary, from every code page, sound and malformed.
#include "dxf_support.h"

#include "host/formats/dxf/dxfsource.h"

namespace
{

/// The groups of the first entity of a drawing whose one entity has these groups.
ResbufList entityGroups(const QByteArray &groups, const QByteArray &header = "9 $ACADVER|1 AC1015",
                        bool binary = false)
{
    const QByteArray all =
        "0 SECTION|2 HEADER|" + header + "|0 ENDSEC|0 SECTION|2 ENTITIES|" + groups + "|0 ENDSEC|0 EOF";
    static std::unique_ptr<AcDbDatabase> keptForItsBytes;
    keptForItsBytes = tests::openDxf(binary ? tests::dxfBinary(all) : tests::dxfText(all));
    return keptForItsBytes->fileGroups(*keptForItsBytes->stub(1));
}

QString textIn(const QByteArray &bytes, const QByteArray &header)
{
    const ResbufList list = entityGroups("0 TEXT|1 " + bytes, header);
    return list.size() == 2 ? list[1].text() : QStringLiteral("(%1 groups)").arg(list.size());
}

} // namespace

TEST(DxfDecoding, GivesEveryKindOfValue)
{
    for (const bool binary : {false, true}) {
        const ResbufList list = entityGroups("0 SPECIAL|5 1F|330 ABCDEF0123|62 -5|90 100000|160 "
                                             "5000000000|290 1|40 2.50|1 words|310 00FF7E|1004 0A|"
                                             "1005 1F|1071 -9",
                                             "9 $ACADVER|1 AC1015", binary);
        const ResbufList expected = {{0, QStringLiteral("SPECIAL")},  {5, AcDbHandle{0x1F}},
                                     {330, AcDbHandle{0xABCDEF0123}}, {62, std::int64_t(-5)},
                                     {90, std::int64_t(100000)},      {160, std::int64_t(5000000000)},
                                     {290, std::int64_t(1)},          {40, 2.5},
                                     {1, QStringLiteral("words")},    {310, QByteArray("\x00\xFF\x7E", 3)},
                                     {1004, QByteArray("\n")},        {1005, AcDbHandle{0x1F}},
                                     {1071, std::int64_t(-9)}};
        EXPECT_EQ(list, expected) << (binary ? "binary" : "text");
    }
}

TEST(DxfDecoding, MergesCoordinatesOnlyWhenTheyStandTogether)
{
    for (const bool binary : {false, true}) {
        const ResbufList list =
            entityGroups("0 SPECIAL|10 1|20 2|30 3|10 4|20 5|10 6|40 7|20 8|30 9|210 0|220 0|230 1|"
                         "1010 1|1020 2|1030 3|11 1|21 2|20 0",
                         "9 $ACADVER|1 AC1015", binary);
        const ResbufList expected = {{0, QStringLiteral("SPECIAL")},
                                     {10, AcGePoint3d(1, 2, 3)},
                                     {10, AcGePoint2d(4, 5)},
                                     {10, 6.0},
                                     {40, 7.0},
                                     {20, 8.0},
                                     {30, 9.0},
                                     {210, AcGePoint3d(0, 0, 1)},
                                     {1010, AcGePoint3d(1, 2, 3)},
                                     {11, AcGePoint2d(1, 2)},
                                     {20, 0.0}};
        EXPECT_EQ(list, expected) << (binary ? "binary" : "text");
    }
}

TEST(DxfDecoding, JoinsCoordinatesThatStandInTheOrderOfTheirCodes)
{
    for (const bool binary : {false, true}) {
        const ResbufList list =
            entityGroups("0 LINE|8 0|10 1|11 4|20 2|21 5|30 3|31 6|39 7|10 1|11 2|20 3|40 9|21 4",
                         "9 $ACADVER|1 AC1015", binary);
        const ResbufList expected = {{0, QStringLiteral("LINE")},
                                     {8, QStringLiteral("0")},
                                     {10, AcGePoint3d(1, 2, 3)},
                                     {11, AcGePoint3d(4, 5, 6)},
                                     {39, 7.0},
                                     {10, AcGePoint2d(1, 3)},
                                     {11, 2.0},
                                     {40, 9.0},
                                     {21, 4.0}};
        EXPECT_EQ(list, expected) << (binary ? "binary" : "text");
    }
    const QByteArray bytes =
        tests::dxfText("0 SECTION|2 HEADER|9 $ACADVER|1 AC1015|0 ENDSEC|0 SECTION|2 ENTITIES|0 LINE|5 31|"
                       "10 1|11 4|20 2|21 5|30 3|31 6|0 ENDSEC|0 EOF");
    const auto database = tests::openDxf(bytes);
    tests::setGroup(*database, 0x31, 62, std::int64_t(3));
    const auto again = tests::openDxf(tests::saveDxf(*database));
    EXPECT_EQ(findGroup(tests::groupsOf(*again, 0x31), 11)->point(), AcGePoint3d(4, 5, 6));
}

TEST(DxfDecoding, KeepsEveryByteInTheSources)
{
    for (const bool binary : {false, true}) {
        const QByteArray groups = tests::smallDrawing();
        const QByteArray bytes = binary ? tests::dxfBinary(groups) : tests::dxfText(groups);
        const auto database = tests::openDxf(bytes);
        const auto &source = dynamic_cast<const DxfSource &>(*database->source());
        for (std::uint32_t index = 1; index < database->stubCount(); ++index) {
            const AcDbStub &stub = *database->stub(index);
            QByteArray joined;
            for (const resbuf &group : source.read(stub)) {
                EXPECT_TRUE(source.holds(group.source));
                joined.append(group.source.data(), qsizetype(group.source.size()));
            }
            EXPECT_EQ(joined, bytes.mid(qsizetype(stub.begin), stub.size));
        }
    }
}

TEST(DxfDecoding, GivesMalformedValuesASenseAndKeepsTheirBytes)
{
    const ResbufList list = entityGroups("0 SPECIAL|40 abc|41 nan|42 1e999|70 1.0|71 x|72  +7|90 "
                                         "99999999999999999999|310 ABC|311 XY|330 none");
    const ResbufList expected = {{0, QStringLiteral("SPECIAL")},
                                 {40, 0.0},
                                 {41, 0.0},
                                 {42, 0.0},
                                 {70, std::int64_t(1)},
                                 {71, std::int64_t(0)},
                                 {72, std::int64_t(7)},
                                 {90, std::int64_t(0)},
                                 {310, QByteArray()},
                                 {311, QByteArray()},
                                 {330, AcDbHandle{0}}};
    EXPECT_EQ(list, expected);
    for (const resbuf &group : list)
        EXPECT_FALSE(group.source.empty());
}

TEST(DxfDecoding, TakesOneEncodingForTheWholeFile)
{
    const QByteArray old = "9 $ACADVER|1 AC1015|9 $DWGCODEPAGE|3 ";
    for (const bool binary : {false, true}) {
        const auto first = [&](const QByteArray &groups, const QByteArray &page) {
            return entityGroups(groups, old + page, binary)[1].text();
        };
        EXPECT_EQ(first("0 TEXT|1 \xd8\xbd pipe|0 TEXT|1 2\xd7\xbd", "ANSI_1252"), u"Ø½ pipe");
        EXPECT_EQ(first("0 TEXT|1 \xca\x96"
                        "1",
                        "ANSI_1251"),
                  u"К–1");
        EXPECT_EQ(first("0 TEXT|1 \xc2\xb2|0 TEXT|1 Gr\xf6\xdf"
                        "e",
                        "ANSI_1252"),
                  u"Â²");
        EXPECT_EQ(first("0 TEXT|1 \xc2\xb2|0 TEXT|1 Größe|0 TEXT|1 评|0 TEXT|1 \xf6", "ANSI_1252"), u"²");
    }
}

TEST(DxfDecoding, ReadsTextByVersionAndCodePage)
{
    const QByteArray old = "9 $ACADVER|1 AC1015|9 $DWGCODEPAGE|3 ";
    EXPECT_EQ(textIn("caf\xe9", old + "ANSI_1252"), u"café");
    EXPECT_EQ(textIn("\xcf\xeb\xe0\xed", old + "ansi_1251"), u"План");
    EXPECT_EQ(textIn("\xcd\xbc", old + "ANSI_936"), u"图");
    EXPECT_EQ(textIn("caf\xe9", "9 $ACADVER|1 AC1009"), u"café") << "no code page named";
    EXPECT_EQ(textIn("\xe5\x9b\xb3\xe9\x9d\xa2", old + "ANSI_1252"), u"図面")
        << "UTF-8 under an old code page";
    EXPECT_EQ(textIn("caf\xc3\xa9", "9 $ACADVER|1 AC1021|9 $DWGCODEPAGE|3 ANSI_1251"), u"café");
    EXPECT_EQ(textIn("\\U+220545,6", "9 $ACADVER|1 AC1021"), u"∅45,6");
    EXPECT_EQ(textIn("\\M+18D5C", "9 $ACADVER|1 AC1015"), u"構") << "code page 932";
    EXPECT_EQ(textIn("a^Jb^ c", "9 $ACADVER|1 AC1015"), u"a\nb^c");
}

TEST(DxfDecoding, LeavesDimensionStylesTheirBlockNames)
{
    const auto database =
        tests::openDxf(tests::dxfText("0 SECTION|2 TABLES|0 TABLE|2 DIMSTYLE|70 1|0 DIMSTYLE|105 2A|2 "
                                      "STANDARD|5 ACAD|6 |0 ENDTAB|0 ENDSEC|0 EOF"));
    const ResbufList list = tests::groupsOf(*database, 0x2A);
    ASSERT_EQ(list.size(), 5u);
    EXPECT_EQ(list[1].handle().value, 0x2Au);
    EXPECT_EQ(list[3].text(), "ACAD");
}
