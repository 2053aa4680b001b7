#include "host/acgi/gitextlayout.h"

#include <algorithm>

namespace acgi
{

static int codeDigits(QStringView text, qsizetype from, qsizetype count, int base, uint &value)
{
    bool ok = false;
    value = text.mid(from, count).toUInt(&ok, base);
    return ok && text.size() >= from + count ? int(count) : 0;
}

/// The character of a "\U+nnnn" at `at`; 0 when there is none.
static char16_t unicodeCode(QStringView text, qsizetype at)
{
    uint value = 0;
    if (text.mid(at, 3).compare(u"\\U+", Qt::CaseInsensitive) != 0 || !codeDigits(text, at + 3, 4, 16, value))
        return 0;
    return char16_t(value);
}

/// Resolves a code that begins with "%%" at `at` and moves behind it; false when it is plain text.
static bool percentCode(QStringView text, qsizetype &at, QString &out)
{
    if (text.mid(at, 2) != u"%%" || at + 2 >= text.size())
        return false;
    uint value = 0;
    switch (text[at + 2].toLower().unicode()) {
    case u'd':
        out += QChar(0xB0);
        break;
    case u'p':
        out += QChar(0xB1);
        break;
    case u'c':
        out += QChar(0x2205);
        break;
    case u'%':
        out += u'%';
        break;
    case u'u':
    case u'o':
    case u'k':
        break;
    default:
        if (!codeDigits(text, at + 2, 3, 10, value))
            return false;
        out += QChar(char16_t(value));
        at += 5;
        return true;
    }
    at += 3;
    return true;
}

QString plainText(const QString &coded)
{
    if (!coded.contains(u"%%") && !coded.contains(u'\\'))
        return coded;
    QString plain;
    for (qsizetype i = 0; i < coded.size();) {
        if (percentCode(coded, i, plain))
            continue;
        if (const char16_t unicode = unicodeCode(coded, i)) {
            plain += QChar(unicode);
            i += 7;
            continue;
        }
        plain += coded[i++];
    }
    return plain;
}

static bool isWide(char16_t c)
{
    return (c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF) || (c >= 0xAC00 && c <= 0xD7A3) ||
           (c >= 0xF900 && c <= 0xFAFF) || (c >= 0xFE30 && c <= 0xFE4F) || (c >= 0xFF00 && c <= 0xFF60) ||
           (c >= 0xFFE0 && c <= 0xFFE6);
}

// In units of the height of a capital letter.
static double characterWidth(QChar c)
{
    static constexpr QStringView kNarrow = u" .,:;!'`|iIjl()[]ft";
    static constexpr QStringView kBroad = u"mwMW@%";
    if (isWide(c.unicode()))
        return 1.35;
    if (kNarrow.contains(c))
        return 0.4;
    if (kBroad.contains(c))
        return 1.2;
    return c.isLowSurrogate() ? 0.55 : 0.8;
}

double textWidth(const QString &plain)
{
    double width = 0.0;
    for (const QChar c : plain)
        width += characterWidth(c);
    return width;
}

namespace
{

/// Reads a text with inline codes from left to right and breaks it into lines.
class MTextReader
{
public:
    MTextReader(const QString &text, double height, double widthFactor, double wrapWidth)
        : m_text(text), m_state{height, widthFactor}, m_wrap(wrapWidth)
    {
        while (m_at < m_text.size())
            step();
        endLine();
    }
    std::vector<MTextLine> lines;

private:
    struct State {
        double height;
        double widthFactor;
    };

    void step()
    {
        const QChar c = m_text[m_at];
        QString resolved;
        if (percentCode(m_text, m_at, resolved)) {
            for (const QChar character : resolved)
                put(character);
        } else if (c == u'\\') {
            escape();
        } else if (c == u'{') {
            m_states.push_back(m_state);
            ++m_at;
        } else if (c == u'}') {
            if (!m_states.empty()) {
                m_state = m_states.back();
                m_states.pop_back();
            }
            ++m_at;
        } else if (c == u'^' && m_at + 1 < m_text.size()) {
            caret(m_text[m_at + 1]);
        } else if (c == u'\n') {
            endLine();
            ++m_at;
        } else {
            put(c);
            ++m_at;
        }
    }

    // A control character in two: ^I is a tabulator, ^J a new line, "^ " the caret itself.
    void caret(QChar next)
    {
        m_at += 2;
        if (next == u'J')
            endLine();
        else if (next == u'I')
            put(u' ');
        else if (next == u' ')
            put(u'^');
    }

