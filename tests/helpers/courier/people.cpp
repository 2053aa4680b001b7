#include "tests/helpers/courier/people.h"

#include "quillnote/exchange/courier_files.h"

#include "host/acdb/dbsymtb.h"

#include <QDir>

#include <utility>

namespace tests
{

Reviewer *Reviewer::s_sitting = nullptr;

base::Result<std::vector<courier::Message>, QString> BadConnection::receive(const QString &drawing)
{
    if (isAway)
        return base::Failure{QStringLiteral("away")};
    auto messages = m_carrier->receive(drawing);
    if (!messages || !isBad)
        return messages;
    std::vector<courier::Message> delivered;
    for (courier::Message &message : *messages) {
        if (!chance(30)) // The others come another time.
            delivered.push_back(std::move(message));
    }
    m_delivered.insert(m_delivered.end(), delivered.begin(), delivered.end());
    if (!delivered.empty() && chance(20))
        delivered.push_back(m_delivered[m_random() % m_delivered.size()]);
    std::ranges::shuffle(delivered, m_random);
    if (chance(3))
        throw Killed();
    return delivered;
}

base::Result<courier::Stamp, QString> BadConnection::publish(const QString &drawing, const QString &id,
                                                             const QByteArray &bytes, qint64 above)
{
    if (isAway || chance(10))
        return base::Failure{QStringLiteral("away")};
    auto stamp = m_carrier->publish(drawing, id, bytes, above);
    if (chance(10))
        throw Killed(); // Published, and nobody here knows.
    return stamp;
}

base::Result<std::vector<courier::Person>, QString> BadConnection::keepHouse(const QString &drawing)
{
    if (isAway)
        return base::Failure{QStringLiteral("away")};
    return m_carrier->keepHouse(drawing);
}

OpenCarrier openFolder(const QString &share)
{
    return [share](const courier::Ledger &ledger, const QString &name, courier::Knowledge knowledge) {
        return std::make_unique<courier::FolderCarrier>(share, ledger.sender(), name, QString(),
                                                        std::move(knowledge));
    };
}

Reviewer::Reviewer(QString home, OpenCarrier openCarrier, QString name, std::mt19937 &random)
    : m_home(std::move(home)), m_name(std::move(name)), m_openCarrier(std::move(openCarrier)),
      m_random(random)
{
    QDir().mkpath(m_home + QStringLiteral("/sync/courier"));
    startCourier();
}

Reviewer::~Reviewer()
{
    if (s_sitting == this)
        s_sitting = nullptr;
}

void Reviewer::startCourier()
{
    m_courier.reset();
    m_connection.reset();
    m_ledger = std::make_unique<courier::Ledger>(m_home + QStringLiteral("/sync/courier/ledger.sqlite"));
    courier::Ledger *const ledger = m_ledger.get();
    const courier::Knowledge knowledge{[ledger](const QString &drawing, const courier::Stamp &stamp) {
                                           return ledger->isSeen(drawing, stamp);
                                       },
                                       [ledger](const QString &drawing, const courier::Stamp &stamp) {
                                           return !ledger->isLatest(drawing, stamp);
                                       }};
    m_connection = std::make_unique<BadConnection>(m_openCarrier(*ledger, m_name, knowledge), m_random);
    m_courier = std::make_unique<courier::Courier>(courier::ProgramFiles(m_home + QStringLiteral("/sync")),
                                                   *ledger, *m_connection);
}

void Reviewer::sit()
{
    if (s_sitting == this)
        return;
    if (s_sitting)
        std::swap(synchronisation(), s_sitting->m_state);
    std::swap(synchronisation(), m_state);
    s_sitting = this;
    settings::setText(u"synFileUploadPath", m_home + QStringLiteral("/sync"));
    if (m_document)
        acDocManager()->activateDocument(m_document);
}

void Reviewer::open()
{
    sit();
    const auto opened = acDocManager()->openDocument(m_home + QStringLiteral("/plan.dxf"));
    QUILL_ASSERT(opened.ok());
    m_document = *opened;
}

void Reviewer::save()
{
    sit();
    QUILL_ASSERT(acDocManager()->saveDocument(m_document, m_document->fileName()).ok());
}

void Reviewer::kill()
{
    sit();
    synchronisation().reset(); // First: closing makes a drawing current that is somebody else's.
    acDocManager()->closeDocument(std::exchange(m_document, nullptr));
}

void Reviewer::switchOn()
{
    sit();
    AuthoringTest::run(QStringLiteral("QN8_SynningOn"));
}

bool Reviewer::carry()
{
    try {
        const bool moved = m_courier->run();
        m_courier->keepHouse();
        return moved;
    } catch (const Killed &) {
        const bool wasAway = m_connection->isAway;
        const bool wasBad = m_connection->isBad;
        startCourier();
        m_connection->isAway = wasAway;
        m_connection->isBad = wasBad;
        return true;
    }
}

bool Reviewer::take()
{
    sit();
    SharedDrawing *const shared = sharedDrawing(database());
    const QString path = shared ? takeArrived(*shared) : QString();
    if (!path.isEmpty())
        AuthoringTest::run(QStringLiteral("-QN3_DataFileIn"), {path});
    return !path.isEmpty();
}

QStringList marksOf(const AcDbDatabase &database)
{
    QStringList marks;
    for (const AcDbObjectId id : collectMarks(database).ids) {
        const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        marks.append(QStringLiteral("%1 %2 %3 %4 %5 %6")
                         .arg(mark->GUID, acdbLayoutName(mark->blockId()),
                              QString::fromLatin1(digestOf(*mark).toHex()), mark->suggestionContent,
                              mark->feedbackContent)
                         .arg(mark->subNumber));
    }
    marks.sort();
    return marks;
}

} // namespace tests
