#include "host/acdb/dbtransform.h"

#include "host/acdb/entitytransform.h"
#include "host/acdb/owngroups.h"

#include <algorithm>
#include <cmath>

namespace
{

struct Kind {
    std::string_view name;
    std::span<const Rule> rules;
    /// What rules cannot say; runs after them.
    void (*finish)(EntityTransform &) = nullptr;
    /// Group 210 is the plane of the entity.
    bool hasNormal = true;
};

bool isSimilarity(const AcGeMatrix3d &matrix)
{
    const AcGeVector3d x = matrix * AcGeVector3d::kXAxis;
    const AcGeVector3d y = matrix * AcGeVector3d::kYAxis;
    const AcGeVector3d z = matrix * AcGeVector3d::kZAxis;
    const double size = x.length();
    if (!std::isfinite(size) || size < 1e-100)
        return false;
    constexpr double kAllowed = 1e-6;
    const auto equal = [&](const AcGeVector3d &v) { return std::abs(v.length() - size) <= kAllowed * size; };
    const auto square = [&](const AcGeVector3d &a, const AcGeVector3d &b) {
        return std::abs(a.dotProduct(b)) <= kAllowed * size * size;
    };
    return equal(y) && equal(z) && square(x, y) && square(y, z) && square(z, x);
}

// The kinds whose rules are not the whole story ----------------------------------------------------

void finishArc(EntityTransform &t)
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

// Parameters run from the major axis counter-clockwise about the normal; a reflection reverses them.
void finishEllipse(EntityTransform &t)
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

void finishLightPolyline(EntityTransform &t)
{
    if (!t.find(38))
        t.setReal(38, (t.inPlane() * AcGePoint3d()).z, 0.0, 70);
}

void finishPolyline(EntityTransform &t)
{
    constexpr int k3dOrMesh = 8 | 16 | 64;
    resbuf *const base = t.find(10);
    if (base && !(t.integer(70, 0) & k3dOrMesh))
        t.apply(Role::elevationPoint, *base);
}

void finishVertex(EntityTransform &t)
{
    constexpr int kWorldCoordinates = 32 | 64;
    constexpr int kFaceRecord = 128;
    const std::int64_t flags = t.integer(70, 0);
    resbuf *const position = t.find(10);
    if (!position || (flags & (kWorldCoordinates | kFaceRecord)) == kFaceRecord)
        return;
    t.apply(flags & kWorldCoordinates ? Role::point : Role::planePoint, *position);
}

// A reflected text is a text that runs backward: its up direction is what turns.
double backwardAngle(const EntityTransform &t, double degrees)
{
    return wrapDegrees(t.turnedAngle(degrees + 90.0) - 90.0);
}

constexpr Rule kMTextRules[] = {
    {10, Role::point},  {11, Role::direction}, {40, Role::length}, {41, Role::length},
    {42, Role::length}, {43, Role::length},    {46, Role::length},
};

double degreesInPlane(const AcGeVector3d &direction, const AcGeVector3d &normal)
{
    const AcGeVector3d seen = AcGeMatrix3d::planeToWorld(normal).inverse() * direction;
    return std::atan2(seen.y, seen.x) * 180.0 / kGePi;
}

double unstatedMTextAngle(const AcGeVector3d &normal)
{
    return degreesInPlane(acdbUnstatedTextDirection(normal), normal);
}

// The rotation of an MTEXT, whose plane a reflection shows from behind.
double turnedMTextAngle(const EntityTransform &t, double degrees)
{
    const double angle = degrees * kGePi / 180.0;
    const AcGeVector3d along = t.turned(AcGeMatrix3d::planeToWorld(t.normal()) *
                                        AcGeVector3d(std::cos(angle), std::sin(angle), 0.0));
    const AcGeVector3d normal = t.mirrored() ? -t.newNormal() : t.newNormal();
    const double turned = degreesInPlane(along, normal);
    return std::abs(std::remainder(turned - degrees, 360.0)) < 1e-12 ? degrees : wrapDegrees(turned);
}

// Seen from behind: up is normal x direction, so reversing the normal reflects the text.
void finishMText(EntityTransform &t)
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

void finishText(EntityTransform &t)
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

void finishShape(EntityTransform &t)
{
    const double angle = t.real(50, 0.0);
    t.setReal(50, t.mirrored() ? backwardAngle(t, angle) : t.turnedAngle(angle), 0.0, 40);
    if (t.mirrored())
        t.setReal(41, -t.real(41, 1.0), 1.0, 40);
}

// The X axis turns; in a reflection the Y axis then points the other way.
void finishInsert(EntityTransform &t)
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

void finishDimension(EntityTransform &t)
{
    // Group 51 is the negative angle of the horizontal direction.
    if (resbuf *const horizontal = t.find(51); horizontal || !sameNumber(t.turnedAngle(0.0), 0.0))
        t.setReal(51, wrapDegrees(-t.turnedAngle(-(horizontal ? horizontal->real() : 0.0))), 0.0, 10);
    const std::int64_t type = t.integer(70, 0) & 7;
    if (resbuf *const angle = t.find(50))
        t.setReal(*angle, t.turnedAngle(angle->real()));
    else if (type == 0)
        t.setReal(50, t.turnedAngle(0.0), 0.0, 14);
    constexpr std::int64_t kAngular = 2;
    constexpr std::int64_t kAngular3Point = 5;
    resbuf *const measured = t.find(42);
    if (measured && type != kAngular && type != kAngular3Point)
        t.apply(Role::length, *measured);
}

// The kinds ----------------------------------------------------------------------------------------

// clang-format off
constexpr Rule kLineRules[] = {{10, Role::point}, {11, Role::point}, {39, Role::length}};
constexpr Rule kPointRules[] = {{10, Role::point}, {39, Role::length}, {50, Role::planeAngle}};
constexpr Rule kCircleRules[] = {{10, Role::planePoint}, {40, Role::length}, {39, Role::length}};
constexpr Rule kEllipseRules[] = {{10, Role::point}, {11, Role::vector}};
constexpr Rule kLightPolylineRules[] = {
    {10, Role::planePoint2d}, {38, Role::elevation}, {39, Role::length}, {40, Role::length},
    {41, Role::length}, {42, Role::bulge}, {43, Role::length}};
constexpr Rule kPolylineRules[] = {{39, Role::length}, {40, Role::length}, {41, Role::length}};
constexpr Rule kVertexRules[] = {
    {40, Role::length}, {41, Role::length}, {42, Role::bulge}, {50, Role::planeAngle}};
constexpr Rule kSplineRules[] = {
    {10, Role::point}, {11, Role::point}, {12, Role::direction}, {13, Role::direction}, {210, Role::direction}};
constexpr Rule kTextRules[] = {
    {10, Role::planePoint}, {11, Role::planePoint}, {39, Role::length}, {40, Role::length}};
constexpr Rule kShapeRules[] = {{10, Role::planePoint}, {39, Role::length}, {40, Role::length}};
constexpr Rule kPlacedRules[] = {{10, Role::planePoint}};
constexpr Rule kSolidRules[] = {
    {10, Role::planePoint}, {11, Role::planePoint}, {12, Role::planePoint}, {13, Role::planePoint},
    {38, Role::elevation}, {39, Role::length}};
constexpr Rule kFaceRules[] = {
    {10, Role::point}, {11, Role::point}, {12, Role::point}, {13, Role::point}};
constexpr Rule kDimensionRules[] = {
    {10, Role::point}, {11, Role::planePoint}, {12, Role::planePoint}, {13, Role::point},
    {14, Role::point}, {15, Role::point}, {16, Role::planePoint}, {40, Role::length}, {52, Role::turn}};
constexpr Rule kLeaderRules[] = {
    {10, Role::point}, {40, Role::length}, {41, Role::length}, {211, Role::direction},
    {212, Role::vector}, {213, Role::vector}};
constexpr Rule kMultilineRules[] = {
    {10, Role::point}, {11, Role::point}, {12, Role::direction}, {13, Role::direction},
    {40, Role::length}, {41, Role::length}, {42, Role::length}};
constexpr Rule kRayRules[] = {{10, Role::point}, {11, Role::direction}};
constexpr Rule kViewportRules[] = {{10, Role::point}, {40, Role::length}, {41, Role::length}};
constexpr Rule kImageRules[] = {{10, Role::point}, {11, Role::vector}, {12, Role::vector}};
constexpr Rule kToleranceRules[] = {{10, Role::point}, {11, Role::direction}};

constexpr Kind kKinds[] = {
    {"LINE", kLineRules},
    {"POINT", kPointRules},
    {"CIRCLE", kCircleRules},
    {"ARC", kCircleRules, finishArc},
    {"ELLIPSE", kEllipseRules, finishEllipse},
    {"LWPOLYLINE", kLightPolylineRules, finishLightPolyline},
    {"POLYLINE", kPolylineRules, finishPolyline},
    {"VERTEX", kVertexRules, finishVertex, false},
    {"SEQEND", {}, nullptr, false},
    {"SPLINE", kSplineRules, nullptr, false},
    {"TEXT", kTextRules, finishText},
    {"ATTRIB", kTextRules, finishText},
    {"ATTDEF", kTextRules, finishText},
    {"MTEXT", kMTextRules, finishMText, false},
    {"SHAPE", kShapeRules, finishShape},
    {"INSERT", kPlacedRules, finishInsert},
    {"PDFUNDERLAY", kPlacedRules, finishInsert},
    {"DWFUNDERLAY", kPlacedRules, finishInsert},
    {"DGNUNDERLAY", kPlacedRules, finishInsert},
    {"HATCH", {}, transformHatch},
    {"SOLID", kSolidRules},
    {"TRACE", kSolidRules},
    {"3DFACE", kFaceRules, nullptr, false},
    {"DIMENSION", kDimensionRules, finishDimension},
    {"LEADER", kLeaderRules},
    {"MULTILEADER", {}, transformMultileader, false},
    {"MLEADER", {}, transformMultileader, false},
    {"MLINE", kMultilineRules},
    {"RAY", kRayRules, nullptr, false},
    {"XLINE", kRayRules, nullptr, false},
    {"VIEWPORT", kViewportRules, nullptr, false},
    {"IMAGE", kImageRules, nullptr, false},
    {"WIPEOUT", kImageRules, nullptr, false},
    {"TOLERANCE", kToleranceRules},
};
// clang-format on

AcGeVector3d ownNormal(const ResbufList &groups)
{
    return OwnGroups(groups).normal().normal();
}

} // namespace

