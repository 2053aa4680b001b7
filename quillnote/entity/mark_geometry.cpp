#include "quillnote/entity/mark_geometry.h"

#include "quillnote/entity/mark_record.h"

#include <algorithm>
#include <cmath>

CompletedCorners completeCorners(const AcGePoint3d &corner1, const AcGePoint3d &corner2,
                                 const AcGeVector3d &normal, const AcGeVector3d &xDirection)
{
    const AcGeVector3d across = xDirection.rotateBy(kGePi / 2.0, normal);
    const AcGeVector3d diagonal = corner2 - corner1;
    const double angle = diagonal.angleTo(xDirection);
    return {.corner3 = corner1 + across * (diagonal.length() * std::sin(angle)),
            .corner4 = corner1 + xDirection * (diagonal.length() * std::cos(angle))};
}

void completeTargetCorners(QuillnoteObj3 &mark)
{
    const CompletedCorners completed =
        completeCorners(mark.targetCorner1, mark.targetCorner2, mark.normal, mark.xDirection);
    mark.targetCorner3 = completed.corner3;
    mark.targetCorner4 = completed.corner4;
    mark.cornersValid = true;
}

void completeTextBoxCorners(QuillnoteObj3 &mark)
{
    const CompletedCorners completed =
        completeCorners(mark.textBoxCorner1, mark.textBoxCorner2, mark.normal, mark.xDirection);
    mark.textBoxCorner3 = completed.corner3;
    mark.textBoxCorner4 = completed.corner4;
}

SortedCorners sortCorners(const AcGePoint3d &a, const AcGePoint3d &b, const AcGeMatrix3d &worldToView)
{
    const AcGePoint3d first = worldToView * a;
    const AcGePoint3d second = worldToView * b;
    const AcGeMatrix3d viewToWorld = worldToView.inverse();
    const AcGePoint3d low(std::min(first.x, second.x), std::min(first.y, second.y),
                          std::min(first.z, second.z));
    const AcGePoint3d high(std::max(first.x, second.x), std::max(first.y, second.y),
                           std::max(first.z, second.z));
    return {.lowerLeft = viewToWorld * low, .upperRight = viewToWorld * high};
}
