// Linetypes: their patterns as the drawing defines them, and laying a pattern along a chain of points.
#pragma once

#include "host/acdb/dbid.h"
#include "host/acgi/text/text_style.h"

#include <QPointF>
#include <QRectF>

#include <optional>
#include <span>
#include <vector>

namespace acgi
{

/// A text or shape that stands in a pattern.
struct PatternText {
    QString text;        ///< Empty for a shape.
    int shapeNumber = 0; ///< Of the style's shape file.
    AcGiTextStyle style;
    double scale = 1.0;    ///< Text height 1 (or the style's) times this, in pattern units.
    double rotation = 0.0; ///< Radians; from the line, or from the X axis when `upright`.
    bool upright = false;
    double xOffset = 0.0;            ///< Along the line, pattern units.
    double yOffset = 0.0;            ///< To the left of the line.
    std::vector<PlacedGlyph> glyphs; ///< The text laid out, by who wants to paint it.
};

struct PatternElement {
    double length = 0.0; ///< Above 0 a dash, below 0 a gap, 0 a dot.
    std::optional<PatternText> text;
};

/// Empty: a continuous line.
struct Linetype {
    std::vector<PatternElement> elements;
    double length = 0.0; ///< Of the whole pattern, pattern units.
    bool isContinuous() const { return elements.empty() || !(length > 0.0); }
};

/// Patterns that make no sense (no length, not finite, more than 1000 elements) are continuous.
Linetype readLinetype(AcDbObjectId record);

/// The lines of a shape at size 1, x along the line and the origin at its place: the shapes of the common
/// linetype file (ltypeshp.shx) that everybody has. Empty for texts and for other shapes, which draw nothing.
std::vector<std::vector<QPointF>> patternShape(const PatternText &text);

/// What comes of laying a pattern along a chain.
class DashSink
{
public:
    virtual ~DashSink() = default;
    /// One dash, bends included; one point is a dot.
    virtual void dash(std::span<const QPointF> points) = 0;
    /// The place of a text: where the pattern stands and the direction of the line there (radians).
    virtual void text(const PatternText &text, QPointF place, double direction) = 0;
};

/// Lays the pattern along the chain, `scale` chain units to a pattern unit. The pattern begins with half a
/// first dash or so, such that both ends of the chain get a dash; a chain too short for one pattern is one
/// dash. Dashes outside `visible` (a rectangle in chain units) need not be made, so that the effort for a
/// long line follows what is seen of it. A pattern much finer than `finest` chain units is one dash.
void layPattern(const Linetype &linetype, double scale, std::span<const QPointF> chain, bool closed,
                const QRectF &visible, double finest, DashSink &sink);

} // namespace acgi
