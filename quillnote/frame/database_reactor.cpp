#include "quillnote/frame/database_reactor.h"

#include "quillnote/authoring/append_state.h"
#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_record.h"

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
void QNK_DbReactor::objectAppended(const AcDbDatabase *database, const AcDbObject *object)
{
    // Whoever has an object open for notify may change it.
    auto *const mark = acrxCast<QuillnoteObj3>(const_cast<AcDbObject *>(object));
    if (!mark || appendState().importing || mark->upgradeOpen() != Acad::eOk)
        return;
    const MarkFilter sameNumber{QStringLiteral("ALL"), mark->markNumber};
    mark->subNumber = static_cast<std::uint16_t>(collectMarks(*database, sameNumber).ids.size());
    mark->GUID = os::newGuidText();
    mark->syncDone = false;
}
