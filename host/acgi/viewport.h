// AcGiViewport: a view of a space, as a value. What drawing, pixels and pictures are computed from.
#pragma once

#include "host/acge/gematrix.h"

/// A parallel view. Eye coordinates: x to the right and y up as seen, z towards the viewer, in world units,
/// turned about the world's origin (a plan view without twist has the world's own coordinates). Pixel (0, 0)
/// is the upper left corner of the view; pixels are square.
class AcGiViewport
{
public:
    AcGePoint3d centre;  ///< Middle of the view, world coordinates.
    double height = 1.0; ///< World units from the lower to the upper edge; above 0.
    double twist = 0.0;  ///< Radians; the drawing appears turned counter-clockwise by it.
    AcGeVector3d direction = AcGeVector3d::kZAxis; ///< From the drawing to the viewer.
    double pixelWidth = 1.0;
    double pixelHeight = 1.0;
    /// Pixels for one that sizes on the screen are counted in: fine screens have 1.25 to 3.
    double pixelRatio = 1.0;
    bool paperSpace = false; ///< Of a paper-space layout.
    /// On whatever shows the view, for what is to be of one size to the eye. 96 to an inch unless a screen or
    /// a sheet of paper says otherwise.
    double pixelsPerMillimetre = kUsualDensity;
    static constexpr double kUsualDensity = 96.0 / 25.4;

    double width() const { return height * pixelWidth / pixelHeight; }
    /// World units.
    double pixelSize() const { return height / pixelHeight; }
    /// World units of a pixel as sizes on the screen are counted: flags, apertures.
    double countedPixelSize() const { return pixelSize() * pixelRatio; }
    /// World units.
    double millimetre() const { return pixelsPerMillimetre * pixelSize(); }
    bool isPlan() const { return direction.x == 0.0 && direction.y == 0.0 && direction.z > 0.0; }

    AcGeMatrix3d getWorldToEyeTransform() const;
    AcGeMatrix3d getEyeToWorldTransform() const;
    /// x and y are pixels (not rounded), z as in eye coordinates.
    AcGeMatrix3d worldToPixel() const;
};
