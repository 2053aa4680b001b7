// Code pages and the escapes of drawing strings. The bytes come from the published code charts.
#include "host/base/encoding_vote.h"
#include "host/base/text_codec.h"

#include <gtest/gtest.h>

#include <ostream>

using base::decodeDrawingText;
using base::encodeDrawingText;
using base::Substitute;
using base::TextCodec;

namespace
{
struct Golden {
    const char *page;
    const char *bytes;
    const char16_t *text;
};
std::ostream &operator<<(std::ostream &out, const Golden &golden)
{
    return out << golden.page;
}
} // namespace

class CodePageTest : public testing::TestWithParam<Golden>
{
};

TEST_P(CodePageTest, ReadsAndWritesTheGoldenBytes)
{
    const auto &[page, bytes, text] = GetParam();
    const TextCodec codec(page);
    bool clean = false;
    EXPECT_TRUE(codec.known());
    EXPECT_EQ(codec.decode(bytes, clean), QString::fromUtf16(text));
    EXPECT_TRUE(clean);
    EXPECT_EQ(codec.encode(QString::fromUtf16(text), clean).toHex(), QByteArray(bytes).toHex());
    EXPECT_TRUE(clean);
}

INSTANTIATE_TEST_SUITE_P(
    Pages, CodePageTest,
    testing::Values(Golden{"ANSI_936",
                           "\xC6\xC0\xCD\xBC"
                           "a\x80\x81\x5C",
                           u"评图a€乗"},
                    Golden{"gb2312", "\xB1\xEA\xC7\xA9", u"标签"},
                    Golden{"ansi_932", "\x90\x7D\x96\xCA\x83\x5C\xB1\\", u"図面ソｱ\\"},
                    Golden{"ANSI_949", "\xB5\xB5\xB8\xE9\x8C\x63", u"도면똠"},
                    Golden{"ANSI_950", "\xB9\xCF\xAD\xB1\xA5\x5C\xA3\xE1", u"圖面功€"},
                    Golden{"BIG5", "\xB9\xCF", u"圖"}, Golden{"johab", "\x88\x61\xD0\x65\\", u"가한\\"},
                    Golden{"ANSI_1250", "\xE8\x9A", u"čš"}, Golden{"ANSI_1251", "\xD7\xE5\xF0", u"Чер"},
                    Golden{"ANSI_1252",
                           "\xD8"
                           "50 \xB1\x80",
                           u"Ø50 ±€"},
                    Golden{"ANSI_1253", "\xE4", u"δ"}, Golden{"ansi-1254", "\xFE", u"ş"},
                    Golden{"ANSI_1255", "\xF9", u"ש"}, Golden{"ANSI_1256", "\xD3", u"س"},
                    Golden{"ANSI_1257", "\xE0", u"ą"}, Golden{"ANSI_1258", "\xFE", u"₫"},
                    Golden{"ANSI_874", "\xA1\x80", u"ก€"}, Golden{"dos850", "\x9D\xF8", u"Ø°"},
                    Golden{"DOS437", "\xF8", u"°"}, Golden{"iso8859-1", "\xE9", u"é"},
                    Golden{"ISO_8859-5", "\xD0", u"а"},
                    Golden{"utf-8", "\xE8\xAF\x84\xF0\x9F\x98\x80", u"评😀"}));

TEST(TextCodec, UnknownPagesFallBackAndSaySo)
{
    for (const char *name : {"", "ANSI_", "ANSI_99999", "klingon"}) {
        const TextCodec codec(name);
        EXPECT_FALSE(codec.known()) << name;
        EXPECT_EQ(codec.name(), "ANSI_1252") << name;
    }
    EXPECT_EQ(TextCodec::fromDwgNumber(39), TextCodec("ANSI_936"));
    EXPECT_EQ(TextCodec::fromDwgNumber(30).dwgNumber(), 30);
    EXPECT_FALSE(TextCodec::fromDwgNumber(0).known());
}

