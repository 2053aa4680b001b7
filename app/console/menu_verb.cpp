#include "app/console/menu_verb.h"

#include "app/console/documents.h"
#include "host/aced/edmenu.h"
#include "host/aced/edverbs.h"

#include <QJsonArray>

namespace console
{

// As JSON ----------------------------------------------------------------------------------------

static QJsonArray itemsJson(const std::vector<AcEdMenuItem> &items)
{
    QJsonArray list;
    for (const AcEdMenuItem &item : items) {
        if (item.kind == AcEdMenuItem::separator) {
            list.append(QJsonObject{{QStringLiteral("separator"), true}});
            continue;
        }
        QJsonObject object{{QStringLiteral("id"), item.id}, {QStringLiteral("label"), item.label}};
        if (item.kind == AcEdMenuItem::popup)
            object.insert(QStringLiteral("items"), itemsJson(item.children));
        else
            object.insert(QStringLiteral("macro"), item.macro);
        list.append(object);
    }
    return list;
}

static QJsonArray doubleClicksJson(const AcEdMenuGroup &group)
{
    QJsonArray list;
    for (const AcEdDoubleClick &each : group.doubleClicks)
        list.append(
            QJsonObject{{QStringLiteral("kind"), each.dxfName}, {QStringLiteral("macro"), each.macro}});
    return list;
}

static QJsonObject menusJson()
{
    QJsonArray groups;
    for (const auto &group : acedMenus().groups()) {
        groups.append(QJsonObject{{QStringLiteral("name"), group->name},
                                  {QStringLiteral("file"), group->file},
                                  {QStringLiteral("menus"), itemsJson(group->popups)},
                                  {QStringLiteral("toolbars"), itemsJson(group->toolbars)},
                                  {QStringLiteral("doubleClicks"), doubleClicksJson(*group)}});
    }
    QJsonArray bar;
    for (const AcEdMenus::BarEntry &entry : acedMenus().bar()) {
        bar.append(QJsonObject{{QStringLiteral("place"), entry.place},
                               {QStringLiteral("group"), entry.group},
                               {QStringLiteral("menu"), entry.popup}});
    }
    return {{QStringLiteral("groups"), groups}, {QStringLiteral("bar"), bar}};
}

// For people -------------------------------------------------------------------------------------

static QString itemsText(const std::vector<AcEdMenuItem> &items, int depth)
{
    QString text;
    for (const AcEdMenuItem &item : items) {
        const QString indent(2 * depth, QLatin1Char(' '));
        if (item.kind == AcEdMenuItem::separator)
            text += indent + QStringLiteral("---\n");
        else if (item.kind == AcEdMenuItem::popup)
            text += QStringLiteral("%1%2 [%3]\n").arg(indent, item.label, item.id) +
                    itemsText(item.children, depth + 1);
        else
            text += QStringLiteral("%1%2\t%3\n").arg(indent, item.label, item.macro);
    }
    return text;
}

static QString menusText()
{
    QString text;
    for (const auto &group : acedMenus().groups()) {
        text += QStringLiteral("%1 (%2)\n").arg(group->name, group->file);
        text += itemsText(group->popups, 1) + itemsText(group->toolbars, 1);
        for (const AcEdDoubleClick &each : group->doubleClicks)
            text += QStringLiteral("  double click on %1\t%2\n").arg(each.dxfName, each.macro);
    }
    for (const AcEdMenus::BarEntry &entry : acedMenus().bar())
        text += QStringLiteral("menu bar place %1: %2.%3\n").arg(entry.place).arg(entry.group, entry.popup);
    return text;
}

int printMenus(const QString &file, bool json)
{
    const OpenDrawing drawing(file);
    if (!drawing.document())
        return kTrouble;
    drawing.tellDamage();
    if (json)
        acedPrintResult(menusJson());
    else
        acedPrintResult(menusText());
    return kDone;
}

} // namespace console
