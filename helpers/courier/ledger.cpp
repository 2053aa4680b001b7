#include "helpers/courier/ledger.h"

#include <QUuid>

namespace courier
{

static constexpr char kTables[] = R"(
CREATE TABLE fact (what TEXT PRIMARY KEY, value TEXT NOT NULL) WITHOUT ROWID;
CREATE TABLE seen (drawing TEXT, sender TEXT, counter INTEGER, PRIMARY KEY (drawing, sender, counter)) WITHOUT ROWID;
CREATE TABLE latest (drawing TEXT, mark BLOB, counter INTEGER, sender TEXT, erased INTEGER, bytes BLOB,
  PRIMARY KEY (drawing, mark)) WITHOUT ROWID;
CREATE INDEX latest_stamp ON latest (drawing, counter, sender);
CREATE TABLE said (drawing TEXT, mark BLOB, digest BLOB, PRIMARY KEY (drawing, mark, digest)) WITHOUT ROWID;
CREATE TABLE collected (drawing TEXT, serial INTEGER, PRIMARY KEY (drawing, serial)) WITHOUT ROWID;
CREATE TABLE waiting (number INTEGER PRIMARY KEY AUTOINCREMENT, drawing TEXT, mark BLOB, bytes BLOB);
CREATE TABLE arriving (number INTEGER PRIMARY KEY AUTOINCREMENT, drawing TEXT, mark BLOB, copy INTEGER, bytes BLOB);
CREATE INDEX waiting_mark ON waiting (drawing, mark);
CREATE INDEX arriving_drawing ON arriving (drawing, number);
)";

using sql::execute;
using sql::Query;

Ledger::Ledger(const QString &path) : m_database(path, {kTables})
{
    m_database.run("PRAGMA journal_mode = WAL");
    setDurable(false);
    m_sender = remembered(QStringLiteral("sender"));
    if (m_sender.isEmpty()) {
        m_sender = QUuid::createUuid().toString(QUuid::Id128).left(8);
        remember(QStringLiteral("sender"), m_sender);
    }
}

