// Lines, points, rays and multilines.
#include "host/acdb/kinds/entitykind.h"

using namespace gripping;
using namespace listed;

static constexpr Rule kLineRules[] = {{10, Role::point}, {11, Role::point}, {39, Role::length}};

static constexpr Rule kPointRules[] = {{10, Role::point}, {39, Role::length}, {50, Role::planeAngle}};

static constexpr Rule kRayRules[] = {{10, Role::point}, {11, Role::direction}};

static constexpr Rule kMultilineRules[] = {{10, Role::point},     {11, Role::point},  {12, Role::direction},
                                           {13, Role::direction}, {40, Role::length}, {41, Role::length},
                                           {42, Role::length}};

static void lineGrips(const Shape &shape, Grips &grips)
{
    addPoints(shape, grips, 10, Role::point);
    addPoints(shape, grips, 11, Role::point);
    if (grips.size() == 2)
        addWhole(grips, grips[0].place + (grips[1].place - grips[0].place) * 0.5);
}

// The second grip turns the line about its base point.
static void rayGrips(const Shape &shape, Grips &grips)
{
    const auto base = shape.point(10);
    const auto direction = shape.point(11);
    addWhole(grips, base);
    if (base && direction)
        addReshaping(grips, {*base + direction->asVector()});
}

static bool turnRay(const Shape &shape, ResbufList &groups, int, const AcGePoint3d &to)
{
    const AcGeVector3d direction = to - *shape.point(10);
    if (!isSize(direction.length()))
        return false;
    const AcGeVector3d unit = direction.normal();
    groups[*shape.find(11)].assign(AcGePoint3d(unit.x, unit.y, unit.z));
    return true;
}

std::vector<EntityKind> entitykinds::lines()
{
    return {
        {.dxfName = "LINE",
         .className = "AcDbLine",
         .listed = {{{{"AcDbLine"}, {thickness(), given(10), given(11), normal()}}}},
         .transforming = TransformRules{kLineRules},
         .grips = {lineGrips}},
        {.dxfName = "POINT",
         .className = "AcDbPoint",
         .listed = {{{{"AcDbPoint"}, {given(10), thickness(), normal(), real(50, 0)}}}},
         .transforming = TransformRules{kPointRules},
         .grips = {wholeAtPoint<10>}},
        {.dxfName = "RAY",
         .className = "AcDbRay",
         .transforming = TransformRules{kRayRules, nullptr, false},
         .grips = {rayGrips, turnRay}},
        {.dxfName = "XLINE",
         .className = "AcDbXline",
         .transforming = TransformRules{kRayRules, nullptr, false},
         .grips = {rayGrips, turnRay}},
        {.dxfName = "MLINE", .className = "AcDbMline", .transforming = TransformRules{kMultilineRules}},
    };
}
