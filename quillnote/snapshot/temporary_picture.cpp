#include "quillnote/snapshot/temporary_picture.h"

#include "host/os/temp_files.h"

#include <QFile>

static const QString kSuffix = QStringLiteral(".PNG");

QString newTemporaryPicture()
{
    const auto reserved = os::temporaryFileName(QStringLiteral("QNS"));
    return reserved ? reserved.value() + kSuffix : QString();
}

QByteArray takeTemporaryPicture(const QString &path)
{
    QByteArray bytes;
    if (QFile file(path); !path.isEmpty() && file.open(QIODevice::ReadOnly))
        bytes = file.readAll();
    removeTemporaryPicture(path);
    return bytes;
}

void removeTemporaryPicture(const QString &path)
{
    if (!path.endsWith(kSuffix))
        return;
    QFile::remove(path);
    QFile::remove(path.chopped(kSuffix.size()));
}
