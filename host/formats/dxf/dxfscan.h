// Scanners: the bytes of a DXF file as groups, without copying or decoding the values.
//
// Both scanners have the same functions, so that what walks over groups is written once, as a template.
// They never read past their bytes. Damage does not move them: the caller asks for resynchronise().
#pragma once

#include <cstdint>
#include <cstring>
#include <emmintrin.h>
#include <string_view>

namespace dxf
{

struct Group {
    int code = 0;
    const char *begin = nullptr; ///< First byte of the code.
    const char *end = nullptr;   ///< Behind the value and its line end.
    std::string_view value;      ///< Text without its line end; binary numbers as they lie.
};

enum class Step {
    group,
    end,     ///< Nothing but blanks is left.
    cut,     ///< The file ends inside a group.
    damaged, ///< No group code stands here.
};

/// Without blanks at either end.
inline std::string_view trimmed(std::string_view text)
{
    const auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
    while (!text.empty() && blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && blank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// Letters, digits and a few signs, with a letter among them: what the value of a group 0 looks like.
bool isPlausibleKind(std::string_view value);

/// Hexadecimal; 0 when the text is no number of at most 16 digits.
inline std::uint64_t parseHandle(std::string_view text)
{
    text = trimmed(text);
    if (text.empty() || text.size() > 16)
        return 0;
    std::uint64_t handle = 0;
    for (const char c : text) {
        const unsigned decimal = unsigned(c) - '0';
        const unsigned letter = (unsigned(c) | 0x20) - 'a';
        if (decimal > 9 && letter > 5)
            return 0;
        handle = handle << 4 | (decimal <= 9 ? decimal : letter + 10);
    }
    return handle;
}

/// Lines in pairs: a group code, a value. Lines end with LF or CR LF, in any mixture; or, when the first
/// line of the file ends so, with CR alone.
class TextScanner
{
public:
    /// How the lines of these bytes end: '\n' or '\r'.
    static char lineEndOf(std::string_view bytes);

    TextScanner(std::string_view bytes, char lineEnd)
        : m_at(bytes.data()), m_end(bytes.data() + bytes.size()), m_lineEnd(lineEnd)
    {
    }

    const char *position() const { return m_at; }
    const char *end() const { return m_end; }

    Step next(Group &group)
    {
        const char *const codeEnd = findLineEnd(m_at);
        if (!parseCode(m_at, codeEnd, group.code))
            return onlyBlanksLeft() ? Step::end : Step::damaged;
        group.begin = m_at;
        if (codeEnd == m_end || codeEnd + 1 == m_end)
            return Step::cut;
        const char *const value = codeEnd + 1;
        const char *const valueEnd = findLineEnd(value);
        const bool carriageReturn = valueEnd > value && valueEnd[-1] == '\r';
        group.value = {value, std::size_t(valueEnd - value) - carriageReturn};
        group.end = valueEnd == m_end ? m_end : valueEnd + 1;
        m_at = group.end;
        return Step::group;
    }

    /// Goes to the next line that is a 0 with a plausible kind under it; to the end when there is none.
    void resynchronise();

private:
    const char *findLineEnd(const char *at) const
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

    static bool parseCode(const char *at, const char *end, int &code)
    {
        while (at != end && (*at == ' ' || *at == '\t'))
            ++at;
        const bool negative = at != end && *at == '-';
        at += negative;
        const char *const digits = at;
        int number = 0;
        while (at != end && unsigned(*at) - '0' <= 9 && at - digits < 5)
            number = number * 10 + (*at++ - '0');
        if (at == digits)
            return false;
        while (at != end && (*at == ' ' || *at == '\t' || *at == '\r'))
            ++at;
        code = negative ? -number : number;
        return at == end;
    }

    bool onlyBlanksLeft() const;

    const char *m_at;
    const char *m_end;
    char m_lineEnd;
};

/// Codes as numbers of two bytes (R13 and later) or one (R12; 255 announces two), values in binary.
class BinaryScanner
{
public:
    /// `bytes` begin behind the sentinel.
    BinaryScanner(std::string_view bytes, bool shortCodes)
        : m_at(bytes.data()), m_end(bytes.data() + bytes.size()), m_shortCodes(shortCodes)
    {
    }

    const char *position() const { return m_at; }
    const char *end() const { return m_end; }
    Step next(Group &group);
    void resynchronise();

private:
    const char *m_at;
    const char *m_end;
    bool m_shortCodes;
};

/// "AutoCAD Binary DXF", the sentinel that all binary DXF files begin with, 22 bytes.
inline constexpr std::string_view kBinarySentinel{"AutoCAD Binary DXF\r\n\x1a\0", 22};

/// Bytes behind the sentinel: true when the group codes take one byte.
bool hasShortCodes(std::string_view bytes);

} // namespace dxf
