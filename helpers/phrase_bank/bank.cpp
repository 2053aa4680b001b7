#include "helpers/phrase_bank/bank.h"

#include "host/base/host_text.h"

#include <QHash>
#include <QRegularExpression>
#include <QStandardPaths>

#include <algorithm>

namespace bank
{

// Trigrams find any piece of a text of three characters or more, whatever its language.
static constexpr char kTables[] = R"(
CREATE TABLE bank (id INTEGER PRIMARY KEY, name TEXT NOT NULL UNIQUE, own INTEGER NOT NULL DEFAULT 0);
CREATE TABLE phrase (
  id INTEGER PRIMARY KEY, bank INTEGER NOT NULL REFERENCES bank(id) ON DELETE CASCADE,
  category TEXT NOT NULL, text TEXT NOT NULL, weight INTEGER NOT NULL DEFAULT 0,
  chosen INTEGER NOT NULL DEFAULT 0, UNIQUE (bank, text));
CREATE VIRTUAL TABLE phrase_text USING fts5(text, content='phrase', content_rowid='id', tokenize='trigram');
CREATE TRIGGER phrase_added AFTER INSERT ON phrase BEGIN
  INSERT INTO phrase_text(rowid, text) VALUES (new.id, new.text); END;
CREATE TRIGGER phrase_removed AFTER DELETE ON phrase BEGIN
  INSERT INTO phrase_text(phrase_text, rowid, text) VALUES ('delete', old.id, old.text); END;
CREATE TABLE keyword (word TEXT PRIMARY KEY, synonyms TEXT NOT NULL) WITHOUT ROWID;
CREATE TABLE choice (name TEXT PRIMARY KEY, value TEXT NOT NULL) WITHOUT ROWID;
)";

/// Stands in the file, in whatever language the window is.
static const QString kOwnBank = QStringLiteral("\u81EA\u5B9A\u4E49");

QString Bank::userFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/quillnote/phrase-bank.sqlite");
}

Bank::Bank(const QString &path) : m_database(path, {kTables})
{
    execute(m_database, QStringLiteral("INSERT OR IGNORE INTO bank (name, own) VALUES (?, 1)"), {kOwnBank});
}

// Banks ------------------------------------------------------------------------------------------

std::vector<BankInfo> Bank::banks() const
{
    std::vector<BankInfo> found;
    Query query(
        m_database,
        QStringLiteral("SELECT id, name, own, (SELECT count(*) FROM phrase WHERE phrase.bank = bank.id)"
                       " FROM bank ORDER BY own DESC, name"));
    while (query.next())
        found.push_back({query.number(0), query.text(1), query.number(2) != 0, int(query.number(3))});
    return found;
}

qint64 Bank::searched() const
{
    Query query(m_database,
                QStringLiteral("SELECT bank.id FROM choice JOIN bank ON bank.id = CAST(value AS INTEGER)"
                               " WHERE choice.name = 'searched'"));
    return query.next() ? query.number(0) : 0;
}

void Bank::setSearched(qint64 id)
{
    execute(m_database, QStringLiteral("INSERT OR REPLACE INTO choice VALUES ('searched', ?)"),
            {QString::number(id)});
}

int Bank::add(const QString &bank, const std::vector<Entry> &entries)
{
    Transaction all(m_database);
    execute(m_database, QStringLiteral("INSERT OR IGNORE INTO bank (name) VALUES (?)"), {bank});
    Query found(m_database, QStringLiteral("SELECT id FROM bank WHERE name = ?"), {bank});
    const qint64 id = found.next() ? found.number(0) : 0;
    int added = 0;
    for (const Entry &entry : entries) {
        execute(
            m_database,
            QStringLiteral("INSERT OR IGNORE INTO phrase (bank, category, text, weight) VALUES (?, ?, ?, ?)"),
            {id, entry.category, entry.text, entry.weight});
        added += m_database.changes();
    }
    all.commit();
    return added;
}

std::vector<Entry> Bank::entries(qint64 bank) const
{
    std::vector<Entry> found;
    Query query(m_database,
                QStringLiteral("SELECT category, text, weight FROM phrase WHERE bank = ? ORDER BY id"),
                {bank});
    while (query.next())
        found.push_back({query.text(0), query.text(1), int(query.number(2))});
    return found;
}

void Bank::remove(qint64 bank)
{
    Transaction all(m_database);
    execute(m_database, QStringLiteral("DELETE FROM phrase WHERE bank = ?"), {bank});
    execute(m_database, QStringLiteral("DELETE FROM bank WHERE id = ? AND own = 0"), {bank});
    all.commit();
}

void Bank::keep(const QString &text)
{
    // As an edit gives it and as phrase files hold it, it is the same text.
    QString lines = text.trimmed();
    lines.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\n', QStringLiteral("\r\n"));
    if (lines.isEmpty())
        throw Trouble(Host::tr("没有文字。"));
    add(kOwnBank, {{kOwnBank, lines, 0}});
}

// Keywords ---------------------------------------------------------------------------------------

