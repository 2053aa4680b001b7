// Scripts: what a user would type, line by line, with the place of each line.
//
// A line is one answer to one prompt; an empty line is Enter. A line that starts with ";" is a comment; one
// that starts with "@" and a word works a dialog (host/acui/acuiscript.h) and is checked before anything
// runs.
#pragma once

#include "host/acui/acuiscript.h"
#include "host/base/result.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace console
{

struct ScriptLine {
    enum Kind { typed, dialog };
    Kind kind = typed;
    int number = 1;    ///< In the file; 1 is the first.
    QString text;      ///< As written, for dialog lines without the "@".
    AcUiAction action; ///< Of a dialog line.
};

/// A script, read and checked; it can be run many times.
class Script
{
public:
    /// `name` is what messages call the file. Text is UTF-8, with or without a mark at the start; lines end
    /// with LF or CR LF. The error names the line: "check.qns:3: ...".
    static base::Result<Script, QString> parse(QByteArrayView bytes, const QString &name);

    const QString &name() const { return m_name; }
    /// Without the comments.
    const std::vector<ScriptLine> &lines() const { return m_lines; }

private:
    QString m_name;
    std::vector<ScriptLine> m_lines;
};

/// Serves the lines of a script once, in order. The script must outlive it.
class ScriptReader
{
public:
    explicit ScriptReader(const Script &script) : m_script(script) {}

    /// The next line, which stays; null at the end.
    const ScriptLine *peek() const;
    /// Takes the next line; null at the end.
    const ScriptLine *take();
    /// "check.qns:12": the line taken last; the name alone before the first one.
    QString position() const;
    /// The same for the line that comes next; "check.qns, at its end".
    QString nextPosition() const;

private:
    QString position(const ScriptLine &line) const;

    const Script &m_script;
    std::size_t m_next = 0;
};

} // namespace console
