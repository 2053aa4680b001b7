// Length along curves by Simpson's rule on pieces that are halved until halving changes next to nothing; the
// way back by the cubic through the ends of the piece that holds the wanted length.
#include "host/acge/gecurve.h"

#include <algorithm>

AcGeCurve3d::Sample AcGeCurve3d::sampleAt(double parameter) const
{
    return {parameter, getFirstDeriv(parameter).length()};
}

double AcGeCurve3d::lengthOf(const Sample &from, const Sample &middle, const Sample &to)
{
    return (to.parameter - from.parameter) * (from.speed + 4.0 * middle.speed + to.speed) / 6.0;
}

void AcGeCurve3d::measure(const Sample &from, const Sample &middle, const Sample &to, double tolerance,
                          int depth) const
{
    const Sample before = sampleAt(0.5 * (from.parameter + middle.parameter));
    const Sample after = sampleAt(0.5 * (middle.parameter + to.parameter));
    const double first = lengthOf(from, before, middle);
    const double second = lengthOf(middle, after, to);
    const double change = first + second - lengthOf(from, middle, to);
    // Not "greater": a length that is no number ends the halving too.
    if (depth == 0 || !(std::abs(change) > tolerance)) {
        // Halving again would change a sixteenth of that, and so on.
        const double rest = change / 15.0 / 2.0;
        m_measures.push_back({middle, m_measures.back().length + first + rest});
        m_measures.push_back({to, m_measures.back().length + second + rest});
        return;
    }
    measure(from, before, middle, tolerance, depth - 1);
    measure(middle, after, to, tolerance, depth - 1);
}

const std::vector<AcGeCurve3d::Measure> &AcGeCurve3d::measures() const
{
    const std::optional<double> end = getEndParam();
    if (!m_measures.empty() || !end)
        return m_measures;
    std::vector<Sample> samples{sampleAt(0.0)}; // Ends of the spans, and their middles.
    double total = 0.0;
    const std::vector<double> spans = smoothSpans(*end);
    for (std::size_t i = 1; i < spans.size(); ++i) {
        samples.push_back(sampleAt(0.5 * (spans[i - 1] + spans[i])));
        samples.push_back(sampleAt(spans[i]));
        total += lengthOf(samples[2 * i - 2], samples[2 * i - 1], samples[2 * i]);
    }
    constexpr double kTolerance = 1e-6;
    constexpr int kDepth = 24;
    m_measures.push_back({samples.front(), 0.0});
    for (std::size_t i = 2; i < samples.size(); i += 2)
        measure(samples[i - 2], samples[i - 1], samples[i], kTolerance * total, kDepth);
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
    return before.length + lengthOf(before, sampleAt(0.5 * (before.parameter + inside)), sampleAt(inside));
}

/// By the cubic through both ends with their slopes; straight where the curve stops.
double AcGeCurve3d::parameterBetween(const Measure &low, const Measure &high, double distance)
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
    return parameterBetween(*std::prev(after), *after, distance);
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
