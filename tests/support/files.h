// Files and folders for tests: data in the source tree to read, scratch folders to write.
#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

namespace tests
{

/// Absolute path of a file under tests/, for example "corpus/dxf/line.dxf".
QString testDataPath(const QString &relative);
/// Absolute path of a file under samples/.
QString samplePath(const QString &relative);

/// The whole file. When it cannot be read the running test fails and the result is empty.
QByteArray readFile(const QString &path);
/// Makes or replaces a file. When it cannot be written the running test fails.
void writeFile(const QString &path, const QByteArray &bytes);

/// A scratch folder that vanishes with the object.
class TempDir
{
public:
    /// The folder itself, or a path inside it; makes nothing.
    QString path(const QString &name = {}) const;
    /// Writes a file inside the folder and returns its path.
    QString write(const QString &name, const QByteArray &bytes) const;
    /// The names of the files inside, sorted: tells what a run left behind.
    QStringList fileNames() const;

private:
    QTemporaryDir m_folder;
};

} // namespace tests
