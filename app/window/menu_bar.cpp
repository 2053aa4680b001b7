#include "app/window/menu_bar.h"

#include "app/front_end/window_front_end.h"
#include "app/window/command_names.h"
#include "app/window/icons.h"
#include "app/window/recent_files.h"
#include "host/acap/docman.h"
#include "host/acdb/dbundo.h"
#include "host/aced/edcommands.h"
#include "host/os/settings_store.h"

#include <QFileInfo>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

#include <algorithm>
#include <utility>

namespace window
{

// The window's own --------------------------------------------------------------------------------

MenuBar::MenuBar(WindowFrontEnd &front, QMainWindow &window)
    : QObject(&window), m_front(front), m_window(window), m_toolbar(new QToolBar(tr("常用"), &window))
{
    m_toolbar->setObjectName(QStringLiteral("toolbar.host"));
    m_window.addToolBar(m_toolbar);
    for (const HostMenu &menu : hostMenus())
        addHostMenu(menu);
    refresh();
}

static QList<QKeySequence> shortcutsOf(const HostMenuItem &item)
{
    QList<QKeySequence> keys;
    for (const QString &key : QString::fromLatin1(item.shortcut).split(u' ', Qt::SkipEmptyParts))
        keys += QKeySequence(key);
    return keys;
}

QAction *MenuBar::makeAction(const HostMenuItem &item)
{
    auto *const action = new QAction(icon(item.icon), hostText(item.label), this);
    action->setStatusTip(hostText(item.help));
    action->setShortcuts(shortcutsOf(item));
    const QString key = action->shortcut().toString(QKeySequence::NativeText);
    action->setToolTip(key.isEmpty() ? hostText(item.help) : tr("%1 (%2)").arg(hostText(item.help), key));
    if (const QString macro = QString::fromUtf8(item.macro); !macro.isEmpty())
        connect(action, &QAction::triggered, this, [this, macro] { m_front.runMacro(macro); });
    else
        connect(action, &QAction::triggered, this, [this, wanted = item.action] { Q_EMIT chosen(wanted); });
    if (item.action != WindowAction::none)
        m_actions[item.action] = action;
    if (item.needsDrawing)
        m_needDrawing.push_back(action);
    return action;
}

void MenuBar::addHostMenu(const HostMenu &table)
{
    QMenu *const menu = m_window.menuBar()->addMenu(hostText(table.label));
    bool isFirst = true; // Of this menu's buttons.
    for (const HostMenuItem &item : table.items) {
        if (!item.label) {
            menu->addSeparator();
            continue;
        }
        if (item.action == WindowAction::recentFiles) {
            m_recent = menu->addMenu(hostText(item.label));
            connect(m_recent, &QMenu::aboutToShow, this, &MenuBar::fillRecent);
            continue;
        }
        QAction *const action = makeAction(item);
        menu->addAction(action);
        if (item.inToolbar) {
            if (std::exchange(isFirst, false) && !m_toolbar->actions().isEmpty())
                m_toolbar->addSeparator();
            m_toolbar->addAction(action);
        }
        if (item.action == WindowAction::previousDrawing) {
            m_windows = menu;
            connect(menu, &QMenu::aboutToShow, this, &MenuBar::fillWindows);
        }
    }
    m_fixedWindowEntries = m_windows == menu ? menu->actions().size() : m_fixedWindowEntries;
}

QAction *MenuBar::action(WindowAction action) const
{
    const auto found = m_actions.find(action);
    return found == m_actions.end() ? nullptr : found->second;
}

/// File names may hold the character that marks the keyboard's letter.
static QString asLabel(QString text)
{
    return text.replace(u'&', QStringLiteral("&&"));
}

void MenuBar::fillRecent()
{
    m_recent->clear();
    int number = 0;
    for (const QString &path : RecentFiles::list()) {
        const QFileInfo file(path);
        const QString label = QStringLiteral("&%1  %2").arg(++number % 10).arg(asLabel(file.fileName()));
        QAction *const entry = m_recent->addAction(label, this, [this, path] { Q_EMIT fileChosen(path); });
        entry->setStatusTip(path);
        entry->setToolTip(path);
    }
    if (m_recent->isEmpty())
        m_recent->addAction(tr("(没有)"))->setEnabled(false);
}

void MenuBar::fillWindows()
{
    const QList<QAction *> entries = m_windows->actions();
    for (qsizetype i = m_fixedWindowEntries; i < entries.size(); ++i)
        delete entries[i];
    const auto &documents = acDocManager()->documents();
    if (!documents.empty())
        m_windows->addSeparator();
    for (std::size_t i = 0; i < documents.size(); ++i) {
        QString title = asLabel(documents[i]->docTitle());
        if (documents[i]->isModified())
            title += u'*';
        QAction *const entry =
            m_windows->addAction(i < 9 ? QStringLiteral("&%1  %2").arg(i + 1).arg(title) : title, this,
                                 [this, i] { Q_EMIT documentChosen(int(i)); });
        entry->setCheckable(true);
        entry->setChecked(documents[i].get() == curDoc());
        entry->setStatusTip(documents[i]->fileName());
    }
}

// What depends on the drawing ---------------------------------------------------------------------

static void showStep(QAction &action, const QString &plain, const QString &named, const QStringList &labels)
{
    action.setText(labels.isEmpty() ? plain : named.arg(commandTitle(labels.constFirst())));
    action.setIconText(withoutMnemonic(action.text()));
    const QString key = action.shortcut().toString(QKeySequence::NativeText);
    action.setToolTip(QStringLiteral("%1 (%2)").arg(action.iconText(), key));
    action.setEnabled(!labels.isEmpty());
}

void MenuBar::refreshUndo()
{
    const AcDbUndo *const log = curDoc() ? &curDoc()->database()->undo() : nullptr;
    showStep(*action(WindowAction::undo), tr("撤销(&U)"), tr("撤销 %1(&U)"),
             log ? log->undoLabels() : QStringList());
    showStep(*action(WindowAction::redo), tr("重做(&R)"), tr("重做 %1(&R)"),
             log ? log->redoLabels() : QStringList());
}

void MenuBar::refresh()
{
    if (m_revision != acedMenus().revision())
        rebuildModules();
    for (QAction *const each : m_needDrawing)
        each->setEnabled(curDoc() != nullptr);
    for (QMenu *const menu : m_moduleMenus)
        menu->setEnabled(curDoc() != nullptr);
    for (QToolBar *const toolbar : m_moduleToolbars)
        toolbar->setEnabled(curDoc() != nullptr);
    refreshUndo();
}

// Of modules --------------------------------------------------------------------------------------

QAction *MenuBar::makeModuleAction(const AcEdMenuItem &item, const QString &folder, QObject *parent)
{
    const QIcon picture = item.icon.isEmpty() ? QIcon() : iconFromFile(folder + u'/' + item.icon);
    auto *const action = new QAction(picture, item.label, parent);
    action->setIconText(withoutMnemonic(item.label));
    action->setStatusTip(item.help);
    action->setToolTip(item.help.isEmpty() ? action->iconText()
                                           : QStringLiteral("%1\n%2").arg(action->iconText(), item.help));
    connect(action, &QAction::triggered, this, [this, macro = item.macro] { m_front.runMacro(macro); });
    return action;
}

void MenuBar::fillMenu(QMenu &menu, const std::vector<AcEdMenuItem> &items, const QString &folder)
{
    for (const AcEdMenuItem &item : items) {
        if (item.kind == AcEdMenuItem::separator)
            menu.addSeparator();
        else if (item.kind == AcEdMenuItem::popup)
            fillMenu(*menu.addMenu(item.label), item.children, folder);
        else
            menu.addAction(makeModuleAction(item, folder, &menu));
    }
}

void MenuBar::addToolbar(const AcEdMenuItem &toolbar, const AcEdMenuGroup &group)
{
    auto *const bar = new QToolBar(withoutMnemonic(toolbar.label), &m_window);
    bar->setObjectName(QStringLiteral("toolbar.%1.%2").arg(group.name, toolbar.id));
    const QString folder = QFileInfo(group.file).absolutePath();
    for (const AcEdMenuItem &item : toolbar.children) {
        if (item.kind == AcEdMenuItem::separator)
            bar->addSeparator();
        else if (item.kind == AcEdMenuItem::item)
            bar->addAction(makeModuleAction(item, folder, bar));
    }
    m_window.addToolBar(bar);
    m_moduleToolbars.push_back(bar);
}

static const QString kToolbarsKey = QStringLiteral("Software\\Quillnote\\Window\\Toolbars");

/// The toolbars of a group that comes are shown unless the user sent them away, in this run or an earlier
/// one.
void MenuBar::settleToolbars()
{
    os::SettingsStore &store = os::SettingsStore::user();
    std::map<QString, bool> shown;
    std::vector<QString> names;
    for (const auto &group : acedMenus().groups())
        names.push_back(group->name);
    for (const QString &name : names) {
        if (!m_toolbarsShown.contains(name))
            acedMenus().showToolbars(name, store.number(kToolbarsKey, name).value_or(1) != 0);
        const bool isShown = acedMenus().group(name)->toolbarsShown;
        if (const auto before = m_toolbarsShown.find(name);
            before != m_toolbarsShown.end() && before->second != isShown)
            store.setNumber(kToolbarsKey, name, isShown ? 1 : 0);
        shown[name] = isShown;
    }
    m_toolbarsShown = std::move(shown);
}

void MenuBar::rebuildModules()
{
    settleToolbars();
    m_revision = acedMenus().revision();
    qDeleteAll(m_moduleMenus);
    qDeleteAll(m_moduleToolbars);
    m_moduleMenus.clear();
    m_moduleToolbars.clear();
    QAction *const place = m_windows->menuAction();
    for (const AcEdMenus::BarEntry &entry : acedMenus().bar()) {
        const AcEdMenuGroup *const group = acedMenus().group(entry.group);
        if (!group)
            continue;
        const auto popup = std::ranges::find(group->popups, entry.popup, &AcEdMenuItem::id);
        if (popup == group->popups.end())
            continue;
        auto *const menu = new QMenu(popup->label, &m_window);
        menu->setToolTipsVisible(true);
        fillMenu(*menu, popup->children, QFileInfo(group->file).absolutePath());
        m_window.menuBar()->insertMenu(place, menu);
        m_moduleMenus.push_back(menu);
    }
    for (const auto &group : acedMenus().groups()) {
        if (!group->toolbarsShown)
            continue;
        for (const AcEdMenuItem &toolbar : group->toolbars)
            addToolbar(toolbar, *group);
    }
}

} // namespace window