    void escape()
    {
        if (const char16_t unicode = unicodeCode(m_text, m_at)) {
            put(QChar(unicode));
            m_at += 7;
            return;
        }
        const QChar code = m_at + 1 < m_text.size() ? m_text[m_at + 1] : QChar(u'\\');
        m_at += 2;
        switch (code.unicode()) {
        case u'P':
        case u'X':
            endLine();
            break;
        case u'~':
            put(QChar::Nbsp);
            break;
        case u'H':
            m_state.height = changed(m_state.height);
            break;
        case u'W':
            m_state.widthFactor = changed(m_state.widthFactor);
            break;
        case u'S':
            stack(parameter());
            break;
        case u'A':
        case u'C':
        case u'c':
        case u'F':
        case u'f':
        case u'p':
        case u'Q':
        case u'T':
            parameter();
            break;
        case u'L':
        case u'l':
        case u'O':
        case u'o':
        case u'K':
        case u'k':
        case u'N':
            break;
        default:
            put(code);
            break;
        }
    }

    /// What stands before the next semicolon.
    QString parameter()
    {
        const qsizetype end = m_text.indexOf(u';', m_at);
        const qsizetype stop = end < 0 ? m_text.size() : end;
        const QString value = m_text.mid(m_at, stop - m_at);
        m_at = end < 0 ? stop : stop + 1;
        return value;
    }

    /// "2.5" is a value, "0.7x" a factor.
    double changed(double before)
    {
        QString value = parameter();
        const bool isFactor = value.endsWith(u'x', Qt::CaseInsensitive);
        if (isFactor)
            value.chop(1);
        bool ok = false;
        const double number = value.toDouble(&ok);
        constexpr double kMost = 1e6;
        if (!ok || !(number > 0.0) || number > kMost)
            return before;
        return isFactor ? before * number : number;
    }

    /// A fraction or tolerance: two parts one above the other, each smaller.
    void stack(const QString &parts)
    {
        const qsizetype split = std::max({parts.indexOf(u'/'), parts.indexOf(u'^'), parts.indexOf(u'#')});
        const QString upper = split < 0 ? parts : parts.left(split);
        const QString lower = split < 0 ? QString() : parts.mid(split + 1);
        constexpr double kStackedScale = 0.7;
        m_word += upper;
        if (!lower.isEmpty())
            m_word += u'/' + lower;
        m_wordWidth += std::max(textWidth(upper), textWidth(lower)) * m_state.height * m_state.widthFactor *
                       kStackedScale;
        m_line.height = std::max(m_line.height, m_state.height);
    }

    void put(QChar c)
    {
        const double width = characterWidth(c) * m_state.height * m_state.widthFactor;
        if (c == u' ') {
            endWord();
            m_line.text += c;
            m_line.width += width;
            return;
        }
        m_word += c;
        m_wordWidth += width;
        m_wordHeight = std::max(m_wordHeight, m_state.height);
        if (isWide(c.unicode()))
            endWord(); // Lines break between any two ideographs.
    }

    void endWord()
    {
        if (m_word.isEmpty())
            return;
        if (m_wrap > 0.0 && !m_line.text.isEmpty() && m_line.width + m_wordWidth > m_wrap)
            pushLine();
        m_line.text += m_word;
        m_line.width += m_wordWidth;
        m_line.height = std::max(m_line.height, m_wordHeight);
        m_word.clear();
        m_wordWidth = 0.0;
        m_wordHeight = 0.0;
    }

    void endLine()
    {
        endWord();
        pushLine();
    }

    void pushLine()
    {
        if (m_line.height == 0.0)
            m_line.height = m_state.height;
        while (m_line.text.endsWith(u' ')) {
            m_line.text.chop(1);
            m_line.width -= characterWidth(u' ') * m_state.height * m_state.widthFactor;
        }
        m_line.width = std::max(m_line.width, 0.0);
        lines.push_back(std::exchange(m_line, MTextLine()));
    }

    QString m_text;
    qsizetype m_at = 0;
    State m_state;
    std::vector<State> m_states;
    double m_wrap;
    MTextLine m_line;
    QString m_word;
    double m_wordWidth = 0.0;
    double m_wordHeight = 0.0;
};

} // namespace

std::vector<MTextLine> layOutMText(const QString &coded, double height, double widthFactor, double wrapWidth)
{
    return std::move(MTextReader(coded, height, widthFactor, wrapWidth).lines);
}

} // namespace acgi
