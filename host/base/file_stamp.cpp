#include "host/base/file_stamp.h"

#include "host/base/path_name.h"

#include <QDateTime>
#include <QHash>

#include <cerrno>
#include <cstdlib>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace base
{

static constexpr std::size_t kPiece = 1 << 20; // The digest of a text depends on how it is cut.

bool FileStamp::isYoung() const
{
    constexpr std::int64_t kCoarsestClock = 3; // Seconds; some file systems count in steps of two.
    return std::abs(QDateTime::currentSecsSinceEpoch() - seconds) < kCoarsestClock;
}

std::optional<FileStamp> fileStamp(const QString &path)
{
    struct stat status;
    if (::stat(encodePath(path).constData(), &status) != 0)
        return std::nullopt;
    return FileStamp{status.st_dev,
                     status.st_ino,
                     std::uint64_t(status.st_size),
                     status.st_mtim.tv_sec,
                     status.st_mtim.tv_nsec,
                     status.st_ctim.tv_sec * 1'000'000'000 + status.st_ctim.tv_nsec};
}

std::uint64_t contentDigest(std::string_view bytes)
{
    std::size_t digest = 0;
    for (std::size_t at = 0; at < bytes.size(); at += kPiece) {
        const std::string_view piece = bytes.substr(at, kPiece);
        digest = qHashBits(piece.data(), piece.size(), digest + 1);
    }
    return digest;
}

/// Less than the whole buffer only at the end of the file; below 0 for a failure.
static ssize_t readFully(int file, std::vector<char> &buffer)
{
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const ssize_t count = ::read(file, buffer.data() + filled, buffer.size() - filled);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return count;
        if (count == 0)
            break;
        filled += std::size_t(count);
    }
    return ssize_t(filled);
}

std::optional<std::uint64_t> fileDigest(const QString &path)
{
    const int file = ::open(encodePath(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return std::nullopt;
    std::vector<char> buffer(kPiece);
    std::size_t digest = 0;
    ssize_t count = 0;
    while ((count = readFully(file, buffer)) > 0)
        digest = qHashBits(buffer.data(), std::size_t(count), digest + 1);
    ::close(file);
    return count < 0 ? std::nullopt : std::optional<std::uint64_t>(digest);
}

} // namespace base
