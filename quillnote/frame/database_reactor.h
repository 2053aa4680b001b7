// QNK_DbReactor: gives marks that a person copies, pastes or inserts an identity of their own, and hands
// changes of marks to the synchronisation.
#pragma once

#include "quillnote/authoring/numbering.h"

#include "host/acdb/dbreactor.h"

class QNK_DbReactor : public AcDbDatabaseReactor
{
public:
    /// Listens to the database until it is deleted, or until the database goes.
    explicit QNK_DbReactor(AcDbDatabase &database);
    ~QNK_DbReactor() override;

    void objectAppended(const AcDbDatabase *database, const AcDbObject *object) override;
    void objectUnAppended(const AcDbDatabase *database, const AcDbObject *object) override;
    void objectReAppended(const AcDbDatabase *database, const AcDbObject *object) override;
    void objectModified(const AcDbDatabase *database, const AcDbObject *object) override;
    void objectErased(const AcDbDatabase *database, const AcDbObject *object, bool erased) override;
    void goodbye(const AcDbDatabase *database) override;

private:
    AcDbDatabase *m_database;
    MarkCounts m_counts;
};
