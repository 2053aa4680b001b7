#include "tests/support/files.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

namespace tests
{

QString testDataPath(const QString &relative)
{
    return QStringLiteral(QUILL_SOURCE_DIR "/tests/") + relative;
}

QString samplePath(const QString &relative)
{
    return QStringLiteral(QUILL_SOURCE_DIR "/samples/") + relative;
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        ADD_FAILURE() << "cannot read " << qPrintable(path) << ": " << qPrintable(file.errorString());
        return {};
    }
    return file.readAll();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush())
        ADD_FAILURE() << "cannot write " << qPrintable(path) << ": " << qPrintable(file.errorString());
}

QString TempDir::path(const QString &name) const
{
    return name.isEmpty() ? m_folder.path() : m_folder.filePath(name);
}

QString TempDir::write(const QString &name, const QByteArray &bytes) const
{
    const QString file = path(name);
    writeFile(file, bytes);
    return file;
}

QStringList TempDir::fileNames() const
{
    return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
}

} // namespace tests
