#include "host/base/atomic_file.h"

#include "host/base/file_rights.h"
#include "host/base/path_name.h"

#include <QDateTime>
#include <QDir>
#include <QRandomGenerator>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace base
{

static constexpr qsizetype kGatherLimit = 256 * 1024;
static constexpr int kMaximumLinks = 40; // As many as the kernel follows.
static constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;

static QByteArray folderOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    if (slash < 0)
        return ".";
    return slash == 0 ? QByteArray("/") : path.left(slash);
}

/// Follows links by hand, because the file that a link names need not exist yet.
static Result<QByteArray, int> resolveLinks(QByteArray path)
{
    for (int followed = 0; followed < kMaximumLinks; ++followed) {
        QByteArray link(4096, Qt::Uninitialized);
        const ssize_t length =
            ::readlink(path.constData(), link.data(), static_cast<std::size_t>(link.size()));
        if (length < 0)
            return path; // Not a link; what else may be wrong with it shows when it is used.
        link.truncate(length);
        path = link.startsWith('/') ? link : folderOf(path) + '/' + link;
    }
    return Failure{ELOOP};
}

/// The system lets a privileged user write everywhere, so the permission bits are looked at as well: a
/// file that was marked read-only is meant to stay as it is.
static std::optional<FileError> refusal(const QString &path, const QByteArray &target,
                                        std::optional<struct stat> &replaced)
{
    struct stat folder;
    if (::stat(folderOf(target).constData(), &folder) != 0)
        return FileError::fromErrno(path, errno);
    struct stat file;
    const bool exists = ::stat(target.constData(), &file) == 0;
    if (!exists && errno != ENOENT)
        return FileError::fromErrno(path, errno);
    if (exists && !S_ISREG(file.st_mode))
        return FileError{FileError::Code::notAFile, 0, path};
    if ((folder.st_mode & kAnyWrite) == 0 || (exists && (file.st_mode & kAnyWrite) == 0))
        return FileError{FileError::Code::readOnly, 0, path};
    if (exists && ::faccessat(AT_FDCWD, target.constData(), W_OK, AT_EACCESS) != 0)
        return FileError::fromErrno(path, errno);
    if (exists)
        replaced = file;
    return std::nullopt;
}

/// False when somebody who clears up took the new file for a left one before it was locked. A file system
/// without locks is no reason not to save.
static bool claim(int file)
{
    while (::flock(file, LOCK_EX) != 0 && errno == EINTR) {
    }
    struct stat status;
    return ::fstat(file, &status) != 0 || status.st_nlink > 0;
}

/// A new file in the target's folder, so that the rename stays within one file system.
static int createBeside(const QByteArray &target, mode_t mode, QByteArray &temporary)
{
    for (int attempt = 0; attempt < 100; ++attempt) {
        temporary = folderOf(target) + "/.quill-" +
                    QByteArray::number(QRandomGenerator::global()->generate(), 16) + ".tmp";
        const int file = ::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (file >= 0 && claim(file))
            return file;
        if (file >= 0)
            ::close(file);
        else if (errno != EEXIST)
            return file;
    }
    return -1;
}

Result<AtomicFileWriter, FileError> AtomicFileWriter::open(const QString &path)
{
    const auto target = resolveLinks(encodePath(path));
    if (!target)
        return Failure{FileError::fromErrno(path, target.error())};

    std::optional<struct stat> replaced;
    if (auto error = refusal(path, *target, replaced))
        return Failure{std::move(*error)};

    AtomicFileWriter writer;
    writer.m_path = path;
    writer.m_target = *target;
    // A replaced file's bits count already when the new one is created: nobody else may look in meanwhile.
    const mode_t mode = replaced ? replaced->st_mode & (S_IRWXU | S_IRWXG | S_IRWXO) : 0666;
    writer.m_file = createBeside(*target, mode, writer.m_temporary);
    if (writer.m_file < 0) {
        writer.m_temporary.clear();
        return Failure{FileError::fromErrno(path, errno)};
    }
    if (replaced)
        writer.m_notKept = copyFileRights(writer.m_file, *target, *replaced);
    return writer;
}

