#include "quillnote/frame/menu_loading.h"

#include "quillnote/frame/settings/install_folder.h"
#include "quillnote/frame/settings/settings.h"

#include "host/aced/edcommands.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edmenu.h"
#include "host/aced/edmessage.h"
#include "host/aced/edsysvar.h"

#include <QFileInfo>

static const QString kGroup = QString::fromUtf16(kMenuGroup);
static const QString kOldGroup = QStringLiteral("QUILLNOTE3");
static const QString kPopUp = QStringLiteral("P12=+评图标签.POP1");
static constexpr int kFirstCuiRelease = 17;

QString menuFilePath(int release)
{
    const char *const name = release < kFirstCuiRelease    ? "quillnote3_chn2004.mnu"
                             : release == kFirstCuiRelease ? "quillnote3_chn2008.cui"
                                                           : "quillnote3_chn2010.cuix";
    return installedFile(QString::fromLatin1(name));
}

int hostRelease()
{
    return int(acedTextVar(QStringLiteral("ACADVER")).section(QLatin1Char('.'), 0, 0).toInt());
}

/// The path of the menu file, or an empty text after telling that it is missing.
static QString existingMenuFile()
{
    const QString path = menuFilePath(hostRelease());
    if (QFileInfo::exists(path))
        return path;
    acedAlert(path + QStringLiteral(" 未找到！"));
    return {};
}

void queueMenuLoad()
{
    QString path = existingMenuFile();
    if (path.isEmpty())
        return;
    path.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    ads_queueexpr(
        QStringLiteral("(if(null(menugroup \"评图标签\"))(command \"menuload\" \"%1\")) ").arg(path));
    ads_queueexpr(QStringLiteral("(menucmd \"%1\")").arg(kPopUp));
}

void ptbq()
{
    const QString path = existingMenuFile();
    if (path.isEmpty())
        return;
    if (acedIsMenuGroupLoaded(kGroup) || acedIsMenuGroupLoaded(kOldGroup)) {
        acutPrintf(QStringLiteral("\n评图标签菜单已经加载！现在重新加载."));
        acedCommandS({QStringLiteral("_CUIUNLOAD"), kGroup});
    }
    acedCommandS({QStringLiteral("_MENULOAD"), path});
    acedMenuCmd(kPopUp);
    if (settings::number(u"LOADTOOLBAR") != 1) {
        acedCommandS({QStringLiteral("_TOOLBAR"), kGroup, QStringLiteral("Show")});
        settings::setNumber(u"LOADTOOLBAR", 1);
    }
}
