#include "quillnote/frame/helper_programs.h"

#include "quillnote/frame/settings/install_folder.h"

#include "host/aced/edmessage.h"
#include "host/aced/edshell.h"
#include "host/os/shell.h"

#include <QFileInfo>

// The pages are shipped with the module, so that they are there without a network.
static const QString kHomePage = QStringLiteral("help/index.html");
static const QString kHelpPage = QStringLiteral("help/help.html");
static const QString kCloudPage = QStringLiteral("help/cloud.html");
static const QString kPhraseMenuPage = QStringLiteral("help/phrase-menus.html");
static const QString kPhraseMenuFile = QStringLiteral("常用知识\\文本条目菜单帮助.mht");

static void openShippedPage(const QString &name, const QString &anchor = {})
{
    acedOpenWithDesktop(QStringLiteral("file://") + installedFile(name) + anchor);
}

static void startCloudProgram(const QString &name)
{
    const QString program = installedFile(name);
    if (!QFileInfo::exists(program) ||
        os::startProgram(program, {}, installFolder()) == os::ShellStatus::notFound)
        acedAlert(QStringLiteral("%1程序文件未找到，请重新安装CAD评图标签软件云模块！").arg(program));
}

void qn8_quillNoteYun()
{
    startCloudProgram(QStringLiteral("Yun\\QuillnoteYun.exe"));
}

void qn8_runPush()
{
    startCloudProgram(QStringLiteral("Yun\\qcpush.exe"));
}

void QN8_menuToYun()
{
    const QString shipped = installedFile(kPhraseMenuFile);
    if (QFileInfo::exists(shipped))
        acedOpenWithDesktop(shipped);
    else
        openShippedPage(kPhraseMenuPage, QStringLiteral("#A"));
}

void qn8_aboutYun()
{
    openShippedPage(kCloudPage);
}

void QN3_gotoWWW()
{
    openShippedPage(kHomePage);
}

void QN3_HelpOnline()
{
    openShippedPage(kHelpPage);
}
