#include "host/base/encoding_vote.h"

#include <algorithm>

#include <emmintrin.h>

namespace base
{

static bool isHigh(char c)
{
    return static_cast<signed char>(c) < 0;
}

/// The first byte beyond ASCII from here on: drawings are ASCII for megabytes.
static const char *nextHigh(const char *at, const char *end)
{
    while (end - at >= 16) {
        if (const int high = _mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(at))))
            return at + __builtin_ctz(unsigned(high));
        at += 16;
    }
    return std::find_if(at, end, isHigh);
}

void EncodingVote::lines(std::string_view text)
{
    const auto isLineEnd = [](char c) { return c == '\n' || c == '\r'; };
    const char *const end = text.data() + text.size();
    for (const char *at = text.data(); (at = nextHigh(at, end)) != end;) {
        const char *begin = at;
        while (begin != text.data() && !isLineEnd(begin[-1]))
            --begin;
        at = std::find_if(at, end, isLineEnd);
        string({begin, std::size_t(at - begin)});
    }
}

void EncodingVote::string(std::string_view bytes)
{
    if (std::ranges::none_of(bytes, isHigh))
        return;
    const Verdict said = verdict(bytes);
    m_for += said == Verdict::utf8;
    m_against += said == Verdict::notUtf8;
}

/// Read as UTF-8 the string has a word of other letters, or one character of three bytes or more: chance does
/// not make these of a single-byte page, where it pairs a letter with a sign.
static bool hasForeignWord(QStringView text)
{
    int run = 0;
    for (const QChar c : text) {
        run = c.unicode() < 0x80 ? 0 : run + 1;
        if (run == 2 || c.unicode() >= 0x800)
            return true;
    }
    return false;
}

EncodingVote::Verdict EncodingVote::verdict(std::string_view bytes) const
{
    if (!looksLikeUtf8(bytes))
        return Verdict::notUtf8;
    const QString text = TextCodec("UTF-8").decode(bytes);
    bool inPage = true;
    static_cast<void>(m_named.encode(text, inPage));
    if (!m_named.isDoubleByte())
        return inPage || hasForeignWord(text) ? Verdict::utf8 : Verdict::either;
    bool soundInPage = true;
    static_cast<void>(m_named.decode(bytes, soundInPage));
    if (!soundInPage)
        return Verdict::utf8;
    // Two bytes that are one character of the page are often also a Latin, Greek or Cyrillic letter, and
    // names make characters that nobody who writes in this page uses.
    const bool isLong = std::ranges::any_of(text, [](QChar c) { return c.unicode() >= 0x800; });
    return inPage && isLong ? Verdict::utf8 : Verdict::either;
}

} // namespace base
