// The fixed figures that target outlines and text-box frames share.
#pragma once

#include "quillnote/entity/mark_outline.h"

/// The axes of a rectangle in the XY plane, of length 1.
struct PlaneAxes {
    AcGeVector3d right = AcGeVector3d::kXAxis;
    AcGeVector3d up = AcGeVector3d::kYAxis;
};
/// Those of the world when `direction` has none in the plane.
PlaneAxes planeAxes(const AcGeVector3d &direction);

void addPiece(MarkOutline &outline, OutlinePiece::Kind kind, int color, std::span<const AcGePoint3d> points);

/// In the first colour.
void addThinRectangle(MarkOutline &outline, const MarkCorners &corners, const OutlineRecord &mark,
                      const MarkDrawingSettings &settings);

/// Two bars with mitred corners: along the left and upper side in the first colour, along the lower and
/// right side in the second.
struct BevelBars {
    PlaneAxes axes;
    double offset = 0.0; ///< Outwards, across the corners.
    double halfWidth = 0.0;
    double mitre = 0.0; ///< How far mitre corners lie from the side's line, along either axis.
};
void addBevelBars(MarkOutline &outline, const MarkCorners &corners, const BevelBars &bars,
                  const OutlineRecord &mark, const MarkDrawingSettings &settings);

/// Waves along the four sides, in the order of the corners.
void addWaveRectangle(MarkOutline &outline, const MarkCorners &corners, double step);
