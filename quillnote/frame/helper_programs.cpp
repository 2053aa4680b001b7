#include "quillnote/frame/helper_programs.h"

#include "quillnote/ui/installed_programs.h"

// The pages are shipped with the module, so that they are there without a network.
static const QString kHomePage = QStringLiteral("help/index.html");
static const QString kHelpPage = QStringLiteral("help/help.html");
static const QString kCloudPage = QStringLiteral("help/cloud.html");

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
    openPhraseHelp(QStringLiteral("#A"));
}

void qn8_aboutYun()
{
    openInstalledPage(kCloudPage);
}

void QN3_gotoWWW()
{
    openInstalledPage(kHomePage);
}

void QN3_HelpOnline()
{
    openInstalledPage(kHelpPage);
}
