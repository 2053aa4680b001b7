// Drawing of splines and helices: by control points, or through fit points.
#include "host/acgi/kinds/draw_spline.h"
#include "host/acge/gecurve.h"
#include "host/acgi/entity_groups.h"
#include "host/acgi/kinds/kinds.h"
#include "host/acgi/kinds/nurbs.h"

#include <algorithm>

namespace acgi
{

namespace
{

constexpr std::int64_t kClosedSpline = 1;

struct SplineData {
    NurbsCurve curve;
    Loop fitPoints;
    std::optional<AcGeVector3d> startTangent;
    std::optional<AcGeVector3d> endTangent;
    bool closed = false;
};

} // namespace

static SplineData readSpline(const EntityGroups &groups)
{
    SplineData read;
    read.curve.degree = int(std::clamp<std::int64_t>(groups.integer(71, 3), 0, 1000));
    read.closed = groups.integer(70) & kClosedSpline;
    for (const resbuf &group : groups) {
        switch (group.restype) {
        case 10:
            read.curve.controlPoints.push_back(group.point());
            break;
        case 11:
            read.fitPoints.push_back(group.point());
            break;
        case 12:
            read.startTangent = group.point().asVector();
            break;
        case 13:
            read.endTangent = group.point().asVector();
            break;
        case 40:
            read.curve.knots.push_back(group.real());
            break;
        case 41:
            read.curve.weights.push_back(group.real());
            break;
        default:
            break;
        }
    }
    return read;
}

/// Files that leave out what follows from the rest: the repeated points of a periodic curve, even knots.
static void complete(NurbsCurve &curve, bool closed)
{
    const auto degree = std::size_t(std::max(curve.degree, 0));
    const std::size_t count = curve.controlPoints.size();
    if (count <= degree || degree == 0)
        return;
    if (closed && curve.knots.size() == count + 2 * degree + 1) {
        const bool weighted = curve.weights.size() == count;
        for (std::size_t i = 0; i < degree; ++i) {
            curve.controlPoints.push_back(curve.controlPoints[i]);
            if (weighted)
                curve.weights.push_back(curve.weights[i]);
        }
    }
    if (curve.knots.empty()) {
        for (std::size_t i = 0; i <= count + degree; ++i)
            curve.knots.push_back(double(std::clamp(i, degree, count) - degree));
    }
}

Loop fitSplineSamples(std::span<const AcGePoint3d> fitPoints, std::optional<AcGeVector3d> startTangent,
                      std::optional<AcGeVector3d> endTangent)
{
    const AcGeFitSpline3d spline(fitPoints, startTangent, endTangent);
    const std::optional<double> end = spline.getEndParam();
    if (!end)
        return {fitPoints.begin(), fitPoints.end()};
    constexpr std::size_t kMostSamples = 4000;
    const std::size_t perSpan = std::clamp<std::size_t>(kMostSamples / fitPoints.size(), 1, 48);
    Loop samples{fitPoints.front()};
    double parameter = 0.0; // Runs with the chords, as the parameter of the spline does.
    for (std::size_t i = 1; i < fitPoints.size(); ++i) {
        const double chord = fitPoints[i - 1].distanceTo(fitPoints[i]);
        if (chord <= kGeTolerance)
            continue;
        for (std::size_t step = 1; step <= perSpan; ++step)
            samples.push_back(
                spline.getPointAtParam(std::min(parameter + chord * double(step) / double(perSpan), *end)));
        parameter += chord;
    }
    return thinned(samples);
}

static Loop throughFitPoints(SplineData &data)
{
    Loop &points = data.fitPoints;
    const auto given = [](std::optional<AcGeVector3d> &tangent) {
        if (tangent && tangent->isZeroLength())
            tangent.reset();
    };
    given(data.startTangent);
    given(data.endTangent);
    if (data.closed && points.size() > 2) {
        if (points.front().isEqualTo(points.back()))
            points.pop_back();
        // Without tangents the curve goes through its seam as if it were no end.
        if (!data.startTangent && points.size() > 2)
            data.startTangent = data.endTangent = points[1] - points.back();
        points.push_back(points.front());
    }
    return points.empty() ? Loop() : fitSplineSamples(points, data.startTangent, data.endTangent);
}

void drawSpline(const AcDbEntity &entity, AcGiGeometry &sink)
{
    SplineData data = readSpline(EntityGroups(entity, u"AcDbSpline"));
    complete(data.curve, data.closed);
    Loop points = data.curve.samples();
    if (points.empty())
        points = throughFitPoints(data);
    if (points.empty())
        points = data.curve.controlPoints;
    if (!points.empty())
        sink.polyline(std::uint32_t(points.size()), points.data());
}

} // namespace acgi
