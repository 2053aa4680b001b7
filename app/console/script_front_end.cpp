#include "app/console/script_front_end.h"

#include "host/aced/edcommands.h"

namespace console
{

ScriptFrontEnd::ScriptFrontEnd(const Script &script, Echo echo) : m_reader(script), m_echo(echo) {}

static QString describe(const AcEdPrompt &prompt)
{
    return prompt.kind == AcEdPromptKind::command
               ? QStringLiteral("the command prompt")
               : QStringLiteral("the prompt \"%1\"").arg(prompt.message.trimmed());
}

static bool isCancel(const QString &line)
{
    return line.trimmed() == u"^C";
}

std::optional<AcEdAnswer> ScriptFrontEnd::answer(const AcEdPrompt &prompt)
{
    releaseAnsweredKeys();
    while (!m_failed && m_reader.peek() && m_reader.peek()->kind == ScriptLine::dialog) {
        if (!actBetweenPrompts(prompt))
            return std::nullopt;
    }
    if (m_failed)
        return std::nullopt;
    const ScriptLine *line = m_reader.take();
    if (!line) {
        if (prompt.kind != AcEdPromptKind::command)
            failAtNextLine(QStringLiteral("%1 finds no answer").arg(describe(prompt)));
        return std::nullopt;
    }
    echo(describe(prompt), line->text);
    m_keysUsed = true;
    AcEdAnswer given;
    given.kind = isCancel(line->text) ? AcEdAnswer::cancel : AcEdAnswer::text;
    given.typed = given.kind == AcEdAnswer::text ? line->text : QString();
    return given;
}

bool ScriptFrontEnd::actBetweenPrompts(const AcEdPrompt &prompt)
{
    const ScriptLine &line = *m_reader.take();
    if (line.action.verb == AcUiAction::keys && line.action.window.isEmpty())
        return holdKeys(line);
    if (line.action.window.isEmpty()) {
        fail(QStringLiteral("@%1: no dialog is open; %2 is waiting").arg(line.text, describe(prompt)));
        return false;
    }
    echo(line.action.window, line.text);
    m_keysUsed = true;
    const auto done = acuiPerformOnWindow(line.action, m_heldKeys);
    if (!done) {
        fail(QStringLiteral("@%1: %2").arg(line.text, done.error()));
        return false;
    }
    // Windows send commands to the drawing; they run when the command prompt is free.
    if (prompt.kind == AcEdPromptKind::command)
        acedEditor()->runQueue();
    releaseAnsweredKeys();
    return true;
}

std::optional<QString> ScriptFrontEnd::dialogLine(const QString &what)
{
    releaseAnsweredKeys();
    while (!m_failed) {
        const ScriptLine *line = m_reader.peek();
        if (!line || line->kind != ScriptLine::dialog) {
            failAtNextLine(
                line ? QStringLiteral("%1 finds no answer, \"%2\" works no dialog").arg(what, line->text)
                     : QStringLiteral("%1 finds no answer").arg(what));
            break;
        }
        m_reader.take();
        QStringList modifiers;
        if (line->action.verb == AcUiAction::keys && acuiModifierKeys(line->action.text, modifiers)) {
            holdKeys(*line);
            continue;
        }
        echo(what, QLatin1Char('@') + line->text);
        m_keysUsed = true;
        return line->text;
    }
    return std::nullopt;
}

bool ScriptFrontEnd::holdKeys(const ScriptLine &line)
{
    if (!acuiModifierKeys(line.action.text, m_heldKeys)) {
        fail(QStringLiteral("@%1: only Ctrl, Shift and Alt can be held").arg(line.text));
        return false;
    }
    m_keysUsed = false;
    return true;
}

/// A key is held while the answer is given and until the next thing is asked, so that the command that got
/// the answer still finds it down.
void ScriptFrontEnd::releaseAnsweredKeys()
{
    if (m_keysUsed)
        m_heldKeys.clear();
    m_keysUsed = false;
}

void ScriptFrontEnd::refuseAnswer(const QString &reason)
{
    // What does not come about once the script has ended, a report for instance, is told all the same.
    if (m_failed)
        printMessageLine(reason);
    else
        fail(reason);
}

void ScriptFrontEnd::fail(const QString &reason)
{
    failAt(m_reader.position(), reason);
}

void ScriptFrontEnd::failAtNextLine(const QString &reason)
{
    failAt(m_reader.nextPosition(), reason);
}

void ScriptFrontEnd::failAt(const QString &position, const QString &reason)
{
    if (m_failed)
        return;
    m_failed = true;
    printMessageLine(QStringLiteral("%1: %2").arg(position, reason));
}

void ScriptFrontEnd::echo(const QString &asked, const QString &line) const
{
    if (m_echo == Echo::on)
        printMessageLine(QStringLiteral("%1: %2: %3").arg(m_reader.position(), asked, line));
}

} // namespace console
