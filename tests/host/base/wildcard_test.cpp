// CAD wildcard patterns: what each sign matches, and patterns made to take for ever.
#include "host/base/wildcard.h"

#include <gtest/gtest.h>

static bool matches(QStringView pattern, QStringView text,
                    Qt::CaseSensitivity sensitivity = Qt::CaseInsensitive)
{
    return base::Wildcard(pattern, sensitivity).matches(text);
}

namespace
{
struct Row {
    const char16_t *pattern;
    std::vector<const char16_t *> matching;
    std::vector<const char16_t *> failing;
};
} // namespace

TEST(Wildcard, EverySignMatchesItsOwn)
{
    const Row rows[] = {
        {u"", {u""}, {u"a"}},
        {u"wall", {u"wall", u"WALL"}, {u"walls", u"wal"}},
        {u"#", {u"0", u"9"}, {u"a", u"", u"10", u"٣"}},
        {u"@", {u"a", u"Z", u"评"}, {u"1", u"_"}},
        {u".", {u"-", u" ", u"$"}, {u"a", u"1", u"评"}},
        {u"?", {u"a", u"."}, {u"", u"ab"}},
        {u"*", {u"", u"anything"}, {}},
        {u"a*c", {u"ac", u"abc", u"abcbc"}, {u"ab", u"abcd"}},
        {u"*a*b", {u"ab", u"xaxbab"}, {u"ba", u"aba"}},
        {u"**a**", {u"a", u"bab"}, {u"b"}},
        {u"[abc]", {u"a", u"C"}, {u"d", u"", u"ab"}},
        {u"[~abc]", {u"d", u"~"}, {u"a", u""}},
        {u"A[1-35]", {u"A1", u"A3", u"A5"}, {u"A4", u"A-"}},
        {u"[3-1]", {u"2"}, {u"4"}},
        {u"[-a]", {u"-", u"a"}, {u"b"}},
        {u"[a-]", {u"-", u"a"}, {u"b"}},
        {u"[]a]", {u"]", u"a"}, {u"["}},
        {u"[a,b]", {u",", u"a"}, {u"[a"}},
        {u"[`]`-]", {u"]", u"-"}, {u"`"}},
        {u"[abc", {u"[abc"}, {u"a"}},
        {u"`*`#", {u"*#"}, {u"a1", u"`*`#"}},
        {u"a`", {u"a`"}, {u"a"}},
        {u"a~", {u"a~"}, {u"a"}},
        {u"~*wall*", {u"door"}, {u"my wall"}},
        {u"a,b*", {u"a", u"bcd"}, {u"c", u"a,b"}},
        {u"???,~*m*,n*", {u"name", u"mmm", u"door"}, {u"comb"}},
        {u"a,", {u"a", u""}, {u"b"}},
    };
    for (const Row &row : rows) {
        for (const char16_t *text : row.matching)
            EXPECT_TRUE(matches(row.pattern, text)) << qPrintable(QString::fromUtf16(row.pattern)) << " on "
                                                    << qPrintable(QString::fromUtf16(text));
        for (const char16_t *text : row.failing)
            EXPECT_FALSE(matches(row.pattern, text)) << qPrintable(QString::fromUtf16(row.pattern)) << " on "
                                                     << qPrintable(QString::fromUtf16(text));
    }
}

TEST(Wildcard, CaseCountsWhenAskedFor)
{
    EXPECT_FALSE(matches(u"wall", u"WALL", Qt::CaseSensitive));
    EXPECT_FALSE(matches(u"[a-z]", u"K", Qt::CaseSensitive));
    EXPECT_TRUE(matches(u"[A-Z]", u"k"));
    EXPECT_TRUE(matches(u"ÄÖ", u"äö"));
}

TEST(Wildcard, ManyStarsDoNotExplode)
{
    const QString text(20'000, QChar(u'a'));
    const QString pattern = QStringLiteral("*a").repeated(200) + QStringLiteral("*b");
    EXPECT_FALSE(matches(pattern, text)); // Backtracking over every star would not end.
    EXPECT_TRUE(matches(pattern, text + u'b'));
}
