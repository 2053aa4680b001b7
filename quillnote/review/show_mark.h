// Bringing a mark before the eyes: the view goes to it, its stored picture stands beside it.
#pragma once

#include "host/acap/docman.h"

/// Makes the space that holds the mark current and goes to it; on a sheet by a ZOOM that waits for the
/// command prompt. While a command runs its space stays: a mark elsewhere is not gone to then.
void zoomToMark(AcApDocument &document, AcDbObjectId mark, bool besidePicture);

/// The mark's picture in its viewer: of the whole view where the setting says so, else of the target. Viewers
/// are closed when it has none, or `wanted` is false.
void showPictureOf(AcDbObjectId mark, bool wanted);
/// Whether the mark holds a picture that would stand beside it.
bool standsBesidePicture(AcDbObjectId mark, bool wanted);
