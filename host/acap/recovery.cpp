#include "host/acap/recovery.h"

#include "host/acdb/dbobject.h"
#include "host/base/atomic_file.h"
#include "host/base/file_bytes.h"
#include "host/base/path_name.h"
#include "host/formats/drawingformat.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>

static constexpr const char *kMark = "quillnote-recovery 1";
static constexpr std::uint64_t kNoState = ~std::uint64_t(0);

QString AcApRecovery::userFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/recovery");
}

// Names and records -------------------------------------------------------------------------------

/// The name says whose copy it is, so that one without a record is not lost.
static QString copyName(int number, const QString &suffix)
{
    const AcApProcess &process = acapThisProcess();
    return QStringLiteral("%1+%2+%3+%4.%5")
        .arg(QString::fromLatin1(QUrl::toPercentEncoding(process.host)))
        .arg(process.pid)
        .arg(process.start)
        .arg(number)
        .arg(suffix);
}

static AcApProcess ownerOf(const QString &copy)
{
    const QStringList parts = QFileInfo(copy).completeBaseName().split(u'+');
    if (parts.size() != 4)
        return {};
    return {QUrl::fromPercentEncoding(parts[0].toLatin1()), parts[1].toLongLong(), parts[2].toULongLong()};
}

static QString recordOf(const QString &copy)
{
    return copy + QStringLiteral(".record");
}

static QString stampText(const base::FileStamp &stamp)
{
    return QStringLiteral("file %1 %2 %3 %4 %5\n")
        .arg(stamp.device)
        .arg(stamp.inode)
        .arg(stamp.size)
        .arg(stamp.seconds)
        .arg(stamp.nanoseconds);
}

static std::optional<base::FileStamp> readStamp(const QString &value)
{
    const QStringList numbers = value.split(u' ');
    if (numbers.size() != 5)
        return std::nullopt;
    return base::FileStamp{numbers[0].toULongLong(), numbers[1].toULongLong(), numbers[2].toULongLong(),
                           numbers[3].toLongLong(), numbers[4].toLongLong()};
}

/// "original", "title", "time" and "file", a line each, name and value parted by a blank.
static QByteArray recordText(const AcApRecoverable &copy)
{
    const QString file = copy.grewFrom ? stampText(*copy.grewFrom) : QString();
    const QString text = QStringLiteral("%1\noriginal %2\ntitle %3\ntime %4\npid %5\n")
                             .arg(QString::fromLatin1(kMark),
                                  QString::fromLatin1(base::encodePath(copy.original).toPercentEncoding("/")),
                                  copy.title, copy.time.toUTC().toString(Qt::ISODateWithMs))
                             .arg(acapThisProcess().pid);
    return (text + file).toUtf8();
}

static AcApRecoverable readRecord(const QString &copy)
{
    AcApRecoverable found;
    found.copy = copy;
    found.title = QFileInfo(copy).fileName();
    found.time = QFileInfo(copy).lastModified();
    const auto bytes = base::readFileBytes(recordOf(copy));
    if (!bytes)
        return found;
    const std::string_view view = bytes->view();
    const QStringList lines = QString::fromUtf8(view.data(), qsizetype(view.size())).split(u'\n');
    if (lines.value(0) != QLatin1String(kMark))
        return found;
    for (const QString &line : lines) {
        const QString value = line.section(u' ', 1);
        if (line.startsWith(QLatin1String("original ")))
            found.original = base::decodePath(QByteArray::fromPercentEncoding(value.toLatin1()));
        else if (line.startsWith(QLatin1String("title ")))
            found.title = value;
        else if (line.startsWith(QLatin1String("time ")))
            found.time = QDateTime::fromString(value, Qt::ISODateWithMs);
        else if (line.startsWith(QLatin1String("file ")))
            found.grewFrom = readStamp(value);
    }
    return found;
}

QList<AcApRecoverable> AcApRecovery::recoverable(const QString &folder)
{
    QList<AcApRecoverable> found;
    const QDir directory(folder);
    QStringList endings;
    for (const DrawingFormat *const format : drawingFormats())
        endings.append(QStringLiteral("*.") + format->suffix());
    for (const QString &name : directory.entryList(endings, QDir::Files)) {
        if (acapIsGone(ownerOf(name)))
            found.append(readRecord(directory.filePath(name)));
    }
    std::ranges::sort(found, std::ranges::greater(), &AcApRecoverable::time);
    return found;
}

std::optional<AcApRecoverable> AcApRecovery::newerCopy(const QString &drawing, const QString &folder)
{
    const QString path = base::fullPath(drawing);
    const QFileInfo file(path);
    for (const AcApRecoverable &copy : recoverable(folder)) {
        // Of one time, as far as file systems tell times: saving would have taken the copy away.
        if (copy.original == path && (!file.exists() || copy.time >= file.lastModified()))
            return copy;
    }
    return std::nullopt;
}

void AcApRecovery::discard(const AcApRecoverable &copy)
{
    QFile::remove(copy.copy);
    QFile::remove(recordOf(copy.copy));
}

// Watching ----------------------------------------------------------------------------------------

