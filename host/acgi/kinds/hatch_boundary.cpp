#include "host/acgi/kinds/hatch_boundary.h"

#include "host/acge/gecurve.h"
#include "host/acgi/kinds/nurbs.h"

#include <algorithm>
#include <optional>

namespace acgi
{

namespace
{

enum Edge : std::int64_t { kNoEdge = 0, kLineEdge = 1, kCircleEdge = 2, kEllipseEdge = 3, kSplineEdge = 4 };

enum PathFlag : std::int64_t { kPolylinePath = 2, kTextBoxPath = 8 };

constexpr int kPerTurn = 128;

/// Elliptic edges file the directions of their ends from the major axis, not the parameters. Whole turns
/// stay.
double ellipseParameter(double direction, double ratio)
{
    if (ratio == 0.0)
        return direction;
    const double parameter = std::atan2(std::sin(direction) / std::abs(ratio), std::cos(direction));
    constexpr double kTurn = 2.0 * kGePi;
    return parameter + kTurn * std::round((direction - parameter) / kTurn);
}

/// The edges of a path, end to end. Where the next one does not begin at the end of the chain, the edge that
/// does so is taken, either way round; what fits nowhere follows as it is filed.
class EdgeChain
{
public:
    explicit EdgeChain(std::vector<Loop> edges) : m_edges(std::move(edges))
    {
        AcDbExtents box;
        for (const Loop &edge : m_edges) {
            for (const AcGePoint3d &point : edge)
                box.addPoint(point);
        }
        constexpr double kGap = 1e-5; // Of the size of the area: what rounding leaves open.
        m_tolerance = box.isValid() ? (box.maxPoint() - box.minPoint()).length() * kGap : 0.0;
    }

    Loop join()
    {
        if (m_edges.empty())
            return {};
        takeFirst();
        while (m_next < m_edges.size()) {
            if (m_budget > 0 && !fits(m_edges[m_next].front()))
                bringFitting();
            append(m_edges[m_next++]);
        }
        return std::move(m_chain);
    }

private:
    bool fits(const AcGePoint3d &point) const { return m_chain.back().isEqualTo(point, m_tolerance); }

    /// The way round in which something goes on from its end.
    void takeFirst()
    {
        append(m_edges[m_next++]);
        if (m_edges.size() < 2 || goesOn())
            return;
        std::ranges::reverse(m_chain);
        if (!goesOn())
            std::ranges::reverse(m_chain);
    }
    bool goesOn()
    {
        return std::any_of(m_edges.begin() + std::ptrdiff_t(m_next), m_edges.end(),
                           [this](const Loop &edge) { return fits(edge.front()) || fits(edge.back()); });
    }

    /// Puts the edge that goes on from the end of the chain next.
    void bringFitting()
    {
        for (std::size_t i = m_next; i < m_edges.size(); ++i, --m_budget) {
            const bool isReversed = !fits(m_edges[i].front());
            if (isReversed && !fits(m_edges[i].back()))
                continue;
            if (isReversed)
                std::ranges::reverse(m_edges[i]);
            std::swap(m_edges[i], m_edges[m_next]);
            return;
        }
    }

    void append(const Loop &edge) { m_chain.insert(m_chain.end(), edge.begin(), edge.end()); }

    std::vector<Loop> m_edges;
    std::size_t m_next = 0;
    Loop m_chain;
    double m_tolerance = 0.0;
    std::int64_t m_budget =
        10'000'000; ///< Comparisons; damaged files may have a million edges that fit nowhere.
};

Loop joinEdges(std::vector<Loop> edges)
{
    return EdgeChain(std::move(edges)).join();
}

/// Collects the boundary paths group by group; the meaning of a code depends on what came before.
class BoundaryReader
{
public:
    explicit BoundaryReader(const EntityGroups &groups)
    {
        const double elevation = groups.point(10).z;
        for (const resbuf &group : groups) {
            if (m_inPaths && (group.restype == 75 || group.restype == 76)) // Style and kind follow the paths.
                break;
            visit(group);
        }
        endPath();
        for (std::vector<Loop> *loops : {&m_loops.bounds, &m_loops.textBoxes}) {
            for (Loop &loop : *loops) {
                for (AcGePoint3d &point : loop)
                    point.z = elevation;
            }
        }
    }
    HatchLoops &loops() { return m_loops; }

private:
    void visit(const resbuf &group)
    {
        if (group.restype == 91) {
            m_inPaths = true;
        } else if (!m_inPaths) {
            return;
        } else if (group.restype == 92) {
            endPath();
            m_isPolyline = group.integer() & kPolylinePath;
            m_isTextBox = group.integer() & kTextBoxPath;
        } else if (group.restype == 97 && m_edge != kSplineEdge) {
            endPath(); // The objects that the path came from follow.
        } else if (m_isPolyline) {
            visitPolyline(group);
        } else {
            visitEdge(group);
        }
    }

