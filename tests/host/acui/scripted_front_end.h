// A front end whose dialog lines come from a list, and that remembers what it was told.
#pragma once

#include "host/aced/edfrontend.h"

class ScriptedFrontEnd : public AcEdFrontEnd
{
public:
    explicit ScriptedFrontEnd(QStringList lines) : m_lines(std::move(lines)), m_before(acedSetFrontEnd(this))
    {
    }
    ~ScriptedFrontEnd() override { acedSetFrontEnd(m_before); }

    std::optional<AcEdAnswer> answer(const AcEdPrompt &) override { return std::nullopt; }
    std::optional<QString> dialogLine(const QString &what) override
    {
        asked.append(what);
        return m_lines.isEmpty() ? std::nullopt : std::optional(m_lines.takeFirst());
    }
    bool isScripted() const override { return true; }
    void print(const QString &text) override { printed += text; }
    void refuseAnswer(const QString &reason) override { refusals.append(reason); }
    QStringList heldKeys() const override { return held; }

    const QStringList &unusedLines() const { return m_lines; }

    QStringList asked;
    QStringList refusals;
    QString printed;
    QStringList held;

private:
    QStringList m_lines;
    AcEdFrontEnd *m_before;
};
