#include "host/acdb/nativegrips.h"

#include "host/acdb/dbsymtb.h"
#include "host/acdb/entitytransform.h"
#include "host/acdb/owngroups.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace
{

/// The groups of an entity that say what it looks like, and its plane.
class Shape
{
public:
    explicit Shape(const AcDbEntity &entity) : m_entity(entity)
    {
        for (const resbuf &group : OwnGroups(entity))
            m_own.push_back(std::size_t(&group - entity.groups().data()));
        const AcGeVector3d filed = point(210).value_or(AcGePoint3d(0.0, 0.0, 1.0)).asVector();
        m_normal = filed.isZeroLength() ? AcGeVector3d::kZAxis : filed.normal();
        m_toWorld = AcGeMatrix3d::planeToWorld(m_normal);
    }

    const AcDbEntity &entity() const { return m_entity; }
    const resbuf &group(std::size_t index) const { return m_entity.groups()[index]; }
    std::vector<std::size_t> all(int code) const
    {
        std::vector<std::size_t> found;
        std::ranges::copy_if(m_own, std::back_inserter(found),
                             [&](std::size_t i) { return group(i).restype == code; });
        return found;
    }
    std::optional<std::size_t> find(int code) const
    {
        const auto found = std::ranges::find(m_own, code, [&](std::size_t i) { return group(i).restype; });
        return found == m_own.end() ? std::nullopt : std::optional(*found);
    }
    std::optional<AcGePoint3d> point(int code) const
    {
        const auto found = find(code);
        return found ? std::optional(group(*found).point()) : std::nullopt;
    }
    double real(int code, double fallback) const
    {
        const auto found = find(code);
        return found ? group(*found).real() : fallback;
    }
    std::int64_t integer(int code) const
    {
        const auto found = find(code);
        return found ? group(*found).integer() : 0;
    }

    const AcGeVector3d &normal() const { return m_normal; }
    AcGePoint3d toWorld(const AcGePoint3d &inPlane) const { return m_toWorld * inPlane; }
    AcGePoint3d toPlane(const AcGePoint3d &world) const { return m_toWorld.inverse() * world; }

private:
    const AcDbEntity &m_entity;
    std::vector<std::size_t> m_own; ///< Indexes into the entity's groups.
    AcGeVector3d m_normal;
    AcGeMatrix3d m_toWorld;
};

struct Grip {
    enum Action : std::uint8_t {
        moveAll,
        movePoint,  ///< One group follows.
        moveVertex, ///< An entity that this one owns follows.
        reshape     ///< What the kind's own function makes of it.
    };
    AcGePoint3d place{}; ///< World.
    Action action = moveAll;
    Role role = Role::point; ///< Of the group that follows.
    std::size_t group = 0;
    int part = 0; ///< For the kind's own function.
    AcDbObjectId vertex{};
};
using Grips = std::vector<Grip>;

struct Kind {
    std::string_view name;
    void (*list)(const Shape &, Grips &);
    /// Drags grip `part` to a place (world). False when nothing sensible would come of it; then nothing is
    /// changed. Group indexes are those of the shape.
    bool (*reshape)(const Shape &, ResbufList &, int part, const AcGePoint3d &to) = nullptr;
    /// Runs after groups were moved.
    void (*finish)(ResbufList &) = nullptr;
};

// What many kinds do ------------------------------------------------------------------------------

void addWhole(Grips &grips, const std::optional<AcGePoint3d> &place)
{
    if (place)
        grips.push_back({.place = *place});
}

/// A grip for every group of the code.
void addPoints(const Shape &shape, Grips &grips, int code, Role role)
{
    const double elevation = role == Role::planePoint2d ? shape.real(38, 0.0) : 0.0;
    for (const std::size_t index : shape.all(code)) {
        const AcGePoint3d filed = shape.group(index).point();
        const AcGePoint3d place =
            role == Role::point ? filed : shape.toWorld({filed.x, filed.y, filed.z + elevation});
        grips.push_back({.place = place, .action = Grip::movePoint, .role = role, .group = index});
    }
}

void addReshaping(Grips &grips, std::initializer_list<AcGePoint3d> places)
{
    int part = 0;
    for (const AcGePoint3d &place : places)
        grips.push_back({.place = place, .action = Grip::reshape, .part = part++});
}

/// The corner that the whole entity hangs on.
template <int code>
void wholeAtPoint(const Shape &shape, Grips &grips)
{
    addWhole(grips, shape.point(code));
}

template <int code>
void wholeAtPlanePoint(const Shape &shape, Grips &grips)
{
    if (const auto place = shape.point(code))
        addWhole(grips, shape.toWorld(*place));
}

void setReal(resbuf &group, double value)
{
    if (!sameNumber(group.real(), value))
        group.assign(value);
}

bool isSize(double value)
{
    return std::isfinite(value) && value > kGeTolerance;
}

// Lines and points --------------------------------------------------------------------------------

void lineGrips(const Shape &shape, Grips &grips)
{
    addPoints(shape, grips, 10, Role::point);
    addPoints(shape, grips, 11, Role::point);
    if (grips.size() == 2)
        addWhole(grips, grips[0].place + (grips[1].place - grips[0].place) * 0.5);
}

// The second grip turns the line about its base point.
void rayGrips(const Shape &shape, Grips &grips)
{
    const auto base = shape.point(10);
    const auto direction = shape.point(11);
    addWhole(grips, base);
    if (base && direction)
        addReshaping(grips, {*base + direction->asVector()});
}

bool turnRay(const Shape &shape, ResbufList &groups, int, const AcGePoint3d &to)
{
    const AcGeVector3d direction = to - *shape.point(10);
    if (!isSize(direction.length()))
        return false;
    const AcGeVector3d unit = direction.normal();
    groups[*shape.find(11)].assign(AcGePoint3d(unit.x, unit.y, unit.z));
    return true;
}

// Circles, arcs, ellipses -------------------------------------------------------------------------

void circleGrips(const Shape &shape, Grips &grips)
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

bool dragQuadrant(const Shape &shape, ResbufList &groups, int, const AcGePoint3d &to)
{
    const AcGeVector3d radius = shape.toPlane(to) - *shape.point(10);
    const double length = std::hypot(radius.x, radius.y);
    if (!isSize(length))
        return false;
    setReal(groups[*shape.find(40)], length);
    return true;
}

/// The three points that an arc goes through, in its plane.
struct ArcPoints {
    AcGePoint3d centre;
    AcGePoint3d start;
    AcGePoint3d end;
    AcGePoint3d middle;
};

std::optional<ArcPoints> arcPoints(const Shape &shape)
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

void arcGrips(const Shape &shape, Grips &grips)
{
    const auto points = arcPoints(shape);
    if (!points)
        return;
    addReshaping(grips,
                 {shape.toWorld(points->start), shape.toWorld(points->end), shape.toWorld(points->middle)});
    addWhole(grips, shape.toWorld(points->centre));
}

/// Centre of the circle through three points of a plane; nothing when they are in a row.
std::optional<AcGePoint3d> circleCentre(const AcGePoint3d &a, const AcGePoint3d &b, const AcGePoint3d &c)
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
bool dragArc(const Shape &shape, ResbufList &groups, int part, const AcGePoint3d &to)
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

struct EllipseAxes {
    AcGeVector3d major;
    AcGeVector3d minor;
};

std::optional<EllipseAxes> ellipseAxes(const Shape &shape)
{
    const auto major = shape.point(11);
    if (!shape.point(10) || !major || !shape.find(40))
        return std::nullopt;
    const AcGeVector3d across = shape.normal().crossProduct(major->asVector());
    return EllipseAxes{major->asVector(), across * shape.real(40, 1.0)};
}

void ellipseGrips(const Shape &shape, Grips &grips)
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
void exchangeAxes(const Shape &shape, ResbufList &groups, EllipseAxes &axes)
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
bool dragAxis(const Shape &shape, ResbufList &groups, int part, const AcGePoint3d &to)
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

// Polylines and splines ---------------------------------------------------------------------------

void lightPolylineGrips(const Shape &shape, Grips &grips)
{
    addPoints(shape, grips, 10, Role::planePoint2d);
}

void polylineGrips(const Shape &shape, Grips &grips)
{
    constexpr std::int64_t kWorldCoordinates = 32 | 64;
    constexpr std::int64_t kFaceRecord = 128;
    for (const AcDbObjectId id : acdbSubEntities(shape.entity().objectId())) {
        const AcDbObjectPointer<AcDbEntity> vertex(id, AcDb::kForRead);
        if (!vertex || vertex->dxfName() != "VERTEX")
            continue;
        const Shape own(*vertex);
        const std::int64_t flags = own.integer(70);
        const auto place = own.point(10);
        if (!place || (flags & (kWorldCoordinates | kFaceRecord)) == kFaceRecord)
            continue;
        const bool isWorld = flags & kWorldCoordinates;
        grips.push_back({.place = isWorld ? *place : shape.toWorld(*place),
                         .action = Grip::moveVertex,
                         .role = isWorld ? Role::point : Role::planePoint,
                         .group = *own.find(10),
                         .vertex = id});
    }
}

void splineGrips(const Shape &shape, Grips &grips)
{
    addPoints(shape, grips, shape.find(10) ? 10 : 11, Role::point);
}

// A curve whose control points moved does not go through its fit points any more.
void dropFitPoints(ResbufList &groups)
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

// Corners -----------------------------------------------------------------------------------------

void solidGrips(const Shape &shape, Grips &grips)
{
    for (const int code : {10, 11, 12, 13})
        addPoints(shape, grips, code, Role::planePoint);
}

void faceGrips(const Shape &shape, Grips &grips)
{
    for (const int code : {10, 11, 12, 13})
        addPoints(shape, grips, code, Role::point);
}

void leaderGrips(const Shape &shape, Grips &grips)
{
    addPoints(shape, grips, 10, Role::point);
}

// Text that is not left-aligned hangs on its second point.
void textGrips(const Shape &shape, Grips &grips)
{
    const int vertical = shape.entity().dxfName() == "TEXT" ? 73 : 74;
    const bool isAligned = shape.find(11) && (shape.integer(72) != 0 || shape.integer(vertical) != 0);
    if (const auto place = shape.point(isAligned ? 11 : 10))
        addWhole(grips, shape.toWorld(*place));
}

void viewportGrips(const Shape &shape, Grips &grips)
{
    if (const auto centre = shape.point(10))
        addWhole(grips, *centre - AcGeVector3d(shape.real(40, 0.0), shape.real(41, 0.0), 0.0) * 0.5);
}

void hatchGrips(const Shape &shape, Grips &grips)
{
    AcDbExtents box;
    if (shape.entity().getGeomExtents(box) == Acad::eOk)
        addWhole(grips, box.minPoint() + (box.maxPoint() - box.minPoint()) * 0.5);
}

// The kinds ---------------------------------------------------------------------------------------

// A dimension shows entities of a block that nobody makes anew, so all of it moves.
constexpr Kind kKinds[] = {
    {"LINE", lineGrips},
    {"POINT", wholeAtPoint<10>},
    {"CIRCLE", circleGrips, dragQuadrant},
    {"ARC", arcGrips, dragArc},
    {"ELLIPSE", ellipseGrips, dragAxis},
    {"LWPOLYLINE", lightPolylineGrips},
    {"POLYLINE", polylineGrips},
    {"SPLINE", splineGrips, nullptr, dropFitPoints},
    {"TEXT", textGrips},
    {"ATTRIB", textGrips},
    {"ATTDEF", textGrips},
    {"MTEXT", wholeAtPoint<10>},
    {"INSERT", wholeAtPlanePoint<10>},
    {"SOLID", solidGrips},
    {"TRACE", solidGrips},
    {"3DFACE", faceGrips},
    {"RAY", rayGrips, turnRay},
    {"XLINE", rayGrips, turnRay},
    {"LEADER", leaderGrips},
    {"DIMENSION", wholeAtPlanePoint<11>},
    {"HATCH", hatchGrips},
    {"IMAGE", wholeAtPoint<10>},
    {"WIPEOUT", wholeAtPoint<10>},
    {"VIEWPORT", viewportGrips},
};

const Kind *kindOf(const AcDbEntity &entity)
{
    const QByteArray name = entity.dxfName();
    const auto row = std::ranges::find(kKinds, std::string_view(name.constData(), name.size()), &Kind::name);
    return row == std::end(kKinds) ? nullptr : &*row;
}

Grips gripsOf(const Kind &kind, const Shape &shape)
{
    Grips grips;
    kind.list(shape, grips);
    return grips;
}

/// Points of a plane stay in it.
AcGeVector3d offsetFor(const Grip &grip, const Shape &shape, const AcGeVector3d &offset)
{
    if (grip.role == Role::point)
        return offset;
    return offset - shape.normal() * shape.normal().dotProduct(offset);
}

void moveGroup(ResbufList &groups, const Grip &grip, const Shape &shape, const AcGeVector3d &offset)
{
    const AcGeMatrix3d moved = AcGeMatrix3d::translation(offsetFor(grip, shape, offset));
    EntityTransform(groups, moved, shape.normal()).apply(grip.role, groups[grip.group]);
}

Acad::ErrorStatus moveVertex(const Grip &grip, const Shape &shape, const AcGeVector3d &offset)
{
    AcDbObjectPointer<AcDbEntity> vertex(grip.vertex, AcDb::kForWrite);
    if (!vertex)
        return vertex.openStatus();
    moveGroup(vertex->editGroups(), grip, shape, offset);
    return Acad::eOk;
}

} // namespace

