#include "host/acdb/dwgcarrier.h"

#include "host/acdb/dbdict.h"
#include "host/acdb/dbundo.h"

#include <QStringList>
#include <QtEndian>

#include <algorithm>
#include <limits>

static constexpr qsizetype kChunkBytes = 127; // The longest binary group that every reader takes.
static constexpr std::int64_t kZlib = 1;      // Form of the bytes; without it they stand as they are.

static constexpr qsizetype kSizeBytes = 4;        // Qt writes the size, big-endian, before the zlib stream.
static constexpr qsizetype kMostExpansion = 1100; // No zlib stream expands more.

// Class name (1), byte count (90), CRC-16 of the bytes (91), form (70), chunks (310). The records are mostly
// zeros and repetitions, and stand in the file as hexadecimal digits.
static ResbufList packed(const QString &className, const QByteArray &stream)
{
    ResbufList chain{
        {1, className}, {90, std::int64_t(stream.size())}, {91, std::int64_t(qChecksum(stream))}};
    QByteArray bytes = qCompress(stream).mid(kSizeBytes);
    if (bytes.size() < stream.size())
        chain.emplace_back(70, std::int64_t(kZlib));
    else
        bytes = stream;
    for (qsizetype at = 0; at < bytes.size(); at += kChunkBytes)
        chain.emplace_back(310, bytes.mid(at, kChunkBytes));
    return chain;
}

/// Empty when the bytes cannot be `size` bytes packed, so that a few of them never claim much memory.
static QByteArray expanded(const QByteArray &bytes, std::int64_t size)
{
    if (size <= 0 || size > bytes.size() * kMostExpansion || size > std::numeric_limits<std::int32_t>::max())
        return {};
    QByteArray sized(kSizeBytes, Qt::Uninitialized);
    qToBigEndian(static_cast<std::uint32_t>(size), sized.data());
    return qUncompress(sized + bytes);
}

static QByteArray unpacked(const ResbufList &chain)
{
    QByteArray stream;
    for (const resbuf &group : chain) {
        if (group.restype == 310)
            stream += group.bytes();
    }
    const resbuf *const size = findGroup(chain, 90);
    const resbuf *const checksum = findGroup(chain, 91);
    const resbuf *const form = findGroup(chain, 70);
    if (form && size)
        stream = form->integer() == kZlib ? expanded(stream, size->integer()) : QByteArray();
    const bool whole = size && checksum && size->integer() == stream.size() &&
                       checksum->integer() == std::int64_t(qChecksum(stream));
    return whole ? stream : QByteArray();
}

static AcDbObjectId extensionDictionaryOf(const AcDbDatabase &database, const ResbufList &groups)
{
    for (std::size_t i = 0; i + 1 < groups.size(); ++i) {
        if (groups[i].restype == 102 && groups[i].text() == u"{ACAD_XDICTIONARY")
            return database.getAcDbObjectId(groups[i + 1].handle());
    }
    return {};
}

QByteArray acdbCarriedFields(const AcDbDatabase &database, const ResbufList &groups)
{
    AcDbObjectPointer<AcDbDictionary> dictionary(extensionDictionaryOf(database, groups), AcDb::kForRead);
    if (!dictionary)
        return {};
    AcDbObjectPointer<AcDbXrecord> record(dictionary->getAt(kDwgCarrierKey.toString()), AcDb::kForRead);
    return record ? unpacked(record->rbChain()) : QByteArray();
}

/// What AcDbDwgCarriers did and how to take it back.
class CarrierKeeper
{
public:
    CarrierKeeper(AcDbDatabase &database, AcDbCarried which) : m_database(database)
    {
        quietly([this, which] {
            if (which == AcDbCarried::all)
                putUnchanged();
            for (const std::uint32_t index : std::vector(m_database.m_changed)) {
                if (isWrittenFromMemory(*m_database.stub(index)))
                    put(*m_database.stub(index));
            }
        });
    }

    void takeBack()
    {
        for (auto &[stub, image] : m_touched)
            m_database.m_undo->restoreContent(*stub, image);
        for (AcDbStub *const made : m_made)
            made->set(AcDbStub::kErased);
        for (auto &[object, groups] : m_linked)
            object->m_groups = std::move(groups);
    }

private:
    /// Custom objects that only the file has so far.
    void putUnchanged()
    {
        for (std::uint32_t index = 1, count = m_database.stubCount(); index < count; ++index) {
            AcDbStub &stub = *m_database.stub(index);
            const bool isCustom = acdbKindClass(stub.kind, stub.has(AcDbStub::kEntity))->application();
            if (!isCustom || stub.has(AcDbStub::kErased) || stub.has(AcDbStub::kChanged))
                continue;
            if (AcDbObject *const object = m_database.resident(stub); !object->m_isProxy)
                put(stub);
        }
    }

    static bool isWrittenFromMemory(const AcDbStub &stub)
    {
        return stub.object && !stub.has(AcDbStub::kErased) && stub.has(AcDbStub::kChanged) &&
               stub.object->isCustom() && !stub.object->m_isProxy;
    }

