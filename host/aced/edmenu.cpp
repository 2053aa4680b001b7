// Menu groups in the process, the menu bar, and the menu commands that change it.
#include "host/aced/edmenu.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/base/file_bytes.h"
#include "host/base/host_text.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

static bool sameName(const QString &a, const QString &b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

base::Result<const AcEdMenuGroup *, QString> AcEdMenus::load(const QString &path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    const auto bytes = base::readFileBytes(absolute);
    if (!bytes)
        return base::Failure{bytes.error().text()};
    auto read = acedReadMenuFile(QByteArray(bytes->data(), qsizetype(bytes->size())), absolute);
    if (!read)
        return base::Failure{read.error()};
    if (group(read->name))
        return base::Failure{
            Host::tr("%1: the menu group \"%2\" is loaded already").arg(absolute, read->name)};
    m_groups.push_back(std::make_unique<AcEdMenuGroup>(*std::move(read)));
    ++m_revision;
    return m_groups.back().get();
}

bool AcEdMenus::unload(const QString &name)
{
    const auto isGone = [&name](const auto &group) { return sameName(group->name, name); };
    const bool found = std::erase_if(m_groups, isGone) > 0;
    if (found) {
        std::erase_if(m_bar, [&name](const BarEntry &entry) { return sameName(entry.group, name); });
        ++m_revision;
    }
    return found;
}

const AcEdMenuGroup *AcEdMenus::group(const QString &name) const
{
    const auto found =
        std::ranges::find_if(m_groups, [&name](const auto &g) { return sameName(g->name, name); });
    return found == m_groups.end() ? nullptr : found->get();
}

bool AcEdMenus::showToolbars(const QString &name, bool show)
{
    const auto found =
        std::ranges::find_if(m_groups, [&name](const auto &g) { return sameName(g->name, name); });
    if (found == m_groups.end())
        return false;
    (*found)->toolbarsShown = show;
    ++m_revision;
    return true;
}

static bool refuse(const QString &command, const QString &reason)
{
    acutPrintf(Host::tr("\n菜单命令“%1”无效: %2").arg(command, reason));
    return false;
}

/// The pull-down's id as its file spells it; empty when there is none.
static QString popupId(const AcEdMenuGroup &group, const QString &wanted)
{
    const auto found = std::ranges::find_if(
        group.popups, [&wanted](const AcEdMenuItem &item) { return sameName(item.id, wanted); });
    return found == group.popups.end() ? QString() : found->id;
}

bool AcEdMenus::menuCommand(const QString &command)
{
    static const QRegularExpression form(
        QStringLiteral(R"(^\s*P(\d{1,2})\s*=\s*(?:(-)|(\+?)(.+)\.([^.]+?))\s*$)"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = form.match(command);
    if (!match.hasMatch())
        return refuse(command, Host::tr("应为 P位置=+组.菜单 或 P位置=-"));
    const int place = match.captured(1).toInt();
    const auto atPlace = [place](const BarEntry &entry) { return entry.place == place; };
    if (!match.captured(2).isEmpty()) {
        if (std::erase_if(m_bar, atPlace) == 0)
            return refuse(command, Host::tr("该位置没有菜单"));
        ++m_revision;
        return true;
    }
    const AcEdMenuGroup *const owner = group(match.captured(4));
    if (!owner)
        return refuse(command, Host::tr("菜单组“%1”未加载").arg(match.captured(4)));
    const QString popup = popupId(*owner, match.captured(5));
    if (popup.isEmpty())
        return refuse(command, Host::tr("菜单组“%1”中没有“%2”").arg(owner->name, match.captured(5)));

    // A pull-down stands in the bar once: a repeated command moves it.
    std::erase_if(m_bar, [&](const BarEntry &entry) {
        return sameName(entry.group, owner->name) && sameName(entry.popup, popup);
    });
    if (match.captured(3).isEmpty())
        std::erase_if(m_bar, atPlace);
    const auto behind = std::ranges::lower_bound(m_bar, place, {}, &BarEntry::place);
    int next = place + 1; // A menu that stands there moves on by one.
    for (auto entry = m_bar.insert(behind, {place, owner->name, popup}) + 1;
         entry != m_bar.end() && entry->place < next; ++entry)
        entry->place = next++;
    ++m_revision;
    return true;
}

AcEdMenus &acedMenus()
{
    static AcEdMenus menus;
    return menus;
}

bool acedIsMenuGroupLoaded(const QString &group)
{
    return acedMenus().group(group) != nullptr;
}

int acedMenuCmd(const QString &command)
{
    return acedMenus().menuCommand(command) ? RTNORM : RTERROR;
}
