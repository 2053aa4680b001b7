// Courier: takes the program's files to the other people who have the drawing, and theirs to the program, so
// that every copy ends with the same marks.
//
// Who wins: of two changes of one mark that did not know of each other the later one in the order of the
// carrier counts, whole. Whose change was overtaken so gets it back as a mark of its own, when its words
// differ.
#pragma once

#include "helpers/courier/carrier.h"
#include "helpers/courier/ledger.h"
#include "helpers/courier/program_files.h"

#include <QDateTime>

#include <set>

namespace courier
{

struct Status {
    bool isConnected = false;
    QString trouble; ///< Why not, or what else goes wrong.
    qint64 waiting = 0;
    qint64 arriving = 0;
    QDateTime lastArrived;
    std::vector<Person> people;
    int drawings = 0; ///< That are open.

    friend bool operator==(const Status &, const Status &) = default;
};

class Courier
{
public:
    Courier(ProgramFiles files, Ledger &ledger, Carrier &carrier);

    /// One round; throws sql::Trouble. True when something moved.
    bool run();
    /// Tells others who is here, and clears. Less often than run().
    void keepHouse();
    /// Tells the others that this one goes.
    void leave();
    const Status &status() const { return m_status; }

private:
    bool collect();
    bool exchange(const QString &drawing);
    bool receive(const QString &drawing);
    bool send(const QString &drawing);
    bool isNews(const QString &drawing, const SharedChange &change, const QByteArray &bytes);
    void apply(const QString &drawing, const Message &message);
    bool isOvertaken(const QString &drawing, const QByteArray &loser, const QByteArray &winner) const;
    void begin(const QString &drawing);
    bool hand(const QString &drawing);
    void forgetTaken(const QString &drawing);
    void fail(const QString &trouble);

    ProgramFiles m_files;
    Ledger &m_ledger;
    Carrier &m_carrier;
    std::map<QString, std::set<QString>> m_open; ///< As of the last round.
    std::set<QString> m_begun;                   ///< Names of openings that got the whole state.
    std::set<QString> m_kept;                    ///< Drawings whose people were told.
    Status m_status;
};

} // namespace courier
