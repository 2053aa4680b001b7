// The phrase bank: a library beside the module that is loaded for each call and freed after it.
#pragma once

#include <QString>

#include <optional>

/// Lets the user choose from the bank's phrases; `key` is what is known of the place in question: words
/// divided by commas. An empty text when nothing was chosen or the bank failed, which is printed. No value
/// when the bank cannot be loaded, which is told.
std::optional<QString> callPhraseBank(const QString &key);
/// Stores a text in the user's own part of the bank. False when that could not be done; either is told.
bool callAddToSelfDefLib(const QString &text);

/// The bank's own windows; nothing happens without the bank.
void callLibSetup();
void callKeywordsDef();
