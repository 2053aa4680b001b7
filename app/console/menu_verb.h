// "menu": the menus that modules have loaded.
#pragma once

#include <QString>

namespace console
{

/// Opens the file, or a new drawing when `file` is empty, since modules load their menus with a drawing;
/// prints the menu groups.
int printMenus(const QString &file, bool json);

} // namespace console
