// Dictionaries and xrecords: named places for data that is no entity.
#pragma once

#include "host/acdb/dbobject.h"

class AcDbDictionary : public AcDbObject
{
public:
    /// An empty dictionary in no database.
    AcDbDictionary();
    static AcRxClass *desc();

    struct Entry {
        QString key;
        AcDbObjectId id;
    };
    std::vector<Entry> entries() const;
    /// Null when missing or erased. Keys ignore letter case.
    AcDbObjectId getAt(const QString &key) const;
    /// Adds the object to the drawing, or replaces (erases) the object of that key. Leaves the new object
    /// open for write. Needs write access.
    Acad::ErrorStatus setAt(const QString &key, AcDbObject *object, AcDbObjectId &id);
    /// Sets the key's entry to an object of the drawing. Needs write access.
    void link(const QString &key, AcDbObjectId id);
    /// Takes the key's entry out; the object stays. Needs write access.
    void unlink(const QString &key);
    /// Erases the object of the key; eKeyNotFound.
    Acad::ErrorStatus remove(const QString &key);
};

class AcDbXrecord : public AcDbObject
{
public:
    AcDbXrecord();
    static AcRxClass *desc();
    /// The record's data groups, without the host's own.
    ResbufList rbChain() const;
    Acad::ErrorStatus setFromRbChain(const ResbufList &chain);
};

/// The named-object dictionary, made when the drawing has none.
AcDbObjectId acdbEnsureNamedObjects(AcDbDatabase &database);
