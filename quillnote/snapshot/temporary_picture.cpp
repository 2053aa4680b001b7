#include "quillnote/snapshot/temporary_picture.h"

#include "host/os/temp_files.h"

#include <QBuffer>
#include <QFile>

#include <map>

static const QString kSuffix = QStringLiteral(".PNG");

QString newTemporaryPicture()
{
    const auto reserved = os::temporaryFileName(QStringLiteral("QNS"));
    return reserved ? reserved.value() + kSuffix : QString();
}

/// Pictures for which the temporary folder had no room, by name.
static std::map<QString, QByteArray> &inMemory()
{
    static std::map<QString, QByteArray> pictures;
    return pictures;
}

static QByteArray asPng(const QImage &image)
{
    QBuffer png;
    const bool written = png.open(QIODevice::WriteOnly) && image.save(&png, "PNG");
    return written ? png.data() : QByteArray();
}

static bool writeNew(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::NewOnly) && file.write(bytes) == bytes.size() &&
           file.flush();
}

QString keepTemporaryPicture(const QImage &image)
{
    const QByteArray bytes = asPng(image);
    if (bytes.isEmpty())
        return {};
    const QString path = newTemporaryPicture();
    if (!path.isEmpty() && writeNew(path, bytes))
        return path;
    removeTemporaryPicture(path);
    static int count = 0;
    const QString name = QStringLiteral("picture %1 in memory").arg(++count);
    inMemory()[name] = bytes;
    return name;
}

QByteArray temporaryPicture(const QString &path)
{
    if (const auto kept = inMemory().find(path); kept != inMemory().end())
        return kept->second;
    QFile file(path);
    return !path.isEmpty() && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray takeTemporaryPicture(const QString &path)
{
    const QByteArray bytes = temporaryPicture(path);
    removeTemporaryPicture(path);
    return bytes;
}

void removeTemporaryPicture(const QString &path)
{
    if (inMemory().erase(path) != 0 || !path.endsWith(kSuffix))
        return;
    QFile::remove(path);
    QFile::remove(path.chopped(kSuffix.size()));
}
