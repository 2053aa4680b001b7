// Reading DWG files: R13 to 2018, into a new database.
//
// Objects are found through the object map and looked at only as far as their place in the drawing needs:
// kind, owner, order. They decode when somebody asks. What is damaged is told in AcDbDatabase::repairs(); a
// file whose maps cannot be read, an encrypted one and one of an older version are refused.
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/base/file_bytes.h"
#include "host/base/progress.h"
#include "host/base/result.h"

/// `name` is what errors call the file. When `progress` says no, reading ends with an error.
base::Result<std::unique_ptr<AcDbDatabase>, QString> readDwg(base::FileBytes bytes, const QString &name,
                                                             const base::Progress &progress = {});
