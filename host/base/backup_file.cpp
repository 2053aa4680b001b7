#include "host/base/backup_file.h"

#include "host/base/path_name.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <unistd.h>
#include <utility>

namespace base
{

BackupFile::BackupFile(BackupFile &&other) noexcept
    : m_temporary(std::exchange(other.m_temporary, {})), m_backup(std::move(other.m_backup))
{
}

BackupFile::~BackupFile()
{
    if (!m_temporary.isEmpty())
        ::unlink(m_temporary.constData());
}

/// A copy: another name for the file would look like a change of it to those who watch.
Result<BackupFile, FileError> BackupFile::take(const QString &path)
{
    BackupFile backup;
    const QString target = QFileInfo(path).canonicalFilePath();
    if (target.isEmpty())
        return backup;
    const QFileInfo info(target);
    const QString folder = info.path() + u'/';
    const QString temporary =
        folder +
        QStringLiteral(".quill-%1.tmp").arg(QRandomGenerator::global()->generate(), 8, 16, QChar(u'0'));
    backup.m_backup = encodePath(folder + info.completeBaseName() + QStringLiteral(".bak"));
    QFile file(target);
    if (!file.copy(temporary))
        return Failure{
            FileError::fromErrno(target, file.error() == QFileDevice::ResourceError ? ENOSPC : EACCES)};
    backup.m_temporary = encodePath(temporary);
    return backup;
}

Result<void, FileError> BackupFile::keep()
{
    if (m_temporary.isEmpty())
        return {};
    if (::rename(m_temporary.constData(), m_backup.constData()) != 0)
        return Failure{FileError::fromErrno(decodePath(m_backup), errno)};
    m_temporary.clear();
    return {};
}

} // namespace base
