// Changing a file that other programs change too: locked, read again, written aside, renamed.
#pragma once

#include "host/base/file_error.h"
#include "host/base/result.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace base
{

/// The new content for the present one; no value leaves the file as it is. May be asked several times.
using FileChange = std::function<std::optional<QByteArray>(QByteArrayView content)>;

/// Replaces an existing file's content. Programs that use this call take turns (flock, five seconds at most,
/// where the file system knows locks). What a program that knows nothing of locks wrote meanwhile is read
/// again until the moment of the renaming. True when the file was written.
Result<bool, FileError> updateFile(const QString &path, const FileChange &change);

} // namespace base
