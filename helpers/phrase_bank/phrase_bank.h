// The entries of the phrase bank: a store of review phrases with a search, beside the program that uses it.
// Called in the thread of the program's QApplication. Texts end in a zero.
#pragma once

#include <string>

/// Lets the user choose phrases; `result` is what was chosen, several divided by "\r\n", empty for nothing.
/// The key is what is known of the place in question, words divided by commas: phrases that have to do with
/// it stand first. Throws std::runtime_error when the bank cannot be opened or read.
extern "C" void callPhraseBank(std::u16string &result, const char16_t *key);
/// Keeps a text in the user's own part, once. Throws std::runtime_error when that cannot be done.
extern "C" void callAddToSelfDefLib(const char16_t *text);
/// Opens the window for banks: which one is searched, import and export. Trouble is told there.
extern "C" void CallLibSetup();
/// Opens the window for keywords and their synonyms. Trouble is told there.
extern "C" void KeywordsDef();