    void visitPolyline(const resbuf &group)
    {
        if (group.restype == 10)
            m_polyline.push_back({group.point()});
        else if (group.restype == 42 && !m_polyline.empty())
            m_polyline.back().bulge = group.real();
    }

    void visitEdge(const resbuf &group)
    {
        switch (group.restype) {
        case 72:
            endEdge();
            m_edge = Edge(group.integer());
            break;
        case 10:
            m_curve.controlPoints.push_back(group.point());
            break;
        case 11:
            m_second = group.point();
            m_fit.push_back(m_second);
            break;
        case 12:
            m_startTangent = group.point().asVector();
            break;
        case 13:
            m_endTangent = group.point().asVector();
            break;
        case 40:
            if (m_edge == kSplineEdge)
                m_curve.knots.push_back(group.real());
            else
                m_size = group.real();
            break;
        case 42:
            m_curve.weights.push_back(group.real());
            break;
        case 50:
            m_start = radians(group.real());
            break;
        case 51:
            m_end = radians(group.real());
            break;
        case 73:
            m_counterClockwise = group.integer() != 0;
            break;
        case 94:
            m_curve.degree = int(group.integer());
            break;
        default:
            break;
        }
    }

    void endEdge()
    {
        const Edge edge = std::exchange(m_edge, kNoEdge);
        const NurbsCurve curve = std::exchange(m_curve, NurbsCurve());
        const std::vector<AcGePoint3d> fit = std::exchange(m_fit, {});
        const auto startTangent = std::exchange(m_startTangent, std::nullopt);
        const auto endTangent = std::exchange(m_endTangent, std::nullopt);
        m_path.clear();
        if (edge == kSplineEdge && curve.controlPoints.empty()) {
            appendFitted(AcGeFitSpline3d(fit, startTangent, endTangent));
        } else if (edge == kNoEdge || curve.controlPoints.empty()) {
            return;
        } else if (edge == kLineEdge) {
            m_path = {curve.controlPoints.front(), m_second};
        } else if (edge == kSplineEdge) {
            m_path = curve.samples();
            if (m_path.empty())
                m_path = curve.controlPoints;
        } else {
            appendArc(curve.controlPoints.front(), edge == kCircleEdge);
        }
        if (!m_path.empty())
            m_edges.push_back(std::move(m_path));
    }

    void appendFitted(const AcGeFitSpline3d &spline)
    {
        const std::optional<double> end = spline.getEndParam();
        constexpr int kSamples = 400;
        for (int i = 0; end && i <= kSamples; ++i)
            m_path.push_back(spline.getPointAtParam(*end * i / kSamples));
    }

    // The angles of clockwise arcs are filed with the opposite sign.
    void appendArc(const AcGePoint3d &centre, bool isCircle)
    {
        Arc arc;
        arc.centre = centre;
        arc.u = isCircle ? AcGeVector3d(m_size, 0.0, 0.0) : m_second.asVector();
        arc.v = AcGeVector3d(-arc.u.y, arc.u.x, 0.0) * (isCircle ? 1.0 : m_size);
        const double sign = m_counterClockwise ? 1.0 : -1.0;
        const double start = isCircle ? m_start : ellipseParameter(m_start, m_size);
        const double end = isCircle ? m_end : ellipseParameter(m_end, m_size);
        arc.start = sign * start;
        double along = std::fmod(end - start, 2.0 * kGePi);
        if (along <= 1e-12)
            along += 2.0 * kGePi;
        arc.sweep = sign * along;
        arc.appendSamples(m_path, kPerTurn);
    }

