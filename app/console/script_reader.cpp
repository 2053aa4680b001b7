#include "app/console/script_reader.h"

#include <QStringDecoder>

namespace console
{

static QString at(const QString &name, int line)
{
    return QStringLiteral("%1:%2").arg(name).arg(line);
}

/// Decodes one line; each by itself, so that the message can name it.
static base::Result<QString, QString> decode(QByteArrayView bytes)
{
    if (bytes.contains('\0'))
        return base::Failure{QStringLiteral("the line holds a zero byte")};
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(bytes);
    if (decoder.hasError())
        return base::Failure{QStringLiteral("the line is not UTF-8")};
    return text;
}

/// Dialog lines begin with a word; "@100,0", "@5<90" and "@" alone are points that count from the last one.
static bool isDialogLine(const QString &text)
{
    const QStringView word = QStringView(text).mid(1).trimmed();
    return text.startsWith(u'@') && !word.isEmpty() && word.front().isLetter();
}

static base::Result<ScriptLine, QString> parseLine(const QString &text, int number)
{
    ScriptLine line;
    line.number = number;
    line.text = text;
    if (!isDialogLine(text))
        return line;
    line.kind = ScriptLine::dialog;
    line.text = text.mid(1).trimmed();
    auto action = acuiParseAction(line.text);
    if (!action)
        return base::Failure{action.error()};
    line.action = *std::move(action);
    return line;
}

base::Result<Script, QString> Script::parse(QByteArrayView bytes, const QString &name)
{
    Script script;
    script.m_name = name;
    if (bytes.startsWith("\xEF\xBB\xBF"))
        bytes = bytes.sliced(3);
    for (int number = 1; !bytes.isEmpty(); ++number) {
        const qsizetype end = bytes.indexOf('\n');
        QByteArrayView raw = end < 0 ? bytes : bytes.first(end);
        bytes = end < 0 ? QByteArrayView() : bytes.sliced(end + 1);
        if (raw.endsWith('\r'))
            raw.chop(1);
        const auto text = decode(raw);
        if (!text)
            return base::Failure{QStringLiteral("%1: %2").arg(at(name, number), text.error())};
        if (text->startsWith(u';'))
            continue;
        auto line = parseLine(*text, number);
        if (!line)
            return base::Failure{QStringLiteral("%1: %2: %3").arg(at(name, number), *text, line.error())};
        script.m_lines.push_back(*std::move(line));
    }
    return script;
}

const ScriptLine *ScriptReader::peek() const
{
    return m_next < m_script.lines().size() ? &m_script.lines()[m_next] : nullptr;
}

const ScriptLine *ScriptReader::take()
{
    const ScriptLine *line = peek();
    if (line)
        ++m_next;
    return line;
}

QString ScriptReader::position(const ScriptLine &line) const
{
    return at(m_script.name(), line.number);
}

QString ScriptReader::position() const
{
    return m_next == 0 ? m_script.name() : position(m_script.lines()[m_next - 1]);
}

QString ScriptReader::nextPosition() const
{
    const ScriptLine *next = peek();
    return next ? position(*next) : QStringLiteral("%1, at its end").arg(m_script.name());
}

} // namespace console
