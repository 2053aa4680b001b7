// Where the files that are shipped beside the module lie: menus, help pages, helper programs.
#pragma once

#include <QString>

/// The setting "Location", or the folder "share/quillnote3" beside the module's own; ends in a slash.
QString installFolder();
/// A shipped file; names below the folder may use either slash.
QString installedFile(const QString &name);
