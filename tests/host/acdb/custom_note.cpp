#include "tests/host/acdb/custom_note.h"

#include "host/acdb/dbsymtb.h"

static AcRxClass *s_class = nullptr;

NoteClass::NoteClass()
{
    auto known = std::make_unique<AcRxClass>(QStringLiteral("TestNote"), AcDbEntity::desc(), "TESTNOTE",
                                             []() -> AcRxObject * { return new NoteEntity; });
    known->setApplication({31, 81, 0, QStringLiteral("TestNote")});
    s_class = acrxClassDictionary().add(std::move(known));
}

NoteClass::~NoteClass()
{
    deleteAcRxClass(s_class);
    s_class = nullptr;
}

AcRxClass *NoteEntity::desc()
{
    return s_class;
}

AcRxClass *NoteEntity::isA() const
{
    return s_class;
}

Acad::ErrorStatus NoteEntity::dwgInFields(AcDbDwgFiler *filer)
{
    std::uint32_t size = 0;
    filer->readString(text);
    if (text == u"newer")
        return Acad::eMakeMeProxy;
    filer->readUInt32(size);
    return filer->readBytes(secret, size);
}

Acad::ErrorStatus NoteEntity::dwgOutFields(AcDbDwgFiler *filer) const
{
    filer->writeString(text);
    filer->writeUInt32(std::uint32_t(secret.size()));
    return filer->writeBytes(secret);
}

Acad::ErrorStatus NoteEntity::dxfInFields(AcDbDxfFiler *filer)
{
    if (!filer->atSubclassData(u"TestNote"))
        return filer->setError(Acad::eBadDxfSequence);
    resbuf group;
    while (filer->readResBuf(group) == Acad::eOk) {
        if (group.restype == 1)
            text = group.text();
    }
    return filer->filerStatus();
}

Acad::ErrorStatus NoteEntity::dxfOutFields(AcDbDxfFiler *filer) const
{
    filer->writeSubclassMarker(u"TestNote");
    return filer->writeString(1, text);
}

AcDbObjectId addNote(AcDbDatabase &database, const QString &text, const QByteArray &secret)
{
    AcDbObjectPointer<AcDbBlockTableRecord> space(database.modelSpaceId(), AcDb::kForWrite);
    auto *const note = new NoteEntity;
    note->text = text;
    note->secret = secret;
    AcDbObjectId id;
    space->appendAcDbEntity(id, note);
    note->close();
    return id;
}