    // The drawing that a person sees does not change.
    template <class Work>
    void quietly(Work work)
    {
        const auto hearers = std::exchange(m_database.m_reactors, {});
        const bool wasRecording = m_database.undo().isRecording();
        const std::uint64_t changeCount = m_database.m_changeCount;
        m_database.undo().setRecording(false);
        work();
        m_database.undo().setRecording(wasRecording);
        m_database.m_changeCount = changeCount;
        m_database.m_reactors = hearers;
    }

    void put(AcDbStub &stub)
    {
        const QByteArray stream = filed(*stub.object);
        const AcDbObjectId dictionary = dictionaryFor(stub);
        AcDbObjectId known;
        if (AcDbObjectPointer<AcDbDictionary> reader(dictionary, AcDb::kForRead); reader)
            known = reader->getAt(kDwgCarrierKey.toString());
        if (!isCarrier(known, dictionary, *stub.object))
            known = AcDbObjectId(); // Somebody's; only our key goes to a record of our own.
        const bool isOurs = !known.isNull() && known == m_database.m_carriers[stub.index].record;
        if (!known.isNull() && !isOurs) {
            if (unpacked(chainOf(known)) == stream)
                return;
            touch(known);
        }
        const AcDbObjectId record = known.isNull() ? recordFor(stub, dictionary) : known;
        AcDbObjectPointer<AcDbXrecord> writer(record, AcDb::kForWrite);
        if (writer)
            writer->setFromRbChain(packed(stub.object->isA()->name(), stream));
    }

    /// What an earlier save left: an xrecord of this dictionary that begins as packed() does.
    static bool isCarrier(AcDbObjectId record, AcDbObjectId dictionary, const AcDbObject &object)
    {
        if (!acdbIsOwned(record, dictionary, AcDbXrecord::desc()))
            return false;
        const ResbufList chain = chainOf(record);
        return !chain.empty() && chain.front().restype == 1 && chain.front().text() == object.isA()->name();
    }

    static ResbufList chainOf(AcDbObjectId record)
    {
        AcDbObjectPointer<AcDbXrecord> reader(record, AcDb::kForRead);
        return reader ? reader->rbChain() : ResbufList();
    }

    QByteArray filed(AcDbObject &object)
    {
        AcDbMemoryFiler filer(AcDb::kFileFiler, &m_database);
        ++object.m_readers;
        object.dwgOutFields(&filer);
        --object.m_readers;
        return filer.stream();
    }

    /// The extension dictionary that the object has, or one that is linked for the time of saving.
    AcDbObjectId dictionaryFor(AcDbStub &stub)
    {
        AcDbObject &object = *stub.object;
        if (const AcDbObjectId linked = object.extensionDictionary(); linked.isValid())
            return linked;
        m_linked.emplace_back(&object, object.m_groups);
        AcDbDatabase::Carrier &carrier = m_database.m_carriers[stub.index];
        if (carrier.dictionary.isNull()) {
            object.m_writing = true;
            carrier.dictionary = object.createExtensionDictionary();
            object.m_writing = false;
        }
        show(carrier.dictionary);
        object.linkExtensionDictionary(carrier.dictionary.handle());
        return carrier.dictionary;
    }

    /// A record of our own in the dictionary.
    AcDbObjectId recordFor(AcDbStub &stub, AcDbObjectId dictionary)
    {
        AcDbDatabase::Carrier &carrier = m_database.m_carriers[stub.index];
        if (dictionary != carrier.dictionary)
            touch(dictionary);
        if (carrier.record.isNull() || m_database.stub(carrier.record.stub()->owner) != dictionary.stub()) {
            auto *const record = new AcDbXrecord;
            m_database.addAcDbObject(record, dictionary, &carrier.record);
            record->close();
        }
        show(carrier.record);
        AcDbObjectPointer<AcDbDictionary> writer(dictionary, AcDb::kForWrite);
        if (writer)
            writer->link(kDwgCarrierKey.toString(), carrier.record);
        return carrier.record;
    }

    /// Something of ours, in the drawing until takeBack().
    void show(AcDbObjectId ours)
    {
        ours.stub()->set(AcDbStub::kErased, false);
        m_made.push_back(ours.stub());
    }

    /// Something of the drawing's that will be changed until takeBack().
    void touch(AcDbObjectId id)
    {
        m_database.resident(*id.stub());
        m_touched.emplace_back(id.stub(), m_database.m_undo->capture(*id.stub()));
    }

    AcDbDatabase &m_database;
    std::vector<std::pair<AcDbStub *, AcDbUndo::Image>> m_touched;
    std::vector<AcDbStub *> m_made;
    std::vector<std::pair<AcDbObject *, ResbufList>> m_linked;
};

AcDbDwgCarriers::AcDbDwgCarriers(AcDbDatabase &database, AcDbCarried which)
    : m_keeper(std::make_unique<CarrierKeeper>(database, which))
{
}

AcDbDwgCarriers::~AcDbDwgCarriers()
{
    if (m_keeper)
        m_keeper->takeBack();
}

void AcDbDwgCarriers::leave()
{
    m_keeper.reset();
}
