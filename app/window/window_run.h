// The window: one main window over the editor, until the user leaves.
#pragma once

#include <QStringList>

#include <functional>

namespace window
{

/// Opens the drawings and works until the user quits; the exit status. Needs an application object and a
/// display. `loadModules` is called as soon as the window hears what they have to say.
int run(const QStringList &files, const std::function<void()> &loadModules);

} // namespace window