AcApRecovery::AcApRecovery(AcApDocManager &manager, QString folder, std::chrono::milliseconds interval)
    : m_manager(manager), m_folder(std::move(folder)), m_interval(interval)
{
    m_manager.addReactor(this);
}

AcApRecovery::~AcApRecovery()
{
    m_manager.removeReactor(this);
    finish();
}

void AcApRecovery::finish()
{
    for (auto &[document, watched] : m_watched)
        settle(watched);
}

QString AcApRecovery::trouble() const
{
    return m_trouble;
}

void AcApRecovery::settle(Watched &watched)
{
    if (!watched.writing.valid())
        return;
    m_trouble = watched.writing.get();
    if (!m_trouble.isEmpty())
        watched.changeCount = kNoState; // It is tried again.
}

/// Half-made objects are nothing to go back to.
static bool isBeingWritten(const AcDbDatabase &database)
{
    return std::ranges::any_of(database.changedStubs(), [](const AcDbStub *stub) {
        return stub->object && stub->object->isWriteEnabled();
    });
}

void AcApRecovery::tick(Clock::time_point now)
{
    if (m_manager.isBusy())
        return;
    for (const auto &document : m_manager.documents())
        look(*document, m_watched[document.get()], now, m_interval);
}

void AcApRecovery::copyNow()
{
    if (m_manager.isBusy())
        return;
    finish();
    for (const auto &document : m_manager.documents())
        look(*document, m_watched[document.get()], Clock::now(), std::chrono::milliseconds(0));
}

void AcApRecovery::look(AcApDocument &document, Watched &watched, Clock::time_point now,
                        std::chrono::milliseconds interval)
{
    const bool isWriting = watched.writing.valid() &&
                           watched.writing.wait_for(std::chrono::seconds(0)) != std::future_status::ready;
    if (isWriting)
        return;
    settle(watched);
    if (!document.isModified()) {
        drop(&document); // Undone to what the file holds, or saved by other means.
        return;
    }
    if (!watched.copy.isEmpty() && document.database()->changeCount() == watched.changeCount) {
        watched.isBehind = false;
        return;
    }
    if (!std::exchange(watched.isBehind, true))
        watched.changedAt = now;
    if (now - watched.changedAt >= interval && !isBeingWritten(*document.database()))
        copy(document, watched);
}

/// What the thread needs belongs to it, but for the bytes of the opened file: drop() waits for it before the
/// drawing goes.
void AcApRecovery::copy(AcApDocument &document, Watched &watched)
{
    const DrawingFormat *const format = drawingFormatOf(*document.database());
    if (!format)
        return;
    auto taken = format->image(*document.database());
    if (!taken) {
        m_trouble = taken.error();
        return;
    }
    QDir().mkpath(m_folder);
    QFile::setPermissions(m_folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    if (watched.copy.isEmpty())
        watched.copy = freshCopyPath((*taken)->suffix());
    watched.changeCount = document.database()->changeCount();
    watched.isBehind = false;
    const AcApRecoverable record{watched.copy, document.fileName(), document.docTitle(),
                                 QDateTime::currentDateTimeUtc(), document.fileStamp()};
    watched.stop = false;
    watched.writing = std::async(
        std::launch::async, [image = std::move(*taken), record, &stop = watched.stop]() -> QString {
            bool wasStopped = false;
            const auto done =
                image->write(record.copy, [&](double) { return !(wasStopped = wasStopped || stop); });
            if (!done)
                return wasStopped ? QString() : done.error();
            const auto recorded = base::writeFileAtomically(recordOf(record.copy), recordText(record));
            return recorded ? QString() : recorded.error().text();
        });
}

QString AcApRecovery::freshCopyPath(const QString &suffix)
{
    QString path;
    do {
        path = QDir(m_folder).filePath(copyName(++m_count, suffix));
    } while (QFile::exists(path));
    return path;
}

/// Renamed, not written anew: at no moment is there no copy.
base::Result<AcApDocument *, QString> AcApRecovery::reopen(const AcApRecoverable &copy)
{
    const auto opened = m_manager.openCopy(copy.copy, copy.original, copy.grewFrom);
    if (!opened)
        return opened;
    Watched &watched = m_watched[*opened];
    const QString path = freshCopyPath(QFileInfo(copy.copy).suffix());
    if (!QFile::rename(copy.copy, path))
        return opened; // The next tick makes another.
    QFile::rename(recordOf(copy.copy), recordOf(path));
    watched.copy = path;
    watched.changeCount = (*opened)->database()->changeCount();
    return opened;
}

void AcApRecovery::drop(AcApDocument *document)
{
    const auto watched = m_watched.find(document);
    if (watched == m_watched.end())
        return;
    watched->second.stop = true;
    settle(watched->second); // A copy that failed is trouble, also when it is no longer needed.
    if (!watched->second.copy.isEmpty())
        discard({watched->second.copy, {}, {}, {}, {}});
    m_watched.erase(watched);
}

void AcApRecovery::documentToBeDestroyed(AcApDocument *document)
{
    drop(document);
}

void AcApRecovery::documentSaved(AcApDocument *document)
{
    if (!document->isModified())
        drop(document);
}
