// Menu files: pull-down menus, toolbars and double-click actions that modules ship as files.
//
// Layout of a menu file: docs/formats/menu-file.md.
#pragma once

#include "host/base/result.h"

#include <QString>

#include <memory>
#include <vector>

/// A menu, a submenu, a separator or an item that runs a macro.
struct AcEdMenuItem {
    enum Kind { popup, item, separator };
    Kind kind = item;
    QString id; ///< "POP1" for a pull-down; any for items.
    QString label;
    QString macro; ///< As typed at the command line: "^C^C_QN3_Quillnote ".
    QString help;
    QString icon;
    std::vector<AcEdMenuItem> children;
};

struct AcEdDoubleClick {
    QString dxfName; ///< Entity kind.
    QString macro;
};

struct AcEdMenuGroup {
    QString name;
    QString file;
    std::vector<AcEdMenuItem> popups;
    std::vector<AcEdMenuItem> toolbars;
    std::vector<AcEdDoubleClick> doubleClicks;
    bool toolbarsShown = false;
};

/// Menu groups in the process and which pull-downs stand in the menu bar.
class AcEdMenus
{
public:
    /// Error: file, line and reason.
    base::Result<const AcEdMenuGroup *, QString> load(const QString &path);
    bool unload(const QString &group);
    const AcEdMenuGroup *group(const QString &name) const;
    const std::vector<std::unique_ptr<AcEdMenuGroup>> &groups() const { return m_groups; }
    /// "P12=+GROUP.POP1" puts a pull-down at place 12 of the menu bar; "P12=-" takes it away. False with a
    /// printed line when it makes no sense.
    bool menuCommand(const QString &command);
    struct BarEntry {
        int place;
        QString group;
        QString popup;
    };
    const std::vector<BarEntry> &bar() const { return m_bar; }
    bool showToolbars(const QString &group, bool show);
    /// Grows with every change, for the window.
    int revision() const { return m_revision; }

private:
    std::vector<std::unique_ptr<AcEdMenuGroup>> m_groups;
    std::vector<BarEntry> m_bar;
    int m_revision = 0;
};

/// Reads a menu file's text; fuzzed.
base::Result<AcEdMenuGroup, QString> acedReadMenuFile(const QByteArray &bytes, const QString &name);

AcEdMenus &acedMenus();
bool acedIsMenuGroupLoaded(const QString &group);
int acedMenuCmd(const QString &command);
