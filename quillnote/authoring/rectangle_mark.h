// Marks around a picked rectangle.
#pragma once

#include "host/acge/gepoint.h"

/// Command: pick a rectangle, type the opinion, make the mark.
void QN3_Quillnote();

/// Opens the mark editor for a new mark around the rectangle (as pickMarkPoints() gives it) and makes the
/// mark when it is confirmed.
void openEditorForRectangle(const AcGePoint3d &a, const AcGePoint3d &b);
