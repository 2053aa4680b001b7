// The outlines around the target of a mark, and the drawing of outlines.
#include "quillnote/entity/mark_outline.h"

#include "quillnote/entity/mark_geometry.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/outline_pieces.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

constexpr std::size_t kEllipsePoints = 72;

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

// Level as seen, whatever the mark's x direction is.
void thinEllipse(const OutlineRecord &mark, const OutlineView &view, MarkOutline &outline)
{
    static const Directions directions;
    constexpr double kEnlargement = 1.25;
    const AcGePoint3d p = view.worldToEye * mark.target.corner1;
    const AcGePoint3d q = view.worldToEye * mark.target.corner2;
    const AcGePoint3d centre = p + (q - p) * 0.5;
    const double share = 0.5 * (mark.enlarged ? kEnlargement : 1.0);
    const double a = std::abs(q.x - p.x) * share;
    const double b = std::abs(q.y - p.y) * share;
    const AcGeMatrix3d eyeToWorld = view.worldToEye.inverse();
    std::array<AcGePoint3d, kEllipsePoints> points;
    std::ranges::transform(directions.of, points.begin(), [&](const AcGeVector3d &direction) {
        AcGePoint3d world =
            eyeToWorld * AcGePoint3d(centre.x + a * direction.x, centre.y + b * direction.y, 0.0);
        world.z = 0.0;
        return world;
    });
    const int color = drawnColor1(mark.color1, view.settings, ColorRange::indexesAndByLayer);
    addPiece(outline, OutlinePiece::closedLines, color, points);
}

void bevelRectangle(const OutlineRecord &mark, const OutlineView &view, MarkOutline &outline)
{
    if (mark.displayMode != 0)
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
    const AcGeVector3d half = (target.corner2 - target.corner1) * 0.5;
    const double a = std::abs(half.x);
    if (!(a >= 0.001))
        return;
    const AcGePoint3d centre(target.corner1.x + half.x, target.corner1.y + half.y, 0.0);
    AcGeVector3d major = (target.corner4 - target.corner1) * 0.5;
    major.z = 0.0;
    const AcGeVector3d minor = AcGeVector3d::kZAxis.crossProduct(major) * (std::abs(half.y) / a);
    waveAlongCurve(outline.bumps, AcGeEllipArc3d(centre, major, minor), target.diagonal() / 16.0);
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
            .enlarged = mark.targetStyle < 0,
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

void targetOutline(const OutlineRecord &mark, const OutlineView &view, int style, MarkOutline &outline)
{
    outline.clear();
    outline.waveColor = drawnColor1(mark.color1, view.settings, ColorRange::indexesAndByLayer);
    const double diagonal = mark.target.diagonal();
    const bool isShown = diagonal >= view.drawUnit;
    const auto waves = [&](bool thin) { outline.thinWaves = thin || mark.gripEditing; };
    switch (style) {
    case 1:
        if (isShown)
            thinEllipse(mark, view, outline);
        break;
    case 2:
    case 5:
        waves(style == 2);
        if (diagonal >= 0.5 * view.drawUnit)
            addWaveRectangle(outline, mark.target, diagonal / 15.0);
        break;
    case 3:
    case 6:
        waves(style == 3);
        if (isShown)
            waveEllipse(mark.target, outline);
        break;
    case 4:
        if (isShown)
            bevelRectangle(mark, view, outline);
        break;
    case 51:
    case 53:
        waves(style == 53);
        if (mark.vertices.size() >= 2)
            wavePolygon(mark.vertices, view.drawUnit, outline);
        break;
    case 52:
    case 54:
        waves(style == 54);
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
    context.subEntityTraits().setColor(outline.waveColor);
    drawWaves(outline.bumps, outline.thinWaves, context);
}

static OutlineView viewOf(const AcGiViewportDraw &context, double drawUnit)
{
    return {.drawUnit = drawUnit,
            .worldToEye = context.viewport().getWorldToEyeTransform(),
            .settings = markDrawingSettings()};
}

void drawTargetOutline(const QuillnoteObj3 &mark, const AcGiViewportDraw &context, double drawUnit, int style)
{
    MarkOutline outline;
    targetOutline(outlineRecord(mark), viewOf(context, drawUnit), style, outline);
    drawOutline(outline, context);
}

void drawTextBoxFrame(const QuillnoteObj3 &mark, const AcGiViewportDraw &context, double drawUnit,
                      int flagStyle)
{
    MarkOutline outline;
    textBoxFrame(outlineRecord(mark), viewOf(context, drawUnit), flagStyle, outline);
    drawOutline(outline, context);
}
