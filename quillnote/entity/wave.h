// Waves: chains of bumps along segments and curves, which most outlines of a mark are made of.
//
// All of this lies in the plane z = 0, whatever height the given points have. Seen along the direction of
// travel a bump bulges to the right.
#pragma once

#include "host/acge/gecurve.h"
#include "host/acgi/world_draw.h"

#include <array>
#include <span>
#include <vector>

/// One bump, from a to b; at least kShortestChord apart.
struct WaveBump {
    AcGePoint3d a;
    AcGePoint3d b;
    friend bool operator==(const WaveBump &, const WaveBump &) = default;
};

inline constexpr double kShortestChord = 0.001;
/// A bump is cut into 11 pieces, between 12 directions of its circle.
inline constexpr std::size_t kBumpSamples = 12;

/// The filled sickle of a bump: its inner edge on the circle, its outer edge from a quarter of the radius
/// outside the circle at `a` to the circle itself.
struct WaveBand {
    std::array<AcGePoint3d, kBumpSamples> inner;
    std::array<AcGePoint3d, kBumpSamples> outer;
};
WaveBand waveBand(const WaveBump &bump);
/// The middle of a bump: the seventh point of the inner edge.
AcGePoint3d waveMiddle(const WaveBump &bump);

// The following append; nothing is appended where there is nothing to draw.

/// Nothing when the points are closer than kShortestChord.
void waveArc(std::vector<WaveBump> &bumps, const AcGePoint3d &a, const AcGePoint3d &b);
/// Bumps about `step` long, at most 99, all of one length. A segment shorter than half a step has none. A
/// step below 0.0001 counts as 1.
void waveAlongSegment(std::vector<WaveBump> &bumps, const AcGePoint3d &a, const AcGePoint3d &b, double step);
/// Bumps of equal arc length, at most `step` each as long as 99 suffice. A step below 0.001 counts as 1. A
/// curve without end or length has no bumps, and that is said on the command line.
void waveAlongCurve(std::vector<WaveBump> &bumps, const AcGeCurve3d &curve, double step);

/// With the pen's colour: thick as eleven filled pieces a bump, thin as one circular arc.
void drawWaves(std::span<const WaveBump> bumps, bool thin, const AcGiCommonDraw &context);

/// Middles of the bumps of one drawing pass, for leaders to end at. Number 255 and all later ones share the
/// last slot of 256, and only the first 255 count.
class WaveMiddles
{
public:
    static constexpr std::size_t kSlots = 256;
    static constexpr std::size_t kMostCounted = 255;

    void clear();
    void add(std::span<const WaveBump> bumps);

    const std::vector<AcGePoint3d> &slots() const { return m_slots; }
    std::size_t count() const { return std::min(m_slots.size(), kMostCounted); }
    /// Of the last bump; unchanged while none was added.
    double chord() const { return m_chord; }

private:
    std::vector<AcGePoint3d> m_slots;
    double m_chord = 1.0;
};
