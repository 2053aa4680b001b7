// Phrase files in and out of the bank.
#pragma once

#include "helpers/phrase_bank/bank.h"

namespace bank
{

/// The entries of a phrase file under the file's title; every entry, however many. Throws Trouble for a file
/// that is none.
std::vector<Entry> readPhraseFile(const QString &path);
/// A phrase file that holds the entries: code page 936, or UTF-8 where it lacks a character.
QByteArray asPhraseFile(const std::vector<Entry> &entries);
void writePhraseFile(const QString &path, const std::vector<Entry> &entries);

/// A new bank gets the phrase files that were shipped beside the library.
void fillNewBank(Bank &bank);

} // namespace bank
