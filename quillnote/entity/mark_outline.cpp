// The outlines around the target of a mark, and the drawing of outlines.
#include "quillnote/entity/mark_outline.h"

#include "quillnote/entity/mark_geometry.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_text_layout.h"
#include "quillnote/entity/outline_pieces.h"

#include "host/acge/geextents.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

constexpr std::size_t kEllipsePoints = 72;
constexpr double kLeastHalfAxis = 0.001;

struct Directions {
    std::array<AcGeVector3d, kEllipsePoints> of;
    Directions()
    {
        for (std::size_t i = 0; i < kEllipsePoints; ++i) {
            const double angle = 2.0 * kGePi * double(i) / double(kEllipsePoints);
            of[i] = {std::cos(angle), std::sin(angle), 0.0};
        }
    }
};

/// Half the sides of a target, from its corners; flat.
struct HalfAxes {
    AcGePoint3d centre;
    AcGeVector3d major; ///< Towards the side between corners 4 and 2.
    AcGeVector3d minor; ///< Towards the side between corners 3 and 2.
};

// From the corners themselves: a mark may have been turned since its x direction was written, or be looked at
// in another view than the one that it was made in.
HalfAxes halfAxes(const MarkCorners &target)
{
    HalfAxes axes{.centre = target.corner1 + (target.corner2 - target.corner1) * 0.5,
                  .major = (target.corner4 - target.corner1) * 0.5,
                  .minor = (target.corner3 - target.corner1) * 0.5};
    axes.centre.z = axes.major.z = axes.minor.z = 0.0;
    return axes;
}

void thinEllipse(const OutlineRecord &mark, const OutlineView &view, MarkOutline &outline)
{
    static const Directions directions;
    constexpr double kEnlargement = 1.25;
    const HalfAxes axes = halfAxes(mark.target);
    const double scale = mark.enlarged ? kEnlargement : 1.0;
    std::array<AcGePoint3d, kEllipsePoints> points;
    std::ranges::transform(directions.of, points.begin(), [&](const AcGeVector3d &direction) {
        return axes.centre + axes.major * (scale * direction.x) + axes.minor * (scale * direction.y);
    });
    const int color = drawnColor1(mark.color1, view.settings, ColorRange::indexesAndByLayer);
    addPiece(outline, OutlinePiece::closedLines, color, points);
}

void bevelRectangle(const OutlineRecord &mark, const OutlineView &view, MarkOutline &outline)
{
    if (mark.displayMode != DisplayMode::full)
        return;
    const double unit = view.drawUnit;
    // The factor by which mitres reach further than the half width; the same as that of waves.
    const double mitre = unit / 8.0 / 0.707167811865 * std::sqrt(0.5);
    const BevelBars bars{
        .axes = planeAxes(mark.xDirection), .offset = unit / 3.0, .halfWidth = unit / 8.0, .mitre = mitre};
    addBevelBars(outline, mark.target, bars, mark, view.settings);
    addThinRectangle(outline, mark.target, mark, view.settings);
}

void waveEllipse(const MarkCorners &target, MarkOutline &outline)
{
    const HalfAxes axes = halfAxes(target);
    if (axes.major.length() >= kLeastHalfAxis)
        waveAlongCurve(outline.bumps, AcGeEllipArc3d(axes.centre, axes.major, axes.minor),
                       target.diagonal() / 16.0);
}

void wavePolygon(std::span<const AcGePoint3d> vertices, double step, MarkOutline &outline)
{
    for (std::size_t i = 1; i < vertices.size(); ++i)
        waveAlongSegment(outline.bumps, vertices[i - 1], vertices[i], step);
    if (vertices.size() > 2)
        waveAlongSegment(outline.bumps, vertices.back(), vertices.front(), step);
}

void waveSpline(std::span<const AcGePoint3d> vertices, double step, MarkOutline &outline)
{
    if (vertices.size() == 2)
        return wavePolygon(vertices, step, outline);
    if (const auto spline = closedSpline(vertices))
        waveAlongCurve(outline.bumps, *spline, step);
}

void drawPiece(const OutlinePiece &piece, std::span<const AcGePoint3d> points, const AcGiCommonDraw &context)
{
    AcGiSubEntityTraits &pen = context.subEntityTraits();
    pen.setColor(piece.color);
    pen.setFillType(piece.kind == OutlinePiece::area ? kAcGiFillAlways : kAcGiFillNever);
    const auto count = std::uint32_t(points.size());
    if (piece.kind == OutlinePiece::lines)
        context.geometry().polyline(count, points.data());
    else
        context.geometry().polygon(count, points.data());
}

} // namespace

MarkCorners targetCorners(const QuillnoteObj3 &mark)
{
    MarkCorners corners{mark.targetCorner1, mark.targetCorner2, mark.targetCorner3, mark.targetCorner4};
    if (!mark.cornersValid) {
        const CompletedCorners completed =
            completeCorners(corners.corner1, corners.corner2, mark.normal, mark.xDirection);
        corners.corner3 = completed.corner3;
        corners.corner4 = completed.corner4;
    }
    return corners;
}

MarkCorners textBoxCorners(const QuillnoteObj3 &mark)
{
    return {mark.textBoxCorner1, mark.textBoxCorner2, mark.textBoxCorner3, mark.textBoxCorner4};
}

