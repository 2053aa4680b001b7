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
        // Most groups are short: one look finds the ends of both lines.
        const std::uint32_t lineEnds = lineEndsAhead();
        if ((lineEnds & (lineEnds - 1)) == 0)
            return nextLong(group);
        const char *const codeEnd = m_at + __builtin_ctz(lineEnds);
        if (!parseCode(m_at, codeEnd, group.code))
            return nextLong(group);
        take(group, codeEnd, m_at + __builtin_ctz(lineEnds & (lineEnds - 1)));
        return Step::group;
    }

    /// Goes to the next line that is a 0 with a plausible kind under it; to the end when there is none.
    void resynchronise();

private:
    /// Bit n: byte n from here is a line end. 0 when fewer than 32 bytes are left.
    std::uint32_t lineEndsAhead() const
    {
        if (m_end - m_at < 32)
            return 0;
        const auto *const at = reinterpret_cast<const __m128i *>(m_at);
        const __m128i wanted = _mm_set1_epi8(m_lineEnd);
        const int low = _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_loadu_si128(at), wanted));
        const int high = _mm_movemask_epi8(_mm_cmpeq_epi8(_mm_loadu_si128(at + 1), wanted));
        return std::uint32_t(low) | std::uint32_t(high) << 16;
    }

    void take(Group &group, const char *codeEnd, const char *valueEnd)
    {
        const char *const value = codeEnd + 1;
        const bool carriageReturn = valueEnd > value && valueEnd[-1] == '\r';
        group.begin = m_at;
        group.value = {value, std::size_t(valueEnd - value) - carriageReturn};
        group.end = valueEnd == m_end ? m_end : valueEnd + 1;
        m_at = group.end;
    }

    Step nextLong(Group &group);
    const char *findLineEnd(const char *at) const;

    static bool parseCode(const char *at, const char *end, int &code)
    {
        end -= end > at && end[-1] == '\r';
        if (end - at != 3)
            return parseUnusualCode(at, end, code);
        const auto digitOr = [](char c, bool blankAllowed) {
            return unsigned(c) - '0' <= 9 || (c == ' ' && blankAllowed);
        };
        code = (at[0] & 15) * 100 + (at[1] & 15) * 10 + (at[2] & 15);
        return (digitOr(at[0], true) && digitOr(at[1], at[0] == ' ') && digitOr(at[2], false)) ||
               parseUnusualCode(at, end, code);
    }

    static bool parseUnusualCode(const char *at, const char *end, int &code);
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
