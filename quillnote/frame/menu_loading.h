// The module's menu: which file the host's release takes, and how it gets into the menu bar.
#pragma once

#include <QString>

inline constexpr char16_t kMenuGroup[] = u"评图标签";

/// Full path of the menu file for a host release (17 for R17): ".mnu" before 17, ".cui" for 17, ".cuix"
/// after.
QString menuFilePath(int hostRelease);
/// Major release number of the host.
int hostRelease();

/// Queues the loading of the menu for the drawing that was just opened; a missing file is told in a message
/// box.
void queueMenuLoad();

/// Unloads and loads the menu again; shows the toolbar once a user.
void ptbq();
