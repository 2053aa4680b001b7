// Icons, the window's own and those of modules: strokes on a grid of 16 by 16, drawn in the colour of the
// text beside them, so that they suit light, dark and high-contrast palettes and every scale.
#pragma once

#include <QIcon>

namespace window
{

/// By name ("open"); a null icon for an unknown or empty name.
QIcon icon(const char *name);
/// Of a file of strokes or an image; a null icon when it cannot be read.
QIcon iconFromFile(const QString &path);

/// The program's own, for title bars and task lists: a white flag on red, whatever is behind it.
QIcon programIcon();

} // namespace window
