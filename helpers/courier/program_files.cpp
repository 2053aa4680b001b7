#include "helpers/courier/program_files.h"

#include "helpers/courier/quick_file.h"
#include "host/base/file_bytes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <cerrno>
#include <csignal>

namespace courier
{

static const QString kEnding = QStringLiteral(".quillNote");
static const QString kBegun = QStringLiteral(".begun");

ProgramFiles::ProgramFiles(QString folder) : m_folder(std::move(folder))
{
    if (!m_folder.endsWith(u'/'))
        m_folder += u'/';
}

std::vector<SentFile> ProgramFiles::sent()
{
    std::vector<SentFile> files;
    m_tooLarge = 0;
    for (const QFileInfo &info :
         QDir(m_folder).entryInfoList({QStringLiteral("QnSysnning_*") + kEnding}, QDir::Files)) {
        const QString key = info.fileName() + QString::number(info.lastModified().toMSecsSinceEpoch());
        if (m_notOurs.contains(key))
            continue;
        if (info.size() > kLargestMessage) {
            ++m_tooLarge;
            continue;
        }
        const auto bytes = base::readFileBytes(info.filePath());
        if (!bytes)
            continue;
        const QByteArray copy(bytes->data(), qsizetype(bytes->size()));
        if (const auto header = readMessage(copy))
            files.push_back({info.filePath(), *header->shared, copy});
        else
            m_notOurs.insert(key);
    }
    std::ranges::sort(files, {}, [](const SentFile &file) { return file.change.serial; });
    return files;
}

static bool isRunning(qint64 process)
{
    return process > 0 && (::kill(pid_t(process), 0) == 0 || errno == EPERM);
}

// "<drawing>-<process>-<anything>"
std::map<QString, std::set<QString>> ProgramFiles::openDrawings() const
{
    std::map<QString, std::set<QString>> drawings;
    const QDir folder(courierFolder() + QStringLiteral("open"));
    for (const QString &name : folder.entryList(QDir::Files)) {
        const QString drawing = name.section(u'-', 0, 0);
        if (!isDrawingName(drawing))
            continue;
        if (isRunning(name.section(u'-', 1, 1).toLongLong()))
            drawings[drawing].insert(name);
        else
            QFile::remove(folder.filePath(name));
    }
    return drawings;
}

QString ProgramFiles::arrivals(const QString &drawing) const
{
    return courierFolder() + QStringLiteral("in/") + drawing + u'/';
}

qint64 ProgramFiles::laidDown(const QString &drawing) const
{
    const QStringList names =
        QDir(arrivals(drawing)).entryList({u'*' + kEnding}, QDir::Files, QDir::Name | QDir::Reversed);
    return names.isEmpty() ? 0 : names.front().section(u'.', 0, 0).toLongLong();
}

bool ProgramFiles::layDown(const QString &drawing, qint64 number, const QByteArray &bytes) const
{
    const QString name = QStringLiteral("%1").arg(number, 12, 10, QLatin1Char('0')) + kEnding;
    return QDir().mkpath(arrivals(drawing)) && writeQuickly(arrivals(drawing) + name, bytes);
}

void ProgramFiles::takeBack(const QString &drawing) const
{
    const QDir folder(arrivals(drawing));
    for (const QString &name : folder.entryList({u'*' + kEnding}, QDir::Files))
        QFile::remove(folder.filePath(name));
}

bool ProgramFiles::markBegun(const QString &drawing, const std::set<QString> &openings, quint64 serial) const
{
    const QDir folder(arrivals(drawing));
    for (const QString &name : folder.entryList({u'*' + kBegun}, QDir::Files)) {
        if (!openings.contains(name.chopped(kBegun.size())))
            QFile::remove(folder.filePath(name));
    }
    return QDir().mkpath(arrivals(drawing)) && std::ranges::all_of(openings, [&](const QString &name) {
               return writeQuickly(folder.filePath(name + kBegun), QByteArray::number(serial));
           });
}

} // namespace courier
