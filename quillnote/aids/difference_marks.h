// Review marks around the places where two drawings differ.
#pragma once

#include "quillnote/aids/drawing_difference.h"

/// In the current space of the current drawing; each place gets a margin, so that its outline is seen. How
/// many were made.
int markPlaces(AcDbDatabase &database, const std::vector<DifferingPlace> &places);
