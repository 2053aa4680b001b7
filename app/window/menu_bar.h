// The menu bar and the toolbars: the window's own, from one table, and those of the menu groups that modules
// have loaded.
#pragma once

#include "app/window/host_menus.h"
#include "host/aced/edmenu.h"

#include <QObject>

#include <map>

class QAction;
class QMainWindow;
class QMenu;
class QToolBar;

namespace window
{

class WindowFrontEnd;

class MenuBar : public QObject
{
    Q_OBJECT

public:
    MenuBar(WindowFrontEnd &front, QMainWindow &window);

    /// At each command prompt: builds the modules' part anew when their menus have changed, and brings
    /// everything that depends on the drawing up to date.
    void refresh();
    /// The entry of the table that does this; null for none.
    QAction *action(WindowAction action) const;

Q_SIGNALS:
    void chosen(window::WindowAction action);
    void fileChosen(const QString &path);
    void documentChosen(int place);

private:
    QAction *makeAction(const HostMenuItem &item);
    void addHostMenu(const HostMenu &menu);
    void rebuildModules();
    void settleToolbars();
    void fillMenu(QMenu &menu, const std::vector<AcEdMenuItem> &items, const QString &folder);
    void addToolbar(const AcEdMenuItem &toolbar, const AcEdMenuGroup &group);
    QAction *makeModuleAction(const AcEdMenuItem &item, const QString &folder, QObject *parent);
    void fillRecent();
    void fillWindows();
    void refreshUndo();

    WindowFrontEnd &m_front;
    QMainWindow &m_window;
    std::map<WindowAction, QAction *> m_actions;
    std::vector<QAction *> m_needDrawing;
    QToolBar *m_toolbar = nullptr;
    QMenu *m_recent = nullptr;
    QMenu *m_windows = nullptr;
    qsizetype m_fixedWindowEntries = 0;
    std::vector<QMenu *> m_moduleMenus;
    std::vector<QToolBar *> m_moduleToolbars;
    std::map<QString, bool> m_toolbarsShown; ///< By menu group, those that are loaded.
    int m_revision = -1;
};

} // namespace window
