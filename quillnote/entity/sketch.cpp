#include "quillnote/entity/sketch.h"

#include "host/base/byte_stream.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace sketch
{

namespace
{

constexpr std::size_t kStrokeBytes = 7 * sizeof(std::int32_t);

// A full turn in steps of 7.5 degrees, both ends counted.
constexpr std::size_t kTurnSteps = 48;
constexpr std::size_t kQuarterSteps = kTurnSteps / 4;
using Outline = std::array<AcGePoint3d, kTurnSteps + 1>;

Stroke readStroke(base::ByteReader &in)
{
    Stroke stroke;
    in.get(stroke.kind);
    in.get(stroke.from.x);
    in.get(stroke.from.y);
    in.get(stroke.to.x);
    in.get(stroke.to.y);
    const auto color = in.get<std::uint32_t>();
    stroke.rgb = (color & 0xFFu) << 16 | (color & 0xFF00u) | (color >> 16 & 0xFFu);
    in.get(stroke.penWidth);
    return stroke;
}

/// A rectangle in eye coordinates.
struct Box {
    AcGePoint3d low;
    AcGePoint3d high;

    AcGePoint3d centre() const { return low + (high - low) * 0.5; }
    double width() const { return high.x - low.x; }
    double height() const { return high.y - low.y; }
};

Box boxOf(const Stroke &stroke, const Placement &placement)
{
    const AcGePoint3d p = placement.eye(stroke.from);
    const AcGePoint3d q = placement.eye(stroke.to);
    return {.low = {std::min(p.x, q.x), std::min(p.y, q.y), p.z},
            .high = {std::max(p.x, q.x), std::max(p.y, q.y), p.z}};
}

std::array<AcGePoint3d, 5> rectangle(const Box &box)
{
    return {box.low, AcGePoint3d(box.high.x, box.low.y, box.low.z), box.high,
            AcGePoint3d(box.low.x, box.high.y, box.low.z), box.low};
}

AcGeVector3d turnDirection(std::size_t step)
{
    const double angle = 2.0 * kGePi * double(step) / double(kTurnSteps);
    return {std::cos(angle), std::sin(angle), 0.0};
}

Outline ellipse(const Box &box)
{
    const AcGePoint3d centre = box.centre();
    Outline points;
    for (std::size_t i = 0; i <= kTurnSteps; ++i) {
        const AcGeVector3d direction = turnDirection(i);
        points[i] =
            centre + AcGeVector3d(direction.x * box.width() / 2.0, direction.y * box.height() / 2.0, 0.0);
    }
    return points;
}

// One turn whose centre jumps from corner to corner; the straight sides are the jumps.
Outline roundedRectangle(const Box &box)
{
    const double radius = std::min(box.width(), box.height()) / 6.0;
    const AcGePoint3d low = box.low + AcGeVector3d(radius, radius, 0.0);
    const AcGePoint3d high = box.high - AcGeVector3d(radius, radius, 0.0);
    const std::array<AcGePoint3d, 4> centres{high, AcGePoint3d(low.x, high.y, low.z), low,
                                             AcGePoint3d(high.x, low.y, low.z)};
    Outline points;
    for (std::size_t i = 0; i <= kTurnSteps; ++i)
        points[i] = centres[i / kQuarterSteps % centres.size()] + turnDirection(i) * radius;
    return points;
}

/// A closed figure; its last point is its first one.
void drawFigure(std::span<AcGePoint3d> points, const Stroke &stroke, const Placement &placement,
                const AcGiCommonDraw &context)
{
    for (AcGePoint3d &point : points)
        point = placement.world(point);
    if (stroke.isFilled())
        context.geometry().polygon(std::uint32_t(points.size() - 1), points.data());
    else
        context.geometry().polyline(std::uint32_t(points.size()), points.data());
}

void drawStroke(const Stroke &stroke, const Placement &placement, const AcGiCommonDraw &context)
{
    const auto figure = [&](auto points) { drawFigure(points, stroke, placement, context); };
    switch (stroke.kind) {
    case kLine: {
        const AcGePoint3d ends[] = {placement.world(placement.eye(stroke.from)),
                                    placement.world(placement.eye(stroke.to))};
        return context.geometry().polyline(2, ends);
    }
    case kRectangle:
    case kFilledRectangle:
        return figure(rectangle(boxOf(stroke, placement)));
    case kRoundedRectangle:
    case kFilledRoundedRectangle:
        return figure(roundedRectangle(boxOf(stroke, placement)));
    case kEllipse:
    case kFilledEllipse:
        return figure(ellipse(boxOf(stroke, placement)));
    default:
        return;
    }
}

} // namespace

bool Stroke::isDrawn() const
{
    return (kind >= kLine && kind <= kEllipse) || isFilled();
}

bool Stroke::isFilled() const
{
    return kind >= kFilledRectangle && kind <= kFilledEllipse;
}

int Stroke::lineWeight() const
{
    if (penWidth < 2)
        return 20;
    if (penWidth == 2)
        return 35;
    return penWidth == 3 ? 50 : 70;
}

base::Result<Sketch, Error> decode(QByteArrayView bytes)
{
    base::ByteReader in(bytes);
    Sketch sketch;
    sketch.width = std::max(in.get<std::int32_t>(), 1);
    sketch.height = std::max(in.get<std::int32_t>(), 1);
    const auto count = in.get<std::int32_t>();
    if (in.failed())
        return base::Failure{Error::shortHeader};
    if (count < 0)
        return base::Failure{Error::negativeCount};
    if (std::size_t(count) > in.left() / kStrokeBytes)
        return base::Failure{Error::shortStrokes};
    sketch.strokes.reserve(std::size_t(count));
    for (std::int32_t i = 0; i < count; ++i)
        sketch.strokes.push_back(readStroke(in));
    return sketch;
}

Placement::Placement(const Sketch &sketch, const AcGePoint3d &corner1, const AcGePoint3d &corner2,
                     const AcGeMatrix3d &worldToEye)
    : m_eyeToWorld(worldToEye.inverse())
{
    const AcGePoint3d p = worldToEye * corner1;
    const AcGePoint3d q = worldToEye * corner2;
    m_upperLeft = {std::min(p.x, q.x), std::max(p.y, q.y), p.z};
    m_right = std::abs(q.x - p.x) / sketch.width;
    m_down = std::abs(q.y - p.y) / sketch.height;
}

AcGePoint3d Placement::eye(const CanvasPoint &point) const
{
    return {m_upperLeft.x + point.x * m_right, m_upperLeft.y - point.y * m_down, m_upperLeft.z};
}

AcDbExtents extents(const Sketch &sketch, const Placement &placement)
{
    AcDbExtents box;
    for (const Stroke &stroke : sketch.strokes) {
        if (!stroke.isDrawn())
            continue;
        box.addPoint(placement.world(placement.eye(stroke.from)));
        box.addPoint(placement.world(placement.eye(stroke.to)));
        if (stroke.kind == kLine)
            continue;
        box.addPoint(placement.world(placement.eye({stroke.from.x, stroke.to.y})));
        box.addPoint(placement.world(placement.eye({stroke.to.x, stroke.from.y})));
    }
    return box;
}

void draw(const Sketch &sketch, const Placement &placement, const AcGiCommonDraw &context)
{
    AcGiSubEntityTraits &pen = context.subEntityTraits();
    const acgi::Traits before = pen.traits();
    for (const Stroke &stroke : sketch.strokes) {
        if (!stroke.isDrawn())
            continue;
        pen.setTrueColor(AcCmEntityColor::fromRgb(stroke.rgb));
        pen.setLineWeight(stroke.isFilled() ? before.lineWeight : stroke.lineWeight());
        pen.setAlwaysWide(!stroke.isFilled());
        pen.setFillType(stroke.isFilled() ? kAcGiFillAlways : kAcGiFillNever);
        drawStroke(stroke, placement, context);
    }
    pen.setTraits(before);
}

} // namespace sketch