std::vector<AcGePoint3d> acdbNativeGrips(const AcDbEntity &entity)
{
    std::vector<AcGePoint3d> places;
    if (const Kind *const kind = kindOf(entity)) {
        for (const Grip &grip : gripsOf(*kind, Shape(entity)))
            places.push_back(grip.place);
    }
    return places;
}

Acad::ErrorStatus acdbMoveNativeGrips(AcDbEntity &entity, std::span<const int> grips,
                                      const AcGeVector3d &offset)
{
    const Kind *const kind = kindOf(entity);
    if (!kind)
        return Acad::eInvalidIndex;
    const Shape shape(entity);
    const Grips known = gripsOf(*kind, shape);
    std::vector<int> dragged(grips.begin(), grips.end());
    std::ranges::sort(dragged);
    dragged.erase(std::unique(dragged.begin(), dragged.end()), dragged.end());
    if (dragged.empty() || dragged.front() < 0 || dragged.back() >= int(known.size()))
        return Acad::eInvalidIndex;

    const auto movesAll = [&](int i) { return known[std::size_t(i)].action == Grip::moveAll; };
    if (std::ranges::any_of(dragged, movesAll))
        return entity.transformBy(AcGeMatrix3d::translation(offset));
    for (const int i : dragged) {
        const Grip &grip = known[std::size_t(i)];
        if (grip.action == Grip::moveVertex) {
            if (const Acad::ErrorStatus refused = moveVertex(grip, shape, offset); refused != Acad::eOk)
                return refused;
        } else if (grip.action == Grip::movePoint) {
            moveGroup(entity.editGroups(), grip, shape, offset);
        } else if (!kind->reshape(shape, entity.editGroups(), grip.part, grip.place + offset)) {
            return Acad::eInvalidInput;
        }
    }
    if (kind->finish)
        kind->finish(entity.editGroups());
    return Acad::eOk;
}
