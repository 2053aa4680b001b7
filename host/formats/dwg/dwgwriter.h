// Saving a drawing that came from a DWG file, in the version of the file.
//
// A drawing without changes is saved byte for byte. With changes only the changed objects, those that list
// them, and what follows from them differ; every other record keeps its bits.
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/base/atomic_file.h"
#include "host/base/progress.h"
#include "host/base/result.h"
#include "host/formats/drawingformat.h"

#include <memory>

class DwgSource;

/// Writes a temporary file beside the target, reads it again the way of opening, compares it with what was
/// meant, and renames it; what was there becomes NAME.bak. A failure, something that cannot be written, or
/// `progress` or `mayReplace` saying no, leaves the target as it was. Errors are sentences with the file's
/// name.
base::Result<base::WrittenFile, QString> writeDwg(const AcDbDatabase &database, const DwgSource &source,
                                                  const QString &path, const base::Progress &progress,
                                                  const base::MayReplace &mayReplace);

/// What it would be saved as at one moment; null when that cannot be written.
std::unique_ptr<DrawingImage> dwgImage(const AcDbDatabase &database, const DwgSource &source);