AtomicFileWriter::AtomicFileWriter(AtomicFileWriter &&other) noexcept
    : m_file(std::exchange(other.m_file, -1)), m_path(std::move(other.m_path)),
      m_target(std::move(other.m_target)), m_temporary(std::exchange(other.m_temporary, {})),
      m_pending(std::move(other.m_pending)), m_notKept(std::move(other.m_notKept)),
      m_error(std::move(other.m_error))
{
}

AtomicFileWriter &AtomicFileWriter::operator=(AtomicFileWriter &&other) noexcept
{
    if (this != &other) {
        discard();
        m_file = std::exchange(other.m_file, -1);
        m_path = std::move(other.m_path);
        m_target = std::move(other.m_target);
        m_temporary = std::exchange(other.m_temporary, {});
        m_pending = std::move(other.m_pending);
        m_notKept = std::move(other.m_notKept);
        m_error = std::move(other.m_error);
    }
    return *this;
}

AtomicFileWriter::~AtomicFileWriter()
{
    discard();
}

void AtomicFileWriter::discard()
{
    if (m_file >= 0)
        ::close(std::exchange(m_file, -1));
    if (!m_temporary.isEmpty())
        ::unlink(std::exchange(m_temporary, {}).constData());
}

void AtomicFileWriter::fail(int systemError)
{
    if (!m_error)
        m_error = FileError::fromErrno(m_path, systemError);
}

void AtomicFileWriter::write(QByteArrayView bytes)
{
    QUILL_ASSERT(m_file >= 0 || m_error);
    if (bytes.size() > kGatherLimit - m_pending.size())
        flush(bytes);
    else
        m_pending.append(bytes);
}

/// Writes what was gathered, and `more` after it, without copying `more`.
void AtomicFileWriter::flush(QByteArrayView more)
{
    iovec pieces[2] = {{m_pending.data(), static_cast<std::size_t>(m_pending.size())},
                       {const_cast<char *>(more.data()), static_cast<std::size_t>(more.size())}};
    while (!m_error && pieces[0].iov_len + pieces[1].iov_len != 0) {
        const ssize_t count = ::writev(m_file, pieces, 2);
        if (count < 0) {
            if (errno != EINTR)
                fail(errno);
            continue;
        }
        auto written = static_cast<std::size_t>(count);
        for (iovec &piece : pieces) {
            const std::size_t part = std::min(written, piece.iov_len);
            piece.iov_base = static_cast<char *>(piece.iov_base) + part;
            piece.iov_len -= part;
            written -= part;
        }
    }
    m_pending.resize(0); // Keeps the memory, unlike clear().
}

/// The rename has happened by then; not every file system can flush a folder, so EINVAL is no failure.
static int flushFolder(const QByteArray &folder)
{
    const int descriptor = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return errno == EACCES ? 0 : errno; // A folder may be writable and yet not readable.
    const int result = ::fsync(descriptor) == 0 || errno == EINVAL ? 0 : errno;
    ::close(descriptor);
    return result;
}

Result<QString, FileError> AtomicFileWriter::finishWriting()
{
    QUILL_ASSERT(m_file >= 0 || m_error);
    if (!m_error)
        flush({});
    if (m_error)
        return Failure{*m_error};
    // The disk works while the caller reads; commit() waits for the rest.
    ::sync_file_range(m_file, 0, 0, SYNC_FILE_RANGE_WRITE);
    return decodePath(m_temporary);
}

/// Kernels and file systems that do not know a flag of renameat2.
static bool isUnknownFlag(int systemError)
{
    return systemError == EINVAL || systemError == ENOSYS || systemError == EOPNOTSUPP;
}

/// Keeps removeLeftTemporaryFiles() from a file that has, for a moment, a temporary name.
class KeptFile
{
public:
    explicit KeptFile(const QByteArray &path)
        : m_file(::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK))
    {
        if (m_file >= 0)
            ::flock(m_file, LOCK_SH | LOCK_NB);
    }
    ~KeptFile()
    {
        if (m_file >= 0)
            ::close(m_file);
    }
    KeptFile(const KeptFile &) = delete;
    KeptFile &operator=(const KeptFile &) = delete;

private:
    int m_file;
};

