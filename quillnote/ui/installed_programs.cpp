#include "quillnote/ui/installed_programs.h"

#include "quillnote/frame/settings/install_folder.h"

#include "host/aced/edmessage.h"
#include "host/aced/edshell.h"
#include "host/os/shell.h"

#include <QFileInfo>

void openInstalledPage(const QString &name, const QString &anchor)
{
    acedOpenWithDesktop(QStringLiteral("file://") + installedFile(name) + anchor);
}

void openPhraseHelp(const QString &anchor)
{
    const QString shipped = installedFile(QStringLiteral("常用知识\\文本条目菜单帮助.mht"));
    if (QFileInfo::exists(shipped))
        acedOpenWithDesktop(shipped);
    else
        openInstalledPage(QStringLiteral("help/phrase-menus.html"), anchor);
}

bool startInstalledProgram(const QString &name)
{
    const QString program = installedFile(name);
    return QFileInfo::exists(program) &&
           os::startProgram(program, {}, installFolder()) != os::ShellStatus::notFound;
}

void startCloudProgram(const QString &name)
{
    if (!startInstalledProgram(name))
        acedAlert(
            QStringLiteral("%1程序文件未找到，请重新安装CAD评图标签软件云模块！").arg(installedFile(name)));
}
