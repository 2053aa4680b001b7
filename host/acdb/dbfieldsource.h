// Sources that keep the fields of a custom object as its class filed them, beside the groups that they show.
#pragma once

#include "host/acdb/dbfiler.h"
#include "host/acdb/dbid.h"

#include <memory>

class AcDbFieldSource
{
public:
    virtual ~AcDbFieldSource() = default;
    /// What the object's class reads; null for an object that the source does not have.
    virtual std::unique_ptr<AcDbDwgFiler> fieldsOf(const AcDbStub &stub) const = 0;
};
