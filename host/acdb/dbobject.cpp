#include "host/acdb/dbobject.h"

#include "host/acdb/dbdict.h"
#include "host/acdb/dbentity.h"
#include "host/acdb/dbreactor.h"
#include "host/acdb/dbsymtb.h"
#include "host/acdb/dbtransient.h"
#include "host/acdb/dbundo.h"
#include "host/base/assert.h"
#include "host/base/wildcard.h"

#include <algorithm>

static const QString kDictionaryBrace = QStringLiteral("{ACAD_XDICTIONARY");

AcDbObject::AcDbObject() = default;

AcDbObject::AcDbObject(const QByteArray &dxfName)
{
    m_groups.emplace_back(0, QString::fromLatin1(dxfName));
}

AcDbObject::~AcDbObject() = default;

AcRxClass *AcDbObject::isA() const
{
    if (m_isProxy)
        return AcDbObject::desc();
    if (m_stub)
        return acdbKindClass(m_stub->kind, false);
    AcRxClass *const known = acrxClassDictionary().atDxfName(dxfName());
    return known ? known : AcDbObject::desc();
}

AcDbObjectId AcDbObject::ownerId() const
{
    if (!m_stub || m_stub->owner == 0)
        return {};
    return AcDbObjectId(m_stub->database->stub(m_stub->owner));
}

void AcDbObject::assertReadEnabled() const
{
    QUILL_ASSERT(isReadEnabled());
}

void AcDbObject::assertWriteEnabled() const
{
    QUILL_ASSERT(isWriteEnabled());
}

