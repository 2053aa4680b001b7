#include "host/acgi/text/text_layout.h"

#include "host/base/text_codec.h"

#include <array>
#include <optional>

namespace acgi
{

/// The number of exactly `count` digits at `from`.
static std::optional<uint> digits(QStringView text, qsizetype from, qsizetype count, int base)
{
    bool ok = false;
    const uint value = text.mid(from, count).toUInt(&ok, base);
    if (!ok || text.size() < from + count || !text[from].isLetterOrNumber())
        return std::nullopt;
    return value;
}

/// The character of "\M+nxxxx": a code page, counted as below, and two bytes.
static QString multiByteCharacter(QStringView text, qsizetype at)
{
    static constexpr const char *kCodePages[] = {"ANSI_932", "ANSI_950", "ANSI_949", "ANSI_1361", "ANSI_936"};
    const std::optional<uint> page = digits(text, at + 3, 1, 10);
    const std::optional<uint> bytes = digits(text, at + 4, 4, 16);
    if (!page || *page < 1 || *page > std::size(kCodePages) || !bytes)
        return {};
    const char pair[] = {char(*bytes >> 8), char(*bytes & 0xFF)};
    const std::string_view all(pair, 2);
    return base::TextCodec(kCodePages[*page - 1]).decode(pair[0] == 0 ? all.substr(1) : all);
}

static CharacterCode takeBackslashCode(QStringView text, qsizetype &at, QString &out)
{
    const QStringView opening = text.mid(at, 3);
    if (opening.compare(u"\\U+", Qt::CaseInsensitive) == 0) {
        const std::optional<uint> unicode = digits(text, at + 3, 4, 16);
        if (!unicode || *unicode == 0)
            return CharacterCode::none;
        out += QChar(char16_t(*unicode));
        at += 7;
        return CharacterCode::character;
    }
    if (opening.compare(u"\\M+", Qt::CaseInsensitive) != 0)
        return CharacterCode::none;
    const QString character = multiByteCharacter(text, at);
    if (character.isEmpty())
        return CharacterCode::none;
    out += character;
    at += 8;
    return CharacterCode::character;
}

/// Codes 127 to 129 are those of shape fonts.
static char16_t numberedCharacter(uint code)
{
    static constexpr char16_t kShapeCodes[] = {u'\u00B0', u'\u00B1', u'\u2205'};
    return code >= 127 && code <= 129 ? kShapeCodes[code - 127] : char16_t(code);
}

static CharacterCode takePercentCode(QStringView text, qsizetype &at, QString &out)
{
    CharacterCode code = CharacterCode::character;
    switch (text[at + 2].toLower().unicode()) {
    case u'd':
        out += u'\u00B0';
        break;
    case u'p':
        out += u'\u00B1';
        break;
    case u'c':
        out += u'\u2205';
        break;
    case u'%':
        out += u'%';
        break;
    case u'u':
        code = CharacterCode::underline;
        break;
    case u'o':
        code = CharacterCode::overline;
        break;
    case u'k':
        code = CharacterCode::strikeThrough;
        break;
    default:
        const std::optional<uint> value = digits(text, at + 2, 3, 10);
        if (!value)
            return CharacterCode::none;
        out += QChar(numberedCharacter(*value));
        at += 5;
        return CharacterCode::character;
    }
    at += 3;
    return code;
}

CharacterCode takeCharacterCode(QStringView text, qsizetype &at, QString &out)
{
    if (text[at] == u'\\')
        return takeBackslashCode(text, at, out);
    if (text[at] == u'%' && at + 2 < text.size() && text[at + 1] == u'%')
        return takePercentCode(text, at, out);
    return CharacterCode::none;
}

double ruleHeight(CharacterCode kind)
{
    switch (kind) {
    case CharacterCode::underline:
        return -0.2;
    case CharacterCode::overline:
        return 1.2;
    default:
        return 0.5;
    }
}

QString plainText(const QString &coded)
{
    std::vector<TextRule> rules;
    return plainText(coded, rules);
}

QString plainText(const QString &coded, std::vector<TextRule> &rules)
{
    rules.clear();
    if (!coded.contains(u"%%") && !coded.contains(u'\\'))
        return coded;
    QString plain;
    std::array<std::optional<qsizetype>, 3> starts; // Of the lines that are switched on.
    const auto toggle = [&](CharacterCode kind) {
        auto &start = starts[std::size_t(kind) - std::size_t(CharacterCode::underline)];
        if (start && plain.size() > *start)
            rules.push_back({kind, *start, plain.size()});
        start = start ? std::nullopt : std::optional(plain.size());
    };
    for (qsizetype i = 0; i < coded.size();) {
        const CharacterCode code = takeCharacterCode(coded, i, plain);
        if (code == CharacterCode::none)
            plain += coded[i++];
        else if (code != CharacterCode::character)
            toggle(code);
    }
    for (std::size_t i = 0; i < starts.size(); ++i) {
        if (starts[i])
            toggle(CharacterCode(i + std::size_t(CharacterCode::underline)));
    }
    return plain;
}

qsizetype characterLength(QStringView text, qsizetype at)
{
    const bool isPair = text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
    return isPair ? 2 : 1;
}

qsizetype characterCount(QStringView text)
{
    qsizetype count = 0;
    for (qsizetype i = 0; i < text.size(); i += characterLength(text, i))
        ++count;
    return count;
}

} // namespace acgi
