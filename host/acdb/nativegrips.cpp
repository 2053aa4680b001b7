#include "host/acdb/nativegrips.h"

std::vector<AcGePoint3d> acdbNativeGrips(const AcDbEntity &)
{
    return {};
}

Acad::ErrorStatus acdbMoveNativeGrips(AcDbEntity &, std::span<const int>, const AcGeVector3d &)
{
    return Acad::eInvalidIndex;
}
