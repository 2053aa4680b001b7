// The phrases that were chosen last, kept in the settings savedNearTxt0 to savedNearTxt14.
// See docs/decisions/0059-recent-phrases.md.
#pragma once

#include <QStringList>

inline constexpr int kMostRecentPhrases = 15;

/// The newest first.
QStringList recentPhrases();
/// Puts a phrase first and stores the list, with what other programs of the user have stored meanwhile.
void keepRecentPhrase(const QString &text);
