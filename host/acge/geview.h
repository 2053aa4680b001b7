// AcGeView: how a space is looked at, as a value. Screen, console, sheets and pictures share it; what is
// seen, where a pixel lies and what fits in are computed from it. What is set first is for drawings that say
// nothing of views.
#pragma once

#include "host/acge/geextents.h"
#include "host/acge/gematrix.h"

/// A parallel view. Eye coordinates: x to the right and y up as seen, z towards the viewer, in world units,
/// turned about the world's origin (a plan view without twist has the world's own coordinates). Pixel (0, 0)
/// is the upper left corner of the view; pixels are square.
class AcGeView
{
public:
    AcGePoint3d centre;    ///< Middle of the view, world coordinates.
    double height = 297.0; ///< World units from the lower to the upper edge; above 0.
    double twist = 0.0;    ///< Radians; the drawing appears turned counter-clockwise by it (VIEWTWIST).
    AcGeVector3d direction = AcGeVector3d::kZAxis; ///< From the drawing to the viewer.
    double pixelWidth = 1600.0;
    double pixelHeight = 1000.0;
    /// Pixels for one that sizes on the screen are counted in: fine screens have 1.25 to 3.
    double pixelRatio = 1.0;

    double width() const { return height * pixelWidth / pixelHeight; }
    /// World units.
    double pixelSize() const { return height / pixelHeight; }
    /// World units of a pixel as sizes on the screen are counted: flags, apertures.
    double countedPixelSize() const { return pixelSize() * pixelRatio; }
    bool isPlan() const { return direction.x == 0.0 && direction.y == 0.0 && direction.z > 0.0; }

    AcGeMatrix3d getWorldToEyeTransform() const;
    AcGeMatrix3d getEyeToWorldTransform() const;
    /// x and y are pixels (not rounded), z as in eye coordinates.
    AcGeMatrix3d worldToPixel() const;

    /// The height at which a rectangle of this size, seen upright, is just inside the view.
    double heightFor(double seenWidth, double seenHeight) const;
    /// Looks at the middle of the box (world) and shows all of it, with a share of the view left free at each
    /// edge. A box without size, one without end and one that is not valid leave the height as it is; the
    /// last two the middle too.
    void fit(const AcDbExtents &box, double margin = 0.0);
    /// The same place on a raster of another size: nothing that is seen is cut off.
    AcGeView onRaster(double newWidth, double newHeight) const;

    friend bool operator==(const AcGeView &, const AcGeView &) = default;
};
