#include "quillnote/exchange/synchronisation.h"

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_dictionary.h"
#include "quillnote/entity/mark_fields.h"
#include "quillnote/exchange/courier_files.h"
#include "quillnote/exchange/exchange_files.h"
#include "quillnote/exchange/export_marks.h"
#include "quillnote/frame/settings/settings.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/os/guid.h"

#include <QCryptographicHash>
#include <QUuid>

#include <algorithm>
#include <chrono>
#include <set>

SynchronisationState &synchronisation()
{
    static SynchronisationState state;
    return state;
}

SharedDrawing *sharedDrawing(const AcDbDatabase &database)
{
    const auto found = synchronisation().drawings.find(&database);
    return found == synchronisation().drawings.end() ? nullptr : &found->second;
}

// Digests --------------------------------------------------------------------------------------------

QByteArray digestOf(const QuillnoteObj3 &mark)
{
    MarkData data;
    MarkDataRecord &record = data.marks.emplace_back(markDataRecord(mark));
    record.handle = {};
    record.owner = {};
    record.layerColor = 0;
    // Drawings do not keep what is not in use.
    QuillnoteObj3 &copy = *record.mark;
    copy.textAnchor = {};
    const std::size_t used = copy.hasFiledVertices() ? std::size_t(std::max<int>(copy.vertexCount, 0)) : 0;
    std::fill(copy.vertices.begin() + std::ptrdiff_t(std::min(used, fields::kSlots)), copy.vertices.end(),
              AcGePoint3d());
    for (std::size_t i = 0; i < fields::kSlots; ++i) {
        if (!copy.leaderUsed[i])
            copy.leaderEnds[i] = {};
    }
    return QCryptographicHash::hash(encodeMarkData(data), QCryptographicHash::Sha1).first(kDigestSize);
}

// What the drawing keeps -----------------------------------------------------------------------------

/// Copies that were made before anybody shared the drawing have its fingerprint in common.
static QByteArray newIdentity(const AcDbDatabase &database)
{
    const QString fingerprint = drawingFingerprint(database).toUpper();
    const bool saysNothing =
        std::ranges::all_of(fingerprint, [](QChar sign) { return QStringView(u"{}-0").contains(sign); });
    return identityOf(saysNothing ? os::newGuidText() : fingerprint);
}

/// What was exchanged at one place is news at another.
static QString placeName()
{
    return QString::fromLatin1(identityOf(settings::text(u"courierPlace")).toHex().left(8));
}

static SharedDrawing readShared(const AcDbDatabase &database)
{
    const QStringList texts = readExchangeRecord(database);
    SharedDrawing shared;
    shared.identity = QByteArray::fromHex(texts.value(0).toLatin1());
    if (shared.identity.size() != kIdentitySize)
        shared.identity = newIdentity(database);
    if (texts.value(1) != placeName())
        return shared;
    for (qsizetype i = 2; i + 1 < texts.size(); i += 2) {
        const QByteArray digest = QByteArray::fromHex(texts[i + 1].toLatin1());
        if (digest.size() == kDigestSize)
            shared.known[texts[i]].digest = digest;
    }
    return shared;
}

void keepExchanged(AcDbDatabase &database)
{
    const SharedDrawing *const shared = sharedDrawing(database);
    if (!shared)
        return;
    QStringList guids;
    for (const auto &[guid, mark] : shared->known)
        guids.append(guid);
    guids.sort(); // Saving twice gives the same file.
    QStringList texts{QString::fromLatin1(shared->identity.toHex()), placeName()};
    for (const QString &guid : guids)
        texts << guid << QString::fromLatin1(shared->known.at(guid).digest.toHex());
    if (texts != readExchangeRecord(database))
        writeExchangeRecord(database, texts);
}

// Changes --------------------------------------------------------------------------------------------

/// Rises from file to file, from one run of the program to the next as well: microseconds of the clock.
static std::uint64_t nextSerial()
{
    using namespace std::chrono;
    const auto now =
        std::uint64_t(duration_cast<microseconds>(system_clock::now().time_since_epoch()).count());
    std::uint64_t &last = synchronisation().lastSerial;
    return last = std::max(last + 1, now);
}

static SharedChange changeOf(const SharedDrawing &shared, const QString &guid, const QByteArray &before,
                             const QByteArray &after)
{
    return {shared.identity, identityOf(guid), before, after, nextSerial(), false};
}

