#include "quillnote/aids/links/link_grips.h"

#include "quillnote/aids/links/link_record.h"
#include "quillnote/entity/mark_layout.h"

#include <algorithm>
#include <cmath>

static constexpr double kLeastOffset = 0.001; ///< Shorter drags are none.
static constexpr int kGrips = 5;

/// A quarter turn, or mirroring at a slant, leaves corner 3 where corner 4 was seen from corner 1.
static bool isTurned(const MarkCorners &corners, const AcGeMatrix3d &worldToView)
{
    const AcGeVector3d across = worldToView * (corners.corner3 - corners.corner1);
    return std::abs(across.x) > std::abs(across.y);
}

std::optional<MarkCorners> dragLinkGrips(MarkCorners corners, std::span<const int> grips,
                                         const AcGeVector3d &offset, const AcGeMatrix3d &worldToView)
{
    std::array<bool, kGrips> dragged{};
    for (const int grip : grips) {
        if (grip < 0 || grip >= kGrips)
            return std::nullopt;
        dragged[std::size_t(grip)] = true;
    }
    auto [whole, first, second, third, fourth] = dragged;
    if (whole || (first && second) || (third && fourth)) {
        for (AcGePoint3d *const corner :
             {&corners.corner1, &corners.corner2, &corners.corner3, &corners.corner4})
            *corner = *corner + offset;
        return corners;
    }
    const bool turned = isTurned(corners, worldToView);
    const auto exchange = [turned](MarkCorners &rectangle) {
        if (turned)
            std::swap(rectangle.corner3, rectangle.corner4);
    };
    if (turned)
        std::swap(third, fourth);
    exchange(corners);
    MarkCorners moved = dragCorners(corners, {first, second, third, fourth}, offset, worldToView);
    exchange(moved);
    return moved;
}

std::vector<AcGePoint3d> QuillLinkObj::subGetGripPoints() const
{
    AcGePoint3d middle = centre();
    middle.z = 0.0;
    return {middle, corner1, corner2, corner3, corner4};
}

Acad::ErrorStatus QuillLinkObj::subMoveGripPointsAt(std::span<const int> grips, const AcGeVector3d &offset)
{
    if (grips.empty())
        return Acad::eInvalidInput;
    if (std::max({std::abs(offset.x), std::abs(offset.y), std::abs(offset.z)}) < kLeastOffset)
        return Acad::eOk;
    const auto moved = dragLinkGrips(corners(), grips, offset,
                                     currentMarkView(database()).viewport.getWorldToEyeTransform());
    if (!moved)
        return Acad::eInvalidIndex;
    setCorners(*moved);
    return Acad::eOk;
}
