#include "host/acgi/display/images.h"

#include <QDir>
#include <QFileInfo>
#include <QImageReader>

#include <cmath>

namespace acgi
{

/// Images that are larger are loaded smaller: no screen shows more.
static constexpr qint64 kMostPixels = 40'000'000;
/// Many formats are read whole before they are made smaller: a large scan in colour. Qt would stop at 128.
static constexpr int kMostMegabytes = 512;

static QString fileOf(const QString &named, const QString &shownName, const QString &folder)
{
    QStringList candidates;
    if (QDir::isAbsolutePath(named))
        candidates << named;
    // A relative folder would be one of where the program was started.
    if (QDir::isAbsolutePath(folder))
        candidates << QDir(folder).filePath(named) << QDir(folder).filePath(shownName);
    for (const QString &candidate : candidates) {
        if (const QFileInfo file(candidate); file.isFile())
            return file.absoluteFilePath();
    }
    return {};
}

void Images::find(const QString &path, const QString &folder)
{
    const std::lock_guard guard(m_lock);
    const auto [place, isNew] = m_entries.try_emplace(path);
    Entry &entry = place->second;
    if (!isNew && (!entry.file.isEmpty() || entry.lookedIn == folder))
        return;
    // Drawings name files as the system they come from does.
    const QString plain = QString(path).replace(u'\\', u'/');
    entry.shownName = plain.section(u'/', -1);
    entry.lookedIn = folder;
    entry.file = fileOf(plain, entry.shownName, folder);
    if (!entry.file.isEmpty() || !isNew)
        return;
    defaultFont().layOut(entry.shownName, entry.name);
    entry.nameWidth = defaultFont().width(entry.shownName);
}

const Images::Entry &Images::load(const QString &path)
{
    const std::lock_guard guard(m_lock);
    Entry &entry = m_entries[path];
    if (entry.isLoaded || entry.file.isEmpty())
        return entry;
    entry.isLoaded = true;
    QImageReader::setAllocationLimit(kMostMegabytes);
    QImageReader reader(entry.file);
    const QSize size = reader.size();
    const qint64 pixels = qint64(size.width()) * size.height();
    if (pixels > kMostPixels)
        reader.setScaledSize(size * std::sqrt(double(kMostPixels) / double(pixels)));
    entry.pixels = reader.read();
    if (entry.pixels.isNull() && pixels > kMostPixels)
        entry.tooLarge = size;
    return entry;
}

} // namespace acgi
