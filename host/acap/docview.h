// The view that a drawing was saved with, and the frame that a view sees it in.
#pragma once

#include "host/acap/docman.h"
#include "host/acge/gematrix.h"

/// World to the view's own frame: turned about Z so that the axes lie along the edges of the view; the
/// origin stays.
AcGeMatrix3d acapViewFrame(double twist);

/// Puts the drawing's saved view into `view` (its pixels stay): the active viewport of model space, or the
/// sheet's own viewport when a layout is current. A drawing without either leaves `view` as it is.
void acapRestoreView(const AcDbDatabase &database, AcApView &view);