/// Between the look at the target and the renaming somebody may still write it. Where the system can exchange
/// two files at once, what was taken out is looked at again, and put back when it is not what was seen.
std::optional<FileError> AtomicFileWriter::replaceTarget(const MayReplace &mayReplace)
{
    const auto failed = [this](int error) { return FileError::fromErrno(m_path, error); };
    const auto rename = [this](unsigned flags) {
        return ::renameat2(AT_FDCWD, m_temporary.constData(), AT_FDCWD, m_target.constData(), flags) == 0
                   ? 0
                   : errno;
    };
    const FileError changed{FileError::Code::changed, 0, m_path};
    for (int attempt = 0; attempt < 100; ++attempt) {
        const int placed = mayReplace ? rename(RENAME_NOREPLACE) : rename(0);
        if (placed == 0) {
            m_temporary.clear();
            return std::nullopt;
        }
        if (!mayReplace || (placed != EEXIST && !isUnknownFlag(placed)))
            return failed(placed);
        const auto seen = fileStamp(decodePath(m_target));
        if (seen && !mayReplace(decodePath(m_target)))
            return changed;
        const KeptFile old(m_target);
        const int exchanged = seen ? rename(RENAME_EXCHANGE) : ENOENT;
        if (exchanged == 0) {
            if (fileStamp(decodePath(m_temporary)) == seen) {
                ::unlink(std::exchange(m_temporary, {}).constData());
                return std::nullopt;
            }
            const int putBack = rename(RENAME_EXCHANGE);
            return putBack == 0 ? changed : failed(putBack);
        }
        if (isUnknownFlag(exchanged) || (!seen && isUnknownFlag(placed)))
            return AtomicFileWriter::replaceTarget({});
        if (exchanged != ENOENT)
            return failed(exchanged);
    }
    return changed; // It comes and goes.
}

Result<WrittenFile, FileError> AtomicFileWriter::commit(const MayReplace &mayReplace)
{
    QUILL_ASSERT(m_file >= 0 || m_error);
    if (!m_error)
        flush({});
    if (!m_error && ::fsync(m_file) != 0)
        fail(errno);
    WrittenFile written;
    if (!m_error && mayReplace)
        written.digest = fileDigest(decodePath(m_temporary)).value_or(0);
    const auto stamp = fileStamp(decodePath(m_temporary));
    // The file stays locked until it has its name: until then somebody who clears up must not take it for a
    // left one.
    if (!m_error)
        m_error = replaceTarget(mayReplace);
    if (!m_error) {
        if (const int systemError = flushFolder(folderOf(m_target)))
            fail(systemError);
    }
    // Network file systems report a failed write as late as this.
    if (m_file >= 0 && ::close(std::exchange(m_file, -1)) != 0)
        fail(errno);
    discard();
    if (m_error)
        return Failure{*m_error};
    // Such systems also give the file its time only now. A program that has rewritten it already shows by the
    // digest.
    written.stamp = fileStamp(decodePath(m_target)).value_or(FileStamp());
    if (stamp && (written.stamp.inode != stamp->inode || written.stamp.size != stamp->size))
        written.stamp = *stamp;
    written.notKept = m_notKept;
    return written;
}

Result<void, FileError> writeFileAtomically(const QString &path, QByteArrayView content)
{
    auto writer = AtomicFileWriter::open(path);
    if (!writer)
        return Failure{writer.error()};
    writer->write(content);
    if (const auto written = writer->commit(); !written)
        return Failure{written.error()};
    return {};
}

/// The caller holds the file open. Files of others are left to them: their locks may not reach us.
static bool isLeft(int file)
{
    constexpr qint64 kDay = 24 * 60 * 60;
    struct stat status;
    if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode) || status.st_uid != ::geteuid())
        return false;
    if (::flock(file, LOCK_EX | LOCK_NB) == 0)
        return true;
    return errno != EWOULDBLOCK && QDateTime::currentSecsSinceEpoch() - status.st_mtime > kDay;
}

int removeLeftTemporaryFiles(const QString &folder)
{
    int removed = 0;
    const QStringList names =
        QDir(folder).entryList({QStringLiteral(".quill-*.tmp")}, QDir::Files | QDir::Hidden);
    for (const QString &name : names) {
        const QByteArray path = encodePath(folder + QLatin1Char('/') + name);
        const int file = ::open(path.constData(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (file < 0)
            continue;
        // Removed before the lock is given up, so that a writer who waits for it sees that the file is gone.
        removed += isLeft(file) && ::unlink(path.constData()) == 0;
        ::close(file);
    }
    return removed;
}

} // namespace base
