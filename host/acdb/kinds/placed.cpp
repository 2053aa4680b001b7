// What hangs on a point and a frame: inserts, underlays, images, viewports.
#include "host/acdb/kinds/entitykind.h"

using namespace gripping;
using namespace listed;

static constexpr Rule kPlacedRules[] = {{10, Role::planePoint}};

static constexpr Rule kViewportRules[] = {{10, Role::point}, {40, Role::length}, {41, Role::length}};

static constexpr Rule kImageRules[] = {{10, Role::point}, {11, Role::vector}, {12, Role::vector}};

// The X axis turns; in a reflection the Y axis then points the other way.
static void finishInsert(EntityTransform &t)
{
    const double y = t.mirrored() ? -t.scale() : t.scale();
    // Added groups stand behind the position, the last one first.
    t.setReal(45, t.real(45, 0.0) * y, 0.0, 10);
    t.setReal(44, t.real(44, 0.0) * t.scale(), 0.0, 10);
    t.setReal(50, t.turnedAngle(t.real(50, 0.0)), 0.0, 10);
    t.setReal(43, t.real(43, 1.0) * t.scale(), 1.0, 10);
    t.setReal(42, t.real(42, 1.0) * y, 1.0, 10);
    t.setReal(41, t.real(41, 1.0) * t.scale(), 1.0, 10);
}

static void viewportGrips(const Shape &shape, Grips &grips)
{
    if (const auto centre = shape.point(10))
        addWhole(grips, *centre - AcGeVector3d(shape.real(40, 0.0), shape.real(41, 0.0), 0.0) * 0.5);
}

std::vector<EntityKind> entitykinds::placed()
{
    return {
        {.dxfName = "INSERT",
         .listed = {{{{"AcDbBlockReference", "AcDbMInsertBlock"},
                      {unlessDefault(integer(66, 0)), given(2), given(10), real(41, 1), real(42, 1),
                       real(43, 1), real(50, 0), integer(70, 0), integer(71, 0), real(44, 0), real(45, 0),
                       normal()}}}},
         .transforming = TransformRules{kPlacedRules, finishInsert},
         .grips = {wholeAtPlanePoint<10>}},
        {.dxfName = "PDFUNDERLAY", .transforming = TransformRules{kPlacedRules, finishInsert}},
        {.dxfName = "DWFUNDERLAY", .transforming = TransformRules{kPlacedRules, finishInsert}},
        {.dxfName = "DGNUNDERLAY", .transforming = TransformRules{kPlacedRules, finishInsert}},
        {.dxfName = "IMAGE",
         .className = "AcDbRasterImage",
         .transforming = TransformRules{kImageRules, nullptr, false},
         .grips = {wholeAtPoint<10>}},
        {.dxfName = "WIPEOUT",
         .className = "AcDbWipeout",
         .transforming = TransformRules{kImageRules, nullptr, false},
         .grips = {wholeAtPoint<10>}},
        {.dxfName = "VIEWPORT",
         .className = "AcDbViewport",
         .transforming = TransformRules{kViewportRules, nullptr, false},
         .grips = {viewportGrips}},
    };
}
