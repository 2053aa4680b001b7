// Reading DXF files: text and binary, R12 to 2018, into a new database.
//
// Objects are found, not decoded: one pass over the bytes notes each object's kind, handle, owner and
// place. Damage is mended as far as it makes sense and listed in AcDbDatabase::repairs(); a file
// without any section is refused.
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/base/file_bytes.h"
#include "host/base/progress.h"
#include "host/base/result.h"
#include "host/formats/dxf/dxferror.h"

/// When `progress` says no, reading ends with an error.
base::Result<std::unique_ptr<AcDbDatabase>, DxfError> readDxf(const QString &path,
                                                              const base::Progress &progress = {});
/// `name` is what errors call the file.
base::Result<std::unique_ptr<AcDbDatabase>, DxfError> readDxf(base::FileBytes bytes, const QString &name,
                                                              const base::Progress &progress = {});