// Not by a matrix: the corners of an outline along the world's axes are to be exactly its own.
MarkCorners cornersAround(std::span<const AcGePoint3d> points, const MarkAxes &axes)
{
    const AcGeVector3d up = axes.normal.crossProduct(axes.right);
    AcDbExtents box;
    for (const AcGePoint3d &point : points)
        box.addPoint({point.asVector().dotProduct(axes.right), point.asVector().dotProduct(up), 0.0});
    const auto toWorld = [&](const AcGePoint3d &place) {
        const AcGePoint3d world = AcGePoint3d() + axes.right * place.x + up * place.y;
        return AcGePoint3d(world.x, world.y, 0.0);
    };
    MarkCorners corners;
    corners.corner1 = toWorld(box.minPoint());
    corners.corner2 = toWorld(box.maxPoint());
    const CompletedCorners others =
        completeCorners(corners.corner1, corners.corner2, axes.normal, axes.right);
    corners.corner3 = others.corner3;
    corners.corner4 = others.corner4;
    return corners;
}

void setTargetCorners(QuillnoteObj3 &mark, const MarkCorners &corners)
{
    mark.targetCorner1 = corners.corner1;
    mark.targetCorner2 = corners.corner2;
    mark.targetCorner3 = corners.corner3;
    mark.targetCorner4 = corners.corner4;
    mark.cornersValid = true;
}

void setTextBoxCorners(QuillnoteObj3 &mark, const MarkCorners &corners)
{
    mark.textBoxCorner1 = corners.corner1;
    mark.textBoxCorner2 = corners.corner2;
    mark.textBoxCorner3 = corners.corner3;
    mark.textBoxCorner4 = corners.corner4;
}

OutlineRecord outlineRecord(const QuillnoteObj3 &mark)
{
    const auto used = std::size_t(std::clamp(int(mark.vertexCount), 0, int(QuillnoteObj3::kSlots)));
    return {.target = targetCorners(mark),
            .textBox = textBoxCorners(mark),
            .xDirection = mark.xDirection,
            .vertices = std::span(mark.vertices).first(used),
            .displayMode = mark.displayMode,
            .enlarged = isNegative(mark.targetStyle),
            .color1 = mark.color1,
            .color2 = mark.color2,
            .textHeight = mark.textHeight,
            .gripEditing = mark.gripEditing};
}

void MarkOutline::clear()
{
    pieces.clear();
    points.clear();
    bumps.clear();
}

std::optional<AcGeFitSpline3d> closedSpline(std::span<const AcGePoint3d> vertices)
{
    if (vertices.size() < 3)
        return std::nullopt;
    std::vector<AcGePoint3d> points(vertices.begin(), vertices.end());
    points.push_back(vertices.front());
    for (AcGePoint3d &point : points)
        point.z = 0.0;
    const AcGeVector3d tangent = points[1] - points[vertices.size() - 1];
    AcGeFitSpline3d spline(points, tangent, tangent);
    return spline.getEndParam() ? std::optional(std::move(spline)) : std::nullopt;
}

void targetOutline(const OutlineRecord &mark, const OutlineView &view, TargetStyle style,
                   MarkOutline &outline)
{
    outline.clear();
    outline.waveColor = drawnColor1(mark.color1, view.settings, ColorRange::indexesAndByLayer);
    const double diagonal = mark.target.diagonal();
    const bool isShown = diagonal >= view.drawUnit;
    outline.thinWaves = hasThinWaves(style) || mark.gripEditing;
    switch (style) {
    case TargetStyle::ellipse:
        if (isShown)
            thinEllipse(mark, view, outline);
        break;
    case TargetStyle::thinWaves:
    case TargetStyle::thickWaves:
        if (diagonal >= 0.5 * view.drawUnit)
            addWaveRectangle(outline, mark.target, diagonal / 15.0);
        break;
    case TargetStyle::thinWaveEllipse:
    case TargetStyle::thickWaveEllipse:
        if (isShown)
            waveEllipse(mark.target, outline);
        break;
    case TargetStyle::bevel:
        if (isShown)
            bevelRectangle(mark, view, outline);
        break;
    case TargetStyle::thickPolygon:
    case TargetStyle::thinPolygon:
        if (mark.vertices.size() >= 2)
            wavePolygon(mark.vertices, view.drawUnit, outline);
        break;
    case TargetStyle::thickSpline:
    case TargetStyle::thinSpline:
        if (mark.vertices.size() >= 2)
            waveSpline(mark.vertices, view.drawUnit, outline);
        break;
    default:
        break;
    }
}

void drawOutline(const MarkOutline &outline, const AcGiCommonDraw &context)
{
    for (const OutlinePiece &piece : outline.pieces)
        drawPiece(piece, outline.pointsOf(piece), context);
    if (outline.bumps.empty())
        return;
    AcGiSubEntityTraits &pen = context.subEntityTraits();
    const acgi::Traits own = pen.traits();
    pen.setColor(outline.waveColor);
    if (!outline.thinWaves)
        drawWaves(outline.bumps, false, context);
    if (outline.thinWaves || outline.waveWeight > 0) {
        if (outline.waveWeight > 0) {
            pen.setLineWeight(std::max(own.lineWeight, outline.waveWeight));
            pen.setAlwaysWide(true);
        }
        drawWaves(outline.bumps, true, context);
    }
    pen.setLineWeight(own.lineWeight);
    pen.setAlwaysWide(own.alwaysWide);
}
