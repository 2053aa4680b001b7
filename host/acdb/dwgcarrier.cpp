#include "host/acdb/dwgcarrier.h"

#include "host/acdb/dbdict.h"
#include "host/acdb/dbundo.h"

#include <QStringList>

#include <algorithm>

static const QString kCarrierKey = QStringLiteral("DWG_FIELDS");
static constexpr qsizetype kChunkBytes = 127; // The longest binary group that every reader takes.

// class name (1), byte count (90), CRC-16 of the bytes (91), chunks (310)
static ResbufList packed(const QString &className, const QByteArray &stream)
{
    ResbufList chain{
        {1, className}, {90, std::int64_t(stream.size())}, {91, std::int64_t(qChecksum(stream))}};
    for (qsizetype at = 0; at < stream.size(); at += kChunkBytes)
        chain.emplace_back(310, stream.mid(at, kChunkBytes));
    return chain;
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
    AcDbObjectPointer<AcDbXrecord> record(dictionary->getAt(kCarrierKey), AcDb::kForRead);
    return record ? unpacked(record->rbChain()) : QByteArray();
}

/// Keeps each changed custom object's carrier in step with it while a drawing is being saved.
class CarrierKeeper
{
public:
    explicit CarrierKeeper(AcDbDatabase &database) : m_database(database) {}

    void keep()
    {
        const std::vector<AcDbDatabaseReactor *> hearers = std::exchange(m_database.m_reactors, {});
        const bool wasRecording = m_database.undo().isRecording();
        const std::uint64_t changeCount = m_database.m_changeCount;
        m_database.undo().setRecording(false);
        for (const auto &[index, carrier] : std::unordered_map(m_database.m_carriers)) {
            if (!isWrittenFromMemory(*m_database.stub(index)))
                putBack(carrier);
        }
        for (const std::uint32_t index : std::vector(m_database.m_changed)) {
            if (isWrittenFromMemory(*m_database.stub(index)))
                store(*m_database.stub(index));
        }
        m_database.undo().setRecording(wasRecording);
        m_database.m_changeCount = changeCount; // The drawing a person sees did not change.
        m_database.m_reactors = hearers;
    }

private:
    static bool isWrittenFromMemory(const AcDbStub &stub)
    {
        return stub.object && !stub.has(AcDbStub::kErased) && stub.has(AcDbStub::kChanged) &&
               stub.object->isCustom() && !stub.object->m_isProxy;
    }

    // The entity went back to its source bytes, or away: so does what was made beside it.
    void putBack(const AcDbDatabase::Carrier &carrier)
    {
        for (const AcDbObjectId id :
             {carrier.record, carrier.madeDictionary ? carrier.dictionary : AcDbObjectId()}) {
            if (id.isNull())
                continue;
            if (id.stub()->has(AcDbStub::kHasSource)) {
                m_database.replaceObject(*id.stub(), nullptr);
                id.stub()->set(AcDbStub::kChanged, false);
            } else {
                id.stub()->set(AcDbStub::kErased);
            }
        }
        if (!carrier.madeDictionary && !carrier.record.stub()->has(AcDbStub::kHasSource)) {
            AcDbObjectPointer<AcDbDictionary> dictionary(carrier.dictionary, AcDb::kForWrite);
            if (dictionary)
                dictionary->remove(kCarrierKey);
        }
    }

    void store(AcDbStub &stub)
    {
        AcDbObject &object = *stub.object;
        const QByteArray stream = filed(object);
        AcDbDatabase::Carrier &carrier = m_database.m_carriers[stub.index];
        findDictionary(object, carrier);
        AcDbObjectPointer<AcDbDictionary> dictionary(carrier.dictionary, AcDb::kForWrite);
        if (!dictionary)
            return;
        const QString className = object.isA()->name();
        if (const AcDbObjectId known = dictionary->getAt(kCarrierKey); known.isValid()) {
            carrier.record = known;
            AcDbObjectPointer<AcDbXrecord> record(known, AcDb::kForWrite);
            if (record && unpacked(record->rbChain()) != stream)
                record->setFromRbChain(packed(className, stream));
            return;
        }
        auto *const record = new AcDbXrecord;
        if (dictionary->setAt(kCarrierKey, record, carrier.record) == Acad::eOk) {
            record->setFromRbChain(packed(className, stream));
            record->close();
        }
    }

    QByteArray filed(AcDbObject &object)
    {
        AcDbMemoryFiler filer(AcDb::kFileFiler, &m_database);
        ++object.m_readers;
        object.dwgOutFields(&filer);
        --object.m_readers;
        return filer.stream();
    }

    // A dictionary made for an earlier save serves again after undo and redo.
    void findDictionary(AcDbObject &object, AcDbDatabase::Carrier &carrier)
    {
        const AcDbObjectId linked = object.extensionDictionary();
        if (linked.isValid() && linked != carrier.dictionary) {
            carrier = {linked, {}, false};
        } else if (!carrier.dictionary.isNull()) {
            for (const AcDbObjectId id : {carrier.dictionary, carrier.record}) {
                if (!id.isNull())
                    id.stub()->set(AcDbStub::kErased, false);
            }
            object.linkExtensionDictionary(carrier.dictionary.handle());
        } else {
            object.m_writing = true;
            carrier = {object.createExtensionDictionary(), {}, true};
            object.m_writing = false;
        }
    }

    AcDbDatabase &m_database;
};

void acdbPrepareDxfSave(AcDbDatabase &database)
{
    CarrierKeeper(database).keep();
}
