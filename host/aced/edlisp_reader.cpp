// Reads one expression of the small LISP by recursive descent; the depth is bounded.
#include "host/aced/edlisp_reader.h"

#include "host/base/format_number.h"

#include <cmath>
#include <limits>
#include <optional>

namespace lisp
{

namespace
{

class Reader
{
public:
    explicit Reader(QStringView text) : m_text(text) {}
    base::Result<Value, Fault> readAll();

private:
    bool atEnd() const { return m_at >= m_text.size(); }
    QChar peek() const { return m_text[m_at]; }
    void skipBlanks();
    /// The first fault stays; reading stops there.
    Value fail(const QString &text, qsizetype position);

    Value read(int depth);
    Value readList(int depth);
    Value readText();
    void readEscape(QString &into);
    Value readQuoted(int depth);
    Value readAtom();

    QStringView m_text;
    qsizetype m_at = 0;
    std::optional<Fault> m_fault;
};

bool endsAtom(QChar c)
{
    return c.isSpace() || c == u'(' || c == u')' || c == u'"' || c == u';' || c == u'\'';
}

Value Reader::fail(const QString &text, qsizetype position)
{
    if (!m_fault)
        m_fault = Fault{text, position};
    m_at = m_text.size();
    return Nil{};
}

void Reader::skipBlanks()
{
    while (!atEnd() && (peek().isSpace() || peek() == u';')) {
        if (peek() == u';') {
            while (!atEnd() && peek() != u'\n')
                ++m_at;
        } else {
            ++m_at;
        }
    }
}

Value Reader::read(int depth)
{
    skipBlanks();
    if (atEnd())
        return fail(QStringLiteral("an expression is missing"), m_at);
    if (depth > kMaxDepth)
        return fail(QStringLiteral("lists are nested too deeply"), m_at);
    switch (peek().unicode()) {
    case '(':
        return readList(depth);
    case ')':
        return fail(QStringLiteral("extra right parenthesis on input"), m_at);
    case '"':
        return readText();
    case '\'':
        return readQuoted(depth);
    default:
        return readAtom();
    }
}

Value Reader::readList(int depth)
{
    const qsizetype begin = m_at++;
    std::vector<Value> items;
    for (skipBlanks(); !atEnd() && peek() != u')'; skipBlanks())
        items.push_back(read(depth + 1));
    if (atEnd())
        return fail(QStringLiteral("malformed list on input: the list is not closed"), begin);
    ++m_at;
    if (items.empty())
        return Nil{};
    ListPointer list = makeList(std::move(items), begin);
    return list ? Value(std::move(list)) : fail(QStringLiteral("the list is too long"), begin);
}

Value Reader::readQuoted(int depth)
{
    const qsizetype begin = m_at++;
    if (atEnd())
        return fail(QStringLiteral("malformed list on input: nothing follows the quote"), begin);
    ListPointer list = makeList({Symbol{QStringLiteral("QUOTE")}, read(depth + 1)}, begin);
    return list ? Value(std::move(list)) : fail(QStringLiteral("lists are nested too deeply"), begin);
}

Value Reader::readText()
{
    const qsizetype begin = m_at++;
    QString text;
    while (!atEnd() && peek() != u'"') {
        const QChar character = peek();
        ++m_at;
        if (character == u'\\')
            readEscape(text);
        else
            text += character;
    }
    if (atEnd())
        return fail(QStringLiteral("malformed string on input: the text is not closed"), begin);
    ++m_at;
    return text;
}

/// Behind the backslash. What is no escape stands for itself.
void Reader::readEscape(QString &into)
{
    if (atEnd())
        return;
    const QChar letter = peek();
    ++m_at;
    bool valid = false;
    switch (letter.unicode()) {
    case 'n':
        into += u'\n';
        return;
    case 'r':
        into += u'\r';
        return;
    case 't':
        into += u'\t';
        return;
    case 'e':
        into += QChar(27);
        return;
    case 'U': {
        const QStringView code = m_text.mid(m_at, 5);
        const ushort unit =
            code.size() == 5 && code[0] == u'+' ? code.mid(1).toUShort(&valid, 16) : ushort(0);
        if (valid) {
            into += QChar(unit);
            m_at += 5;
        } else {
            into += letter;
        }
        return;
    }
    default:
        break;
    }
    const QStringView octal = m_text.mid(m_at - 1, 3);
    const ushort unit = octal.size() == 3 ? octal.toUShort(&valid, 8) : ushort(0);
    if (valid && letter.isDigit()) {
        into += QChar(unit);
        m_at += 2;
    } else {
        into += letter;
    }
}

std::optional<Value> asNumber(QStringView word)
{
    const QByteArray ascii = word.toLatin1();
    const std::string_view text(ascii.constData(), std::size_t(ascii.size()));
    const auto integer = base::parseInteger(text);
    if (integer && *integer >= std::numeric_limits<std::int32_t>::min() &&
        *integer <= std::numeric_limits<std::int32_t>::max())
        return Value(std::int32_t(*integer));
    if (const auto real = base::parseReal(text))
        return Value(*real);
    return std::nullopt;
}

Value Reader::readAtom()
{
    const qsizetype begin = m_at;
    while (!atEnd() && !endsAtom(peek()))
        ++m_at;
    const QStringView word = m_text.mid(begin, m_at - begin);
    if (word == u".")
        return fail(QStringLiteral("malformed list on input: dotted pairs are not supported"), begin);
    const bool maybeNumber = word[0].isDigit() || word[0] == u'+' || word[0] == u'-' || word[0] == u'.';
    if (maybeNumber) {
        if (const auto number = asNumber(word))
            return *number;
    }
    const QString name = word.toString().toUpper();
    return name == QLatin1String("NIL") ? Value(Nil{}) : Value(Symbol{name});
}

base::Result<Value, Fault> Reader::readAll()
{
    if (m_text.size() > qsizetype(kMaxWeight))
        return base::Failure{Fault{QStringLiteral("the expression is too long"), -1}};
    Value value = read(1);
    skipBlanks();
    if (!m_fault && !atEnd()) {
        fail(peek() == u')' ? QStringLiteral("extra right parenthesis on input")
                            : QStringLiteral("there is more text behind the expression"),
             m_at);
    }
    if (m_fault)
        return base::Failure{*m_fault};
    return value;
}

} // namespace

base::Result<Value, Fault> readExpression(QStringView text)
{
    return Reader(text).readAll();
}

} // namespace lisp
