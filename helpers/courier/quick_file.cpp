#include "helpers/courier/quick_file.h"

#include <QFile>

#include <cstdio>

namespace courier
{

bool writeQuickly(const QString &path, const QByteArray &bytes)
{
    QFile part(path + QStringLiteral(".part"));
    const bool isWritten =
        part.open(QIODevice::WriteOnly) && part.write(bytes) == bytes.size() && part.flush();
    part.close();
    const QByteArray from = QFile::encodeName(part.fileName()), to = QFile::encodeName(path);
    if (isWritten && std::rename(from.constData(), to.constData()) == 0)
        return true;
    part.remove();
    return false;
}

} // namespace courier
