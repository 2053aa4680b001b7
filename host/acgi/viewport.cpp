#include "host/acgi/viewport.h"

AcGeMatrix3d AcGiViewport::getWorldToEyeTransform() const
{
    return getEyeToWorldTransform().inverse();
}

AcGeMatrix3d AcGiViewport::getEyeToWorldTransform() const
{
    const AcGeMatrix3d untwist = AcGeMatrix3d::rotation(-twist, AcGeVector3d::kZAxis);
    return isPlan() ? untwist : AcGeMatrix3d::planeToWorld(direction) * untwist;
}

AcGeMatrix3d AcGiViewport::worldToPixel() const
{
    const AcGePoint3d middle = getWorldToEyeTransform() * centre;
    const double scale = 1.0 / pixelSize();
    return AcGeMatrix3d::translation({pixelWidth / 2.0, pixelHeight / 2.0, 0.0}) *
           AcGeMatrix3d::scaling(scale, -scale, 1.0) * AcGeMatrix3d::translation(-middle.asVector()) *
           getWorldToEyeTransform();
}
