// The window's own icons: strokes on a grid of 16 by 16, drawn in the colour of the text beside them, so that
// they suit light, dark and high-contrast palettes and every scale.
#pragma once

#include <QIcon>

namespace window
{

/// By name ("open"); a null icon for an unknown or empty name.
QIcon icon(const char *name);

} // namespace window
