#include "host/formats/dxf/dxfscan.h"

#include "host/acdb/resbuf.h"

#include <algorithm>

namespace dxf
{

bool isPlausibleKind(std::string_view value)
{
    value = trimmed(value);
    const auto letter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
    const auto allowed = [&](char c) {
        return letter(c) || (c >= '0' && c <= '9') || c == '_' || c == '*' || c == '$' || c == '-' ||
               c == '.';
    };
    return value.size() >= 2 && value.size() <= 255 && std::ranges::all_of(value, allowed) &&
           std::ranges::any_of(value, letter);
}

char TextScanner::lineEndOf(std::string_view bytes)
{
    const std::size_t first = bytes.find_first_of("\r\n");
    if (first == std::string_view::npos || bytes[first] == '\n')
        return '\n';
    return first + 1 < bytes.size() && bytes[first + 1] == '\n' ? '\n' : '\r';
}

const char *TextScanner::findLineEnd(const char *at) const
{
    const __m128i wanted = _mm_set1_epi8(m_lineEnd);
    while (m_end - at >= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
        if (const int hits = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, wanted)))
            return at + __builtin_ctz(unsigned(hits));
        at += 16;
    }
    while (at != m_end && *at != m_lineEnd)
        ++at;
    return at;
}

Step TextScanner::nextLong(Group &group)
{
    const char *const codeEnd = findLineEnd(m_at);
    if (!parseCode(m_at, codeEnd, group.code))
        return onlyBlanksLeft() ? Step::end : Step::damaged;
    if (codeEnd == m_end || codeEnd + 1 == m_end)
        return Step::cut;
    take(group, codeEnd, findLineEnd(codeEnd + 1));
    return Step::group;
}

bool TextScanner::parseUnusualCode(const char *at, const char *end, int &code)
{
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    while (at != end && isBlank(*at))
        ++at;
    const bool negative = at != end && *at == '-';
    at += negative;
    const char *const digits = at;
    int number = 0;
    while (at != end && unsigned(*at) - '0' <= 9 && at - digits < 5)
        number = number * 10 + (*at++ - '0');
    if (at == digits)
        return false;
    while (at != end && isBlank(*at))
        ++at;
    code = negative ? -number : number;
    return at == end;
}

bool TextScanner::onlyBlanksLeft() const
{
    return std::all_of(m_at, m_end, [](char c) {
        return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\x1a' || c == '\0';
    });
}

void TextScanner::resynchronise()
{
    while (m_at != m_end) {
        const char *const lineEnd = findLineEnd(m_at);
        if (lineEnd == m_end)
            break;
        int code = 0;
        if (parseCode(m_at, lineEnd, code) && code == 0) {
            const char *const value = lineEnd + 1;
            if (isPlausibleKind({value, std::size_t(findLineEnd(value) - value)}))
                return;
        }
        m_at = lineEnd + 1;
    }
    m_at = m_end;
}

/// Bytes of a number; 0 for text that ends with a zero byte, -1 for a chunk with its length before it.
static int binaryValueSize(int code)
{
    switch (groupKind(code)) {
    case GroupKind::point:
    case GroupKind::real:
    case GroupKind::integer64:
        return 8;
    case GroupKind::integer32:
        return 4;
    case GroupKind::integer16:
        return 2;
    case GroupKind::boolean:
        return 1;
    case GroupKind::binary:
        return -1;
    case GroupKind::text:
    case GroupKind::handle:
        break;
    }
    return 0;
}

Step BinaryScanner::next(Group &group)
{
    const auto byteAt = [](const char *at) { return int(static_cast<unsigned char>(*at)); };
    if (m_at == m_end)
        return Step::end;
    group.begin = m_at;
    const char *at = m_at;
    const bool escaped = m_shortCodes && byteAt(at) == 255;
    at += escaped;
    const int codeSize = m_shortCodes && !escaped ? 1 : 2;
    if (m_end - at < codeSize)
        return Step::cut;
    group.code = codeSize == 1 ? byteAt(at) : byteAt(at) | byteAt(at + 1) << 8;
    if (group.code > 1071 || (group.code > 481 && group.code < 999))
        return Step::damaged;
    at += codeSize;

    int size = binaryValueSize(group.code);
    if (size == 0) {
        const void *const zero = std::memchr(at, 0, std::size_t(m_end - at));
        if (!zero)
            return Step::cut;
        group.end = static_cast<const char *>(zero) + 1;
        group.value = {at, std::size_t(group.end - at) - 1};
        m_at = group.end;
        return Step::group;
    }
    if (size < 0) {
        if (at == m_end)
            return Step::cut;
        size = byteAt(at++);
    }
    if (m_end - at < size)
        return Step::cut;
    group.value = {at, std::size_t(size)};
    group.end = at + size;
    m_at = group.end;
    return Step::group;
}

void BinaryScanner::resynchronise()
{
    constexpr std::ptrdiff_t kLongestKind = 255;
    const std::ptrdiff_t codeSize = m_shortCodes ? 1 : 2;
    for (const char *at = m_at; at < m_end - codeSize; ++at) {
        if (*at != 0 || (codeSize == 2 && at[1] != 0) || at[codeSize] == 0)
            continue;
        const char *const kind = at + codeSize;
        const std::ptrdiff_t longest = std::min(kLongestKind, m_end - kind);
        const void *const zero = std::memchr(kind, 0, std::size_t(longest));
        if (zero && isPlausibleKind({kind, std::size_t(static_cast<const char *>(zero) - kind)})) {
            m_at = at;
            return;
        }
    }
    m_at = m_end;
}

bool hasShortCodes(std::string_view bytes)
{
    // The first group is "0 SECTION" or a comment (999 = 0x03E7).
    if (bytes.size() < 2)
        return false;
    return bytes[0] == '\0' ? bytes[1] != '\0' : bytes[0] == '\xff';
}

} // namespace dxf
