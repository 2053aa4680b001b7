// A small custom entity for tests: two fields, of which DXF carries one.
#pragma once

#include "host/acdb/dbentity.h"

class NoteEntity : public AcDbEntity
{
public:
    QString text;      ///< "newer" is refused by dwgInFields(), as of a newer program.
    QByteArray secret; ///< Not part of DXF.

    NoteEntity() : AcDbEntity("TESTNOTE") {}
    static AcRxClass *desc();
    AcRxClass *isA() const override;
    Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer) override;
    Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer) override;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const override;
};

/// The class is known while this lives.
class NoteClass
{
public:
    NoteClass();
    ~NoteClass();
    NoteClass(const NoteClass &) = delete;
    NoteClass &operator=(const NoteClass &) = delete;
};

/// A note at the end of model space; closed.
AcDbObjectId addNote(AcDbDatabase &database, const QString &text, const QByteArray &secret = {});
