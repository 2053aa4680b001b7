// The phrase bank: banks of phrases, the user's own one among them, keywords with synonyms, and the search.
#pragma once

#include "helpers/database/database.h"

#include <QStringList>

#include <optional>
#include <vector>

namespace bank
{

using sql::Database, sql::Transaction, sql::Query, sql::execute, sql::Trouble;

struct BankInfo {
    qint64 id = 0;
    QString name;
    bool isOwn = false; ///< What the user stores one by one.
    int phrases = 0;
};

struct Entry {
    QString category;
    QString text; ///< Lines are divided by "\r\n".
    int weight = 0;
};

struct Found {
    qint64 id = 0;
    Entry entry;
    QString bank;
    int chosen = 0;   ///< How often.
    QStringList hits; ///< The words that brought it up, those of the search first.
    int score = 0;
};

struct Keyword {
    QString word;
    QStringList synonyms;
};

class Bank
{
public:
    /// The file of this user: "quillnote/phrase-bank.sqlite" in the folder for data (XDG_DATA_HOME).
    static QString userFile();
    explicit Bank(const QString &path = userFile());

    bool isNew() const { return m_database.isNew(); }

    // Banks
    std::vector<BankInfo> banks() const;
    /// The bank that is searched first of all; 0: all of them.
    qint64 searched() const;
    void setSearched(qint64 id);
    /// Makes the bank when there is none of that name, and adds what it does not have yet; how many that
    /// were.
    int add(const QString &bank, const std::vector<Entry> &entries);
    std::vector<Entry> entries(qint64 bank) const;
    /// The own bank is emptied; it stays.
    void remove(qint64 bank);
    /// Into the own bank. A text that is there stays once.
    void keep(const QString &text);

    // Keywords
    std::vector<Keyword> keywords() const;
    void setKeyword(const Keyword &keyword);
    void removeKeyword(const QString &word);

    // Searching
    /// Phrases that hold every word of `search` (divided by blanks), whatever the letter case; those that
    /// have to do with the key first, then the ones chosen most. At most `limit`.
    std::vector<Found> find(const QString &search, const QString &key, qint64 bank, int limit = 200) const;
    void countChoice(qint64 phrase);

private:
    std::vector<qint64> idsHolding(const QString &word) const;

    Database m_database;
};

/// The words of a key that say something of the place: layer and block names and texts, not kinds of
/// entities.
QStringList keyWords(const QString &key);
/// "a、b，c d" as a list.
QStringList splitWords(const QString &text);

} // namespace bank
