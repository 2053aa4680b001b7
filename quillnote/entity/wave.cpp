#include "quillnote/entity/wave.h"

#include "host/aced/edfrontend.h"

#include <algorithm>
#include <cmath>

// Every bump is the same figure, moved, turned and scaled; so it is computed once, from (0, 0) to (1, 0),
// and taken to its place without sines and cosines.
namespace
{

// The circle passes through `a` but not quite through `b`: its centre lies 36 degrees off the chord, so the
// bump leans forward and neighbours overlap a little.
constexpr double kRadius = 0.707167811865;
constexpr double kLean = kGePi / 5.0;
constexpr double kBandShare = 0.25;
constexpr std::size_t kMiddle = 6;

constexpr std::size_t kMostBumps = 99;

WaveBand unitBand()
{
    const AcGePoint3d centre = polarOffset({}, kLean, kRadius);
    const double first = directionAngle(centre, {});
    double sweep = directionAngle(centre, {1.0, 0.0, 0.0}) - first;
    if (sweep <= 0.0)
        sweep += 2.0 * kGePi;
    WaveBand band;
    for (std::size_t k = 0; k < kBumpSamples; ++k) {
        const double angle = first + double(k) * sweep / double(kBumpSamples);
        const double share = double(kBumpSamples - 1 - k) / double(kBumpSamples - 1);
        band.inner[k] = polarOffset(centre, angle, kRadius);
        band.outer[k] = polarOffset(centre, angle, kRadius * (1.0 + kBandShare * share));
    }
    return band;
}

const WaveBand kUnitBand = unitBand();
const acgi::Arc kUnitArc = *acgi::arcThrough({}, kUnitBand.inner[kMiddle], {1.0, 0.0, 0.0});

/// From the unit bump to a bump.
class BumpPlace
{
public:
    explicit BumpPlace(const WaveBump &bump) : m_origin(bump.a), m_chord(bump.b - bump.a) {}
    AcGePoint3d operator()(const AcGePoint3d &unit) const
    {
        return {m_origin.x + m_chord.x * unit.x - m_chord.y * unit.y,
                m_origin.y + m_chord.x * unit.y + m_chord.y * unit.x, 0.0};
    }
    AcGeVector3d operator()(const AcGeVector3d &unit) const
    {
        return {m_chord.x * unit.x - m_chord.y * unit.y, m_chord.x * unit.y + m_chord.y * unit.x, 0.0};
    }

private:
    AcGePoint3d m_origin;
    AcGeVector3d m_chord;
};

AcGePoint3d inPlane(const AcGePoint3d &point)
{
    return {point.x, point.y, 0.0};
}

/// Rounded to whole steps, and one more: the number of division points. Not above one too many.
std::size_t divisionPoints(double length, double step)
{
    const double count = std::floor(length / step + 0.5) + 1.0;
    return count <= double(kMostBumps + 1) ? std::size_t(count) : kMostBumps + 2;
}

// The circular arc through both ends and the middle.
void drawThin(std::span<const WaveBump> bumps, const AcGiCommonDraw &context)
{
    for (const WaveBump &bump : bumps) {
        const BumpPlace place(bump);
        context.geometry().arc({.centre = place(kUnitArc.centre),
                                .u = place(kUnitArc.u),
                                .v = place(kUnitArc.v),
                                .start = kUnitArc.start,
                                .sweep = kUnitArc.sweep});
    }
}

// Straight to fill(), which is what polygon() of a filling pen comes to, so that one loop serves all pieces.
void drawThick(std::span<const WaveBump> bumps, const AcGiCommonDraw &context)
{
    acgi::Loop piece(4);
    for (const WaveBump &bump : bumps) {
        const WaveBand band = waveBand(bump);
        for (std::size_t k = 0; k + 1 < kBumpSamples; ++k) {
            piece[0] = band.inner[k];
            piece[1] = band.outer[k];
            piece[2] = band.outer[k + 1];
            piece[3] = band.inner[k + 1];
            context.geometry().fill(std::span(&piece, 1));
        }
    }
}

} // namespace

WaveBand waveBand(const WaveBump &bump)
{
    const BumpPlace place(bump);
    WaveBand band;
    std::ranges::transform(kUnitBand.inner, band.inner.begin(), place);
    std::ranges::transform(kUnitBand.outer, band.outer.begin(), place);
    return band;
}

AcGePoint3d waveMiddle(const WaveBump &bump)
{
    return BumpPlace(bump)(kUnitBand.inner[kMiddle]);
}

void waveArc(std::vector<WaveBump> &bumps, const AcGePoint3d &a, const AcGePoint3d &b)
{
    const WaveBump bump{inPlane(a), inPlane(b)};
    if (bump.a.distanceTo(bump.b) >= kShortestChord)
        bumps.push_back(bump);
}

void waveAlongSegment(std::vector<WaveBump> &bumps, const AcGePoint3d &a, const AcGePoint3d &b, double step)
{
    const AcGePoint3d start = inPlane(a);
    const AcGeVector3d whole = inPlane(b) - start;
    const double length = whole.length();
    if (!std::isfinite(length))
        return;
    if (!(step >= 0.0001))
        step = 1.0;
    // A side that would need too many gets exactly as many as are allowed.
    const std::size_t points = std::min(divisionPoints(length, step), kMostBumps + 1);
    if (points < 2)
        return;
    AcGePoint3d from = start;
    for (std::size_t j = 1; j < points; ++j) {
        const AcGePoint3d to = start + whole * (double(j) / double(points - 1));
        waveArc(bumps, from, to);
        from = to;
    }
}

void waveAlongCurve(std::vector<WaveBump> &bumps, const AcGeCurve3d &curve, double step)
{
    const std::optional<double> end = curve.getEndParam();
    if (!end) {
        acutPrintf(QStringLiteral("drawSolidArcsOnSpline getEndParam Err1"));
        return;
    }
    const std::optional<double> length = curve.getDistAtParam(*end);
    if (!length) {
        acutPrintf(QStringLiteral("drawSolidArcsOnSpline getEndParam Err2"));
        return;
    }
    if (!(step >= 0.001))
        step = 1.0;
    const double wanted = std::trunc(*length / step) + 2.0;
    const std::size_t points = wanted < double(kMostBumps + 1) ? std::size_t(wanted) : kMostBumps + 1;
    AcGePoint3d from = *curve.getPointAtDist(0.0);
    for (std::size_t j = 1; j < points; ++j) {
        const AcGePoint3d to = *curve.getPointAtDist(double(j) * *length / double(points - 1));
        waveArc(bumps, from, to);
        from = to;
    }
}

void drawWaves(std::span<const WaveBump> bumps, bool thin, const AcGiCommonDraw &context)
{
    context.subEntityTraits().setFillType(kAcGiFillAlways);
    thin ? drawThin(bumps, context) : drawThick(bumps, context);
}

void WaveMiddles::clear()
{
    m_slots.clear();
}

void WaveMiddles::add(std::span<const WaveBump> bumps)
{
    for (const WaveBump &bump : bumps) {
        if (m_slots.size() < kSlots)
            m_slots.push_back(waveMiddle(bump));
        else
            m_slots.back() = waveMiddle(bump);
        m_chord = bump.a.distanceTo(bump.b);
    }
}
