// Forms that people read alike, for characters that a code page lacks.
#include "host/base/readable_text.h"

#include <gtest/gtest.h>

namespace base
{

struct ReadableCase {
    const char16_t *text;
    const char16_t *readable; ///< As text of the code page.
    std::size_t changed;
};

TEST(ReadableText, WhatThePageLacksTakesItsNearestForm)
{
    const TextCodec codec("ANSI_936");
    const ReadableCase cases[] = {
        {u"门宽 900±5 ℃ ① é", u"门宽 900±5 ℃ ① é", 0},
        {u"m² m³ x⁻¹ H₂O", u"m2 m3 x-1 H2O", 5},
        {u"½ 1¾ ⅓", u"1/2 13/4 1/3", 3},
        {u"Ø12 ø8 ⌀20 ∅6", u"Φ12 φ8 Φ20 Φ6", 4},
        {u"ñandú Łódź ß æ", u"nandú Lódz ss ae", 5},
        {u"© ® ™ ﬁ ㎯", u"(C) (R) TM fi rad∕s2", 5},
        {u"✔ ✘ ☐ • − \u00a0", u"√ × □ · -  ", 6},
        // Nothing stands for it: one question mark for a character, none for its joiners.
        {u"😀 👨\u200d👩 \U00020000 ❤\ufe0f", u"? ?? ? ?", 7},
        {u"a\u0308\u0323", u"a", 2},
    };
    for (const ReadableCase &each : cases) {
        const ReadableBytes written = encodeReadable(QStringView(each.text), codec);
        EXPECT_EQ(codec.decode({written.bytes.constData(), std::size_t(written.bytes.size())}),
                  QString::fromUtf16(each.readable));
        EXPECT_EQ(written.changed, each.changed) << qPrintable(QString::fromUtf16(each.text));
    }
}

TEST(ReadableText, SmallerPagesAndBrokenTextsEndWell)
{
    EXPECT_EQ(encodeReadable(u"“①” — Φ", TextCodec("ANSI_1251")).bytes, QByteArray("\x93"
                                                                                   "1\x94 \x97 ?"));
    const ReadableBytes halves =
        encodeReadable(QString(QChar(0xD83D)) + QStringLiteral("x"), TextCodec("ANSI_936"));
    EXPECT_EQ(halves.bytes, "?x");
    EXPECT_EQ(encodeReadable({}, TextCodec("ANSI_936")).bytes, "");
}

} // namespace base
