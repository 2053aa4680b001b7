// The cubic spline through fit points, kept as points and first derivatives (Hermite form).
#include "host/acge/gecurve.h"

#include <algorithm>

static bool isFinite(const AcGePoint3d &point)
{
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

AcGeFitSpline3d::AcGeFitSpline3d(std::span<const AcGePoint3d> fitPoints,
                                 std::optional<AcGeVector3d> startTangent,
                                 std::optional<AcGeVector3d> endTangent)
{
    if (!std::ranges::all_of(fitPoints, isFinite))
        return;
    for (const AcGePoint3d &point : fitPoints) {
        // Points that coincide would make a span without length, over which nothing can be fitted.
        if (!m_points.empty() && m_points.back().isEqualTo(point))
            continue;
        m_knots.push_back(m_points.empty() ? 0.0 : m_knots.back() + m_points.back().distanceTo(point));
        m_points.push_back(point);
    }
    if (m_points.size() >= 2)
        solveTangents(startTangent, endTangent);
}

// Equal second derivatives on both sides of each inner point, and one condition for each end: a row of
// equations with three unknowns each, solved by elimination from the start and substitution from the end.
void AcGeFitSpline3d::solveTangents(std::optional<AcGeVector3d> start, std::optional<AcGeVector3d> end)
{
    const std::size_t last = m_points.size() - 1;
    const auto width = [&](std::size_t i) { return m_knots[i + 1] - m_knots[i]; };
    const auto slope = [&](std::size_t i) { return (m_points[i + 1] - m_points[i]) / width(i); };
    std::vector<double> upper(last + 1, 0.0);
    m_tangents.resize(last + 1);
    const auto eliminate = [&](std::size_t i, double below, double middle, double above, AcGeVector3d right) {
        const double pivot = i == 0 ? middle : middle - below * upper[i - 1];
        upper[i] = above / pivot;
        m_tangents[i] = (i == 0 ? right : right - m_tangents[i - 1] * below) / pivot;
    };

    if (start && !start->isZeroLength())
        eliminate(0, 0.0, 1.0, 0.0, start->normal());
    else
        eliminate(0, 0.0, 2.0, 1.0, slope(0) * 3.0);
    for (std::size_t i = 1; i < last; ++i) {
        const double before = width(i - 1);
        const double after = width(i);
        eliminate(i, after, 2.0 * (before + after), before, (slope(i - 1) * after + slope(i) * before) * 3.0);
    }
    if (end && !end->isZeroLength())
        eliminate(last, 0.0, 1.0, 0.0, end->normal());
    else
        eliminate(last, 1.0, 2.0, 0.0, slope(last - 1) * 3.0);
    for (std::size_t i = last; i-- > 0;)
        m_tangents[i] = m_tangents[i] - m_tangents[i + 1] * upper[i];
}

std::optional<double> AcGeFitSpline3d::getEndParam() const
{
    return m_points.size() >= 2 && std::isfinite(m_knots.back()) ? std::optional(m_knots.back())
                                                                 : std::nullopt;
}

std::size_t AcGeFitSpline3d::spanOf(double &parameter) const
{
    const double inside = std::clamp(parameter, 0.0, m_knots.back());
    const auto after = std::upper_bound(m_knots.begin() + 1, m_knots.end() - 1, inside);
    const std::size_t span = std::size_t(after - m_knots.begin()) - 1;
    parameter = (inside - m_knots[span]) / (m_knots[span + 1] - m_knots[span]);
    return span;
}

AcGePoint3d AcGeFitSpline3d::getPointAtParam(double parameter) const
{
    if (m_points.size() < 2)
        return m_points.empty() ? AcGePoint3d() : m_points.front();
    const std::size_t i = spanOf(parameter);
    const double t = parameter;
    const double width = m_knots[i + 1] - m_knots[i];
    const double end = t * t * (3.0 - 2.0 * t);
    return m_points[i] + (m_points[i + 1] - m_points[i]) * end +
           (m_tangents[i] * (t * (1.0 - t) * (1.0 - t)) - m_tangents[i + 1] * (t * t * (1.0 - t))) * width;
}

AcGeVector3d AcGeFitSpline3d::getFirstDeriv(double parameter) const
{
    if (m_points.size() < 2)
        return {};
    const std::size_t i = spanOf(parameter);
    const double t = parameter;
    const double width = m_knots[i + 1] - m_knots[i];
    return (m_points[i + 1] - m_points[i]) * (6.0 * t * (1.0 - t) / width) +
           m_tangents[i] * ((1.0 - t) * (1.0 - 3.0 * t)) + m_tangents[i + 1] * (t * (3.0 * t - 2.0));
}

std::vector<double> AcGeFitSpline3d::smoothSpans(double) const
{
    return m_knots;
}