void Ledger::setDurable(bool durable)
{
    m_database.run(durable ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
}

QString Ledger::remembered(const QString &what) const
{
    Query query(m_database, QStringLiteral("SELECT value FROM fact WHERE what = ?"), {what});
    return query.next() ? query.text(0) : QString();
}

void Ledger::remember(const QString &what, const QString &value)
{
    execute(m_database, QStringLiteral("INSERT OR REPLACE INTO fact VALUES (?, ?)"), {what, value});
}

// Order ----------------------------------------------------------------------------------------------

bool Ledger::isSeen(const QString &drawing, const Stamp &stamp) const
{
    return seen(drawing).contains(stamp);
}

const std::set<Stamp> &Ledger::seen(const QString &drawing) const
{
    const auto [found, isNew] = m_seen.try_emplace(drawing);
    if (isNew) {
        Query query(m_database, QStringLiteral("SELECT counter, sender FROM seen WHERE drawing = ?"),
                    {drawing});
        while (query.next())
            found->second.insert({query.number(0), query.text(1)});
    }
    return found->second;
}

void Ledger::noteSeen(const QString &drawing, const Stamp &stamp)
{
    execute(m_database, QStringLiteral("INSERT OR IGNORE INTO seen VALUES (?, ?, ?)"),
            {drawing, stamp.sender, stamp.counter});
    seen(drawing);
    m_seen[drawing].insert(stamp);
}

qint64 Ledger::highestCounter(const QString &drawing) const
{
    const std::set<Stamp> &stamps = seen(drawing);
    return stamps.empty() ? 0 : stamps.rbegin()->counter;
}

// Marks ----------------------------------------------------------------------------------------------

std::optional<Message> Ledger::latest(const QString &drawing, const QByteArray &mark) const
{
    Query query(m_database,
                QStringLiteral("SELECT counter, sender, bytes FROM latest WHERE drawing = ? AND mark = ?"),
                {drawing, mark});
    if (!query.next())
        return {};
    return Message{{query.number(0), query.text(1)}, query.bytes(2)};
}

void Ledger::setLatest(const QString &drawing, const SharedChange &change, const Message &latest)
{
    execute(m_database, QStringLiteral("INSERT OR REPLACE INTO latest VALUES (?, ?, ?, ?, ?, ?)"),
            {drawing, change.mark, latest.stamp.counter, latest.stamp.sender,
             int(change.after == erasedDigest()), latest.bytes});
    execute(m_database, QStringLiteral("INSERT OR IGNORE INTO said VALUES (?, ?, ?)"),
            {drawing, change.mark, change.after});
}

bool Ledger::isLatest(const QString &drawing, const Stamp &stamp) const
{
    Query query(m_database,
                QStringLiteral("SELECT 1 FROM latest WHERE drawing = ? AND counter = ? AND sender = ?"),
                {drawing, stamp.counter, stamp.sender});
    return query.next();
}

bool Ledger::hasSaid(const QString &drawing, const QByteArray &mark, const QByteArray &digest) const
{
    Query query(m_database,
                QStringLiteral("SELECT 1 FROM said WHERE drawing = ? AND mark = ? AND digest = ?"),
                {drawing, mark, digest});
    return query.next();
}

std::vector<QByteArray> Ledger::wholeState(const QString &drawing) const
{
    std::vector<QByteArray> state;
    Query query(
        m_database,
        QStringLiteral("SELECT bytes FROM latest WHERE drawing = ?1 AND NOT EXISTS (SELECT 1 FROM waiting"
                       " WHERE waiting.drawing = ?1 AND waiting.mark = latest.mark)"
                       " ORDER BY erased, counter"),
        {drawing});
    while (query.next())
        state.push_back(query.bytes(0));
    Query own(m_database,
              QStringLiteral("SELECT bytes FROM waiting WHERE number IN"
                             " (SELECT max(number) FROM waiting WHERE drawing = ? GROUP BY mark)"),
              {drawing});
    while (own.next())
        state.push_back(own.bytes(0));
    return state;
}

// To the others --------------------------------------------------------------------------------------

void Ledger::addWaiting(const QString &drawing, const SharedChange &change, const QByteArray &bytes)
{
    execute(m_database, QStringLiteral("INSERT OR IGNORE INTO collected VALUES (?, ?)"),
            {drawing, qint64(change.serial)});
    if (m_database.changes() == 0)
        return;
    execute(m_database, QStringLiteral("INSERT INTO waiting (drawing, mark, bytes) VALUES (?, ?, ?)"),
            {drawing, change.mark, bytes});
    // The program has something newer.
    execute(m_database, QStringLiteral("DELETE FROM arriving WHERE drawing = ? AND mark = ? AND copy = 0"),
            {drawing, change.mark});
}

std::vector<Waiting> Ledger::waiting(const QString &drawing) const
{
    std::vector<Waiting> found;
    Query query(
        m_database,
        QStringLiteral("SELECT number, bytes FROM waiting WHERE drawing = ? ORDER BY number LIMIT 1000"),
        {drawing});
    while (query.next())
        found.push_back({query.number(0), query.bytes(1)});
    return found;
}

std::vector<QByteArray> Ledger::waitingOf(const QString &drawing, const QByteArray &mark) const
{
    std::vector<QByteArray> found;
    Query query(m_database, QStringLiteral("SELECT bytes FROM waiting WHERE drawing = ? AND mark = ?"),
                {drawing, mark});
    while (query.next())
        found.push_back(query.bytes(0));
    return found;
}

void Ledger::removeWaiting(qint64 number)
{
    execute(m_database, QStringLiteral("DELETE FROM waiting WHERE number = ?"), {number});
}

QStringList Ledger::drawingsWaiting() const
{
    QStringList drawings;
    Query query(m_database, QStringLiteral("SELECT DISTINCT drawing FROM waiting"));
    while (query.next())
        drawings.append(query.text(0));
    return drawings;
}

qint64 Ledger::waitingCount() const
{
    Query query(m_database, QStringLiteral("SELECT count(*) FROM waiting"));
    return query.next() ? query.number(0) : 0;
}

quint64 Ledger::lastSerial(const QString &drawing) const
{
    Query query(m_database, QStringLiteral("SELECT max(serial) FROM collected WHERE drawing = ?"), {drawing});
    return query.next() ? quint64(query.number(0)) : 0;
}

// To the program -------------------------------------------------------------------------------------

void Ledger::addArriving(const QString &drawing, const QByteArray &mark, bool isCopy, const QByteArray &bytes)
{
    execute(m_database,
            QStringLiteral("INSERT INTO arriving (drawing, mark, copy, bytes) VALUES (?, ?, ?, ?)"),
            {drawing, mark, int(isCopy), bytes});
}

std::vector<Arriving> Ledger::arriving(const QString &drawing) const
{
    std::vector<Arriving> found;
    Query query(m_database,
                QStringLiteral("SELECT number, mark, copy, bytes FROM arriving WHERE drawing = ?"
                               " ORDER BY number"),
                {drawing});
    while (query.next())
        found.push_back({query.number(0), query.bytes(1), query.number(2) != 0, query.bytes(3)});
    return found;
}

void Ledger::removeArriving(const QString &drawing, qint64 upTo)
{
    execute(m_database, QStringLiteral("DELETE FROM arriving WHERE drawing = ? AND number <= ?"),
            {drawing, upTo});
}

qint64 Ledger::arrivingCount() const
{
    Query query(m_database, QStringLiteral("SELECT count(*) FROM arriving"));
    return query.next() ? query.number(0) : 0;
}

} // namespace courier
