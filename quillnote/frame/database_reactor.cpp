#include "quillnote/frame/database_reactor.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/exchange/synchronisation.h"

#include "host/acdb/dbdatabase.h"
#include "host/os/guid.h"

QNK_DbReactor::QNK_DbReactor(AcDbDatabase &database) : m_database(&database)
{
    database.addReactor(this);
}

QNK_DbReactor::~QNK_DbReactor()
{
    if (m_database)
        m_database->removeReactor(this);
}

void QNK_DbReactor::goodbye(const AcDbDatabase *)
{
    m_database = nullptr;
}

// The copy counts itself, so the first copy of mark 12 becomes 12.2.
static void giveOwnIdentity(const AcDbDatabase &database, QuillnoteObj3 &mark, MarkCounts &counts)
{
    if (mark.upgradeOpen() != Acad::eOk)
        return;
    mark.subNumber = static_cast<std::uint16_t>(counts.ofNumber(database, mark));
    mark.GUID = os::newGuidText();
}

void QNK_DbReactor::objectAppended(const AcDbDatabase *database, const AcDbObject *object)
{
    // A reactor that has an object open for notify may change it.
    auto *const mark = acrxCast<QuillnoteObj3>(const_cast<AcDbObject *>(object));
    if (!mark)
        return;
    if (!appendState().importing)
        giveOwnIdentity(*database, *mark, m_counts);
    m_counts.note(*mark);
    synchroniseMark(*mark);
}

void QNK_DbReactor::objectUnAppended(const AcDbDatabase *database, const AcDbObject *object)
{
    objectErased(database, object, true);
}

void QNK_DbReactor::objectReAppended(const AcDbDatabase *, const AcDbObject *object)
{
    if (const auto *const mark = acrxCast<QuillnoteObj3>(object)) {
        m_counts.note(*mark);
        synchroniseMark(*mark);
    }
}

// What an import changes makes way for a newer state; what it erases was erased elsewhere, or makes way too.
void QNK_DbReactor::objectModified(const AcDbDatabase *, const AcDbObject *object)
{
    const auto *const mark = acrxCast<QuillnoteObj3>(object);
    if (mark)
        m_counts.note(*mark);
    if (mark && !appendState().importing)
        synchroniseMark(*mark);
}

void QNK_DbReactor::objectErased(const AcDbDatabase *, const AcDbObject *object, bool erased)
{
    const auto *const mark = acrxCast<QuillnoteObj3>(object);
    if (mark)
        m_counts.note(*mark, !erased);
    if (!mark || appendState().importing)
        return;
    if (erased)
        synchroniseErased(*mark);
    else
        synchroniseMark(*mark);
}
