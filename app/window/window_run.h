// The window: one main window over the editor, until the user leaves.
#pragma once

#include <QStringList>

namespace window
{

/// Opens the drawings and works until the user quits; the exit status. Needs an application object and a
/// display.
int run(const QStringList &files);

} // namespace window
