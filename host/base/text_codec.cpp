#include "host/base/text_codec.h"

#include "host/base/assert.h"
#include "host/base/code_page.h"

#include <QByteArrayView>

#include <algorithm>
#include <array>
#include <optional>

namespace base
{

TextCodec::TextCodec(std::string_view name) : m_page(findCodePage(name)), m_known(m_page != nullptr)
{
    if (!m_known)
        m_page = findCodePage("ANSI_1252");
    QUILL_ASSERT(m_page); // Part of every C library.
}

TextCodec TextCodec::fromDwgNumber(std::uint16_t number)
{
    const CodePage *page = findCodePage(number);
    return TextCodec(page ? page->name : std::string_view());
}

std::string_view TextCodec::name() const
{
    return m_page->name;
}

std::uint16_t TextCodec::dwgNumber() const
{
    return m_page->dwgNumber;
}

bool TextCodec::isUtf8() const
{
    return m_page->systemName == nullptr;
}

bool TextCodec::isDoubleByte() const
{
    return m_page->doubleByte;
}

static QByteArrayView asView(std::string_view bytes)
{
    return QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

static QString decodeUtf8(std::string_view bytes)
{
    QString text = QString::fromUtf8(asView(bytes));
    if (bytes.starts_with("\xEF\xBB\xBF"))
        text.prepend(QChar(QChar::ByteOrderMark)); // Dropped by the conversion; here it is a character.
    return text;
}

static QString decodeByTable(const DecodeTable &table, std::string_view bytes, bool &clean)
{
    QString text(static_cast<qsizetype>(bytes.size()), Qt::Uninitialized);
    auto *const start = reinterpret_cast<char16_t *>(text.data());
    char16_t *out = start;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const auto byte = static_cast<unsigned char>(bytes[at]);
        char16_t unit = table.single[byte];
        const auto &pairs = table.pairs[byte];
        if (!pairs.empty() && at + 1 < bytes.size()) {
            unit = pairs[static_cast<unsigned char>(bytes[at + 1])];
            if (unit != kNoCharacter)
                ++at;
        }
        if (unit == kNoCharacter) {
            clean = false;
            unit = QChar::ReplacementCharacter;
        }
        *out++ = unit;
    }
    text.truncate(out - start);
    return text;
}

QString TextCodec::decode(std::string_view bytes, bool &clean) const
{
    clean = true;
    if (!isUtf8())
        return decodeByTable(decodeTable(*m_page), bytes, clean);
    clean = asView(bytes).isValidUtf8();
    return decodeUtf8(bytes);
}

QString TextCodec::decode(std::string_view bytes) const
{
    bool clean = true;
    return decode(bytes, clean);
}

static void appendEscape(QByteArray &bytes, char16_t unit)
{
    bytes += "\\U+" + QByteArray::number(unit, 16).toUpper().rightJustified(4, '0');
}

/// `character` is one unit, or two that form a surrogate pair.
static void appendSubstitute(QByteArray &bytes, QStringView character, Substitute substitute)
{
    if (substitute == Substitute::questionMark) {
        bytes += '?';
        return;
    }
    for (const QChar unit : character)
        appendEscape(bytes, unit.unicode());
}

/// Units at the beginning of `text` that belong to its first character.
static qsizetype characterLength(QStringView text)
{
    return text.size() > 1 && text[0].isHighSurrogate() && text[1].isLowSurrogate() ? 2 : 1;
}

static QByteArray encodeByTable(const EncodeTable &table, QStringView text, Substitute substitute,
                                bool &lossless)
{
    QByteArray bytes;
    bytes.reserve(text.size() * 2);
    for (qsizetype at = 0; at < text.size();) {
        const std::uint16_t code = table[text[at].unicode()];
        const qsizetype length = characterLength(text.sliced(at));
        if (code == kNoBytes) {
            lossless = false;
            appendSubstitute(bytes, text.sliced(at, length), substitute);
        } else {
            if (code > 0xFF)
                bytes += static_cast<char>(code >> 8);
            bytes += static_cast<char>(code & 0xFF);
        }
        at += length;
    }
    return bytes;
}

/// UTF-8 lacks only the halves of broken surrogate pairs.
static QByteArray encodeUtf8(QStringView text, Substitute substitute, bool &lossless)
{
    if (text.isValidUtf16())
        return text.toUtf8();
    lossless = false;
    QByteArray bytes;
    for (qsizetype at = 0; at < text.size();) {
        const QStringView character = text.sliced(at, characterLength(text.sliced(at)));
        if (character.isValidUtf16())
            bytes += character.toUtf8();
        else
            appendSubstitute(bytes, character, substitute);
        at += character.size();
    }
    return bytes;
}

static QByteArray encodeWith(const CodePage &page, QStringView text, Substitute substitute, bool &lossless)
{
    lossless = true;
    if (!page.systemName)
        return encodeUtf8(text, substitute, lossless);
    return encodeByTable(encodeTable(page), text, substitute, lossless);
}

QByteArray TextCodec::encode(QStringView text, Substitute substitute) const
{
    bool lossless = true;
    return encodeWith(*m_page, text, substitute, lossless);
}

QByteArray TextCodec::encode(QStringView text, bool &lossless) const
{
    return encodeWith(*m_page, text, Substitute::questionMark, lossless);
}

static bool hasHighByte(std::string_view bytes)
{
    unsigned char all = 0;
    for (const char c : bytes)
        all |= static_cast<unsigned char>(c);
    return all >= 0x80;
}

bool looksLikeUtf8(std::string_view bytes)
{
    return hasHighByte(bytes) && asView(bytes).isValidUtf8();
}

static std::optional<char16_t> hexUnit(QStringView digits)
{
    if (digits.size() < 4)
        return std::nullopt;
    unsigned value = 0;
    for (const QChar digit : digits.first(4)) {
        const char16_t c = digit.unicode();
        if (c >= u'0' && c <= u'9')
            value = value << 4 | (c - u'0');
        else if ((c | 0x20) >= u'a' && (c | 0x20) <= u'f')
            value = value << 4 | ((c | 0x20) - u'a' + 10);
        else
            return std::nullopt;
    }
    return static_cast<char16_t>(value);
}

static constexpr qsizetype kUnicodeEscapeLength = 7;   // \U+XXXX
static constexpr qsizetype kMultibyteEscapeLength = 8; // \M+nXXXX

static std::optional<char16_t> multibyteCharacter(QStringView escape)
{
    constexpr std::array<std::string_view, 5> kPages = {"ANSI_932", "ANSI_950", "ANSI_949", "ANSI_1361",
                                                        "ANSI_936"};
    const std::size_t page = static_cast<std::size_t>(escape[3].unicode() - u'1');
    const auto code = hexUnit(escape.sliced(4));
    if (page >= kPages.size() || !code)
        return std::nullopt;
    const char bytes[] = {static_cast<char>(*code >> 8), static_cast<char>(*code & 0xFF)};
    bool clean = true;
    const QString text = TextCodec(kPages[page]).decode({bytes, 2}, clean);
    if (!clean || text.size() != 1)
        return std::nullopt;
    return text[0].unicode();
}

namespace
{
struct Escape {
    char16_t unit;
    qsizetype length;
};
} // namespace

/// The escape at the beginning of `text`, if there is a sound one.
static std::optional<Escape> escapeAt(QStringView text)
{
    if (text.startsWith(u'^') && text.size() > 1) {
        const char16_t c = text[1].unicode();
        if (c == u' ')
            return Escape{u'^', 2};
        if (c >= 0x40 && c < 0x60)
            return Escape{static_cast<char16_t>(c - 0x40), 2};
    }
    if (text.startsWith(u"\\U+")) {
        if (const auto unit = hexUnit(text.sliced(3)))
            return Escape{*unit, kUnicodeEscapeLength};
    }
    if (text.size() >= kMultibyteEscapeLength && text.startsWith(u"\\M+")) {
        if (const auto unit = multibyteCharacter(text))
            return Escape{*unit, kMultibyteEscapeLength};
    }
    return std::nullopt;
}

static QString withoutEscapes(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (qsizetype at = 0; at < text.size();) {
        const QChar c = text[at];
        const auto escape = c == u'\\' || c == u'^' ? escapeAt(QStringView(text).sliced(at)) : std::nullopt;
        result += escape ? QChar(escape->unit) : c;
        at += escape ? escape->length : 1;
    }
    return result;
}

QString decodeDrawingText(std::string_view bytes, const TextCodec &codec)
{
    // Nearly every string of a drawing is plain ASCII; one pass over it finds that out.
    unsigned char all = 0;
    bool mayEscape = false;
    for (const char c : bytes) {
        all |= static_cast<unsigned char>(c);
        mayEscape |= (c == '\\') | (c == '^');
    }
    QString text;
    if (all < 0x80)
        text = QString::fromLatin1(asView(bytes));
    else
        text = codec.decode(bytes);
    return mayEscape ? withoutEscapes(text) : text;
}

static QString withEscapes(QStringView text)
{
    QString escaped;
    escaped.reserve(text.size() * 2);
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar c = text[at];
        if (c == u'^')
            escaped += QStringLiteral("^ ");
        else if (c.unicode() < 0x20)
            (escaped += u'^') += QChar(static_cast<char16_t>(c.unicode() + 0x40));
        else if (c == u'\\' && escapeAt(text.sliced(at)))
            escaped += QStringLiteral("\\U+005C"); // Typed so, and not to be taken for an escape.
        else
            escaped += c;
    }
    return escaped;
}

/// Bytes of an older page that are also UTF-8 would speak for UTF-8 when the file is opened again, here and
/// in other programs that look at single strings. Escapes speak for nothing.
static QByteArray encodeUnmistakably(QStringView text, const TextCodec &codec)
{
    QByteArray bytes = codec.encode(text, Substitute::unicodeEscape);
    if (codec.isUtf8() || !looksLikeUtf8({bytes.constData(), std::size_t(bytes.size())}))
        return bytes;
    return TextCodec("ASCII").encode(text, Substitute::unicodeEscape);
}

QByteArray encodeDrawingText(QStringView text, const TextCodec &codec)
{
    char16_t all = 0;
    bool needsEscape = false;
    for (const QChar c : text) {
        all |= c.unicode();
        needsEscape |= (c.unicode() < 0x20) || (c == u'^') || (c == u'\\');
    }
    if (needsEscape)
        return encodeUnmistakably(withEscapes(text), codec);
    return all < 0x80 ? text.toLatin1() : encodeUnmistakably(text, codec);
}

} // namespace base
