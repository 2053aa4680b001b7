// Freehand sketches: decoding what the drawing library recorded, placing it in the target, drawing it.
#pragma once

#include "host/acge/geextents.h"
#include "host/acge/gematrix.h"
#include "host/acgi/world_draw.h"
#include "host/base/result.h"

#include <QByteArrayView>

#include <cstdint>
#include <vector>

namespace sketch
{

/// Kinds of strokes, as they are recorded. Others are kept and not drawn.
enum Kind : std::int32_t {
    kLine = 2,
    kRectangle = 3,
    kRoundedRectangle = 4,
    kEllipse = 5,
    kFilledRectangle = 7,
    kFilledRoundedRectangle = 8,
    kFilledEllipse = 9
};

struct CanvasPoint {
    std::int32_t x = 0; ///< Pixels to the right of the canvas' upper left corner.
    std::int32_t y = 0; ///< Pixels below it.
    friend bool operator==(const CanvasPoint &, const CanvasPoint &) = default;
};

struct Stroke {
    std::int32_t kind = 0;
    CanvasPoint from{}; ///< Two points of a line, two opposite corners of the other kinds.
    CanvasPoint to{};
    std::uint32_t rgb = 0; ///< 0x00RRGGBB
    std::int32_t penWidth = 0;

    bool isDrawn() const;
    bool isFilled() const;
    /// Hundredths of a millimetre.
    int lineWeight() const;
    friend bool operator==(const Stroke &, const Stroke &) = default;
};

struct Sketch {
    std::int32_t width = 1; ///< Of the canvas, in pixels; at least 1.
    std::int32_t height = 1;
    std::vector<Stroke> strokes{};
    friend bool operator==(const Sketch &, const Sketch &) = default;
};

enum class Error {
    shortHeader,
    negativeCount,
    shortStrokes ///< More strokes are announced than the bytes hold.
};

/// Little-endian 32-bit numbers: width and height of the canvas, the number of strokes, seven numbers for
/// each stroke. Bytes behind the strokes are ignored.
base::Result<Sketch, Error> decode(QByteArrayView bytes);

/// How canvas points lie in a target: the canvas fills the rectangle over its two corners as seen.
class Placement
{
public:
    Placement(const Sketch &sketch, const AcGePoint3d &corner1, const AcGePoint3d &corner2,
              const AcGeMatrix3d &worldToEye);

    AcGePoint3d eye(const CanvasPoint &point) const;
    AcGePoint3d world(const AcGePoint3d &eyePoint) const { return m_eyeToWorld * eyePoint; }

private:
    AcGePoint3d m_upperLeft; ///< Eye coordinates.
    double m_right = 0.0;    ///< Of one pixel.
    double m_down = 0.0;
    AcGeMatrix3d m_eyeToWorld;
};

/// Of the strokes that are drawn, by the two points of lines and the four corners of the other kinds.
AcDbExtents extents(const Sketch &sketch, const Placement &placement);
/// Leaves the pen as it was.
void draw(const Sketch &sketch, const Placement &placement, const AcGiCommonDraw &context);

} // namespace sketch