QStringList splitWords(const QString &text)
{
    static const QRegularExpression between(QStringLiteral("[\\s,;\\x{3001}\\x{ff0c}\\x{ff1b}]+"));
    QStringList words = text.split(between, Qt::SkipEmptyParts);
    words.removeDuplicates();
    return words;
}

std::vector<Keyword> Bank::keywords() const
{
    std::vector<Keyword> found;
    Query query(m_database, QStringLiteral("SELECT word, synonyms FROM keyword ORDER BY word"));
    while (query.next())
        found.push_back({query.text(0), splitWords(query.text(1))});
    return found;
}

void Bank::setKeyword(const Keyword &keyword)
{
    execute(m_database, QStringLiteral("INSERT OR REPLACE INTO keyword VALUES (?, ?)"),
            {keyword.word, keyword.synonyms.join(u'、')});
}

void Bank::removeKeyword(const QString &word)
{
    execute(m_database, QStringLiteral("DELETE FROM keyword WHERE word = ?"), {word});
}

// Searching --------------------------------------------------------------------------------------

QStringList keyWords(const QString &key)
{
    constexpr int kMost = 200;
    static const QRegularExpression saysNothing(QStringLiteral("^(AcDb\\w*|[\\d.\\-+x×*/% ]*|.)$"));
    QStringList words;
    for (const QString &part : key.split(u',', Qt::SkipEmptyParts)) {
        const QString word = part.trimmed();
        if (!saysNothing.match(word).hasMatch() && !words.contains(word, Qt::CaseInsensitive) &&
            words.size() < kMost)
            words.append(word);
    }
    return words;
}

std::vector<qint64> Bank::idsHolding(const QString &word) const
{
    constexpr qsizetype kTrigram = 3;
    std::vector<qint64> ids;
    QString quoted = word;
    // The index knows pieces of three characters; shorter ones are looked for in the texts themselves.
    Query query =
        word.size() >= kTrigram
            ? Query(m_database, QStringLiteral("SELECT rowid FROM phrase_text WHERE phrase_text MATCH ?"),
                    {u'"' + quoted.replace(u'"', QStringLiteral("\"\"")) + u'"'})
            : Query(m_database,
                    QStringLiteral("SELECT id FROM phrase WHERE instr(lower(text), lower(?)) > 0"), {word});
    while (query.next())
        ids.push_back(query.number(0));
    return ids;
}

namespace
{

/// What is known of phrases: which words they were found by.
struct Hit {
    QStringList words;
    int score = 0;
    int ofSearch = 0; ///< So many words of the search.
};
using Hits = QHash<qint64, Hit>;

void count(Hits &hits, const std::vector<qint64> &ids, const QString &word, int score, bool ofSearch = false)
{
    for (const qint64 id : ids) {
        Hit &hit = hits[id];
        hit.ofSearch += ofSearch;
        if (hit.words.contains(word, Qt::CaseInsensitive))
            continue;
        hit.words.append(word);
        hit.score += score;
    }
}

bool isNamed(const Keyword &keyword, const QString &key)
{
    return key.contains(keyword.word, Qt::CaseInsensitive) ||
           std::any_of(keyword.synonyms.begin(), keyword.synonyms.end(),
                       [&](const QString &synonym) { return key.contains(synonym, Qt::CaseInsensitive); });
}

} // namespace

std::vector<Found> Bank::find(const QString &search, const QString &key, qint64 bank, int limit) const
{
    constexpr int kOfKeyword = 3; // Somebody has thought about it.
    constexpr int kOfKey = 2;
    Hits hits;
    QStringList wanted = splitWords(search);
    for (const QString &word : wanted)
        count(hits, idsHolding(word), word, 0, true);
    for (const Keyword &keyword : keywords()) {
        if (!isNamed(keyword, key))
            continue;
        for (const QString &word : QStringList(keyword.word) + keyword.synonyms)
            count(hits, idsHolding(word), word, kOfKeyword);
    }
    for (const QString &word : keyWords(key))
        count(hits, idsHolding(word), word, kOfKey);

    std::vector<Found> found;
    Query query(
        m_database,
        QStringLiteral("SELECT phrase.id, category, text, weight, chosen, bank.name FROM phrase"
                       " JOIN bank ON bank.id = phrase.bank WHERE ? IN (0, bank.id) ORDER BY phrase.id"),
        {bank});
    while (query.next()) {
        const Hit hit = hits.value(query.number(0));
        if (hit.ofSearch == wanted.size())
            found.push_back({query.number(0),
                             {query.text(1), query.text(2), int(query.number(3))},
                             query.text(5),
                             int(query.number(4)),
                             hit.words,
                             hit.score});
    }
    std::stable_sort(found.begin(), found.end(), [](const Found &a, const Found &b) {
        return std::tuple(a.score, a.chosen, a.entry.weight) > std::tuple(b.score, b.chosen, b.entry.weight);
    });
    if (found.size() > std::size_t(limit))
        found.resize(std::size_t(limit));
    return found;
}

void Bank::countChoice(qint64 phrase)
{
    execute(m_database, QStringLiteral("UPDATE phrase SET chosen = chosen + 1 WHERE id = ?"), {phrase});
}

} // namespace bank
