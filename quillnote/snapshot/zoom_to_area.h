// Bringing an area of the drawing on the screen, with a margin.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acge/geextents.h"

/// The area widened on each side by the share of its size that the setting "viewScale2" names in percent (10
/// to 90, else 20).
AcDbExtents widenedArea(const AcDbExtents &area);

/// What is shown of a mark's target for its pictures: on each side as much more as the setting "viewScale"
/// leaves of 100 percent (30 to 90, else 50).
AcDbExtents targetZoomWindow(const AcGePoint3d &corner1, const AcGePoint3d &corner2);

enum class ZoomWhen { always, ifOutside };

/// Shows the widened area, seen upright in the current view, in the middle of the view. `layout` is the block
/// record of the space that the area lies in; null: the current one. With ifOutside an area that is wholly
/// visible changes nothing.
void zoomToArea(const AcDbExtents &area, AcDbObjectId layout = {}, ZoomWhen when = ZoomWhen::always);
