// Mark passwords: the hash that marks keep, what was typed so far, and the check before a change.
#pragma once

#include <QString>

#include <functional>
#include <optional>

/// Nothing of this is cleared while the program runs: one right password unlocks every mark that has it.
struct PasswordState {
    QString lastEntered; ///< Hash of what was typed last.
    QString unlocked;    ///< Hash of the last password that was right.
    /// Drags of grips that were refused for their password; after the fifth nobody is asked any more.
    int failedDrags = 0;
    /// Extra prompts that refreshing snapshots has made; after the third every mark gets one prompt.
    int refreshRetries = 0;

    void reset() { *this = {}; }
};
PasswordState &passwordState();

/// Asks the user for a password; no value when the prompt was closed in any way but OK.
using PasswordPrompt = std::function<std::optional<QString>()>;
/// The dialog that asks. Without one every check that would ask refuses. Returns the one before.
PasswordPrompt setPasswordPrompt(PasswordPrompt prompt);

/// MD5 of the password in code page 936, 32 lower-case hexadecimal digits.
QString hashPassword(const QString &password);
/// Hashes are the same whatever their letter case.
bool sameHash(const QString &a, const QString &b);
const QString &unlockedHash();

/// True when the user may change what has this hash. Asks when the last password typed was another one;
/// prints why it refuses, except when the prompt was cancelled.
bool checkPassword(const QString &hash);
/// What callers do: no question for an empty hash or an unlocked one, else checkPassword().
bool mayChangeProtected(const QString &hash);
/// The same before grips are dragged; refuses without a question after five failures.
bool mayDragProtected(const QString &hash);