void synchroniseMark(const QuillnoteObj3 &mark)
{
    SharedDrawing *const shared = mark.database() ? sharedDrawing(*mark.database()) : nullptr;
    if (!shared || mark.isErased())
        return;
    const QByteArray digest = digestOf(mark);
    ExchangedMark &known = shared->known[mark.GUID];
    if (known.digest == digest)
        return;
    MarkData data;
    data.marks.push_back(markDataRecord(mark));
    data.shared = changeOf(*shared, mark.GUID, known.digest, digest);
    if (!writeSynchronisationFile(encodeMarkData(data), QString::fromUtf16(kMarkFilePrefix)).isEmpty())
        known = {digest, data.shared->serial};
}

static void sendErased(SharedDrawing &shared, const QString &guid)
{
    ExchangedMark &known = shared.known[guid];
    const SharedChange change = changeOf(shared, guid, known.digest, erasedDigest());
    const QString prefix = QString::fromUtf16(kMarkFilePrefix) + QStringLiteral("Del");
    if (!writeSynchronisationFile(encodeErasedMarks({guid}, change), prefix).isEmpty())
        known = {erasedDigest(), change.serial};
}

void synchroniseErased(const QuillnoteObj3 &mark)
{
    if (SharedDrawing *const shared = mark.database() ? sharedDrawing(*mark.database()) : nullptr)
        sendErased(*shared, mark.GUID);
}

void noteReceived(AcDbDatabase &database, const QString &guid, const QByteArray &digest)
{
    if (SharedDrawing *const shared = sharedDrawing(database))
        shared->known[guid].digest = digest;
}

bool isOutdated(const AcDbDatabase &database, const QString &guid, const SharedChange &change)
{
    const SharedDrawing *const shared = sharedDrawing(database);
    if (!shared)
        return false;
    const auto known = shared->known.find(guid);
    return known != shared->known.end() && known->second.sent > change.serial;
}

// Taking part ----------------------------------------------------------------------------------------

/// Marks are told apart by their GUIDs. Old ones without get one that copies of the drawing agree on.
static void giveGuid(QuillnoteObj3 &mark, const QByteArray &drawing)
{
    const QByteArray handle = QByteArray::number(qulonglong(mark.objectId().handle().value), 16);
    if (mark.upgradeOpen() == Acad::eOk)
        mark.GUID = QUuid::createUuidV5(QUuid::fromRfc4122(drawing), handle).toString().toUpper();
}

/// What was changed, made or erased since the last exchange.
static void sendChanges(AcDbDatabase &database, SharedDrawing &shared)
{
    std::set<QString> present;
    for (const AcDbObjectId id : collectMarks(database).ids) {
        AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        if (!mark)
            continue;
        if (mark->GUID.isEmpty())
            giveGuid(*mark, shared.identity);
        present.insert(mark->GUID);
        synchroniseMark(*mark);
    }
    QStringList gone;
    for (const auto &[guid, mark] : shared.known) {
        if (!present.contains(guid) && mark.digest != erasedDigest())
            gone.append(guid);
    }
    for (const QString &guid : gone)
        sendErased(shared, guid);
}

void shareDrawing(AcDbDatabase &database)
{
    if (!synchronisation().on || sharedDrawing(database))
        return;
    SharedDrawing &shared = synchronisation().drawings[&database];
    shared = readShared(database);
    keepExchanged(database);
    sendChanges(database, shared);
    shared.openFile = announceOpenDrawing(shared.identity);
}

void leaveDrawing(const AcDbDatabase &database)
{
    if (const SharedDrawing *const shared = sharedDrawing(database))
        withdrawOpenDrawing(shared->openFile);
    synchronisation().drawings.erase(&database);
}

// Commands -------------------------------------------------------------------------------------------

void QN8_SynningOn()
{
    synchronisationFolder(FolderTest::write);
    synchronisation().on = true;
    startCourier();
    if (acdbCurDwg())
        shareDrawing(*acdbCurDwg());
}

void QN8_SynningOff()
{
    for (const auto &document : acDocManager()->documents()) {
        keepExchanged(*document->database());
        leaveDrawing(*document->database());
    }
    stopWatchingArrivals();
    synchronisation().reset();
}
