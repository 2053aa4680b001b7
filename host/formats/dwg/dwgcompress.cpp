#include "host/formats/dwg/dwgcompress.h"

#include "host/base/assert.h"
#include "host/formats/dwg/dwgdecompress.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

namespace dwg
{
namespace
{

struct Match {
    std::size_t length = 0;
    std::size_t distance = 0;
};

/// Finds earlier occurrences of what stands at a place, by chains of places that begin alike.
class Matcher
{
public:
    static constexpr std::size_t kShortest = 4;

    explicit Matcher(std::string_view bytes, std::size_t farthest)
        : m_bytes(bytes), m_farthest(farthest), m_heads(kHeads, kNone), m_previous(bytes.size(), kNone)
    {
    }

    Match find(std::size_t at) const
    {
        Match best;
        if (at + kShortest > m_bytes.size())
            return best;
        std::uint32_t candidate = m_heads[headOf(at)];
        for (int tries = 0; tries < kTries && candidate != kNone && at - candidate <= m_farthest; ++tries) {
            const std::size_t length = common(candidate, at);
            if (length > best.length)
                best = {length, at - candidate};
            candidate = m_previous[candidate];
        }
        return best.length >= kShortest ? best : Match();
    }
    void add(std::size_t at)
    {
        if (at + kShortest > m_bytes.size())
            return;
        std::uint32_t &head = m_heads[headOf(at)];
        m_previous[at] = std::exchange(head, std::uint32_t(at));
    }

private:
    static constexpr std::uint32_t kNone = UINT32_MAX;
    static constexpr int kHeadBits = 13;
    static constexpr std::size_t kHeads = std::size_t(1) << kHeadBits;
    static constexpr int kTries = 24;

    std::size_t headOf(std::size_t at) const
    {
        std::uint32_t begin = 0;
        std::memcpy(&begin, m_bytes.data() + at, sizeof begin);
        return begin * 2654435761U >> (32 - kHeadBits);
    }
    std::size_t common(std::size_t earlier, std::size_t at) const
    {
        const auto end = std::mismatch(m_bytes.begin() + std::ptrdiff_t(at), m_bytes.end(),
                                       m_bytes.begin() + std::ptrdiff_t(earlier));
        return std::size_t(end.first - m_bytes.begin()) - at;
    }

