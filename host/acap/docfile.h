// Drawing files into databases and back; the format is told by the content, not by the name.
#pragma once

#include "host/acdb/dbdatabase.h"
#include "host/base/atomic_file.h"
#include "host/base/progress.h"
#include "host/base/result.h"

#include <memory>

/// The error is a sentence with file, place and reason.
base::Result<std::unique_ptr<AcDbDatabase>, QString> acapReadDrawing(const QString &path,
                                                                     const base::Progress &progress = {});
/// Of the bytes that the drawing was read from (base::contentDigest).
std::uint64_t acapDigestAsRead(const AcDbDatabase &database);
/// Writes in the format that the name's ending says, else in the drawing's own; a crash, or `progress` or
/// `mayReplace` saying no, leaves the old file.
base::Result<base::WrittenFile, QString> acapWriteDrawing(AcDbDatabase &database, const QString &path,
                                                          const base::Progress &progress,
                                                          const base::MayReplace &mayReplace);
/// What of the drawing the format of that name cannot hold, a sentence each.
QStringList acapLossesOfWriting(const AcDbDatabase &database, const QString &path);
/// A drawing made from the built-in template.
std::unique_ptr<AcDbDatabase> acapTemplateDrawing();
