#include "helpers/ink_relay/ink_curve.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace ink
{

using Path = std::vector<QPointF>;

// All in pixels.
static constexpr double kNearest = 1.0;    ///< Samples closer together tell of the device, not of the hand.
static constexpr double kTremble = 1.0;    ///< How far steadying may move a sample; more would cut corners.
static constexpr double kCurveStep = 3.0;  ///< Between points of a curve, before thinning.
static constexpr double kTolerance = 0.35; ///< How far thinning may leave the path.

static double length(const QPointF &v)
{
    return std::hypot(v.x(), v.y());
}

static QPointF limited(const QPointF &v, double limit)
{
    const double size = length(v);
    return size > limit ? v * (limit / size) : v;
}

/// Keeps the last sample, which is where the hand was lifted.
static Path apart(std::span<const QPointF> samples)
{
    Path path;
    for (const QPointF &sample : samples) {
        if (path.empty() || length(sample - path.back()) >= kNearest)
            path.push_back(sample);
    }
    if (path.size() > 1)
        path.back() = samples.back();
    return path;
}

static Path steadied(const Path &path)
{
    Path steady = path;
    for (std::size_t i = 1; i + 1 < path.size(); ++i) {
        const QPointF middle = (path[i - 1] + path[i + 1]) / 2.0;
        steady[i] += limited((middle - path[i]) / 2.0, kTremble);
    }
    return steady;
}

/// The direction of the path at a sample; zero at the ends and where it turns by a right angle or more.
static QPointF tangent(const Path &path, std::size_t i)
{
    if (i == 0 || i + 1 == path.size())
        return {};
    const QPointF in = path[i] - path[i - 1];
    const QPointF out = path[i + 1] - path[i];
    const double straightness = QPointF::dotProduct(in, out) / (length(in) * length(out));
    return (in + out) / 2.0 * std::max(straightness, 0.0);
}

static QPointF onCurve(const QPointF (&control)[4], double t)
{
    const double s = 1.0 - t;
    return control[0] * (s * s * s) + control[1] * (3 * s * s * t) + control[2] * (3 * s * t * t) +
           control[3] * (t * t * t);
}

static Path curve(const Path &path)
{
    Path points{path.front()};
    for (std::size_t i = 0; i + 1 < path.size(); ++i) {
        // The handles stay short beside the distance, so that the curve makes no loops.
        const double distance = length(path[i + 1] - path[i]);
        const QPointF leaving = limited(tangent(path, i) / 3.0, distance / 3.0);
        const QPointF arriving = limited(tangent(path, i + 1) / 3.0, distance / 3.0);
        const QPointF control[] = {path[i], path[i] + leaving, path[i + 1] - arriving, path[i + 1]};
        const int steps = std::max(1, int(distance / kCurveStep));
        for (int step = 1; step <= steps; ++step)
            points.push_back(onCurve(control, double(step) / steps));
    }
    return points;
}

static double distanceFrom(const QPointF &a, const QPointF &b, const QPointF &point)
{
    const QPointF along = b - a;
    const double squared = QPointF::dotProduct(along, along);
    const double share =
        squared > 0.0 ? std::clamp(QPointF::dotProduct(point - a, along) / squared, 0.0, 1.0) : 0.0;
    return length(point - (a + along * share));
}

/// Douglas and Peucker: between two kept points, the farthest one is kept while it is too far from their
/// line.
static Path thinned(const Path &path)
{
    std::vector<bool> kept(path.size());
    kept.front() = kept.back() = true;
    std::vector<std::pair<std::size_t, std::size_t>> pieces{{0, path.size() - 1}};
    while (!pieces.empty()) {
        const auto [first, last] = pieces.back();
        pieces.pop_back();
        std::size_t farthest = first;
        double distance = kTolerance;
        for (std::size_t i = first + 1; i < last; ++i) {
            if (const double d = distanceFrom(path[first], path[last], path[i]); d > distance) {
                farthest = i;
                distance = d;
            }
        }
        if (farthest == first)
            continue;
        kept[farthest] = true;
        pieces.emplace_back(first, farthest);
        pieces.emplace_back(farthest, last);
    }
    Path points;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (kept[i])
            points.push_back(path[i]);
    }
    return points;
}

std::vector<QPointF> strokeOf(std::span<const QPointF> samples)
{
    const Path path = apart(samples);
    return path.size() < 2 ? path : thinned(curve(steadied(path)));
}

} // namespace ink
