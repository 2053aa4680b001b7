// Circles, arcs, ellipses and splines.
#include "host/acdb/kinds/entitykind.h"

#include <algorithm>
#include <cmath>

using namespace gripping;
using namespace listed;

// Circles and arcs --------------------------------------------------------------------------------

static constexpr Rule kCircleRules[] = {{10, Role::planePoint}, {40, Role::length}, {39, Role::length}};

static void finishArc(EntityTransform &t)
{
    resbuf *const start = t.find(50);
    resbuf *const end = t.find(51);
    if (!start || !end)
        return;
    double from = t.turnedAngle(start->real());
    double to = t.turnedAngle(end->real());
    if (t.mirrored())
        std::swap(from, to);
    t.setReal(*start, from);
    t.setReal(*end, to);
}

static void circleGrips(const Shape &shape, Grips &grips)
{
    const auto centre = shape.point(10);
    const double r = shape.real(40, 0.0);
    if (!centre)
        return;
    addWhole(grips, shape.toWorld(*centre));
    const auto at = [&](double x, double y) { return shape.toWorld(*centre + AcGeVector3d(x, y, 0.0)); };
    if (shape.find(40))
        addReshaping(grips, {at(r, 0.0), at(0.0, r), at(-r, 0.0), at(0.0, -r)});
}

static bool dragQuadrant(const Shape &shape, ResbufList &groups, int, const AcGePoint3d &to)
{
    const AcGeVector3d radius = shape.toPlane(to) - *shape.point(10);
    const double length = std::hypot(radius.x, radius.y);
    if (!isSize(length))
        return false;
    setReal(groups[*shape.find(40)], length);
    return true;
}

namespace
{

/// The three points that an arc goes through, in its plane.
struct ArcPoints {
    AcGePoint3d centre;
    AcGePoint3d start;
    AcGePoint3d end;
    AcGePoint3d middle;
};

} // namespace

static std::optional<ArcPoints> arcPoints(const Shape &shape)
{
    const auto centre = shape.point(10);
    if (!centre || !shape.find(40) || !shape.find(50) || !shape.find(51))
        return std::nullopt;
    constexpr double kRadians = kGePi / 180.0;
    const double r = shape.real(40, 0.0);
    const double from = shape.real(50, 0.0);
    const double turn = wrapDegrees(shape.real(51, 0.0) - from);
    const double half = (turn == 0.0 ? 360.0 : turn) / 2.0;
    const auto at = [&](double degrees) { return polarOffset(*centre, degrees * kRadians, r); };
    return ArcPoints{*centre, at(from), at(shape.real(51, 0.0)), at(from + half)};
}

static void arcGrips(const Shape &shape, Grips &grips)
{
    const auto points = arcPoints(shape);
    if (!points)
        return;
    addReshaping(grips,
                 {shape.toWorld(points->start), shape.toWorld(points->end), shape.toWorld(points->middle)});
    addWhole(grips, shape.toWorld(points->centre));
}

/// Centre of the circle through three points of a plane; nothing when they are in a row.
static std::optional<AcGePoint3d> circleCentre(const AcGePoint3d &a, const AcGePoint3d &b,
                                               const AcGePoint3d &c)
{
    const AcGeVector3d ab = b - a;
    const AcGeVector3d ac = c - a;
    const double twice = 2.0 * (ab.x * ac.y - ab.y * ac.x);
    const double size = std::max(ab.x * ab.x + ab.y * ab.y, ac.x * ac.x + ac.y * ac.y);
    if (!(std::abs(twice) > 1e-9 * size))
        return std::nullopt;
    const double bb = ab.x * ab.x + ab.y * ab.y;
    const double cc = ac.x * ac.x + ac.y * ac.y;
    return AcGePoint3d(a.x + (ac.y * bb - ab.y * cc) / twice, a.y + (ab.x * cc - ac.x * bb) / twice, a.z);
}

// Through the dragged point and the other two; arcs run counter-clockwise whatever was dragged where.
static bool dragArc(const Shape &shape, ResbufList &groups, int part, const AcGePoint3d &to)
{
    ArcPoints points = *arcPoints(shape);
    AcGePoint3d *const dragged[] = {&points.start, &points.end, &points.middle};
    const AcGePoint3d place = shape.toPlane(to);
    *dragged[part] = {place.x, place.y, points.centre.z};
    const auto centre = circleCentre(points.start, points.middle, points.end);
    if (!centre)
        return false;
    const AcGeVector3d chord = points.end - points.start;
    const AcGeVector3d toMiddle = points.middle - points.start;
    if (chord.x * toMiddle.y - chord.y * toMiddle.x > 0.0)
        std::swap(points.start, points.end);
    constexpr double kDegrees = 180.0 / kGePi;
    groups[*shape.find(10)].assign(*centre);
    setReal(groups[*shape.find(40)], centre->distanceTo(points.middle));
    setReal(groups[*shape.find(50)], directionAngle(*centre, points.start) * kDegrees);
    setReal(groups[*shape.find(51)], directionAngle(*centre, points.end) * kDegrees);
    return true;
}

// Ellipses ----------------------------------------------------------------------------------------

static constexpr Rule kEllipseRules[] = {{10, Role::point}, {11, Role::vector}};

// Parameters run from the major axis counter-clockwise about the normal; a reflection reverses them.
static void finishEllipse(EntityTransform &t)
{
    resbuf *const start = t.find(41);
    resbuf *const end = t.find(42);
    if (!t.mirrored() || !start || !end)
        return;
    const double from = 2.0 * kGePi - end->real();
    const double to = 2.0 * kGePi - start->real();
    t.setReal(*start, from);
    t.setReal(*end, to);
}

