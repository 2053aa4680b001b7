#include "host/acgi/text/mtext_reader.h"

#include "host/acgi/text/text_layout.h"

#include <algorithm>

namespace acgi
{

namespace
{

constexpr std::size_t kDeepestNesting = 200;
constexpr std::size_t kMostTabs = 64;
constexpr std::size_t kMostParagraphChanges = 5000;

/// Reads from left to right; braces bring back the format that was before them.
class MTextReader
{
public:
    MTextReader(const QString &text, const MTextFormat &start, MTextContent &content)
        : m_text(text), m_start(start), m_format(start), m_content(content)
    {
        m_content.formats.push_back(m_format);
        m_content.paragraphs.emplace_back();
        while (m_at < m_text.size())
            step();
        add(MTextItem::endParagraph);
    }

private:
    void step();
    bool takeCaret();
    void escape();
    void changeFormat(QChar code);
    void changeFont(const QString &description, bool isShapeFont);
    void changeColor(QChar code, const QString &value);
    void changeParagraph(const QString &description);
    void stack(const QString &description);
    QString parameter(QStringView alphabet = {});

    void put(QStringView characters)
    {
        for (const QChar c : characters)
            put(c);
    }
    void put(QChar c)
    {
        if (c == u' ')
            add(MTextItem::space);
        else
            m_run += c;
    }

    MTextItem &add(MTextItem::Kind kind)
    {
        flush();
        MTextItem &item = m_content.items.emplace_back();
        item.kind = kind;
        item.format = format();
        item.paragraph = std::uint32_t(m_content.paragraphs.size() - 1);
        return item;
    }

    /// Call before the format changes.
    void flush()
    {
        if (m_run.isEmpty())
            return;
        MTextItem &item = m_content.items.emplace_back();
        item.text = std::exchange(m_run, QString());
        item.format = format();
        item.paragraph = std::uint32_t(m_content.paragraphs.size() - 1);
    }

    std::uint32_t format()
    {
        if (m_content.formats.back() != m_format)
            m_content.formats.push_back(m_format);
        return std::uint32_t(m_content.formats.size() - 1);
    }

