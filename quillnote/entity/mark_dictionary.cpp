#include "quillnote/entity/mark_dictionary.h"

#include "host/acdb/dbdict.h"

static const QString kDictionary = QStringLiteral("QN_DICT");
static const QString kNumberRecord = QStringLiteral("XREC1");
static const QString kPositionRecord = QStringLiteral("XREC2");
static const QString kExchangeRecord = QStringLiteral("XREC3");

/// All records begin with their title and a ruler.
static ResbufList chainWith(const QString &title)
{
    return {{1, title}, {1, QString(28, u'*')}};
}

static ResbufList chainWith(const QString &title, std::int16_t value)
{
    ResbufList chain = chainWith(title);
    chain.emplace_back(70, std::int64_t(value));
    return chain;
}

/// Empty when the drawing has no such record.
static ResbufList readRecord(const AcDbDatabase &database, const QString &name)
{
    const AcDbObjectPointer<AcDbDictionary> root(database.namedObjectsDictionaryId(), AcDb::kForRead);
    if (!root)
        return {};
    const AcDbObjectPointer<AcDbDictionary> ours(root->getAt(kDictionary), AcDb::kForRead);
    if (!ours)
        return {};
    const AcDbObjectPointer<AcDbXrecord> record(ours->getAt(name), AcDb::kForRead);
    return record ? record->rbChain() : ResbufList();
}

/// The group at a place when it has the code that stands there, else null.
static const resbuf *groupAt(const ResbufList &chain, std::size_t place, int code)
{
    return place < chain.size() && chain[place].restype == code ? &chain[place] : nullptr;
}

/// Adds an object to a dictionary and closes it. What could not be added is deleted.
template <class T>
static Acad::ErrorStatus addTo(AcDbDictionary &dictionary, const QString &name, std::unique_ptr<T> object,
                               AcDbObjectId &id, const ResbufList &chain = {})
{
    const Acad::ErrorStatus status = dictionary.setAt(name, object.get(), id);
    if (status != Acad::eOk)
        return status;
    AcDbObjectPointer<T> added(object.release());
    if constexpr (std::is_same_v<T, AcDbXrecord>)
        return added->setFromRbChain(chain);
    return Acad::eOk;
}

static Acad::ErrorStatus ensureDictionary(AcDbDatabase &database, AcDbObjectId &id)
{
    AcDbObjectPointer<AcDbDictionary> root(acdbEnsureNamedObjects(database), AcDb::kForRead);
    if (!root)
        return root.openStatus();
    id = root->getAt(kDictionary);
    if (acdbIsOwned(id, root->objectId(), AcDbDictionary::desc()))
        return Acad::eOk;
    if (const Acad::ErrorStatus status = root->upgradeOpen(); status != Acad::eOk)
        return status;
    return addTo(*root, kDictionary, std::make_unique<AcDbDictionary>(), id);
}

static Acad::ErrorStatus writeRecord(AcDbDatabase &database, const QString &name, const ResbufList &chain)
{
    AcDbObjectId dictionary;
    if (const Acad::ErrorStatus status = ensureDictionary(database, dictionary); status != Acad::eOk)
        return status;
    AcDbObjectPointer<AcDbDictionary> ours(dictionary, AcDb::kForWrite);
    if (!ours)
        return ours.openStatus();
    AcDbObjectId record = ours->getAt(name);
    if (acdbIsOwned(record, dictionary, AcDbXrecord::desc())) {
        AcDbObjectPointer<AcDbXrecord> known(record, AcDb::kForWrite);
        return known ? known->setFromRbChain(chain) : known.openStatus();
    }
    return addTo(*ours, name, std::make_unique<AcDbXrecord>(), record, chain);
}

std::uint16_t readLastMarkNumber(const AcDbDatabase &database)
{
    const ResbufList chain = readRecord(database, kNumberRecord);
    const resbuf *value = groupAt(chain, 2, 70);
    return value ? static_cast<std::uint16_t>(value->integer()) : 0;
}

Acad::ErrorStatus writeLastMarkNumber(AcDbDatabase &database, std::uint16_t number)
{
    return writeRecord(database, kNumberRecord,
                       chainWith(QStringLiteral("QuillnoteObj3 标志位"), static_cast<std::int16_t>(number)));
}

ReviewPosition readReviewPosition(const AcDbDatabase &database)
{
    const ResbufList chain = readRecord(database, kPositionRecord);
    ReviewPosition position;
    if (const resbuf *value = groupAt(chain, 2, 70))
        position.index = static_cast<std::int16_t>(value->integer());
    if (const resbuf *mark = groupAt(chain, 3, 330)) {
        const AcDbObjectId id = database.getAcDbObjectId(mark->handle());
        position.mark = id.isValid() ? id : AcDbObjectId();
    }
    return position;
}

Acad::ErrorStatus writeReviewPosition(AcDbDatabase &database, const ReviewPosition &position)
{
    ResbufList chain = chainWith(QStringLiteral("QuillnoteObj3 标志位2"), position.index);
    if (position.mark.isValid())
        chain.emplace_back(330, position.mark.handle());
    return writeRecord(database, kPositionRecord, chain);
}

QStringList readExchangeRecord(const AcDbDatabase &database)
{
    const ResbufList chain = readRecord(database, kExchangeRecord);
    QStringList texts;
    for (std::size_t place = 2; const resbuf *text = groupAt(chain, place, 1); ++place)
        texts.append(text->text());
    return texts;
}

Acad::ErrorStatus writeExchangeRecord(AcDbDatabase &database, const QStringList &texts)
{
    ResbufList chain = chainWith(QStringLiteral("QuillnoteObj3 标志位3"));
    for (const QString &text : texts)
        chain.emplace_back(1, text);
    return writeRecord(database, kExchangeRecord, chain);
}
