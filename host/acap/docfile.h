// Drawing files into databases and back; the format is told by the content, not by the name.
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/base/progress.h"
#include "host/base/result.h"

#include <memory>

/// The error is a sentence with file, place and reason.
base::Result<std::unique_ptr<AcDbDatabase>, QString> acapReadDrawing(const QString &path,
                                                                     const base::Progress &progress = {});
/// Writes in the drawing's own format and version; a crash, or `progress` saying no, leaves the old file.
base::Result<void, QString> acapWriteDrawing(AcDbDatabase &database, const QString &path,
                                             const base::Progress &progress = {});
/// A drawing made from the built-in template.
std::unique_ptr<AcDbDatabase> acapTemplateDrawing();
