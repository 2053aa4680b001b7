// Commands on menu groups and toolbars.
#include "host/aced/commands/commandtables.h"
#include "host/aced/commands/support.h"
#include "host/aced/edmenu.h"
#include "host/aced/edsysvar.h"
#include "host/base/host_text.h"

#include <algorithm>
#include <array>

namespace hostcommands
{

static void loadMenu()
{
    const auto path = askText(Host::tr("\n输入要加载的菜单文件名: "));
    if (!path || path->isEmpty())
        return;
    const auto loaded = acedMenus().load(*path);
    if (!loaded)
        acedRefuse(withReason(Host::tr("不能加载菜单: %1"), loaded.error()));
    else if (acedIntVar(QStringLiteral("CMDECHO")) != 0)
        acutPrintf(Host::tr("\n菜单加载成功。菜单组: %1").arg((*loaded)->name));
}

static void unloadMenu()
{
    const auto name = askText(Host::tr("\n输入要卸载的菜单组名: "));
    if (!name || name->isEmpty())
        return;
    if (acedMenus().unload(*name))
        acutPrintf(Host::tr("\n菜单组“%1”已卸载。").arg(*name));
    else
        acedRefuse(Host::tr("没有加载菜单组“%1”。").arg(*name));
}

/// The group itself, or the one that has a toolbar of that id or label ("TB1" or "GROUP.TB1").
static QString groupOfToolbar(const QString &name)
{
    const auto same = [](const QString &a, const QString &b) {
        return a.compare(b, Qt::CaseInsensitive) == 0;
    };
    for (const auto &group : acedMenus().groups()) {
        const QString prefix = group->name + u'.';
        const QString own = name.startsWith(prefix, Qt::CaseInsensitive) ? name.mid(prefix.size()) : name;
        if (same(group->name, name) || std::ranges::any_of(group->toolbars, [&](const AcEdMenuItem &toolbar) {
                return same(toolbar.id, own) || same(toolbar.label, own);
            }))
            return group->name;
    }
    return {};
}

static void toolbar()
{
    const auto name = askText(Host::tr("\n输入工具栏名或 [全部(ALL)]: "));
    if (!name || name->isEmpty())
        return;
    const bool all = name->compare(QLatin1String("ALL"), Qt::CaseInsensitive) == 0;
    const QString group = all ? QString() : groupOfToolbar(*name);
    if (!all && group.isEmpty()) {
        acedRefuse(Host::tr("没有工具栏“%1”。").arg(*name));
        return;
    }
    const auto option = askKeyword(QStringLiteral("Show Hide"),
                                   Host::tr("\n输入选项 [显示(S)/隐藏(H)] <显示>: "), QStringLiteral("Show"));
    if (!option)
        return;
    const bool show = *option == QLatin1String("Show");
    for (const auto &candidate : acedMenus().groups()) {
        if (all || candidate->name == group)
            acedMenus().showToolbars(candidate->name, show);
    }
}

std::span<const Entry> menuCommands()
{
    static constexpr int kFlags = ACRX_CMD_SESSION | ACRX_CMD_NOUNDO;
    static constexpr std::array entries{
        Entry{"MENULOAD", QT_TRANSLATE_NOOP("Host", "加载菜单"), kFlags, loadMenu, "CUILOAD"},
        Entry{"MENUUNLOAD", QT_TRANSLATE_NOOP("Host", "卸载菜单"), kFlags, unloadMenu, "CUIUNLOAD"},
        Entry{"TOOLBAR", QT_TRANSLATE_NOOP("Host", "工具栏"), kFlags, toolbar, "TO -TOOLBAR"},
    };
    return entries;
}

} // namespace hostcommands
