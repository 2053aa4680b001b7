// AcDbObject: an object of a drawing while it is in memory.
//
// Native objects are their group list; typed views (AcDbLine, AcDbLayerTableRecord ...) read and write
// that list and hold nothing of their own. Custom objects keep their fields in members and file them;
// their group list then holds only what the host knows of them (kind, handle, owner, layer, colour,
// extension dictionary, extended data).
//
// No pointer to an open object outlives the operation; ids do.
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/acdb/dbfiler.h"
#include "host/acrx/rxclass.h"

#include <QStringList>

class AcDbObject : public AcRxObject
{
public:
    AcDbObject();
    ~AcDbObject() override;
    AcDbObject(const AcDbObject &) = delete;
    AcDbObject &operator=(const AcDbObject &) = delete;

    static AcRxClass *desc();
    /// The class of the object's kind; classes with members override this.
    AcRxClass *isA() const override;

    AcDbObjectId objectId() const { return AcDbObjectId(m_stub); }
    AcDbDatabase *database() const { return m_stub ? m_stub->database : nullptr; }
    AcDbObjectId ownerId() const;
    AcDbHandle handle() const { return objectId().handle(); }

    // Opening and closing ------------------------------------------------------------------------
    bool isReadEnabled() const { return !m_stub || m_readers > 0 || m_writing || m_notifying; }
    bool isWriteEnabled() const { return !m_stub || m_writing; }
    void assertReadEnabled() const;
    void assertWriteEnabled() const;
    /// eWasOpenForRead when others read it too; what AcDbDatabase::mayChange() says.
    Acad::ErrorStatus upgradeOpen();
    Acad::ErrorStatus downgradeOpen();
    /// Ends one opening. The object may be gone afterwards.
    Acad::ErrorStatus close();
    /// Erases or un-erases; needs write access; asks subErase first. Attributes and vertices go along.
    Acad::ErrorStatus erase(bool erasing = true);
    bool isErased() const { return m_stub && m_stub->has(AcDbStub::kErased); }

    // Contents -----------------------------------------------------------------------------------
    /// Kind, handle, owner ... as in the file; for custom objects without the class's own fields.
    const ResbufList &groups() const { return m_groups; }
    /// Needs write access.
    ResbufList &editGroups();
    /// Needs write access. Sets the first group of that code behind the marker `subclass` (empty: from
    /// the start), or inserts it at the end of that subclass.
    void setGroup(int code, resbuf::Value value, QStringView subclass = {});

    /// The DXF name in group 0.
    QByteArray dxfName() const;
    /// The object's extended data of one application (1001 group first); all when the name is "*".
    ResbufList xData(const QString &application = QStringLiteral("*")) const;
    /// Replaces the extended data of the application that the first group names.
    Acad::ErrorStatus setXData(const ResbufList &data);

    /// The dictionary that belongs to the object. Null when what is named there is none or another's.
    AcDbObjectId extensionDictionary() const;
    /// Makes an empty one when there is none; needs write access.
    AcDbObjectId createExtensionDictionary();

    // Overridden by custom classes ---------------------------------------------------------------
    virtual Acad::ErrorStatus subClose();
    virtual Acad::ErrorStatus subErase(bool erasing);
    virtual Acad::ErrorStatus dwgInFields(AcDbDwgFiler *filer);
    virtual Acad::ErrorStatus dwgOutFields(AcDbDwgFiler *filer) const;
    virtual Acad::ErrorStatus dxfInFields(AcDbDxfFiler *filer);
    virtual Acad::ErrorStatus dxfOutFields(AcDbDxfFiler *filer) const;
    /// Prints what the LIST command shows below the host's own lines.
    virtual void subList() const;

    /// True for classes that file fields of their own.
    bool isCustom() const { return isA()->application() != nullptr; }

protected:
    /// Starts a group list: kind, handle place, owner place.
    explicit AcDbObject(const QByteArray &dxfName);

private:
    friend class AcDbDatabase;
    friend class AcDbUndo;
    friend class AcDbBlockTableRecord;
    friend class AcDbSymbolTable;
    friend class ObjectCopier;
    friend class CarrierKeeper;
    friend class AcDbTransient;

    bool isIdle() const { return !m_writing && !m_notifying && m_readers == 0; }
    void stampIdentity();
    void linkExtensionDictionary(AcDbHandle handle);

    AcDbStub *m_stub = nullptr;
    ResbufList m_groups;
    int m_readers = 0;
    bool m_writing = false;
    bool m_notifying = false;
    bool m_isNew = false;      ///< Added, and not closed since.
    bool m_isProxy = false;    ///< Of a class that is missing or refused the bytes: just its groups.
    unsigned m_proxySince = 0; ///< Generation of the class dictionary.
};

/// Opens an object as a T; eNotThatKindOfClass (and the object closed again) when it is something else.
template <class T>
Acad::ErrorStatus acdbOpenObject(T *&object, AcDbObjectId id, AcDb::OpenMode mode, bool openErased = false)
{
    object = nullptr;
    if (id.isNull())
        return Acad::eNullObjectId;
    // What would be closed again at once is not made: making may lead to others, and so on without end.
    if (!id.stub()->object && !id.isErased() && !id.objectClass()->isDerivedFrom(T::desc()))
        return Acad::eNotThatKindOfClass;
    AcDbObject *opened = nullptr;
    const Acad::ErrorStatus status = id.database()->openObject(opened, id, mode, openErased);
    if (status != Acad::eOk)
        return status;
    object = acrxCast<T>(opened);
    if (!object)
        opened->close();
    return object ? Acad::eOk : Acad::eNotThatKindOfClass;
}

/// Opens in the constructor, closes in the destructor.
template <class T>
class AcDbObjectPointer
{
public:
    AcDbObjectPointer() = default;
    AcDbObjectPointer(AcDbObjectId id, AcDb::OpenMode mode, bool openErased = false)
        : m_status(acdbOpenObject(m_object, id, mode, openErased))
    {
    }
    /// Takes over an object that is open already.
    explicit AcDbObjectPointer(T *opened)
        : m_object(opened), m_status(opened ? Acad::eOk : Acad::eNullObjectPointer)
    {
    }
    ~AcDbObjectPointer() { close(); }
    AcDbObjectPointer(const AcDbObjectPointer &) = delete;
    AcDbObjectPointer &operator=(const AcDbObjectPointer &) = delete;
    AcDbObjectPointer(AcDbObjectPointer &&other) noexcept
        : m_object(std::exchange(other.m_object, nullptr)), m_status(other.m_status)
    {
    }

    Acad::ErrorStatus openStatus() const { return m_status; }
    explicit operator bool() const { return m_object != nullptr; }
    T *operator->() const { return m_object; }
    T &operator*() const { return *m_object; }
    T *object() const { return m_object; }
    void close()
    {
        if (m_object)
            std::exchange(m_object, nullptr)->close();
    }

private:
    T *m_object = nullptr;
    Acad::ErrorStatus m_status = Acad::eNullObjectId;
};
