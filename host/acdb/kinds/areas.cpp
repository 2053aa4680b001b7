// Solids in a plane, faces and hatches.
#include "host/acdb/kinds/entitykind.h"

using namespace gripping;
using namespace listed;

static constexpr Rule kSolidRules[] = {{10, Role::planePoint}, {11, Role::planePoint}, {12, Role::planePoint},
                                       {13, Role::planePoint}, {38, Role::elevation},  {39, Role::length}};

static constexpr Rule kFaceRules[] = {
    {10, Role::point}, {11, Role::point}, {12, Role::point}, {13, Role::point}};

static void solidGrips(const Shape &shape, Grips &grips)
{
    for (const int code : {10, 11, 12, 13})
        addPoints(shape, grips, code, Role::planePoint);
}

static void faceGrips(const Shape &shape, Grips &grips)
{
    for (const int code : {10, 11, 12, 13})
        addPoints(shape, grips, code, Role::point);
}

namespace
{

/// Walks the groups of a HATCH in their order: the meaning of a code depends on where it stands.
class HatchTransform
{
public:
    explicit HatchTransform(EntityTransform &t) : m_t(t) {}

    void run()
    {
        for (std::size_t i = 0; i < m_t.end(); ++i)
            visit(i);
    }

private:
    enum class Part { header, paths, polylinePath, edgePath, pattern };
    enum Edge { noEdge = 0, line = 1, circularArc = 2, ellipticArc = 3, spline = 4 };

    void visit(std::size_t i)
    {
        resbuf &group = m_t.groups()[i];
        switch (group.restype) {
        case 91:
            m_part = Part::paths;
            return;
        case 92:
            // A 92 before the paths counts the bytes of a preview.
            if (m_part != Part::header)
                m_part = group.integer() & 2 ? Part::polylinePath : Part::edgePath;
            m_edge = noEdge;
            return;
        case 75:
            m_part = Part::pattern;
            return;
        default:
            break;
        }
        switch (m_part) {
        case Part::header:
            if (group.restype == 10)
                m_t.apply(Role::elevationPoint, group);
            break;
        case Part::paths:
            break;
        case Part::polylinePath:
            visitPolyline(group);
            break;
        case Part::edgePath:
            visitEdge(i);
            break;
        case Part::pattern:
            visitPattern(i);
            break;
        }
    }

    void visitPolyline(resbuf &group)
    {
        if (group.restype == 10)
            m_t.apply(Role::planePoint2d, group);
        else if (group.restype == 42)
            m_t.apply(Role::bulge, group);
    }

    void visitEdge(std::size_t i)
    {
        resbuf &group = m_t.groups()[i];
        if (group.restype == 72)
            m_edge = Edge(group.integer());
        else if (group.restype == 10 || (group.restype == 11 && m_edge != ellipticArc))
            m_t.apply(Role::planePoint2d, group);
        else if (group.restype == 11 || group.restype == 12 || group.restype == 13)
            turnVector(group);
        else if (group.restype == 40 && m_edge == circularArc)
            m_t.apply(Role::length, group);
        else if (group.restype == 50 && m_edge == circularArc)
            turnArc(i);
        else if (group.restype == 73 && (m_edge == circularArc || m_edge == ellipticArc) && m_t.mirrored())
            group.assign(std::int64_t(group.integer() ? 0 : 1));
    }

    void turnVector(resbuf &group)
    {
        const AcGeVector3d turned = m_t.inPlane() * group.point().asVector();
        m_t.setPoint(group, {turned.x, turned.y, 0.0});
    }

    // Angles of clockwise arcs are filed with the opposite sign; the sense is the 73 behind them.
    void turnArc(std::size_t i)
    {
        ResbufList &groups = m_t.groups();
        if (i + 2 >= m_t.end() || groups[i + 1].restype != 51 || groups[i + 2].restype != 73)
            return;
        const double base = m_t.turnedAngle(0.0);
        if (sameNumber(base, 0.0))
            return;
        const bool counterClockwise = (groups[i + 2].integer() != 0) != m_t.mirrored();
        const double turn = counterClockwise ? base : -base;
        // Both move by whole turns together, so that a full circle stays one.
        const double whole = std::floor((groups[i].real() + turn) / 360.0) * 360.0;
        m_t.setReal(groups[i], groups[i].real() + turn - whole);
        m_t.setReal(groups[i + 1], groups[i + 1].real() + turn - whole);
    }

    void visitPattern(std::size_t i)
    {
        resbuf &group = m_t.groups()[i];
        switch (group.restype) {
        case 52:
        case 53:
            m_t.apply(Role::planeAngle, group);
            break;
        case 41:
        case 47:
        case 49:
            m_t.apply(Role::length, group);
            break;
        case 43:
            turnPair(i, 44, true);
            break;
        case 45:
            turnPair(i, 46, false);
            break;
        case 10:
            m_t.apply(Role::planePoint2d, group);
            break;
        case 460:
            m_t.setReal(group, m_t.turnedAngle(group.real() * 180.0 / kGePi) * kGePi / 180.0);
            break;
        default:
            break;
        }
    }

    // Pattern lines keep their coordinates in two reals.
    void turnPair(std::size_t i, int secondCode, bool isPoint)
    {
        ResbufList &groups = m_t.groups();
        if (i + 1 >= m_t.end() || groups[i + 1].restype != secondCode)
            return;
        const AcGePoint3d held(groups[i].real(), groups[i + 1].real(), 0.0);
        const AcGeVector3d turned =
            isPoint ? (m_t.inPlane() * held).asVector() : m_t.inPlane() * held.asVector();
        m_t.setReal(groups[i], turned.x);
        m_t.setReal(groups[i + 1], turned.y);
    }

    EntityTransform &m_t;
    Part m_part = Part::header;
    Edge m_edge = noEdge;
};

} // namespace

static void transformHatch(EntityTransform &transform)
{
    HatchTransform(transform).run();
}

static void hatchGrips(const Shape &shape, Grips &grips)
{
    AcDbExtents box;
    if (shape.entity().getGeomExtents(box) == Acad::eOk)
        addWhole(grips, box.minPoint() + (box.maxPoint() - box.minPoint()) * 0.5);
}

std::vector<EntityKind> entitykinds::areas()
{
    return {
        {.dxfName = "SOLID",
         .className = "AcDbSolid",
         .listed = {{{{"AcDbTrace"}, {given(10), given(11), given(12), given(13), thickness(), normal()}}}},
         .transforming = TransformRules{kSolidRules},
         .grips = {solidGrips}},
        {.dxfName = "TRACE",
         .className = "AcDbTrace",
         .listed = {{{{"AcDbTrace"}, {given(10), given(11), given(12), given(13), thickness(), normal()}}}},
         .transforming = TransformRules{kSolidRules},
         .grips = {solidGrips}},
        {.dxfName = "3DFACE",
         .className = "AcDbFace",
         .listed = {{{{"AcDbFace"}, {given(10), given(11), given(12), given(13), integer(70, 0)}}}},
         .transforming = TransformRules{kFaceRules, nullptr, false},
         .grips = {faceGrips}},
        {.dxfName = "HATCH",
         .className = "AcDbHatch",
         .transforming = TransformRules{{}, transformHatch},
         .grips = {hatchGrips}},
    };
}
