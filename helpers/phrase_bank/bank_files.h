// Phrase files in and out of the bank.
#pragma once

#include "helpers/phrase_bank/bank.h"

namespace bank
{

/// The entries of a phrase file under its title; every entry, however many. No value for bytes that are no
/// phrase file.
std::optional<std::vector<Entry>> entriesOf(const QString &title, QByteArrayView bytes);
/// The same of a file. Throws Trouble.
std::vector<Entry> readPhraseFile(const QString &path);
/// A phrase file that holds the entries: code page 936, or UTF-8 where it lacks a character.
QByteArray asPhraseFile(const std::vector<Entry> &entries);
void writePhraseFile(const QString &path, const std::vector<Entry> &entries);

/// A new bank gets the phrase files that were shipped beside the library.
void fillNewBank(Bank &bank);

} // namespace bank
