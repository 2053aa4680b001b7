// Length along curves by Gauss-Legendre quadrature on pieces that are halved until halving changes
// nothing; the way back by Newton steps inside the piece that holds the wanted length.
#include "host/acge/gecurve.h"

#include <algorithm>
#include <array>

// Points and weights on -1 .. 1.
static constexpr std::array<double, 5> kGaussPoints{-0.9061798459386640, -0.5384693101056831, 0.0,
                                                    0.5384693101056831, 0.9061798459386640};
static constexpr std::array<double, 5> kGaussWeights{
    0.2369268850561891, 0.4786286704993665, 0.5688888888888889, 0.4786286704993665, 0.2369268850561891};

double AcGeCurve3d::lengthBetween(double from, double to) const
{
    const double half = 0.5 * (to - from);
    const double middle = 0.5 * (to + from);
    double sum = 0.0;
    for (std::size_t i = 0; i < kGaussPoints.size(); ++i)
        sum += kGaussWeights[i] * getFirstDeriv(middle + half * kGaussPoints[i]).length();
    return sum * half;
}

void AcGeCurve3d::measure(double from, double to, double length, double tolerance, int depth) const
{
    const double middle = 0.5 * (from + to);
    const double first = lengthBetween(from, middle);
    const double second = lengthBetween(middle, to);
    // Not "greater": a length that is no number ends the halving too.
    if (depth == 0 || !(std::abs(first + second - length) > tolerance)) {
        addMeasure(middle, m_measures.back().length + first);
        addMeasure(to, m_measures.back().length + second);
        return;
    }
    measure(from, middle, first, tolerance, depth - 1);
    measure(middle, to, second, tolerance, depth - 1);
}

const std::vector<AcGeCurve3d::Measure> &AcGeCurve3d::measures() const
{
    const std::optional<double> end = getEndParam();
    if (!m_measures.empty() || !end)
        return m_measures;
    const std::vector<double> spans = smoothSpans(*end);
    std::vector<double> lengths;
    double total = 0.0;
    for (std::size_t i = 1; i < spans.size(); ++i) {
        lengths.push_back(lengthBetween(spans[i - 1], spans[i]));
        total += lengths.back();
    }
    addMeasure(0.0, 0.0);
    // The two halves together are about a thousand times closer than what is compared here.
    constexpr double kTolerance = 1e-8;
    constexpr int kDepth = 24;
    for (std::size_t i = 1; i < spans.size(); ++i)
        measure(spans[i - 1], spans[i], lengths[i - 1], kTolerance * total, kDepth);
    return m_measures;
}

std::optional<double> AcGeCurve3d::getDistAtParam(double parameter) const
{
    const std::vector<Measure> &known = measures();
    if (known.empty() || !std::isfinite(known.back().length))
        return std::nullopt;
    const double inside = std::clamp(parameter, 0.0, known.back().parameter);
    const auto after = std::ranges::upper_bound(known, inside, {}, &Measure::parameter);
    if (after == known.end())
        return known.back().length;
    const Measure &before = *std::prev(after);
    return before.length + lengthBetween(before.parameter, inside);
}

void AcGeCurve3d::addMeasure(double parameter, double length) const
{
    m_measures.push_back({parameter, length, getFirstDeriv(parameter).length()});
}

/// The cubic through both ends with their slopes; straight where the curve stops.
double AcGeCurve3d::guess(const Measure &low, const Measure &high, double distance)
{
    const double length = high.length - low.length;
    const double span = high.parameter - low.parameter;
    const double u = (distance - low.length) / length;
    const double cubic = low.parameter + span * u * u * (3.0 - 2.0 * u) +
                         length / low.speed * u * (1.0 - u) * (1.0 - u) -
                         length / high.speed * u * u * (1.0 - u);
    return cubic > low.parameter && cubic < high.parameter ? cubic : low.parameter + span * u;
}

double AcGeCurve3d::parameterAt(double distance) const
{
    const auto after = std::ranges::upper_bound(m_measures, distance, {}, &Measure::length);
    if (after == m_measures.begin())
        return 0.0;
    if (after == m_measures.end())
        return m_measures.back().parameter;
    const Measure &low = *std::prev(after);
    double from = low.parameter;
    double to = after->parameter;
    double at = guess(low, *after, distance);
    // A step of Newton's squares the error, so the one from here is the last one needed.
    const double nearby = 1e-4 * (after->length - low.length);
    constexpr int kSteps = 60;
    for (int step = 0; step < kSteps; ++step) {
        const double excess = low.length + lengthBetween(low.parameter, at) - distance;
        (excess > 0.0 ? to : from) = at;
        // Where the curve nearly stops, a step leaves the bracket; halve it then.
        const double next = at - excess / getFirstDeriv(at).length();
        const bool isInside = next >= from && next <= to;
        at = isInside ? next : 0.5 * (from + to);
        if (isInside && std::abs(excess) <= nearby)
            break;
    }
    return at;
}

std::optional<AcGePoint3d> AcGeCurve3d::getPointAtDist(double distance) const
{
    const std::vector<Measure> &known = measures();
    if (known.empty() || !std::isfinite(known.back().length) || std::isnan(distance))
        return std::nullopt;
    return getPointAtParam(parameterAt(distance));
}

std::optional<double> AcGeEllipArc3d::getEndParam() const
{
    const AcGeVector3d size = m_centre.asVector() + m_major + m_minor;
    return std::isfinite(size.x + size.y + size.z) ? std::optional(2.0 * kGePi) : std::nullopt;
}

AcGePoint3d AcGeEllipArc3d::getPointAtParam(double parameter) const
{
    return m_centre + m_major * std::cos(parameter) + m_minor * std::sin(parameter);
}

AcGeVector3d AcGeEllipArc3d::getFirstDeriv(double parameter) const
{
    return m_minor * std::cos(parameter) - m_major * std::sin(parameter);
}

std::vector<double> AcGeEllipArc3d::smoothSpans(double end) const
{
    constexpr int kSpans = 8;
    std::vector<double> spans;
    spans.reserve(kSpans + 1);
    for (int i = 0; i <= kSpans; ++i)
        spans.push_back(end * i / kSpans);
    return spans;
}
