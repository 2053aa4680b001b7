// Reactors: who wants to hear of changes to a drawing.
#pragma once

class AcDbDatabase;
class AcDbObject;

/// During a notification the object is open for notify: it can be read, and upgraded to write.
class AcDbDatabaseReactor
{
public:
    virtual ~AcDbDatabaseReactor() = default;
    virtual void objectAppended(const AcDbDatabase *, const AcDbObject *) {}
    virtual void objectUnAppended(const AcDbDatabase *, const AcDbObject *) {}
    virtual void objectReAppended(const AcDbDatabase *, const AcDbObject *) {}
    /// After closing an object that was open for write.
    virtual void objectModified(const AcDbDatabase *, const AcDbObject *) {}
    virtual void objectErased(const AcDbDatabase *, const AcDbObject *, bool /*erased*/) {}
    virtual void headerSysVarChanged(const AcDbDatabase *, const char * /*name*/) {}
    /// What references of the drawing show is, or will be, something else.
    virtual void xrefsChanged(const AcDbDatabase *) {}
    virtual void goodbye(const AcDbDatabase *) {}
};
