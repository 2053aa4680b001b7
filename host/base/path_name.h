// Names of files between QString and the system's bytes. Old shares hold names that are no UTF-8 (GBK,
// mostly): each byte that is none stands in the QString as one lone surrogate, U+DC80 to U+DCFF, and comes
// back as it was.
#pragma once

#include <QByteArray>
#include <QString>

class QFile;

namespace base
{

/// What the system is given; the counterpart of decodePath().
QByteArray encodePath(QStringView path);
QString decodePath(QByteArrayView bytes);

/// QFile::open() for reading, of a file whose name may be anything.
bool openForReading(QFile &file, const QString &path);
/// QFileInfo and QDir know only UTF-8 names; these know all. Links are followed.
bool pathExists(const QString &path);
bool isFolder(const QString &path);
bool isPlainFile(const QString &path);
/// One spelling for one file: absolute, links resolved when the file exists.
QString fullPath(const QString &path);

} // namespace base
