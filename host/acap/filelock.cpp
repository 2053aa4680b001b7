#include "host/acap/filelock.h"

#include "host/base/host_text.h"
#include "host/base/path_name.h"

#include <QFileInfo>
#include <QStringList>

#include <cerrno>

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

static constexpr const char *kMark = "quillnote-lock 1";

QString AcApLockHolder::text() const
{
    const QString who = user.isEmpty() ? Host::tr("somebody") : user;
    const QString where = process.host.isEmpty() ? who : Host::tr("%1 on %2").arg(who, process.host);
    if (!since.isValid())
        return where;
    return Host::tr("%1 since %2")
        .arg(where, since.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")));
}

QString acapLockFileName(const QString &drawing)
{
    const QFileInfo file(drawing);
    return file.path() + QStringLiteral("/.") + file.fileName() + QStringLiteral(".quill-lock");
}

// The line in the file ----------------------------------------------------------------------------

static QString userName()
{
    const passwd *const entry = ::getpwuid(::geteuid());
    return entry ? base::decodePath(entry->pw_name) : QString::number(::geteuid());
}

static QByteArray lineOf(const AcApLockHolder &holder)
{
    const QStringList fields{QString::fromLatin1(kMark),
                             holder.user,
                             holder.process.host,
                             QString::number(holder.process.pid),
                             QString::number(holder.process.start),
                             holder.since.toString(Qt::ISODate)};
    return fields.join(u'\t').toUtf8() + '\n';
}

/// Whatever cannot be read stays empty: a lock of somebody, all the same.
static AcApLockHolder holderOf(const QByteArray &line)
{
    const QStringList fields = QString::fromUtf8(line).trimmed().split(u'\t');
    AcApLockHolder holder;
    if (fields.value(0) != QLatin1String(kMark))
        return holder;
    holder.user = fields.value(1);
    holder.process = {fields.value(2), fields.value(3).toLongLong(), fields.value(4).toULongLong()};
    holder.since = QDateTime::fromString(fields.value(5), Qt::ISODate);
    return holder;
}

static AcApLockHolder ourselves()
{
    return {userName(), acapThisProcess(), QDateTime::currentDateTimeUtc()};
}

// The file ----------------------------------------------------------------------------------------

static QByteArray readLine(int file)
{
    QByteArray line(4096, Qt::Uninitialized);
    const ssize_t count = ::pread(file, line.data(), std::size_t(line.size()), 0);
    line.truncate(std::max<ssize_t>(count, 0));
    return line;
}

static bool writeLine(int file, const AcApLockHolder &holder)
{
    // In this order the file is never empty.
    const QByteArray line = lineOf(holder);
    return ::pwrite(file, line.constData(), std::size_t(line.size()), 0) == line.size() &&
           ::ftruncate(file, line.size()) == 0;
}

/// On file systems where a lock cannot appear with its line in it, an empty file is one that somebody has
/// just made; after a while it is one that he could not fill.
static bool isEmptyForLong(int file)
{
    constexpr qint64 kSeconds = 10;
    struct stat status;
    return ::fstat(file, &status) == 0 && status.st_size == 0 &&
           QDateTime::currentSecsSinceEpoch() - status.st_mtime > kSeconds;
}

static bool isStale(int file, const AcApLockHolder &holder)
{
    return acapIsGone(holder.process) || isEmptyForLong(file);
}

std::optional<AcApLockHolder> acapForeignLock(const QString &drawing)
{
    const QByteArray name = base::encodePath(acapLockFileName(drawing));
    const int file = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return std::nullopt;
    const AcApLockHolder holder = holderOf(readLine(file));
    const bool bars = holder.process != acapThisProcess() && !isStale(file, holder);
    ::close(file);
    return bars ? std::optional(holder) : std::nullopt;
}

/// Two programs that find the same stale lock must not both get it: the file is held (flock) from the look at
/// its line to the new line, and must still be the one beside the drawing.
static std::optional<AcApFileLock::Result> takeOver(const QByteArray &name, bool force,
                                                    AcApLockHolder &holder)
{
    const int file = ::open(name.constData(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
    if (file < 0) {
        const int reader = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (reader < 0 && errno == ENOENT)
            return std::nullopt;
        if (reader < 0)
            return AcApFileLock::impossible;
        holder = holderOf(readLine(reader));
        ::close(reader);
        return acapIsGone(holder.process) || force ? AcApFileLock::impossible : AcApFileLock::refused;
    }
    ::flock(file, LOCK_EX);
    holder = holderOf(readLine(file));
    struct stat held;
    struct stat named;
    const bool isSame = ::fstat(file, &held) == 0 && ::stat(name.constData(), &named) == 0 &&
                        held.st_ino == named.st_ino && held.st_dev == named.st_dev;
    std::optional<AcApFileLock::Result> result;
    if (isSame)
        result = AcApFileLock::refused;
    if (isSame && (force || isStale(file, holder)))
        result = writeLine(file, ourselves()) ? AcApFileLock::takenOver : AcApFileLock::impossible;
    ::close(file);
    return result;
}

/// The file gets its name with the line in it, so that who is killed leaves a whole lock or none. The errno.
static int placeWhole(const QByteArray &name)
{
    const QByteArray folder = name.left(name.lastIndexOf('/') + 1);
    const int file = ::open(folder.constData(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0644);
    if (file < 0)
        return errno;
    const QByteArray nameless = "/proc/self/fd/" + QByteArray::number(file);
    int trouble = EIO;
    if (writeLine(file, ourselves()))
        trouble = ::linkat(AT_FDCWD, nameless.constData(), AT_FDCWD, name.constData(), AT_SYMLINK_FOLLOW) == 0
                      ? 0
                      : errno;
    ::close(file);
    return trouble;
}

/// None when there is a lock file, but it went while it was looked at.
static std::optional<AcApFileLock::Result> tryToTake(const QByteArray &name, bool force,
                                                     AcApLockHolder &holder)
{
    const int trouble = placeWhole(name);
    if (trouble == 0)
        return AcApFileLock::taken;
    if (trouble == EEXIST)
        return takeOver(name, force, holder);
    const int file = ::open(name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    AcApFileLock::Result result = AcApFileLock::impossible;
    if (file >= 0) {
        result = writeLine(file, ourselves()) ? AcApFileLock::taken : AcApFileLock::impossible;
        ::close(file);
        if (result == AcApFileLock::impossible)
            ::unlink(name.constData());
    } else if (errno == EEXIST) {
        return takeOver(name, force, holder);
    }
    return result;
}

AcApFileLock::Result AcApFileLock::acquire(const QString &drawing, bool force)
{
    release();
    const QString path = acapLockFileName(drawing);
    const QByteArray name = base::encodePath(path);
    std::optional<Result> result;
    constexpr int kAttempts = 100; // Others come and go.
    for (int attempt = 0; attempt < kAttempts && !result; ++attempt)
        result = tryToTake(name, force, m_holder);
    const Result outcome = result.value_or(refused);
    if (outcome == taken || outcome == takenOver)
        m_file = path;
    return outcome;
}

bool AcApFileLock::isHeld() const
{
    if (m_file.isEmpty())
        return false;
    const int file = ::open(base::encodePath(m_file).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return false;
    const bool isOurs = holderOf(readLine(file)).process == acapThisProcess();
    ::close(file);
    return isOurs;
}

void AcApFileLock::release()
{
    if (m_file.isEmpty())
        return;
    // Somebody may have taken it over in the meantime.
    const QByteArray name = base::encodePath(std::exchange(m_file, {}));
    const int file = ::open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        return;
    ::flock(file, LOCK_EX);
    if (holderOf(readLine(file)).process == acapThisProcess())
        ::unlink(name.constData());
    ::close(file);
}
