#include "host/acgi/kinds/nurbs.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace acgi
{

static constexpr int kHighestDegree = 25;

bool NurbsCurve::isValid() const
{
    const std::size_t count = controlPoints.size();
    return degree >= 1 && degree <= kHighestDegree && count > std::size_t(degree) &&
           knots.size() == count + std::size_t(degree) + 1 && std::ranges::is_sorted(knots) &&
           std::ranges::all_of(knots, [](double knot) { return std::isfinite(knot); }) &&
           (weights.empty() || weights.size() == count) &&
           std::ranges::all_of(weights, [](double weight) { return weight > 0.0 && std::isfinite(weight); });
}

std::size_t NurbsCurve::spanOf(double parameter) const
{
    const auto first = knots.begin() + degree;
    const auto last = knots.end() - degree - 1;
    const auto after = std::upper_bound(first, last, parameter);
    std::size_t span = std::size_t(after - knots.begin()) - 1;
    // At the very end the last span that has a length counts.
    while (span > std::size_t(degree) && knots[span] == knots[span + 1])
        --span;
    return span;
}

// De Boor's algorithm in homogeneous coordinates.
AcGePoint3d NurbsCurve::at(double parameter) const
{
    struct Homogeneous {
        AcGeVector3d p;
        double w;
    };
    std::array<Homogeneous, kHighestDegree + 1> d{};
    const std::size_t span = spanOf(parameter);
    const auto p = std::size_t(degree);
    for (std::size_t j = 0; j <= p; ++j) {
        const std::size_t i = span - p + j;
        const double w = weights.empty() ? 1.0 : weights[i];
        d[j] = {controlPoints[i].asVector() * w, w};
    }
    for (std::size_t r = 1; r <= p; ++r) {
        for (std::size_t j = p; j >= r; --j) {
            const double low = knots[span - p + j];
            const double high = knots[span + 1 + j - r];
            const double a = high > low ? (parameter - low) / (high - low) : 0.0;
            d[j] = {d[j - 1].p * (1.0 - a) + d[j].p * a, d[j - 1].w * (1.0 - a) + d[j].w * a};
        }
    }
    return AcGePoint3d() + d[p].p / d[p].w;
}

std::vector<AcGePoint3d> NurbsCurve::samples() const
{
    if (!isValid())
        return {};
    constexpr std::size_t kMostSamples = 2000;
    const std::size_t spans = controlPoints.size() - std::size_t(degree);
    const std::size_t wanted = degree == 1 ? 1 : 48;
    const std::size_t perSpan = std::clamp<std::size_t>(kMostSamples / spans, 1, wanted);
    // Curves with more spans than samples skip whole spans.
    const std::size_t stride = std::max<std::size_t>(1, spans / kMostSamples);
    std::vector<AcGePoint3d> points;
    const auto p = std::size_t(degree);
    for (std::size_t span = p; span < controlPoints.size(); span += stride) {
        const double low = knots[span];
        const double high = knots[std::min(span + stride, controlPoints.size())];
        if (high <= low)
            continue;
        for (std::size_t i = 0; i < perSpan; ++i)
            points.push_back(at(low + (high - low) * double(i) / double(perSpan)));
    }
    points.push_back(at(knots[controlPoints.size()]));
    return thinned(points);
}

std::vector<AcGePoint3d> thinned(const std::vector<AcGePoint3d> &chain)
{
    constexpr double kTurn = 0.0175; // One degree.
    if (chain.size() < 3)
        return chain;
    std::vector<AcGePoint3d> kept{chain.front()};
    for (std::size_t i = 1; i + 1 < chain.size(); ++i) {
        const AcGeVector3d before = chain[i] - kept.back();
        const AcGeVector3d after = chain[i + 1] - chain[i];
        const AcGeVector3d step = chain[i] - chain[i - 1];
        const bool turns = before.crossProduct(after).length() > kTurn * std::abs(before.dotProduct(after)) ||
                           before.dotProduct(after) < 0.0;
        if (turns || step.x * after.x < 0.0 || step.y * after.y < 0.0)
            kept.push_back(chain[i]);
    }
    kept.push_back(chain.back());
    return kept;
}

} // namespace acgi
