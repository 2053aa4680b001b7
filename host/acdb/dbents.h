// Typed views of the native entities that commands and the module ask by name.
#pragma once

#include "host/acdb/dbentity.h"

class AcDbText : public AcDbEntity
{
public:
    static AcRxClass *desc();
    QString textString() const;
    void setTextString(const QString &text);
    AcGePoint3d position() const;
    double height() const;
};

class AcDbMText : public AcDbEntity
{
public:
    static AcRxClass *desc();
    /// The whole text with its inline codes: the chunks of group 3, then group 1.
    QString contents() const;
};

class AcDbBlockReference : public AcDbEntity
{
public:
    static AcRxClass *desc();
    /// The block record inserted; null when the drawing lacks it.
    AcDbObjectId blockTableRecord() const;
    QString blockName() const;
    /// Block coordinates to the coordinates of the owner.
    AcGeMatrix3d blockTransform() const;
};

class AcDbAttribute : public AcDbText
{
public:
    static AcRxClass *desc();
    QString tag() const;
};