    const QString &m_text;
    const MTextFormat m_start;
    qsizetype m_at = 0;
    MTextFormat m_format;
    std::vector<MTextFormat> m_outer;
    std::size_t m_tooDeep = 0; ///< Braces that were opened beyond the deepest nesting.
    QString m_run;
    MTextContent &m_content;
};

/// "2.5" is a value, "0.7x" a factor on the one before.
double changedValue(QString value, double before, double least, double most)
{
    const bool isFactor = value.endsWith(u'x', Qt::CaseInsensitive);
    if (isFactor)
        value.chop(1);
    bool ok = false;
    const double number = value.toDouble(&ok) * (isFactor ? before : 1.0);
    return ok && number >= least && number <= most ? number : before;
}

} // namespace

void MTextReader::step()
{
    QString resolved;
    if (takeCharacterCode(m_text, m_at, resolved) != CharacterCode::none) {
        put(resolved);
        return;
    }
    const QChar c = m_text[m_at];
    if (c == u'\\') {
        escape();
        return;
    }
    if (c == u'^' && takeCaret())
        return;
    ++m_at;
    if (c == u'{') {
        if (m_outer.size() < kDeepestNesting)
            m_outer.push_back(m_format);
        else
            ++m_tooDeep;
    } else if (c == u'}') {
        flush();
        if (m_tooDeep > 0) {
            --m_tooDeep;
        } else if (!m_outer.empty()) {
            m_format = m_outer.back();
            m_outer.pop_back();
        }
    } else if (c == u'\n') {
        add(MTextItem::endParagraph);
    } else if (c == u'\t') {
        add(MTextItem::tab);
    } else if (c >= u' ') {
        put(c);
    }
}

// A control character in two: ^I is a tabulator, ^J a new line, "^ " the caret itself.
bool MTextReader::takeCaret()
{
    const QChar next = m_at + 1 < m_text.size() ? m_text[m_at + 1] : QChar();
    if (next == u'J')
        add(MTextItem::endParagraph);
    else if (next == u'I')
        add(MTextItem::tab);
    else if (next == u' ')
        put(u'^');
    else if (next != u'M')
        return false;
    m_at += 2;
    return true;
}

void MTextReader::escape()
{
    const QChar code = m_at + 1 < m_text.size() ? m_text[m_at + 1] : QChar(u'\\');
    m_at = std::min(m_at + 2, m_text.size());
    switch (code.unicode()) {
    case u'P':
    case u'X':
        add(MTextItem::endParagraph);
        break;
    case u'N':
        add(MTextItem::endColumn);
        break;
    case u'~':
        put(QChar::Nbsp);
        break;
    case u'S':
        stack(parameter());
        break;
    case u'p':
        changeParagraph(parameter());
        break;
    case u'\\':
    case u'{':
    case u'}':
        put(code);
        break;
    default:
        changeFormat(code);
        break;
    }
}

void MTextReader::changeFormat(QChar code)
{
    static constexpr QStringView kWithName = u"Ff";
    static constexpr QStringView kWithNumber = u"ACcHQTW";
    static constexpr QStringView kSwitches = u"LlOoKk";
    if (!kWithName.contains(code) && !kWithNumber.contains(code) && !kSwitches.contains(code)) {
        put(code); // No code: the character itself.
        return;
    }
    flush();
    const QString value = kWithName.contains(code)     ? parameter()
                          : kWithNumber.contains(code) ? parameter(u"+-.0123456789eExX ")
                                                       : QString();
    switch (code.unicode()) {
    case u'A':
        m_format.alignment = std::clamp(value.toInt(), 0, 2);
        break;
    case u'C':
    case u'c':
        changeColor(code, value);
        break;
    case u'F':
    case u'f':
        changeFont(value, code == u'F');
        break;
    case u'H':
        m_format.height = changedValue(value, m_format.height, 1e-9, 1e9);
        break;
    case u'W':
        m_format.widthFactor = changedValue(value, m_format.widthFactor, 0.01, 100.0);
        break;
    case u'T':
        m_format.tracking = changedValue(value, m_format.tracking, 0.1, 10.0);
        break;
    case u'Q': {
        constexpr double kSteepest = 85.0;
        m_format.oblique = std::clamp(value.toDouble(), -kSteepest, kSteepest) * kGePi / 180.0;
        break;
    }
    case u'L':
    case u'l':
        m_format.underline = code == u'L';
        break;
    case u'O':
    case u'o':
        m_format.overline = code == u'O';
        break;
    default:
        m_format.strikeThrough = code == u'K';
        break;
    }
}

/// "Arial|b1|i0|c134|p34" or "txt.shx,gbcbig.shx".
void MTextReader::changeFont(const QString &description, bool isShapeFont)
{
    const QStringList parts = description.split(u'|');
    FontRequest request;
    const QString name = parts.front().trimmed();
    if (name.isEmpty()) {
        m_format.font = m_start.font;
        return;
    }
    if (isShapeFont || name.contains(u".shx", Qt::CaseInsensitive)) {
        request.fontFile = name.section(u',', 0, 0);
        request.bigFontFile = name.section(u',', 1, 1);
    } else {
        request.typeface = name;
    }
    request.bold = parts.contains(u"b1");
    request.italic = parts.contains(u"i1");
    m_format.font = &findFont(request);
}

void MTextReader::changeColor(QChar code, const QString &value)
{
    bool ok = false;
    const uint number = value.toUInt(&ok);
    if (!ok)
        return;
    if (code == u'C') {
        if (number <= 256)
            m_format.color = AcCmEntityColor::fromIndex(int(number));
        return;
    }
    // Blue stands highest here.
    m_format.color =
        AcCmEntityColor::fromRgb((number & 0xFF) << 16 | (number & 0xFF00) | (number >> 16 & 0xFF));
}

/// Sets a length; "*" is the usual one.
static void setLength(double &length, QStringView value)
{
    constexpr double kMost = 1e6;
    bool ok = false;
    const double number = value.toDouble(&ok);
    if (value == u"*")
        length = 0.0;
    else if (ok && std::abs(number) <= kMost)
        length = number;
}

static void addTab(MTextParagraph &paragraph, QStringView stop)
{
    MTextTab tab;
    if (stop.startsWith(u'c') || stop.startsWith(u'r')) {
        tab.kind = stop.front();
        stop = stop.mid(1);
    }
    setLength(tab.at, stop);
    if (tab.at > 0.0 && paragraph.tabs.size() < kMostTabs)
        paragraph.tabs.push_back(tab);
}

/// "m1.5" a factor, "e1" exactly, "a1" at least, "*" that of the text.
static void setSpacing(MTextParagraph &paragraph, QStringView value)
{
    paragraph.exactSpacing = value.startsWith(u'e');
    paragraph.spacing = 0.0;
    const double factor = value.mid(1).toDouble();
    if (!value.startsWith(u'*') && factor > 0.0 && factor < 100.0)
        paragraph.spacing = factor;
}

/// "xi-2,l2,r0,t4,c12,qc,sm1.5": in front of its first property may stand an x.
void MTextReader::changeParagraph(const QString &description)
{
    flush();
    MTextParagraph paragraph = m_content.paragraphs.back();
    bool inTabs = false;
    for (QStringView part : QStringView(description).split(u',')) {
        part = part.trimmed();
        if (part.startsWith(u'x'))
            part = part.mid(1);
        if (part.isEmpty())
            continue;
        const bool isStop =
            part.front().isDigit() || (part.size() > 1 && (part.front() == u'c' || part.front() == u'r'));
        if (inTabs && isStop) {
            addTab(paragraph, part);
            continue;
        }
        inTabs = false;
        const QStringView value = part.mid(1);
        switch (part.front().unicode()) {
        case u'i':
            setLength(paragraph.indent, value);
            break;
        case u'l':
            setLength(paragraph.left, value);
            break;
        case u'r':
            setLength(paragraph.right, value);
            break;
        case u'q':
            paragraph.justification = value.isEmpty() || value == u"*" ? QChar() : value.front();
            break;
        case u's':
            setSpacing(paragraph, value);
            break;
        case u't':
            paragraph.tabs.clear();
            addTab(paragraph, value);
            inTabs = true;
            break;
        default:
            break;
        }
    }
    std::ranges::sort(paragraph.tabs, {}, &MTextTab::at);
    if (m_content.paragraphs.size() < kMostParagraphChanges)
        m_content.paragraphs.push_back(std::move(paragraph));
}

/// Two parts with '/', '#' or '^' between them; a backslash in front of one of these takes its meaning away.
void MTextReader::stack(const QString &description)
{
    QString parts[2];
    QChar divider;
    for (qsizetype i = 0; i < description.size(); ++i) {
        QChar c = description[i];
        const bool isDivider = c == u'/' || c == u'#' || c == u'^';
        if (isDivider && divider.isNull()) {
            divider = c;
            continue;
        }
        if (takeCharacterCode(description, i, parts[divider.isNull() ? 0 : 1]) != CharacterCode::none) {
            --i;
            continue;
        }
        if (c == u'\\' && i + 1 < description.size())
            c = description[++i];
        parts[divider.isNull() ? 0 : 1] += c;
    }
    MTextItem &item = add(MTextItem::stack);
    item.text = parts[0].trimmed();
    item.lower = parts[1].trimmed();
    item.divider = divider;
}

/// What stands before the next semicolon that has no backslash in front of it. Without one it ends at the
/// next brace, and a number where its digits end, so that the text behind it is not swallowed.
QString MTextReader::parameter(QStringView alphabet)
{
    qsizetype end = m_at;
    qsizetype letters = -1; // Where the first character stands that the alphabet lacks.
    while (end < m_text.size() && m_text[end] != u';' && m_text[end] != u'{' && m_text[end] != u'}') {
        if (letters < 0 && !alphabet.isEmpty() && !alphabet.contains(m_text[end]))
            letters = end;
        end += m_text[end] == u'\\' ? 2 : 1;
    }
    end = letters >= 0 ? letters : std::min(end, m_text.size());
    const QString value = m_text.mid(m_at, end - m_at);
    m_at = end < m_text.size() && m_text[end] == u';' ? end + 1 : end;
    return value;
}

MTextContent readMText(const QString &coded, const MTextFormat &start)
{
    MTextContent content;
    const MTextReader read(coded, start, content);
    return content;
}

} // namespace acgi
