// Texts, attributes, paragraphs, shapes and tolerances.
#include "host/acdb/dbtransform.h"
#include "host/acdb/kinds/entitykind.h"

#include <algorithm>
#include <cmath>

using namespace gripping;
using namespace listed;

static constexpr Rule kTextRules[] = {
    {10, Role::planePoint}, {11, Role::planePoint}, {39, Role::length}, {40, Role::length}};

static constexpr Rule kShapeRules[] = {{10, Role::planePoint}, {39, Role::length}, {40, Role::length}};

static constexpr Rule kToleranceRules[] = {{10, Role::point}, {11, Role::direction}};

static constexpr Rule kMTextRules[] = {
    {10, Role::point},  {11, Role::direction}, {40, Role::length}, {41, Role::length},
    {42, Role::length}, {43, Role::length},    {46, Role::length},
};

// A reflected text is a text that runs backward: its up direction is what turns.
static double backwardAngle(const EntityTransform &t, double degrees)
{
    return wrapDegrees(t.turnedAngle(degrees + 90.0) - 90.0);
}

static double degreesInPlane(const AcGeVector3d &direction, const AcGeVector3d &normal)
{
    const AcGeVector3d seen = AcGeMatrix3d::planeToWorld(normal).inverse() * direction;
    return std::atan2(seen.y, seen.x) * 180.0 / kGePi;
}

static double unstatedMTextAngle(const AcGeVector3d &normal)
{
    return degreesInPlane(acdbUnstatedTextDirection(normal), normal);
}

// The rotation of an MTEXT, whose plane a reflection shows from behind.
static double turnedMTextAngle(const EntityTransform &t, double degrees)
{
    const double angle = degrees * kGePi / 180.0;
    const AcGeVector3d along = t.turned(AcGeMatrix3d::planeToWorld(t.normal()) *
                                        AcGeVector3d(std::cos(angle), std::sin(angle), 0.0));
    const AcGeVector3d normal = t.mirrored() ? -t.newNormal() : t.newNormal();
    const double turned = degreesInPlane(along, normal);
    return std::abs(std::remainder(turned - degrees, 360.0)) < 1e-12 ? degrees : wrapDegrees(turned);
}

// Seen from behind: up is normal x direction, so reversing the normal reflects the text.
static void finishMText(EntityTransform &t)
{
    const AcGeVector3d normal = t.mirrored() ? -t.newNormal() : t.newNormal();
    if (t.find(50) || !t.find(11)) {
        const double angle = t.real(50, unstatedMTextAngle(t.normal()));
        t.setReal(50, turnedMTextAngle(t, angle), unstatedMTextAngle(normal), 40);
    }
    t.setNormal(normal);
    // The embedded object of newer files repeats direction and position.
    static constexpr Rule kEmbedded[] = {{10, Role::direction}, {11, Role::point},  {40, Role::length},
                                         {41, Role::length},    {42, Role::length}, {43, Role::length},
                                         {44, Role::length},    {45, Role::length}, {46, Role::length}};
    for (std::size_t i = t.end(); i < extendedDataBegin(t.groups()); ++i) {
        const auto rule = std::ranges::find(kEmbedded, t.groups()[i].restype, &Rule::code);
        if (rule != std::end(kEmbedded))
            t.apply(rule->role, t.groups()[i]);
    }
}

static void finishText(EntityTransform &t)
{
    constexpr std::int64_t kBackward = 2;
    const double angle = t.real(50, 0.0);
    t.setReal(50, t.mirrored() ? backwardAngle(t, angle) : t.turnedAngle(angle), 0.0, 40);
    if (t.mirrored()) {
        const std::int64_t flags = t.integer(71, 0);
        t.setInteger(71, flags ^ kBackward, 0, 40);
    }
    // Attributes of several lines carry an MTEXT behind their own groups.
    const std::size_t end = extendedDataBegin(t.groups());
    for (std::size_t i = t.end(); i < end; ++i) {
        resbuf &group = t.groups()[i];
        const auto rule = std::ranges::find(kMTextRules, group.restype, &Rule::code);
        if (rule != std::end(kMTextRules))
            t.apply(rule->role, group);
        else if (group.restype == 50)
            t.setReal(group, turnedMTextAngle(t, group.real()));
    }
}

static void finishShape(EntityTransform &t)
{
    const double angle = t.real(50, 0.0);
    t.setReal(50, t.mirrored() ? backwardAngle(t, angle) : t.turnedAngle(angle), 0.0, 40);
    if (t.mirrored())
        t.setReal(41, -t.real(41, 1.0), 1.0, 40);
}

// Text that is not left-aligned hangs on its second point.
static void textGrips(const Shape &shape, Grips &grips)
{
    const int vertical = shape.entity().dxfName() == "TEXT" ? 73 : 74;
    const bool isAligned = shape.find(11) && (shape.integer(72) != 0 || shape.integer(vertical) != 0);
    if (const auto place = shape.point(isAligned ? 11 : 10))
        addWhole(grips, shape.toWorld(*place));
}

/// Text, attributes and attribute definitions share their first half.
static Section textSection()
{
    return {{"AcDbText"},
            {thickness(), given(10), given(40), text(1, ""), real(50, 0), real(41, 1), real(51, 0),
             text(7, "Standard"), integer(71, 0), integer(72, 0), point(11, 0, 0, 0), normal()}};
}

std::vector<EntityKind> entitykinds::texts()
{
    return {
        {.dxfName = "TEXT",
         .listed = {{textSection(), {{"AcDbText"}, {integer(73, 0)}}}},
         .transforming = TransformRules{kTextRules, finishText},
         .grips = {textGrips}},
        {.dxfName = "ATTRIB",
         .listed = {{textSection(),
                     {{"AcDbAttribute"}, {given(2), integer(70, 0), integer(73, 0), integer(74, 0)}}}},
         .transforming = TransformRules{kTextRules, finishText},
         .grips = {textGrips}},
        {.dxfName = "ATTDEF",
         .className = "AcDbAttributeDefinition",
         .listed = {{textSection(),
                     {{"AcDbAttributeDefinition"},
                      {text(3, ""), given(2), integer(70, 0), integer(73, 0), integer(74, 0)}}}},
         .transforming = TransformRules{kTextRules, finishText},
         .grips = {textGrips}},
        {.dxfName = "MTEXT",
         .listed = {{{{"AcDbMText"},
                      {given(10), given(40), real(41, 0), real(46, 0), integer(71, 1), integer(72, 5),
                       given(3), text(1, ""), text(7, "Standard"), normal(), given(11), given(42), given(43),
                       given(50), integer(73, 1), real(44, 1)}}},
                    false,
                    75},
         .transforming = TransformRules{kMTextRules, finishMText, false},
         .grips = {wholeAtPoint<10>}},
        {.dxfName = "SHAPE",
         .className = "AcDbShape",
         .listed = {{{{"AcDbShape"},
                      {thickness(), given(10), given(40), given(2), real(50, 0), real(41, 1), real(51, 0),
                       normal()}}}},
         .transforming = TransformRules{kShapeRules, finishShape}},
        {.dxfName = "TOLERANCE",
         .className = "AcDbFcf",
         .listed = {{{{"AcDbFcf"},
                      {text(3, "Standard"), given(10), text(1, ""), normal(), point(11, 1, 0, 0)}}}},
         .transforming = TransformRules{kToleranceRules}},
    };
}