TEST(TextCodec, BytesWithoutMeaningDoNotSwallowTheirNeighbours)
{
    const TextCodec codec("ANSI_936");
    bool clean = true;
    EXPECT_EQ(codec.decode("\xC6\x31"
                           "2",
                           clean),
              QStringLiteral("\uFFFD12"));
    EXPECT_FALSE(clean);
    EXPECT_EQ(codec.decode("\xC6\xC0\xCD"), QStringLiteral("评\uFFFD")) << "cut in the middle of a character";
    EXPECT_EQ(TextCodec("ASCII").decode("a\xE9"), QStringLiteral("a\uFFFD"));
}

TEST(TextCodec, SubstitutesOncePerCharacter)
{
    const TextCodec codec("GB2312");
    bool lossless = true;
    EXPECT_EQ(codec.encode(u"a😀\u00E5b", lossless), "a??b");
    EXPECT_FALSE(lossless);
    EXPECT_EQ(codec.encode(u"😀\u00E5", Substitute::unicodeEscape), "\\U+D83D\\U+DE00\\U+00E5");
    EXPECT_EQ(TextCodec("utf-8").encode(u"\xD83D评", Substitute::unicodeEscape), "\\U+D83D评");
}

TEST(DrawingText, EscapesBecomeCharacters)
{
    const TextCodec codec("ANSI_936");
    const std::pair<const char *, const char16_t *> rows[] = {
        {"\\U+00B0", u"°"},
        {"\\U+220545,6", u"∅45,6"}, // Four digits, whatever follows.
        {"\\U+d83d\\U+DE00", u"😀"},
        {"\\M+1837D\\M+2B9CF\\M+3B5B5\\M+48861\\M+5C6C0", u"マ圖도가评"},
        {"a^Ib^Jc^Md", u"a\tb\nc\rd"},
        {"1^ 2 ^  ^5 ^", u"1^2 ^ ^5 ^"},
        {"\\U+00G0 \\U+12 \\M+61234 \\M+5FF \\M+5FFFF \\P",
         u"\\U+00G0 \\U+12 \\M+61234 \\M+5FF \\M+5FFFF \\P"},
        {"\xC6\xC0\x81\x5CU+0041\x81\x5E", u"评乗U+0041乛"}, // Second bytes that look like "\" and "^".
    };
    for (const auto &[bytes, text] : rows) {
        EXPECT_EQ(decodeDrawingText(bytes, codec), QString::fromUtf16(text)) << bytes;
    }
    EXPECT_EQ(decodeDrawingText("^@^_", codec), QString::fromUtf16(u"\0\x1F", 2));
}

TEST(DrawingText, EncodesWhatAReaderOfTheCodePageUnderstands)
{
    EXPECT_EQ(encodeDrawingText(u"评°😀", TextCodec("ANSI_1252")), "\\U+8BC4\xB0\\U+D83D\\U+DE00");
    EXPECT_EQ(encodeDrawingText(u"a\tb\nc^J^", TextCodec("ANSI_1252")), "a^Ib^Jc^ J^ ");
    EXPECT_EQ(encodeDrawingText(u"评^\r", TextCodec("utf-8")), "评^ ^M");
    EXPECT_EQ(encodeDrawingText(u"\\U+4E2D \\P \\U+12", TextCodec("utf-8")), "\\U+005CU+4E2D \\P \\U+12");
    EXPECT_EQ(decodeDrawingText("\\U+005CU+4E2D", TextCodec("utf-8")), QStringLiteral("\\U+4E2D"));
    for (const char *page : {"ANSI_936", "ANSI_1252", "ANSI_1361", "utf-8"}) {
        const QString text = QStringLiteral("评图 ^J^ ^^ \t\r\n \\P 100% ∅ ñ 😀 \\S1^ 2;");
        EXPECT_EQ(decodeDrawingText(encodeDrawingText(text, TextCodec(page)).toStdString(), TextCodec(page)),
                  text)
            << page;
    }
}

