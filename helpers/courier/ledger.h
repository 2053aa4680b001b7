// Ledger: what the courier must not forget, in an SQLite file: who it is, what it saw, what still goes out,
// and what still goes to the program. All of it survives a courier that is killed at any moment.
#pragma once

#include "helpers/courier/message.h"

#include "helpers/database/database.h"

#include <map>
#include <set>
#include <vector>

namespace courier
{

struct Waiting {
    qint64 number = 0;
    QByteArray bytes;
};

/// Of a file that is laid down for the program.
struct Arriving {
    qint64 number = 0;
    QByteArray mark;
    bool isCopy = false;
    QByteArray bytes;
};

/// Drawings are given by drawingName(). Throws sql::Trouble.
class Ledger
{
public:
    explicit Ledger(const QString &path);

    sql::Database &database() { return m_database; }
    /// Whether transactions are on the disk when they end. What comes and goes by the carrier comes again
    /// after a loss of power; what the program wrote does not.
    void setDurable(bool durable);
    /// Made at the first start, kept for good.
    QString sender() const { return m_sender; }
    QString remembered(const QString &what) const;
    void remember(const QString &what, const QString &value);

    bool isSeen(const QString &drawing, const Stamp &stamp) const;
    void noteSeen(const QString &drawing, const Stamp &stamp);
    /// After a transaction that was rolled back.
    void reread() { m_seen.clear(); }
    qint64 highestCounter(const QString &drawing) const;

    /// The message that counts for a mark: the last one in the order.
    std::optional<Message> latest(const QString &drawing, const QByteArray &mark) const;
    void setLatest(const QString &drawing, const SharedChange &change, const Message &latest);
    /// Whether this message is the one that counts for its mark.
    bool isLatest(const QString &drawing, const Stamp &stamp) const;
    /// The mark said this at some time.
    bool hasSaid(const QString &drawing, const QByteArray &mark, const QByteArray &digest) const;
    /// A message of each mark; of one with changes that wait the last of these. Erased marks come later.
    std::vector<QByteArray> wholeState(const QString &drawing) const;

    /// A file of the program; the same again is nothing new.
    void addWaiting(const QString &drawing, const SharedChange &change, const QByteArray &bytes);
    std::vector<Waiting> waiting(const QString &drawing) const;
    std::vector<QByteArray> waitingOf(const QString &drawing, const QByteArray &mark) const;
    void removeWaiting(qint64 number);
    QStringList drawingsWaiting() const;
    qint64 waitingCount() const;
    /// The serial of the last file of the program.
    quint64 lastSerial(const QString &drawing) const;

    void addArriving(const QString &drawing, const QByteArray &mark, bool isCopy, const QByteArray &bytes);
    std::vector<Arriving> arriving(const QString &drawing) const;
    void removeArriving(const QString &drawing, qint64 upTo);
    qint64 arrivingCount() const;

private:
    const std::set<Stamp> &seen(const QString &drawing) const;

    sql::Database m_database;
    QString m_sender;
    mutable std::map<QString, std::set<Stamp>> m_seen; ///< By drawing; folders are full of what was seen.
};

} // namespace courier