namespace
{

struct EllipseAxes {
    AcGeVector3d major;
    AcGeVector3d minor;
};

} // namespace

static std::optional<EllipseAxes> ellipseAxes(const Shape &shape)
{
    const auto major = shape.point(11);
    if (!shape.point(10) || !major || !shape.find(40))
        return std::nullopt;
    const AcGeVector3d across = shape.normal().crossProduct(major->asVector());
    return EllipseAxes{major->asVector(), across * shape.real(40, 1.0)};
}

static void ellipseGrips(const Shape &shape, Grips &grips)
{
    const auto axes = ellipseAxes(shape);
    if (!axes)
        return;
    const AcGePoint3d centre = *shape.point(10);
    addWhole(grips, centre);
    addReshaping(grips,
                 {centre + axes->major, centre + axes->minor, centre - axes->major, centre - axes->minor});
}

/// The longer axis is the major one; where they change roles the parameters turn back by a quarter.
static void exchangeAxes(const Shape &shape, ResbufList &groups, EllipseAxes &axes)
{
    axes = {axes.minor, -axes.major};
    const auto start = shape.find(41);
    const auto end = shape.find(42);
    constexpr double kTurn = 2.0 * kGePi;
    if (!start || !end || std::abs(groups[*end].real() - groups[*start].real()) >= kTurn - 1e-9)
        return;
    const double from = std::fmod(groups[*start].real() - kGePi / 2.0 + kTurn, kTurn);
    double sweep = std::fmod(groups[*end].real() - groups[*start].real(), kTurn);
    if (sweep <= 0.0)
        sweep += kTurn;
    setReal(groups[*start], from);
    setReal(groups[*end], from + sweep);
}

// An axis grows or shrinks, keeping its direction.
static bool dragAxis(const Shape &shape, ResbufList &groups, int part, const AcGePoint3d &to)
{
    EllipseAxes axes = *ellipseAxes(shape);
    const double length = to.distanceTo(*shape.point(10));
    if (!isSize(length) || !isSize(axes.major.length()) || !isSize(axes.minor.length()))
        return false;
    AcGeVector3d &dragged = part % 2 == 0 ? axes.major : axes.minor;
    dragged = dragged.normal() * length;
    if (axes.minor.length() > axes.major.length())
        exchangeAxes(shape, groups, axes);
    groups[*shape.find(11)].assign(AcGePoint3d(axes.major.x, axes.major.y, axes.major.z));
    setReal(groups[*shape.find(40)], axes.minor.length() / axes.major.length());
    return true;
}

// Splines -----------------------------------------------------------------------------------------

static constexpr Rule kSplineRules[] = {{10, Role::point},
                                        {11, Role::point},
                                        {12, Role::direction},
                                        {13, Role::direction},
                                        {210, Role::direction}};

static void splineGrips(const Shape &shape, Grips &grips)
{
    addPoints(shape, grips, shape.find(10) ? 10 : 11, Role::point);
}

// A curve whose control points moved does not go through its fit points any more.
static void dropFitPoints(ResbufList &groups)
{
    const std::size_t begin = subclassBegin(groups, u"AcDbSpline");
    if (!findGroup(groups, 10, begin == groups.size() ? 0 : begin))
        return;
    if (resbuf *const count = findGroup(groups, 74); count && count->integer() != 0)
        count->assign(std::int64_t(0));
    const std::size_t end = extendedDataBegin(groups);
    const auto tail = groups.begin() + std::ptrdiff_t(end);
    groups.erase(
        std::remove_if(groups.begin(), tail,
                       [](const resbuf &g) { return g.restype == 11 || g.restype == 12 || g.restype == 13; }),
        tail);
}

// The kinds ---------------------------------------------------------------------------------------

std::vector<EntityKind> entitykinds::curves()
{
    return {
        {.dxfName = "CIRCLE",
         .className = "AcDbCircle",
         .listed = {{{{"AcDbCircle"}, {thickness(), given(10), given(40), normal()}}}},
         .transforming = TransformRules{kCircleRules},
         .grips = {circleGrips, dragQuadrant}},
        {.dxfName = "ARC",
         .className = "AcDbArc",
         .listed = {{{{"AcDbCircle"}, {thickness(), given(10), given(40), normal()}},
                     {{"AcDbArc"}, {given(50), given(51)}}}},
         .transforming = TransformRules{kCircleRules, finishArc},
         .grips = {arcGrips, dragArc}},
        {.dxfName = "ELLIPSE",
         .className = "AcDbEllipse",
         .listed = {{{{"AcDbEllipse"},
                      {given(10), given(11), normal(), given(40), real(41, 0), real(42, 2 * kGePi)}}}},
         .transforming = TransformRules{kEllipseRules, finishEllipse},
         .grips = {ellipseGrips, dragAxis}},
        {.dxfName = "SPLINE",
         .className = "AcDbSpline",
         .listed = {{{{"AcDbSpline"},
                      {given(210), integer(70, 0), given(71), given(72), given(73), integer(74, 0),
                       real(42, 1e-7), real(43, 1e-7), given(44), given(12), given(13), given(40), given(41),
                       given(10), given(11)}}}},
         .transforming = TransformRules{kSplineRules, nullptr, false},
         .grips = {splineGrips, nullptr, dropFitPoints}},
        {.dxfName = "HELIX", .className = "AcDbHelix"},
    };
}
