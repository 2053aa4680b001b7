// Cursors of the drawing area: cross-hairs where a point is asked for, the pick box where an entity is.
#pragma once

#include "host/aced/edfrontend.h"

#include <QCursor>

namespace window
{

/// `isDark`: it stands out from a white background. The pick box has the size that PICKBOX says.
QCursor drawingCursor(AcEdPromptKind kind, bool isDark);

} // namespace window
