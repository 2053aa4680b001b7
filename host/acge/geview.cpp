#include "host/acge/geview.h"

#include <algorithm>
#include <cmath>

AcGeMatrix3d AcGeView::getWorldToEyeTransform() const
{
    return isPlan() ? AcGeMatrix3d::rotation(twist, AcGeVector3d::kZAxis)
                    : getEyeToWorldTransform().inverse();
}

AcGeMatrix3d AcGeView::getEyeToWorldTransform() const
{
    const AcGeMatrix3d untwist = AcGeMatrix3d::rotation(-twist, AcGeVector3d::kZAxis);
    return isPlan() ? untwist : AcGeMatrix3d::planeToWorld(direction) * untwist;
}

AcGeMatrix3d AcGeView::worldToPixel() const
{
    const AcGePoint3d middle = getWorldToEyeTransform() * centre;
    const double scale = 1.0 / pixelSize();
    return AcGeMatrix3d::translation({pixelWidth / 2.0, pixelHeight / 2.0, 0.0}) *
           AcGeMatrix3d::scaling(scale, -scale, 1.0) * AcGeMatrix3d::translation(-middle.asVector()) *
           getWorldToEyeTransform();
}

double AcGeView::heightFor(double seenWidth, double seenHeight) const
{
    return std::max(seenHeight, seenWidth * pixelHeight / pixelWidth);
}

void AcGeView::fit(const AcDbExtents &box, double margin)
{
    if (!box.isValid())
        return;
    AcDbExtents seen = box;
    seen.transformBy(getWorldToEyeTransform());
    const AcGeVector3d size = seen.maxPoint() - seen.minPoint();
    const double fitting = heightFor(size.x, size.y) / (1.0 - 2.0 * margin);
    if (!std::isfinite(fitting))
        return;
    centre = box.minPoint() + (box.maxPoint() - box.minPoint()) * 0.5;
    if (fitting > 0.0)
        height = fitting;
}

AcGeView AcGeView::onRaster(double newWidth, double newHeight) const
{
    if (newWidth == pixelWidth && newHeight == pixelHeight)
        return *this;
    AcGeView view = *this;
    view.height = std::max(height, width() * newHeight / newWidth);
    view.pixelWidth = newWidth;
    view.pixelHeight = newHeight;
    return view;
}
