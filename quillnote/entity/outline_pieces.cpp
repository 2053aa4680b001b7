#include "quillnote/entity/outline_pieces.h"

#include <array>

PlaneAxes planeAxes(const AcGeVector3d &direction)
{
    const AcGeVector3d flat(direction.x, direction.y, 0.0);
    if (flat.isZeroLength())
        return {};
    const AcGeVector3d right = flat.normal();
    return {.right = right, .up = {-right.y, right.x, 0.0}};
}

void addPiece(MarkOutline &outline, OutlinePiece::Kind kind, int color, std::span<const AcGePoint3d> points)
{
    outline.pieces.push_back({.kind = kind,
                              .count = std::uint8_t(points.size()),
                              .first = std::uint16_t(outline.points.size()),
                              .color = color});
    outline.points.insert(outline.points.end(), points.begin(), points.end());
}

void addThinRectangle(MarkOutline &outline, const MarkCorners &corners, const OutlineRecord &mark,
                      const MarkDrawingSettings &settings)
{
    const std::array<AcGePoint3d, 5> points{corners.corner1, corners.corner4, corners.corner2,
                                            corners.corner3, corners.corner1};
    addPiece(outline, OutlinePiece::lines, drawnColor1(mark.color1, settings, ColorRange::indexes), points);
}

void addBevelBars(MarkOutline &outline, const MarkCorners &corners, const BevelBars &bars,
                  const OutlineRecord &mark, const MarkDrawingSettings &settings)
{
    const AcGeVector3d outwards = (bars.axes.up - bars.axes.right) * (bars.offset * std::sqrt(0.5));
    const AcGeVector3d mitre = (bars.axes.right - bars.axes.up) * bars.mitre;
    const AcGeVector3d across = bars.axes.right * bars.halfWidth;
    const AcGeVector3d along = bars.axes.up * bars.halfWidth;

    const AcGePoint3d left = corners.corner1 + outwards;
    const AcGePoint3d upperLeft = corners.corner3 + outwards;
    const AcGePoint3d top = corners.corner2 + outwards;
    const std::array<AcGePoint3d, 6> first{left + across, upperLeft + mitre, top - along,
                                           top + along,   upperLeft - mitre, left - across};
    addPiece(outline, OutlinePiece::area, drawnColor1(mark.color1, settings, ColorRange::indexes), first);

    const AcGePoint3d bottom = corners.corner1 - outwards;
    const AcGePoint3d lowerRight = corners.corner4 - outwards;
    const AcGePoint3d right = corners.corner2 - outwards;
    const std::array<AcGePoint3d, 6> second{bottom - along, lowerRight + mitre, right + across,
                                            right - across, lowerRight - mitre, bottom + along};
    addPiece(outline, OutlinePiece::area, drawnColor2(mark.color2, settings, ColorRange::indexes), second);
}

void addWaveRectangle(MarkOutline &outline, const MarkCorners &corners, double step)
{
    waveAlongSegment(outline.bumps, corners.corner1, corners.corner4, step);
    waveAlongSegment(outline.bumps, corners.corner4, corners.corner2, step);
    waveAlongSegment(outline.bumps, corners.corner2, corners.corner3, step);
    waveAlongSegment(outline.bumps, corners.corner3, corners.corner1, step);
}
