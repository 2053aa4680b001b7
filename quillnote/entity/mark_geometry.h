// Corners: the two that are picked, the two that follow from them, and their order as the user sees it.
#pragma once

#include "host/acge/gematrix.h"

class QuillnoteObj3;

struct CompletedCorners {
    AcGePoint3d corner3; ///< From corner 1 across the x direction.
    AcGePoint3d corner4; ///< From corner 1 along the x direction.
};

/// The other corners of the rectangle over a diagonal. A true rectangle when corner 2 lies to the upper
/// right of corner 1, seen along the x direction.
CompletedCorners completeCorners(const AcGePoint3d &corner1, const AcGePoint3d &corner2,
                                 const AcGeVector3d &normal, const AcGeVector3d &xDirection);

/// Sets corners 3 and 4 and `cornersValid`.
void completeTargetCorners(QuillnoteObj3 &mark);
/// Sets text-box corners 3 and 4.
void completeTextBoxCorners(QuillnoteObj3 &mark);

/// Two picked corners as the lower left and the upper right one of a view. The matrix turns the world
/// into the view's frame (AcGeView::getWorldToEyeTransform).
struct SortedCorners {
    AcGePoint3d lowerLeft;
    AcGePoint3d upperRight;
};
SortedCorners sortCorners(const AcGePoint3d &a, const AcGePoint3d &b, const AcGeMatrix3d &worldToView);
