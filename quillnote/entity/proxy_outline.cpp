// The target outline of a mark for programs that do not know marks. A drawing keeps it with every mark, so it
// is made of few figures, whatever the mark looks like here.
#include "quillnote/entity/mark_outline.h"

#include <algorithm>
#include <cmath>

static constexpr std::size_t kMostBumps = 14;
static constexpr int kThickWeight = 50; ///< Hundredths of a millimetre.

namespace
{

struct Side {
    AcGePoint3d from;
    AcGePoint3d to;
    double length() const { return from.distanceTo(to); }
    /// Every side has one at least, so that the outline is closed.
    double bumps(double step) const { return std::max(1.0, std::floor(length() / step + 0.5)); }
};

} // namespace

static std::vector<Side> sidesOf(std::span<const AcGePoint3d> corners)
{
    std::vector<Side> sides;
    for (std::size_t i = 0; i < (corners.size() > 2 ? corners.size() : corners.size() - 1); ++i) {
        const Side side{corners[i], corners[(i + 1) % corners.size()]};
        if (side.length() >= kShortestChord && std::isfinite(side.length()))
            sides.push_back(side);
    }
    return sides;
}

static void addWaves(std::span<const AcGePoint3d> corners, std::vector<WaveBump> &bumps)
{
    const std::vector<Side> sides = sidesOf(corners);
    double whole = 0.0;
    for (const Side &side : sides)
        whole += side.length();
    const auto count = [&](double step) {
        double all = 0.0;
        for (const Side &side : sides)
            all += side.bumps(step);
        return all;
    };
    double step = whole / double(kMostBumps);
    while (count(step) > double(std::max(kMostBumps, sides.size())))
        step *= 1.1;
    for (const Side &side : sides)
        waveAlongSegment(bumps, side.from, side.to, side.length() / side.bumps(step));
}

void proxyOutline(const OutlineRecord &mark, TargetStyle style, const MarkDrawingSettings &settings,
                  MarkOutline &outline)
{
    outline.clear();
    outline.waveColor = drawnColor1(mark.color1, settings, ColorRange::indexesAndByLayer);
    outline.thinWaves = true;
    outline.waveWeight = hasVertices(style) && hasThinWaves(style) ? 0 : kThickWeight;
    if (fillsRectangle(style)) {
        const MarkCorners &target = mark.target;
        addWaves(std::array{target.corner1, target.corner4, target.corner2, target.corner3}, outline.bumps);
        return;
    }
    if ((!isPolygon(style) && !isSpline(style)) || mark.vertices.size() < 2)
        return;
    const std::optional<AcGeFitSpline3d> spline =
        isSpline(style) ? closedSpline(mark.vertices) : std::nullopt;
    if (!spline) {
        if (isPolygon(style) || mark.vertices.size() == 2)
            addWaves(mark.vertices, outline.bumps);
        return;
    }
    // Waves along curves count one bump more than whole steps fit.
    if (const std::optional<double> length = spline->getDistAtParam(*spline->getEndParam()))
        waveAlongCurve(outline.bumps, *spline, *length / (double(kMostBumps) - 1.5));
}
