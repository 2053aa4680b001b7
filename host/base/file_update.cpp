#include "host/base/file_update.h"

#include "host/base/atomic_file.h"
#include "host/base/file_bytes.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace base
{

namespace
{

constexpr int kPatience = 5000; // Milliseconds.
constexpr int kMostAttempts = 10;

/// The file itself is what is locked, so nothing is left beside it; who waited looks whether the name still
/// stands for the file that was locked.
class HeldFile
{
public:
    explicit HeldFile(const QString &path) : m_name(QFile::encodeName(path)) {}
    HeldFile(const HeldFile &) = delete;
    HeldFile &operator=(const HeldFile &) = delete;
    ~HeldFile() { close(); }

    /// 0, or the reason as errno.
    int hold()
    {
        const QDeadlineTimer until(kPatience);
        for (;;) {
            if (const int trouble = open())
                return trouble;
            const bool isLocked = ::flock(m_file, LOCK_EX | LOCK_NB) == 0;
            if (!isLocked && errno != EWOULDBLOCK && errno != EINTR)
                return 0; // A file system without locks.
            if (isLocked && isStillNamed())
                return 0;
            close();
            if (until.hasExpired())
                return EBUSY;
            if (!isLocked)
                QThread::msleep(20);
        }
    }

private:
    int open()
    {
        // Network file systems lock only what is open for writing.
        m_file = ::open(m_name.constData(), O_RDWR | O_CLOEXEC);
        if (m_file < 0)
            m_file = ::open(m_name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        return m_file < 0 ? errno : 0;
    }
    void close()
    {
        if (m_file >= 0)
            ::close(m_file);
        m_file = -1;
    }
    bool isStillNamed() const
    {
        struct stat held;
        struct stat named;
        return ::fstat(m_file, &held) == 0 && ::stat(m_name.constData(), &named) == 0 &&
               held.st_ino == named.st_ino && held.st_dev == named.st_dev;
    }

    QByteArray m_name;
    int m_file = -1;
};

enum class Attempt { written, leftAlone, overtaken };

Result<Attempt, FileError> attempt(const QString &path, const FileChange &change)
{
    const auto before = readFileBytes(path);
    if (!before)
        return Failure{before.error()};
    const auto changed = change(QByteArrayView(before->data(), qsizetype(before->size())));
    if (!changed)
        return Attempt::leftAlone;
    auto writer = AtomicFileWriter::open(path);
    if (!writer)
        return Failure{writer.error()};
    writer->write(*changed);
    if (const auto finished = writer->finishWriting(); !finished)
        return Failure{finished.error()};
    const auto now = readFileBytes(path);
    if (!now)
        return Failure{now.error()};
    if (now->view() != before->view())
        return Attempt::overtaken;
    if (const auto done = writer->commit(); !done)
        return Failure{done.error()};
    return Attempt::written;
}

} // namespace

Result<bool, FileError> updateFile(const QString &path, const FileChange &change)
{
    HeldFile held(path);
    if (const int trouble = held.hold())
        return Failure{FileError::fromErrno(path, trouble)};
    for (int i = 0; i < kMostAttempts; ++i) {
        const auto done = attempt(path, change);
        if (!done)
            return Failure{done.error()};
        if (*done != Attempt::overtaken)
            return *done == Attempt::written;
    }
    return Failure{FileError::fromErrno(path, EBUSY)};
}

} // namespace base
