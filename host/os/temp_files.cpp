#include "host/os/temp_files.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace os
{

/// Not QDir::tempPath(), which gives the root folder when TMPDIR names a missing one.
static QString temporaryFolder()
{
    const QString folder = qEnvironmentVariable("TMPDIR");
    return folder.isEmpty() ? QStringLiteral("/tmp") : QDir(folder).absolutePath();
}

base::Result<QString, base::FileError> temporaryFileName(const QString &prefix)
{
    const QString start = temporaryFolder() + QLatin1Char('/') + prefix;
    constexpr int kAttempts = 100;
    QString path;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        const QString digits =
            QStringLiteral("%1").arg(QRandomGenerator::global()->generate(), 8, 16, QLatin1Char('0'));
        path = start + digits.toUpper() + QStringLiteral(".TMP");
        const int file =
            ::open(QFile::encodeName(path).constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (file >= 0) {
            ::close(file);
            return path;
        }
        if (errno != EEXIST)
            break;
    }
    return base::Failure{base::FileError::fromErrno(path, errno)};
}

} // namespace os
