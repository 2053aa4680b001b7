// The scanners: where groups begin and end in text and in binary, and how they get over damage.
#include "dxf_support.h"

#include "host/formats/dxf/dxfscan.h"

using dxf::Step;

namespace
{

QString shown(std::string_view value)
{
    return QString::fromLatin1(value.data(), qsizetype(value.size()));
}

/// "0=LINE 8=0", then how the scan ended.
template <class Scanner>
QString scanned(Scanner scanner)
{
    QString list;
    dxf::Group group;
    Step step;
    while ((step = scanner.next(group)) == Step::group)
        list += QStringLiteral("%1=%2 ").arg(group.code).arg(shown(group.value));
    return list + (step == Step::end   ? QStringLiteral("end")
                   : step == Step::cut ? QStringLiteral("cut")
                                       : QStringLiteral("damaged"));
}

QString scannedText(std::string_view bytes)
{
    return scanned(dxf::TextScanner(bytes, dxf::TextScanner::lineEndOf(bytes)));
}

QString scannedBinary(const QByteArray &bytes, bool shortCodes)
{
    const std::string_view all(bytes.data(), std::size_t(bytes.size()));
    return scanned(dxf::BinaryScanner(all.substr(dxf::kBinarySentinel.size()), shortCodes));
}

} // namespace

TEST(TextScanner, TakesAllLineEndsAndBlanksAroundCodes)
{
    EXPECT_EQ(scannedText("  0\r\nLINE\r\n  8\r\n0\r\n"), "0=LINE 8=0 end");
    EXPECT_EQ(scannedText("0\nLINE\n8\n0\n"), "0=LINE 8=0 end");
    EXPECT_EQ(scannedText("  0\rLINE\r  8\r0\r"), "0=LINE 8=0 end");
    EXPECT_EQ(scannedText("  0\r\nLINE\n\t8 \r\n0\r\n"), "0=LINE 8=0 end") << "mixed";
    EXPECT_EQ(scannedText("1070\n-5\n -3\nx\n"), "1070=-5 -3=x end");
    EXPECT_EQ(scannedText("1\n a long text with blanks at both ends  \n"),
              "1= a long text with blanks at both ends   end");
}

TEST(TextScanner, TakesAMissingLastLineEndAndStopsInsideAGroup)
{
    EXPECT_EQ(scannedText("0\nLINE\n8\nWALL"), "0=LINE 8=WALL end");
    EXPECT_EQ(scannedText("0\nLINE\n8\n"), "0=LINE cut");
    EXPECT_EQ(scannedText("0\nLINE\n8"), "0=LINE cut");
    EXPECT_EQ(scannedText("0\nEOF\n\n \n\x1a"), "0=EOF end") << "blanks behind the last group";
}

TEST(TextScanner, RefusesWhatIsNoCode)
{
    for (const char *const code : {"", "1.5", "LINE", "1 2", "123456", "--1"})
        EXPECT_EQ(scannedText(std::string("0\nLINE\n") + code + "\nx\n"), "0=LINE damaged") << code;
}

TEST(TextScanner, GoesOnAtTheNextObject)
{
    const std::string_view bytes = "stray\n0\nnot a kind!\n0\n0.0\n  0\nCIRCLE\n8\n0\n";
    dxf::TextScanner scanner(bytes, '\n');
    dxf::Group group;
    EXPECT_EQ(scanner.next(group), Step::damaged);
    scanner.resynchronise();
    ASSERT_EQ(scanner.next(group), Step::group);
    EXPECT_EQ(shown(group.value), "CIRCLE");
    scanner.resynchronise();
    EXPECT_EQ(scanner.position(), scanner.end());
}

TEST(BinaryScanner, KnowsTheSizeOfEveryKindOfValue)
{
    const QByteArray groups =
        "0 LINE|5 1F|10 1.5|70 7|90 100000|160 5|290 1|310 41424344|330 20|1070 3|1071 9|999 note";
    dxf::Group group;
    for (const bool shortCodes : {false, true}) {
        const QByteArray bytes = tests::dxfBinary(groups, shortCodes);
        const std::string_view body = std::string_view(bytes.data(), std::size_t(bytes.size())).substr(22);
        EXPECT_EQ(dxf::hasShortCodes(body), shortCodes);
        dxf::BinaryScanner scanner(body, shortCodes);
        QList<int> codes;
        std::size_t bytesOfValues = 0;
        while (scanner.next(group) == Step::group) {
            codes += group.code;
            bytesOfValues += group.value.size();
        }
        EXPECT_EQ(codes, (QList<int>{0, 5, 10, 70, 90, 160, 290, 310, 330, 1070, 1071, 999}));
        EXPECT_EQ(bytesOfValues, 4u + 2 + 8 + 2 + 4 + 8 + 1 + 4 + 2 + 2 + 4 + 4);
        EXPECT_EQ(scanner.position(), scanner.end());
    }
}

TEST(BinaryScanner, StopsInsideAGroupAndGoesOnAtTheNextObject)
{
    const QByteArray whole = tests::dxfBinary("0 LINE|8 WALL|10 1.5");
    EXPECT_EQ(scannedBinary(whole.chopped(1), false), "0=LINE 8=WALL cut");
    EXPECT_EQ(scannedBinary(whole.chopped(9), false), "0=LINE 8=WALL cut");

    QByteArray damaged = tests::dxfBinary("0 LINE|8 WALL");
    damaged += "\x40\x30garbage";
    damaged += tests::dxfBinary("0 CIRCLE|8 0").mid(22);
    const std::string_view body = std::string_view(damaged.data(), std::size_t(damaged.size())).substr(22);
    dxf::BinaryScanner scanner(body, false);
    dxf::Group group;
    while (scanner.next(group) == Step::group) {
    }
    scanner.resynchronise();
    ASSERT_EQ(scanner.next(group), Step::group);
    EXPECT_EQ(shown(group.value), "CIRCLE");
}

TEST(ParseHandle, RefusesWhatIsNoHandle)
{
    EXPECT_EQ(dxf::parseHandle(" 1aF "), 0x1AFu);
    EXPECT_EQ(dxf::parseHandle("FFFFFFFFFFFFFFFF"), UINT64_MAX);
    for (const char *const text : {"", "1G", "-1", "11111111111111111", "1 2"})
        EXPECT_EQ(dxf::parseHandle(text), 0u) << text;
}
