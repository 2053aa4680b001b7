// The editor's face while no script runs: texts go to standard error, questions find no answer.
#pragma once

#include "host/aced/edfrontend.h"

namespace console
{

class ConsoleFrontEnd : public AcEdFrontEnd
{
public:
    /// Says that the prompt found no answer.
    std::optional<AcEdAnswer> answer(const AcEdPrompt &prompt) override;
    /// The same for a dialog or a question. A message that only wants to be read passes.
    std::optional<QString> dialogLine(const QString &what) override;
    bool isScripted() const override { return true; }
    void print(const QString &text) override;
    void refuseAnswer(const QString &reason) override;
};

/// Writes a text for people to standard error. "\n" at its front begins a line only where none has begun, so
/// that texts printed in the manner of the command line leave no empty lines.
void printMessage(const QString &text);
/// The same on a line of its own.
void printMessageLine(const QString &text);
/// Ends the line that messages have begun, so that results or the shell's prompt do not continue it.
void endMessageLine();

} // namespace console
