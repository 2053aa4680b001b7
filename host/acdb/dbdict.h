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
    /// Adds the object to the drawing under that key and leaves it open for write. What stood there is erased
    /// when the dictionary owns it and it is of the same class; anything else only loses the key. Needs write
    /// access.
    Acad::ErrorStatus setAt(const QString &key, AcDbObject *object, AcDbObjectId &id);
    /// Sets the key's entry to an object of the drawing. Needs write access.
    void link(const QString &key, AcDbObjectId id);
    /// Takes the key's entry out; the object stays. Needs write access.
    void unlink(const QString &key);
    /// Takes the key's entry out and erases the object when the dictionary owns it; eKeyNotFound.
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

/// True for an object of that class that belongs to `owner`: what may be changed or erased on its behalf. Old
/// files state no owners; what has none belongs to the object that names it, except the named-object
/// dictionary.
bool acdbIsOwned(AcDbObjectId object, AcDbObjectId owner, const AcRxClass *asClass);

/// The named-object dictionary, made when the drawing has none.
AcDbObjectId acdbEnsureNamedObjects(AcDbDatabase &database);
