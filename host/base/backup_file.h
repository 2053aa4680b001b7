// The file that is about to be replaced, kept beside the new one under the ending ".bak".
#pragma once

#include "host/base/file_error.h"
#include "host/base/result.h"

#include <QByteArray>
#include <QString>

namespace base
{

/// Taken before a file is replaced; keep() makes it the backup, otherwise the destructor removes it and an
/// older backup stays.
class BackupFile
{
public:
    /// Of the file that a name leads to, links followed. Without such a file there is nothing to keep.
    static Result<BackupFile, FileError> take(const QString &path);
    BackupFile(BackupFile &&other) noexcept;
    BackupFile &operator=(BackupFile &&other) = delete;
    ~BackupFile();

    /// "plan.dwg" becomes "plan.bak", as others of this kind are called.
    Result<void, FileError> keep();

private:
    BackupFile() = default;

    QByteArray m_temporary; ///< Empty when there is nothing to keep.
    QByteArray m_backup;
};

} // namespace base