    std::string_view m_bytes;
    std::size_t m_farthest;
    std::vector<std::uint32_t> m_heads;    ///< The last place that begins so.
    std::vector<std::uint32_t> m_previous; ///< The one before it, by place.
};

/// What the opcodes of a compression can say of a copy.
struct CopyLimits {
    std::size_t farthest;
    std::size_t longest;
    std::size_t first; ///< Literals that come before any copy.
};

/// Calls `copy(literals, match)`: so many bytes as they are, then a copy of what came before. The last has
/// no match.
template <class Copy>
void splitIntoCopies(std::string_view plain, const CopyLimits &limits, Copy copy)
{
    Matcher matcher(plain, limits.farthest);
    std::size_t literalsFrom = 0;
    for (std::size_t at = 0; at < plain.size();) {
        Match match = at < limits.first ? Match() : matcher.find(at);
        match.length = std::min(match.length, limits.longest);
        matcher.add(at);
        if (match.length == 0) {
            ++at;
            continue;
        }
        copy(plain.substr(literalsFrom, at - literalsFrom), match);
        for (std::size_t i = 1; i < match.length; ++i)
            matcher.add(at + i);
        at += match.length;
        literalsFrom = at;
    }
    copy(plain.substr(literalsFrom), Match());
}

void put(QByteArray &out, std::size_t byte)
{
    out.append(char(byte));
}

/// A length that goes on while bytes are zero; not 0.
void putLong(QByteArray &out, std::size_t length)
{
    for (; length > 0xFF; length -= 0xFF)
        put(out, 0);
    put(out, length);
}

// AC1018 -----------------------------------------------------------------------------------------

/// Literals that a page begins with at least.
constexpr std::size_t kFewest18 = 4;

/// Up to three literals are counted by the copy in front of them, whose byte is `countIn`.
void putLiterals18(QByteArray &out, std::string_view literals, qsizetype countIn)
{
    constexpr std::size_t kShortCount = 3;
    if (literals.size() <= kShortCount && countIn >= 0) {
        out[countIn] = char(out[countIn] | char(literals.size()));
    } else {
        const std::size_t length = literals.size() - kShortCount;
        if (length > 0xF) {
            put(out, 0);
            putLong(out, length - 0xF);
        } else {
            put(out, length);
        }
    }
    out.append(literals.data(), qsizetype(literals.size()));
}

/// Gives the place of the byte that counts the literals behind the copy. A far copy of three bytes would be
/// the mark of the end; the matcher finds none so short.
qsizetype putCopy18(QByteArray &out, const Match &match)
{
    constexpr std::size_t kNear = 0x400, kMiddle = 0x4000;
    const auto [length, distance] = match;
    if (length <= 14 && distance <= kNear) {
        put(out, (length + 1) << 4 | ((distance - 1) & 3) << 2);
        put(out, (distance - 1) >> 2);
        return out.size() - 2;
    }
    std::size_t offset = distance - 1;
    if (distance <= kMiddle) {
        put(out, length <= 0x21 ? length + 0x1E : 0x20);
        if (length > 0x21)
            putLong(out, length - 0x21);
    } else {
        offset = distance - kMiddle;
        const std::size_t far = offset >= kMiddle ? 8 : 0;
        offset -= far ? kMiddle : 0;
        put(out, 0x10 | far | (length <= 9 ? length - 2 : 0));
        if (length > 9)
            putLong(out, length - 9);
    }
    put(out, (offset & 0x3F) << 2);
    put(out, offset >> 6);
    return out.size() - 2;
}

// AC1021 -----------------------------------------------------------------------------------------

/// Literals in the order of the file.
void appendShuffled21(QByteArray &out, std::string_view literals)
{
    while (!literals.empty()) {
        const std::string_view run = literals.substr(0, 32);
        const LiteralOrder &order = literalOrder21(run.size());
        const qsizetype begin = out.size();
        out.resize(begin + qsizetype(run.size()));
        const char *from = run.data();
        for (std::size_t i = 0; i + 1 < sizeof order && order[i + 1] != 0; i += 2) {
            const std::size_t count = order[i + 1];
            char *const to = out.data() + begin + order[i];
            if (count == 16)
                std::rotate_copy(from, from + 8, from + 16, to);
            else if (count == 2 || count == 3)
                std::reverse_copy(from, from + count, to);
            else
                std::copy_n(from, count, to);
            from += count;
        }
        literals.remove_prefix(run.size());
    }
}

/// Seven literals at most are counted by the copy in front of them, whose last byte is `countIn`.
void putLiterals21(QByteArray &out, std::string_view literals, qsizetype countIn)
{
    constexpr std::size_t kShortCount = 7;
    const std::size_t length = literals.size();
    if (length <= kShortCount && countIn < 0) {
        out.append("\x20\0\0", 3);
        put(out, length);
    } else if (length <= kShortCount) {
        out[countIn] = char(out[countIn] | char(length));
    } else if (length < 0x17) {
        put(out, length - 8);
    } else {
        put(out, 0xF);
        std::size_t rest = length - 0x17;
        put(out, std::min<std::size_t>(rest, 0xFF));
        if (rest >= 0xFF) {
            for (rest -= 0xFF; rest >= 0xFFFF; rest -= 0xFFFF)
                out.append("\xFF\xFF", 2);
            put(out, rest & 0xFF);
            put(out, rest >> 8);
        }
    }
    appendShuffled21(out, literals);
}

/// Gives the place of the copy's last byte. Behind a copy without literals an opcode below 0x10 would be the
/// length of a run.
qsizetype putCopy21(QByteArray &out, const Match &match, bool behindCopy)
{
    const auto [length, distance] = match;
    const std::size_t back = distance - 1;
    if (length <= 14 && distance <= 0x200) {
        put(out, length << 4 | (back & 0xF));
        put(out, (back >> 4) << 3);
    } else if (length <= 18 && distance <= 0x2000) {
        put(out, 0x10 | (length - 3));
        put(out, back & 0xFF);
        put(out, back >> 8 << 3);
    } else if (length >= 0x13 && length <= 0x32 && distance <= 0x1000) {
        const std::size_t more = length - 0x13;
        put(out, (behindCopy ? 0xF0 : 0) | (more & 0xF));
        put(out, back & 0xFF);
        put(out, (back >> 8 << 3) | (more & 0x10) << 3);
    } else if (length < 0x100) {
        put(out, 0x20 | (length & 7));
        put(out, distance & 0xFF);
        put(out, distance >> 8);
        put(out, length & 0xF8);
    } else {
        const std::size_t more = length - 0x100;
        put(out, 0x28 | (more & 7));
        put(out, back & 0xFF);
        put(out, back >> 8);
        put(out, more >> 3 & 0xFF);
        put(out, more >> 11 << 3);
    }
    return out.size() - 1;
}

} // namespace

QByteArray compress18(std::string_view plain)
{
    constexpr CopyLimits kLimits{0xBFFF, SIZE_MAX, kFewest18};
    QUILL_ASSERT(plain.size() >= kFewest18);
    QByteArray out;
    out.reserve(qsizetype(plain.size() / 2));
    qsizetype countIn = -1;
    splitIntoCopies(plain, kLimits, [&](std::string_view literals, const Match &match) {
        putLiterals18(out, literals, countIn);
        if (match.length != 0)
            countIn = putCopy18(out, match);
    });
    out.append("\x11\0\0", 3);
    return out;
}

QByteArray compress21(std::string_view plain)
{
    constexpr CopyLimits kLimits{0xFFFF, 0x100 + 0xFFFF, 1};
    QByteArray out;
    out.reserve(qsizetype(plain.size() / 2));
    qsizetype countIn = -1;
    splitIntoCopies(plain, kLimits, [&](std::string_view literals, const Match &match) {
        const bool behindCopy = countIn >= 0 && literals.empty();
        if (!literals.empty())
            putLiterals21(out, literals, countIn);
        if (match.length != 0)
            countIn = putCopy21(out, match, behindCopy);
    });
    return out;
}

} // namespace dwg
