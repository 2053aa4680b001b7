// The window's own menus: one table of what stands in them, what it does and under which key.
#pragma once

#include <QString>

#include <span>

namespace window
{

/// What the window does itself; everything else is a macro.
enum class WindowAction {
    none,
    undo, ///< A macro too; here because its text tells what would be undone.
    redo,
    find,
    selectAll,
    nextDrawing,
    previousDrawing,
    background,
    history,
    help,
    about,
    recentFiles, ///< A submenu.
};

struct HostMenuItem {
    const char *label = nullptr; ///< Null: a separator.
    const char *help = "";
    WindowAction action = WindowAction::none;
    const char *macro = "";
    const char *shortcut = ""; ///< Several are separated by blanks.
    const char *icon = "";
    bool needsDrawing = true;
    bool inToolbar = false;
};

struct HostMenu {
    const char *label;
    std::span<const HostMenuItem> items;
};

std::span<const HostMenu> hostMenus();
/// A label or help text of the table in the user's language.
QString hostText(const char *text);

} // namespace window
