#include "quillnote/frame/settings/install_folder.h"

#include "quillnote/frame/settings/settings.h"

#include <QDir>
#include <QFileInfo>

#include <dlfcn.h>

// The module is <prefix>/lib/<name>.so; a program that has it linked in lies one folder below the prefix
// as well.
static QString defaultFolder()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void *>(&defaultFolder), &info) == 0 || !info.dli_fname)
        return QStringLiteral("/usr/share/quillnote3/");
    const QDir libraries = QFileInfo(QFile::decodeName(info.dli_fname)).canonicalPath();
    return QDir::cleanPath(libraries.filePath(QStringLiteral("../share/quillnote3"))) + QLatin1Char('/');
}

QString installFolder()
{
    QString folder = settings::text(u"Location");
    folder.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (folder.isEmpty())
        return defaultFolder();
    return folder.endsWith(QLatin1Char('/')) ? folder : folder + QLatin1Char('/');
}

QString installedFile(const QString &name)
{
    return installFolder() + QString(name).replace(QLatin1Char('\\'), QLatin1Char('/'));
}
