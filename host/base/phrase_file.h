// Phrase files: plain texts that users write, one menu of phrases each. Reading one, and adding a phrase.
// Pure functions; the format is docs/formats/phrase-files.md.
#pragma once

#include "host/base/text_codec.h"

#include <QString>

#include <optional>
#include <vector>

/// A phrase to choose.
struct Phrase {
    QString text; ///< Lines are divided by "\r\n".
    int weight = 0;
    QString category; ///< The menu that it stands in.

    friend bool operator==(const Phrase &, const Phrase &) = default;
};

struct PhraseFile {
    bool inParagraphs = false; ///< Entries are divided by separator lines, not by line ends.
    std::vector<Phrase> phrases;
    bool hasMore = false; ///< Entries behind the last one that counts were left out.
};

inline constexpr int kMostPhrasesOfFile = 30;
/// A file beyond this size is no phrase file.
inline constexpr qsizetype kLargestPhraseFile = 4 * 1024 * 1024;

struct PhraseText {
    QString text;
    base::TextCodec codec;
};
/// UTF-8 when the bytes are that beyond ASCII, else code page 936. No value for a file with a byte-order
/// mark.
std::optional<PhraseText> decodePhraseBytes(QByteArrayView bytes);

/// A line without comments and blanks around it.
QString phraseLine(QStringView line);
/// An entry with its tag read and taken out.
Phrase parsePhrase(QString entry);
PhraseFile parsePhraseFile(QStringView text, int limit = kMostPhrasesOfFile);

/// The tag of a phrase of that weight, as it stands in an entry.
QString phraseTag(int weight);

/// What a menu shows: the first 40 characters.
QString phraseLabel(const QString &text);

enum class PhraseAddition {
    added,
    alreadyThere,  ///< An equal line or entry, whatever the letter case.
    notReadable,   ///< The file has a byte-order mark or is too large.
    commentInside, ///< The phrase holds a mark of comments, which would cut it.
    notInCodePage, ///< The file is in code page 936, which lacks a character of the phrase.
};
/// Adds a phrase behind the others, in the file's own encoding and with its own line ends. `bytes` change
/// only with `added`. In a file of lines the lines of the phrase are joined by blanks.
PhraseAddition addPhrase(QByteArray &bytes, const QString &phrase);
