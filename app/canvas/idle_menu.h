// The menu of the right button in the drawing area while no command runs.
#pragma once

#include "host/acdb/dbid.h"

#include <QPoint>

namespace window
{

class DrawingView;
class WindowFrontEnd;

/// `under` is the entity below the cursor, null for an empty place. Returns at once.
void showIdleMenu(WindowFrontEnd &frontEnd, DrawingView &view, QPoint globalPlace, AcDbObjectId under);

} // namespace window
