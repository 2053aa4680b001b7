#include "helpers/courier/courier.h"

#include <QFile>

#include <algorithm>
#include <limits>

namespace courier
{

static const QString kHanded = QStringLiteral("handed ");
static constexpr qsizetype kMostBytesAtOnce =
    32 * 1024 * 1024; ///< Of what the program is handed in one file.

Courier::Courier(ProgramFiles files, Ledger &ledger, Carrier &carrier)
    : m_files(std::move(files)), m_ledger(ledger), m_carrier(carrier)
{
}

void Courier::fail(const QString &trouble)
{
    m_status.isConnected = false;
    m_status.trouble = trouble;
}

bool Courier::run()
{
    // Before the program's files: whoever opens a drawing has written what is new in it by then.
    m_open = m_files.openDrawings();
    m_status.isConnected = true;
    m_status.trouble.clear();
    bool moved = collect();
    std::set<QString> wanted;
    for (const auto &[drawing, names] : m_open)
        wanted.insert(drawing);
    for (const QString &drawing : m_ledger.drawingsWaiting())
        wanted.insert(drawing);
    for (const QString &drawing : wanted)
        moved |= exchange(drawing);
    for (const auto &[drawing, names] : m_open) {
        begin(drawing);
        moved |= hand(drawing);
    }
    m_status.waiting = m_ledger.waitingCount();
    m_status.arriving = m_ledger.arrivingCount();
    m_status.drawings = int(m_open.size());
    if (m_files.tooLarge() > 0)
        m_status.trouble = QStringLiteral("%1 changes are too large to be sent").arg(m_files.tooLarge());
    return moved;
}

// From the program -----------------------------------------------------------------------------------

bool Courier::collect()
{
    const std::vector<SentFile> files = m_files.sent();
    if (files.empty())
        return false;
    m_ledger.setDurable(true); // Before the files go.
    {
        sql::Transaction all(m_ledger.database());
        for (const SentFile &file : files)
            m_ledger.addWaiting(drawingName(file.change), file.change, file.bytes);
        all.commit();
    }
    m_ledger.setDurable(false);
    for (const SentFile &file : files)
        QFile::remove(file.path);
    return true;
}

// With the others ------------------------------------------------------------------------------------

bool Courier::exchange(const QString &drawing)
{
    const bool received = receive(drawing);
    // What they say decides what is news.
    return m_status.isConnected ? send(drawing) || received : received;
}

bool Courier::receive(const QString &drawing)
{
    bool moved = false;
    for (;;) {
        auto messages = m_carrier.receive(drawing);
        if (!messages) {
            fail(messages.error());
            return moved;
        }
        if (messages->empty())
            return moved;
        std::ranges::sort(*messages, [](const Message &a, const Message &b) { return a.stamp < b.stamp; });
        sql::Transaction all(m_ledger.database());
        for (const Message &message : *messages)
            apply(drawing, message);
        all.commit();
        m_status.lastArrived = QDateTime::currentDateTime();
        moved = true;
    }
}

/// Whether anybody has to hear of it. A program that does not know what the mark was before, because its
/// drawing was never saved after an exchange, must not take back what others did: it gets what counts, and
/// its own words beside it unless they were said before.
bool Courier::isNews(const QString &drawing, const SharedChange &change, const QByteArray &bytes)
{
    const std::optional<Message> latest = m_ledger.latest(drawing, change.mark);
    if (!latest)
        return true;
    const SharedChange counts = *readMarkDataHeader(latest->bytes)->shared;
    if (counts.after == change.after)
        return false;
    if (change.before != unknownDigest())
        return true;
    // What waits behind it overtakes what counts now, and may know its words.
    if (m_ledger.waitingOf(drawing, change.mark).empty())
        m_ledger.addArriving(drawing, change.mark, false, latest->bytes);
    if (isOvertaken(drawing, bytes, latest->bytes) && !m_ledger.hasSaid(drawing, change.mark, change.after))
        m_ledger.addArriving(drawing, change.mark, true, bytes);
    return false;
}

static QString idOf(const QByteArray &bytes)
{
    return QString::fromLatin1(identityOf(QString::fromLatin1(bytes.toBase64())).toHex());
}

bool Courier::send(const QString &drawing)
{
    bool moved = false;
    for (const Waiting &waiting : m_ledger.waiting(drawing)) {
        const SharedChange change = *readMarkDataHeader(waiting.bytes)->shared;
        std::optional<Stamp> stamp;
        {
            sql::Transaction all(m_ledger.database());
            m_ledger.removeWaiting(waiting.number);
            // What went out counts, whatever came since: a courier that was killed behind publishing goes on.
            const bool isNewsToOthers =
                m_carrier.published(drawing, idOf(waiting.bytes)) || isNews(drawing, change, waiting.bytes);
            if (isNewsToOthers) {
                const auto published = m_carrier.publish(drawing, idOf(waiting.bytes), waiting.bytes,
                                                         m_ledger.highestCounter(drawing));
                if (!published) {
                    fail(published.error());
                    return moved; // Taken back: it waits on.
                }
                apply(drawing, {*published, waiting.bytes});
            }
            all.commit();
        }
        moved = true;
    }
    return moved;
}

/// One message in its place in the order, whenever it comes.
void Courier::apply(const QString &drawing, const Message &message)
{
    const SharedChange change = *readMarkDataHeader(message.bytes)->shared;
    m_ledger.noteSeen(drawing, message.stamp);
    const std::optional<Message> before = m_ledger.latest(drawing, change.mark);
    const bool isOwn = message.stamp.sender == m_ledger.sender();
    const bool counts = !before || before->stamp < message.stamp;
    if (counts)
        m_ledger.setLatest(drawing, change, {message.stamp, message.bytes});
    else if (!isOwn)
        return;
    // The program has what it sent, and what waits overtakes everything.
    const QByteArray winner = counts ? message.bytes : before->bytes;
    if (counts != isOwn && m_ledger.waitingOf(drawing, change.mark).empty())
        m_ledger.addArriving(drawing, change.mark, false, winner);
    // An own message that took long to be published may have been overtaken before it came.
    const std::optional<Message> loser = counts ? before : message;
    if (loser && loser->stamp.sender == m_ledger.sender() && isOvertaken(drawing, loser->bytes, winner))
        m_ledger.addArriving(drawing, change.mark, true, loser->bytes);
}

/// Whether the words of an own change have to be kept: neither the winner nor what waits here knew of them. A
/// program that was ended without saving overtakes itself so.
bool Courier::isOvertaken(const QString &drawing, const QByteArray &loser, const QByteArray &winner) const
{
    const SharedChange mine = *readMarkDataHeader(loser)->shared;
    const SharedChange won = *readMarkDataHeader(winner)->shared;
    if (mine.after == erasedDigest() || won.before == mine.after || won.after == mine.after)
        return false;
    return std::ranges::none_of(m_ledger.waitingOf(drawing, mine.mark), [&mine](const QByteArray &bytes) {
        return readMarkDataHeader(bytes)->shared->before == mine.after;
    });
}

// To the program -------------------------------------------------------------------------------------

void Courier::forgetTaken(const QString &drawing)
{
    m_ledger.removeArriving(drawing, m_ledger.remembered(kHanded + drawing).toLongLong());
}

/// A program that just opened the drawing may have any state of it: it gets the whole one. What lies there
/// was meant for an earlier opening, which may have had what this one has not.
void Courier::begin(const QString &drawing)
{
    const std::set<QString> &names = m_open.at(drawing);
    if (std::ranges::includes(m_begun, names))
        return;
    // Whenever this is interrupted nothing that still lies there counts as taken.
    if (m_files.laidDown(drawing) == 0)
        forgetTaken(drawing);
    m_ledger.remember(kHanded + drawing, {});
    m_files.takeBack(drawing);
    sql::Transaction all(m_ledger.database());
    const std::vector<Arriving> before = m_ledger.arriving(drawing);
    m_ledger.removeArriving(drawing, std::numeric_limits<qint64>::max());
    for (const QByteArray &bytes : m_ledger.wholeState(drawing))
        m_ledger.addArriving(drawing, readMarkDataHeader(bytes)->shared->mark, false, bytes);
    // Copies stand beside what took their place, so they come behind it.
    for (const Arriving &each : before) {
        if (each.isCopy)
            m_ledger.addArriving(drawing, each.mark, true, each.bytes);
    }
    all.commit();
    if (m_files.markBegun(drawing, names, m_ledger.lastSerial(drawing)))
        m_begun.insert(names.begin(), names.end());
}

/// How many of them go into one file: of one kind, and each mark once.
static std::vector<QByteArray> firstFile(const std::vector<Arriving> &arriving)
{
    std::vector<QByteArray> files;
    std::set<QByteArray> marks;
    qsizetype bytes = 0;
    const MarkDataKind kind = readMarkDataHeader(arriving.front().bytes)->kind;
    for (const Arriving &each : arriving) {
        bytes += each.bytes.size();
        const bool fits = each.isCopy == arriving.front().isCopy && marks.insert(each.mark).second &&
                          readMarkDataHeader(each.bytes)->kind == kind && files.size() < kMostDataRecords &&
                          (files.empty() || bytes <= kMostBytesAtOnce);
        if (!fits)
            break;
        files.push_back(each.bytes);
    }
    return files;
}

/// One file at a time: the program takes it when its user has finished a command.
bool Courier::hand(const QString &drawing)
{
    if (m_files.laidDown(drawing) > 0)
        return false;
    bool moved = false;
    forgetTaken(drawing);
    if (const std::vector<Arriving> arriving = m_ledger.arriving(drawing); !arriving.empty()) {
        const std::vector<QByteArray> files = firstFile(arriving);
        const qint64 number = arriving[files.size() - 1].number;
        MarkDataHeader header = *readMarkDataHeader(files.front());
        header.shared = SharedChange{QByteArray::fromHex(drawing.toLatin1()),
                                     {},
                                     {},
                                     {},
                                     m_ledger.lastSerial(drawing),
                                     arriving.front().isCopy};
        // A copy that is laid down twice is one mark; a state that is, is taken once by its number.
        if (m_files.layDown(drawing, number, joinMarkData(header, files))) {
            m_ledger.remember(kHanded + drawing, QString::number(number));
            moved = true;
        }
    }
    return moved;
}

// People ---------------------------------------------------------------------------------------------

void Courier::keepHouse()
{
    std::set<QString> open;
    m_status.people.clear();
    for (const auto &[drawing, names] : m_open) {
        open.insert(drawing);
        const auto people = m_carrier.keepHouse(drawing);
        if (!people) {
            fail(people.error());
            continue;
        }
        for (const Person &person : *people) {
            const auto known = std::ranges::find(m_status.people, person.sender, &Person::sender);
            if (known == m_status.people.end())
                m_status.people.push_back(person);
            else
                known->isHere |= person.isHere;
        }
    }
    for (const QString &drawing : m_kept) {
        if (!open.contains(drawing))
            m_carrier.leave(drawing);
    }
    m_kept = open;
}

void Courier::leave()
{
    for (const QString &drawing : m_kept)
        m_carrier.leave(drawing);
    m_kept.clear();
}

} // namespace courier
