// Saving a drawing that came from a DXF file: the file as it was, with the changes put in.
//
// A drawing without changes is saved byte for byte. With changes only the changed objects, variables and
// counts differ; what the file lacked (ends of sections, tables, the file) is put in as well. The
// drawing keeps its source, so it can be saved again.
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/base/result.h"
#include "host/formats/dxf/dxferror.h"

/// Writes a temporary file beside the target and renames it: a failure leaves the target as it was.
/// Refuses drawings that did not come from a DXF file.
base::Result<void, DxfError> writeDxf(AcDbDatabase &database, const QString &path);
base::Result<QByteArray, DxfError> writeDxf(AcDbDatabase &database);
