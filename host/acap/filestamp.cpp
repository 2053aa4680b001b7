#include "host/acap/filestamp.h"

#include <QFile>

#include <sys/stat.h>

std::optional<AcApFileStamp> acapFileStamp(const QString &path)
{
    struct stat status;
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    return AcApFileStamp{status.st_dev, status.st_ino, std::uint64_t(status.st_size), status.st_mtim.tv_sec,
                         status.st_mtim.tv_nsec};
}
