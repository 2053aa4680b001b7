// The editor's face while a script runs: prompts and dialogs take the script's lines in order.
//
// The first line that does not fit ends the run: nothing finds an answer any more, so every command and
// dialog that waits is left, and the reason names the line. A script therefore cannot hang.
#pragma once

#include "app/console/console_front_end.h"
#include "app/console/script_reader.h"

namespace console
{

class ScriptFrontEnd : public ConsoleFrontEnd
{
public:
    enum class Echo { off, on };
    /// With `Echo::on` every prompt and dialog is printed together with the line that answers it.
    explicit ScriptFrontEnd(const Script &script, Echo echo = Echo::off);

    std::optional<AcEdAnswer> answer(const AcEdPrompt &prompt) override;
    std::optional<QString> dialogLine(const QString &what) override;
    void refuseAnswer(const QString &reason) override;
    QStringList heldKeys() const override { return m_heldKeys; }

    /// Ends the run because of the line taken last. The first reason counts; it is printed at once.
    void fail(const QString &reason);
    bool hasFailed() const { return m_failed; }
    /// "check.qns:12" of the line taken last.
    QString position() const { return m_reader.position(); }

private:
    void failAtNextLine(const QString &reason);
    void failAt(const QString &position, const QString &reason);
    bool holdKeys(const ScriptLine &line);
    void releaseAnsweredKeys();
    bool actBetweenPrompts(const AcEdPrompt &prompt);
    void echo(const QString &asked, const QString &line) const;

    ScriptReader m_reader;
    Echo m_echo;
    bool m_failed = false;
    QStringList m_heldKeys;
    bool m_keysUsed = false; ///< An answer was given while they were held.
};

} // namespace console