    void endPath()
    {
        endEdge();
        m_path = joinEdges(std::exchange(m_edges, {}));
        for (std::size_t i = 0; i < m_polyline.size(); ++i) {
            const Vertex &from = m_polyline[i];
            const AcGePoint3d &to = m_polyline[(i + 1) % m_polyline.size()].point;
            if (from.bulge != 0.0 && !from.point.isEqualTo(to))
                bulgeArc(from.point, to, from.bulge).appendSamples(m_path, kPerTurn);
            else
                m_path.push_back(from.point);
        }
        m_polyline.clear();
        m_isPolyline = false;
        if (!m_path.empty())
            (m_isTextBox ? m_loops.textBoxes : m_loops.bounds).push_back(std::exchange(m_path, {}));
        m_isTextBox = false;
    }

    bool m_inPaths = false;
    bool m_isPolyline = false;
    bool m_isTextBox = false;
    std::vector<Vertex> m_polyline;
    Edge m_edge = kNoEdge;
    NurbsCurve m_curve; ///< Its first control point is the start or centre of the other edges.
    AcGePoint3d m_second;
    std::vector<AcGePoint3d> m_fit; ///< Of splines that have no control points.
    std::optional<AcGeVector3d> m_startTangent;
    std::optional<AcGeVector3d> m_endTangent;
    double m_size = 0.0; ///< Radius, or ratio of the axes.
    double m_start = 0.0;
    double m_end = 0.0;
    bool m_counterClockwise = true;
    Loop m_path;
    std::vector<Loop> m_edges; ///< Of the path that is being read.
    HatchLoops m_loops;
};

} // namespace

HatchStyle hatchStyle(const EntityGroups &groups)
{
    const std::int64_t style = groups.integer(75);
    return style == 1 ? HatchStyle::outer : style == 2 ? HatchStyle::ignore : HatchStyle::normal;
}

HatchLoops readHatchLoops(const EntityGroups &groups)
{
    HatchLoops loops = std::move(BoundaryReader(groups).loops());
    const auto isDamaged = [](const Loop &loop) {
        return !std::ranges::all_of(loop, [](const AcGePoint3d &p) {
            return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
        });
    };
    std::erase_if(loops.bounds, isDamaged);
    std::erase_if(loops.textBoxes, isDamaged);
    return loops;
}

// Islands -------------------------------------------------------------------------------------------

static bool loopHolds(const Loop &loop, const AcGePoint3d &point)
{
    bool holds = false;
    for (std::size_t i = 0; i < loop.size(); ++i) {
        const AcGePoint3d &from = loop[i];
        const AcGePoint3d &to = loop[(i + 1) % loop.size()];
        if ((from.y > point.y) != (to.y > point.y) &&
            point.x < from.x + (point.y - from.y) / (to.y - from.y) * (to.x - from.x))
            holds = !holds;
    }
    return holds;
}

/// Loops may touch each other at a vertex, so two places of the inner one are asked.
static bool isInside(const Loop &inner, const Loop &outer)
{
    return loopHolds(outer, inner.front()) && loopHolds(outer, inner[inner.size() / 2]);
}

/// How many other loops lie around each, counted as far as 2.
static std::vector<int> nestingDepths(const std::vector<Loop> &loops)
{
    std::vector<int> depths(loops.size(), 0);
    for (std::size_t i = 0; i < loops.size(); ++i) {
        for (std::size_t j = 0; j < loops.size() && depths[i] < 2; ++j)
            depths[i] += i != j && isInside(loops[i], loops[j]);
    }
    return depths;
}

std::vector<Loop> loopsForStyle(std::vector<Loop> loops, HatchStyle style)
{
    constexpr std::size_t kMostSteps = 20'000'000;
    std::size_t points = 0;
    for (const Loop &loop : loops)
        points += loop.size();
    if (style == HatchStyle::normal || loops.size() < 2 || points * loops.size() > kMostSteps)
        return loops;
    const std::vector<int> depths = nestingDepths(loops);
    const int deepest = style == HatchStyle::outer ? 1 : 0;
    std::vector<Loop> kept;
    for (std::size_t i = 0; i < loops.size(); ++i) {
        if (depths[i] <= deepest)
            kept.push_back(std::move(loops[i]));
    }
    return kept;
}

} // namespace acgi