Acad::ErrorStatus AcDbObject::upgradeOpen()
{
    if (!m_stub || m_writing)
        return Acad::eWasOpenForWrite;
    if (m_readers > 1)
        return Acad::eWasOpenForRead;
    if (const Acad::ErrorStatus refused = database()->mayChange(*this); refused != Acad::eOk)
        return refused;
    database()->m_undo->recordObject(*m_stub);
    m_readers = 0;
    m_writing = true;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::downgradeOpen()
{
    if (!m_writing)
        return Acad::eNotOpenForWrite;
    database()->finishWriting(*m_stub);
    m_readers = 1;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::close()
{
    if (!m_stub)
        return Acad::eNotOpenForRead;
    AcDbStub &stub = *m_stub;
    if (AcDbTransient::isCopy(stub))
        return Acad::eOk;
    const Acad::ErrorStatus status = subClose();
    if (m_writing)
        stub.database->finishWriting(stub);
    else if (m_readers > 0)
        --m_readers;
    stub.database->releaseIdle(stub);
    return status;
}

Acad::ErrorStatus AcDbObject::erase(bool erasing)
{
    if (!isWriteEnabled() || !m_stub)
        return Acad::eNotOpenForWrite;
    if (isErased() == erasing)
        return erasing ? Acad::eWasErased : Acad::eOk;
    if (const Acad::ErrorStatus refused = subErase(erasing); refused != Acad::eOk)
        return refused;
    database()->setErased(*m_stub, erasing);
    return Acad::eOk;
}

ResbufList &AcDbObject::editGroups()
{
    assertWriteEnabled();
    return m_groups;
}

// A subclass ends at the next marker or at the extended data.
static std::size_t subclassEnd(const ResbufList &groups, std::size_t begin)
{
    std::size_t end = begin;
    while (end < groups.size() && groups[end].restype != 100 && groups[end].restype != 1001)
        ++end;
    return end;
}

void AcDbObject::setGroup(int code, resbuf::Value value, QStringView subclass)
{
    assertWriteEnabled();
    std::size_t begin = subclass.isEmpty() ? 0 : subclassBegin(m_groups, subclass);
    // Files of old versions have no markers: the whole list is one subclass then.
    const bool unmarked = begin == m_groups.size() && !subclass.isEmpty();
    if (unmarked)
        begin = 0;
    const std::size_t end =
        unmarked || subclass.isEmpty() ? extendedDataBegin(m_groups) : subclassEnd(m_groups, begin);
    const auto first = m_groups.begin() + std::ptrdiff_t(begin);
    const auto last = m_groups.begin() + std::ptrdiff_t(end);
    const auto found =
        std::find_if(first, last, [code](const resbuf &group) { return group.restype == code; });
    if (found == last)
        m_groups.insert(last, resbuf(code, std::move(value)));
    else if (found->resval != value)
        found->assign(std::move(value));
}

QByteArray AcDbObject::dxfName() const
{
    if (m_stub && m_stub->kind != 0)
        return acdbKindName(m_stub->kind);
    return m_groups.empty() ? QByteArray() : m_groups.front().text().toLatin1();
}

ResbufList AcDbObject::xData(const QString &application) const
{
    const std::size_t begin = extendedDataBegin(m_groups);
    ResbufList found;
    if (begin == m_groups.size())
        return found;
    const base::Wildcard pattern(application);
    bool wanted = false;
    for (std::size_t i = begin; i < m_groups.size(); ++i) {
        if (m_groups[i].restype == 1001)
            wanted = pattern.matches(m_groups[i].text());
        if (wanted)
            found.push_back(m_groups[i]);
    }
    return found;
}

Acad::ErrorStatus AcDbObject::setXData(const ResbufList &data)
{
    assertWriteEnabled();
    if (data.empty() || data.front().restype != 1001)
        return Acad::eInvalidResBuf;
    const QString application = data.front().text();
    auto first = m_groups.begin() + std::ptrdiff_t(extendedDataBegin(m_groups));
    while (first != m_groups.end() && first->text().compare(application, Qt::CaseInsensitive) != 0)
        first = std::find_if(first + 1, m_groups.end(), [](const resbuf &g) { return g.restype == 1001; });
    if (first != m_groups.end()) {
        const auto last =
            std::find_if(first + 1, m_groups.end(), [](const resbuf &g) { return g.restype == 1001; });
        first = m_groups.erase(first, last);
    }
    if (data.size() > 1)
        m_groups.insert(first, data.begin(), data.end());
    return Acad::eOk;
}

static std::size_t dictionaryBrace(const ResbufList &groups)
{
    const auto found = std::ranges::find_if(
        groups, [](const resbuf &g) { return g.restype == 102 && g.text() == kDictionaryBrace; });
    return std::size_t(found - groups.begin());
}

AcDbObjectId AcDbObject::extensionDictionary() const
{
    const std::size_t brace = dictionaryBrace(m_groups);
    if (!m_stub || brace + 1 >= m_groups.size())
        return {};
    const AcDbObjectId named = database()->getAcDbObjectId(m_groups[brace + 1].handle());
    return acdbIsOwned(named, objectId(), AcDbDictionary::desc()) ? named : AcDbObjectId();
}

AcDbObjectId AcDbObject::createExtensionDictionary()
{
    assertWriteEnabled();
    if (const AcDbObjectId existing = extensionDictionary(); existing.isValid())
        return existing;
    auto *const dictionary = new AcDbDictionary;
    AcDbObjectId id;
    database()->addAcDbObject(dictionary, objectId(), &id);
    dictionary->setGroup(280, std::int64_t(1), u"AcDbDictionary");
    dictionary->close();
    linkExtensionDictionary(id.handle());
    return id;
}

void AcDbObject::linkExtensionDictionary(AcDbHandle handle)
{
    const std::size_t brace = dictionaryBrace(m_groups);
    if (brace + 1 < m_groups.size()) {
        m_groups[brace + 1].assign(handle);
        return;
    }
    // Application groups stand right behind the handle.
    const auto place =
        std::ranges::find_if(m_groups, [](const resbuf &g) { return g.restype == 5 || g.restype == 105; });
    const auto at = place == m_groups.end() ? m_groups.begin() + 1 : place + 1;
    m_groups.insert(at,
                    {resbuf(102, kDictionaryBrace), resbuf(360, handle), resbuf(102, QStringLiteral("}"))});
}

// Every object in a database carries its own handle and its owner's; a file of R12 has no owners, which
// the writer knows.
void AcDbObject::stampIdentity()
{
    const int handleCode = dxfName() == "DIMSTYLE" ? 105 : 5;
    const auto sameCode = [handleCode](const resbuf &g) { return g.restype == handleCode; };
    const auto place = std::ranges::find_if(m_groups, sameCode);
    if (place == m_groups.end())
        m_groups.insert(m_groups.begin() + 1, resbuf(handleCode, handle()));
    else
        place->assign(handle());
    const std::size_t marker = std::size_t(
        std::ranges::find_if(m_groups, [](const resbuf &g) { return g.restype == 100; }) - m_groups.begin());
    ApplicationGroups applications;
    for (std::size_t i = 0; i < marker; ++i) {
        if (!applications.holds(m_groups[i]) && m_groups[i].restype == 330) {
            m_groups[i].assign(ownerId().handle());
            return;
        }
    }
    const auto at =
        marker == m_groups.size() ? m_groups.begin() + 2 : m_groups.begin() + std::ptrdiff_t(marker);
    m_groups.insert(at, resbuf(330, ownerId().handle()));
}

Acad::ErrorStatus AcDbObject::subClose()
{
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::subErase(bool)
{
    return Acad::eOk;
}

// What the host knows of an object travels with the owner of the filer, so the base files nothing itself.
Acad::ErrorStatus AcDbObject::dwgInFields(AcDbDwgFiler *filer)
{
    assertWriteEnabled();
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dwgOutFields(AcDbDwgFiler *filer) const
{
    assertReadEnabled();
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dxfInFields(AcDbDxfFiler *filer)
{
    assertWriteEnabled();
    return filer->filerStatus();
}

Acad::ErrorStatus AcDbObject::dxfOutFields(AcDbDxfFiler *filer) const
{
    assertReadEnabled();
    return filer->filerStatus();
}

void AcDbObject::subList() const {}