TEST(DrawingText, EveryCharacterComesBackFromEveryCodePage)
{
    // Every unit alone, between ASCII, and doubled: neighbours must not be taken for one character.
    for (std::uint16_t number = 0; number <= 44; ++number) {
        const TextCodec codec = number == 0 ? TextCodec("utf-8") : TextCodec::fromDwgNumber(number);
        for (char32_t unit = 0; unit <= 0xFFFF; ++unit) {
            const char16_t c = char16_t(unit);
            const char16_t units[] = {c, u' ', u'A', c, u'1', c, c, u'½', c};
            const QString text = QString::fromUtf16(units, std::size(units));
            ASSERT_EQ(decodeDrawingText(encodeDrawingText(text, codec).toStdString(), codec), text)
                << number << " U+" << std::hex << unsigned(unit);
        }
    }
}

TEST(DrawingText, WhatIsWrittenInAnOldPageIsNeverUtf8)
{
    for (const auto &[page, text] :
         std::initializer_list<std::pair<const char *, const char16_t *>>{{"ANSI_1252", u"Ø½\" pipe"},
                                                                          {"ANSI_1252", u"Â²Ã©"},
                                                                          {"ANSI_1251", u"К–1"},
                                                                          {"ANSI_936", u"臧红波"},
                                                                          {"ANSI_936", u"岑宏宝"}}) {
        const QByteArray bytes = encodeDrawingText(text, TextCodec(page));
        EXPECT_FALSE(base::looksLikeUtf8(bytes.toStdString())) << bytes.toStdString();
        EXPECT_EQ(decodeDrawingText(bytes.toStdString(), TextCodec(page)), QString::fromUtf16(text));
    }
    EXPECT_EQ(encodeDrawingText(u"Größe Ø", TextCodec("ANSI_1252")), "Gr\xF6\xDF"
                                                                     "e \xD8");
}

TEST(DrawingText, Utf8IsKnownByItsBytes)
{
    EXPECT_TRUE(base::looksLikeUtf8("评"));
    EXPECT_FALSE(base::looksLikeUtf8("plain"));
    EXPECT_FALSE(base::looksLikeUtf8("\xC0\x80")) << "overlong";
    EXPECT_FALSE(base::looksLikeUtf8("\xED\xA0\x80")) << "surrogate";
    EXPECT_FALSE(base::looksLikeUtf8("评\xE8\xAF")) << "cut";
}

TEST(EncodingVote, AFileIsWhatMostOfItsStringsAre)
{
    struct Row {
        const char *page;
        const char *lines;
        bool isUtf8;
    };
    const QByteArray names = TextCodec("ANSI_936").encode(u"臧红波\n岑宏宝\n模\n");
    const QByteArray plan = TextCodec("ANSI_936").encode(u"臧红波\n一层平面图\n");
    const QByteArray korean = TextCodec("ANSI_949").encode(u"도면\n");
    const Row rows[] = {
        {"ANSI_1252", "plain\n", false},
        {"ANSI_1252", "\xD8\xBC \xD8\xBD \xD8\xBE 2\xD7\xBD\n", false}, // "Ø¼ Ø½ Ø¾ 2×½"
        {"ANSI_1252", "Größe\n", true},
        {"ANSI_1252", "План\n", true},
        {"ANSI_1252", "评\n", true},
        {"ANSI_1252", "m²\n", true},
        {"ANSI_1252", "m²\r\nGr\xF6\xDF\r\n\xE9\r\n", false},
        {"ANSI_1252", "Größe\nMaß\ncut \xC3\n", true},
        {"ANSI_1251",
         "\xCA\x96"
         "1\n",
         false}, // "К–1"
        {"ANSI_1251", "План К–1\n", true},
        {"ANSI_936", names.constData(), false},
        {"ANSI_936", plan.constData(), false},
        {"ANSI_936", "评图标签\n", true},
        {"ANSI_936", "岑宏宝\nØ\n", true},
        {"ANSI_949", korean.constData(), false},
        {"ANSI_949", "도면\n", true},
    };
    for (const auto &[page, lines, isUtf8] : rows) {
        base::EncodingVote vote{TextCodec(page)};
        vote.lines(lines);
        EXPECT_EQ(vote.isUtf8(), isUtf8) << page << ' ' << lines;
    }
}
