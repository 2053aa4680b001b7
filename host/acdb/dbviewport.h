// What a VIEWPORT entity of a sheet says, and which of a sheet's viewports stands for the sheet itself: read
// here for pictures, coordinates and commands alike.
#pragma once

#include "host/acdb/dbentity.h"

#include <optional>
#include <utility>
#include <vector>

/// Lengths on the sheet are in sheet units, those of the view in world units.
struct AcDbViewportData {
    AcGePoint3d centre; ///< On the sheet.
    double width = 0.0;
    double height = 0.0;
    bool isOn = true;
    AcDbHandle boundary; ///< The entity that clips it; null for the rectangle.

    AcGePoint3d target;     ///< World coordinates.
    AcGePoint2d viewCentre; ///< In eye coordinates relative to the target.
    double viewHeight = 0.0;
    AcGeVector3d direction = AcGeVector3d::kZAxis; ///< From the drawing to the viewer; has a length.
    double twist = 0.0;                            ///< Radians, as AcGeView::twist.
    std::vector<AcDbObjectId> frozenLayers;

    bool isPlan() const { return direction.x == 0.0 && direction.y == 0.0 && direction.z > 0.0; }
};
/// As the entity states it, from its own groups or, in old drawings, from its extended data; without a view
/// `viewHeight` is 0.
AcDbViewportData acdbViewportData(const AcDbEntity &viewport);

/// Numbers (CVPORT) and entities of the viewports of a sheet. Number 1 is the sheet itself: the one that says
/// so (group 69), where none does the first one if it says nothing; the others count from 2, in the place of
/// numbers that are missing or given twice.
std::vector<std::pair<int, AcDbObjectId>> acdbSheetViewports(const AcDbDatabase &database,
                                                             AcDbObjectId sheet);
/// True for the viewport that stands for its sheet.
bool acdbIsSheetItself(const AcDbEntity &viewport);
