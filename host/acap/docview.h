// The view and the coordinate system that a drawing was saved with, and the frame that a view sees it in.
#pragma once

#include "host/acap/docman.h"
#include "host/acge/gematrix.h"

/// World to the view's own frame: turned about Z so that the axes lie along the edges of the view; the
/// origin stays.
AcGeMatrix3d acapViewFrame(double twist);

/// Puts the saved view of a space (block record) into `view`, whose pixels stay: the active viewport of model
/// space, or a sheet's own viewport. False, and nothing changed, when the drawing has none.
bool acapRestoreView(const AcDbDatabase &database, AcDbObjectId space, AcApView &view);
/// The saved coordinate system of model space or of the sheets; the world's when it has none or a bad one.
AcApUcs acapSavedUcs(const AcDbDatabase &database, AcDbObjectId space);
