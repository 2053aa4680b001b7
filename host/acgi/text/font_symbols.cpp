#include "host/acgi/text/font_symbols.h"

#include "host/acgi/text/font_face.h"
#include "host/acgi/text/font_table.h"

#include <QPainterPathStroker>

#include <algorithm>
#include <span>

namespace acgi
{

namespace
{

struct Stroke {
    enum Kind : std::uint8_t { line, arc } kind;
    double a, b, c, d;  ///< Both ends of a line, or centre, radius and start of an arc.
    double sweep = 0.0; ///< Degrees.
};

constexpr Stroke line(double fromX, double fromY, double toX, double toY)
{
    return {Stroke::line, fromX, fromY, toX, toY};
}

constexpr Stroke arc(double x, double y, double radius, double start = 0.0, double sweep = 360.0)
{
    return {Stroke::arc, x, y, radius, start, sweep};
}

struct Symbol {
    char32_t character;
    char letter; ///< In tolerance fonts; 0: none.
    double width;
    std::span<const Stroke> strokes;
    char inside = 0; ///< A small letter in the middle.
};

// Within a box of height 1; x from 0 to the width.
constexpr Stroke kAngularity[] = {line(1, 0, 0, 0), line(0, 0, 0.9, 0.8)};
constexpr Stroke kPerpendicularity[] = {line(0, 0, 1, 0), line(0.5, 0, 0.5, 1)};
constexpr Stroke kFlatness[] = {line(0, 0.1, 0.8, 0.1), line(0.8, 0.1, 1.1, 0.8), line(1.1, 0.8, 0.3, 0.8),
                                line(0.3, 0.8, 0, 0.1)};
constexpr Stroke kSurfaceProfile[] = {arc(0.5, 0.2, 0.5, 0, 180), line(0, 0.2, 1, 0.2)};
constexpr Stroke kRoundness[] = {arc(0.45, 0.45, 0.4)};
constexpr Stroke kParallelism[] = {line(0, 0, 0.45, 1), line(0.4, 0, 0.85, 1)};
constexpr Stroke kCylindricity[] = {arc(0.55, 0.45, 0.28), line(0, 0, 0.4, 1), line(0.7, -0.1, 1.1, 0.9)};
constexpr Stroke kRunout[] = {line(0, 0, 0.7, 0.9), line(0.7, 0.9, 0.35, 0.75), line(0.7, 0.9, 0.68, 0.5)};
constexpr Stroke kSymmetry[] = {line(0, 0.45, 1.1, 0.45), line(0.25, 0.75, 0.85, 0.75),
                                line(0.25, 0.15, 0.85, 0.15)};
constexpr Stroke kPosition[] = {arc(0.5, 0.45, 0.33), line(0, 0.45, 1, 0.45), line(0.5, -0.05, 0.5, 0.95)};
constexpr Stroke kLineProfile[] = {arc(0.5, 0.2, 0.5, 0, 180)};
constexpr Stroke kDiameter[] = {arc(0.5, 0.45, 0.38), line(0.15, -0.05, 0.85, 0.95)};
constexpr Stroke kSquare[] = {line(0, 0, 0.8, 0), line(0.8, 0, 0.8, 0.8), line(0.8, 0.8, 0, 0.8),
                              line(0, 0.8, 0, 0)};
constexpr Stroke kConcentricity[] = {arc(0.5, 0.45, 0.45), arc(0.5, 0.45, 0.22)};
constexpr Stroke kTotalRunout[] = {
    line(0, 0, 0.5, 0.9),     line(0.5, 0.9, 0.22, 0.72), line(0.5, 0.9, 0.53, 0.5), line(0.5, 0, 1, 0.9),
    line(1, 0.9, 0.72, 0.72), line(1, 0.9, 1.03, 0.5),    line(0, 0, 0.5, 0)};
constexpr Stroke kStraightness[] = {line(0, 0.45, 1, 0.45)};
constexpr Stroke kCounterbore[] = {line(0, 0.8, 0, 0), line(0, 0, 1, 0), line(1, 0, 1, 0.8)};
constexpr Stroke kCountersink[] = {line(0, 0.9, 0.5, 0), line(0.5, 0, 1, 0.9)};
constexpr Stroke kDepth[] = {line(0, 0.9, 0.8, 0.9), line(0.4, 0.9, 0.4, 0), line(0.4, 0, 0.2, 0.35),
                             line(0.4, 0, 0.6, 0.35)};
constexpr Stroke kTaper[] = {line(0, 0.45, 1.2, 0.45), line(0.2, 0.1, 0.2, 0.8), line(0.2, 0.1, 1, 0.45),
                             line(0.2, 0.8, 1, 0.45)};
constexpr Stroke kSlope[] = {line(0, 0, 1.1, 0), line(0, 0, 0, 0.6), line(0, 0.6, 1.1, 0)};
constexpr Stroke kCentreLine[] = {arc(0.45, 0.5, 0.4, 60, 240), line(0.5, 1, 0.5, 0), line(0.5, 0, 0.95, 0)};
constexpr Stroke kRing[] = {arc(0.55, 0.45, 0.55)};

constexpr Symbol kSymbols[] = {
    {U'\u2205', 'n', 1.0, kDiameter},      {U'\u2300', 0, 1.0, kDiameter},
    {U'\u2220', 'a', 1.0, kAngularity},    {U'\u27C2', 'b', 1.0, kPerpendicularity},
    {U'\u23E5', 'c', 1.1, kFlatness},      {U'\u2313', 'd', 1.0, kSurfaceProfile},
    {U'\u25CB', 'e', 0.9, kRoundness},     {U'\u2225', 'f', 0.85, kParallelism},
    {U'\u232D', 'g', 1.1, kCylindricity},  {U'\u2197', 'h', 0.75, kRunout},
    {U'\u232F', 'i', 1.1, kSymmetry},      {U'\u2316', 'j', 1.0, kPosition},
    {U'\u2312', 'k', 1.0, kLineProfile},   {U'\u24C1', 'l', 1.1, kRing, 'L'},
    {U'\u24C2', 'm', 1.1, kRing, 'M'},     {U'\u25A1', 'o', 0.8, kSquare},
    {U'\u24C5', 'p', 1.1, kRing, 'P'},     {U'\u2104', 'q', 0.95, kCentreLine},
    {U'\u25CE', 'r', 1.0, kConcentricity}, {U'\u24C8', 's', 1.1, kRing, 'S'},
    {U'\u2330', 't', 1.05, kTotalRunout},  {U'\u23E4', 'u', 1.0, kStraightness},
    {U'\u2334', 'v', 1.0, kCounterbore},   {U'\u2335', 'w', 1.0, kCountersink},
    {U'\u21A7', 'x', 0.8, kDepth},         {U'\u2332', 'y', 1.2, kTaper},
    {U'\u2333', 'z', 1.1, kSlope},
};

} // namespace

static QPainterPath pathOf(const Stroke &stroke)
{
    QPainterPath path;
    if (stroke.kind == Stroke::line) {
        path.moveTo(stroke.a, stroke.b);
        path.lineTo(stroke.c, stroke.d);
        return path;
    }
    // The path class turns its angles with y down.
    const QRectF box(stroke.a - stroke.c, stroke.b - stroke.c, 2.0 * stroke.c, 2.0 * stroke.c);
    path.arcMoveTo(box, -stroke.d);
    path.arcTo(box, -stroke.d, -stroke.sweep);
    return path;
}

static QPainterPath insideLetter(const Symbol &symbol)
{
    const FontFace *const face = FontFace::find(fontFileName(FontFamily::sans, false, false));
    if (!face)
        return {};
    constexpr double kHeight = 0.6;
    const Glyph letter = face->glyph(face->glyphIndex(char32_t(symbol.inside)), kHeight / face->capHeight());
    return letter.outline.translated((symbol.width - letter.advance) / 2.0, 0.45 - kHeight / 2.0);
}

static Glyph drawSymbol(const Symbol &symbol)
{
    QPainterPathStroker pen;
    pen.setWidth(0.09);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    pen.setCurveThreshold(0.01);
    constexpr double kSideBearing = 0.15;
    Glyph glyph;
    glyph.advance = symbol.width + 2.0 * kSideBearing;
    for (const Stroke &stroke : symbol.strokes)
        glyph.outline.addPath(pen.createStroke(pathOf(stroke)).simplified());
    if (symbol.inside)
        glyph.outline.addPath(insideLetter(symbol));
    glyph.outline.translate(kSideBearing, 0.0);
    glyph.outline.setFillRule(Qt::WindingFill);
    return glyph;
}

template <class Match>
static std::optional<Glyph> findSymbol(Match match)
{
    const auto symbol = std::ranges::find_if(kSymbols, match);
    if (symbol == std::end(kSymbols))
        return std::nullopt;
    return drawSymbol(*symbol);
}

std::optional<Glyph> symbolGlyph(char32_t character)
{
    return findSymbol([=](const Symbol &symbol) { return symbol.character == character; });
}

std::optional<Glyph> toleranceGlyph(char32_t letter)
{
    if (letter == 0)
        return std::nullopt;
    return findSymbol([=](const Symbol &symbol) { return char32_t(symbol.letter) == letter; });
}

} // namespace acgi