Acad::ErrorStatus acdbTransformGroups(ResbufList &groups, const AcGeMatrix3d &matrix,
                                      const AcGeVector3d &ownerNormal)
{
    const resbuf *const name = findGroup(groups, 0);
    if (!name)
        return Acad::eNotApplicable;
    const QByteArray dxfName = name->text().toLatin1();
    const auto kind =
        std::ranges::find(kKinds, std::string_view(dxfName.constData(), dxfName.size()), &Kind::name);
    if (kind == std::end(kKinds))
        return Acad::eNotApplicable;
    if (!isSimilarity(matrix))
        return Acad::eInvalidInput;

    ResbufList moved = groups;
    EntityTransform transform(moved, matrix, dxfName == "VERTEX" ? ownerNormal : ownNormal(groups));
    transform.applyRules(kind->rules);
    if (kind->finish)
        kind->finish(transform);
    if (kind->hasNormal)
        transform.setNormal(transform.newNormal());
    transform.applyExtendedData();
    if (transform.overflows())
        return Acad::eInvalidInput;
    groups = std::move(moved);
    return Acad::eOk;
}

AcGeVector3d acdbUnstatedTextDirection(const AcGeVector3d &normal)
{
    constexpr double kInPlane = 1e-6;
    const bool isWorld = std::abs(normal.normal().dotProduct(AcGeVector3d::kXAxis)) < kInPlane;
    return isWorld ? AcGeVector3d::kXAxis : AcGeMatrix3d::planeToWorld(normal) * AcGeVector3d::kXAxis;
}
