#include "host/acgi/display/canvas.h"

#include "host/acgi/display/clip.h"
#include "host/acgi/display/scan_fill.h"
#include "host/base/assert.h"

#include <algorithm>
#include <cmath>
#if defined(__SSE2__)
#include <emmintrin.h>

namespace acgi
{

#endif

/// QPainter is exact and quick only for coordinates of moderate size.
static constexpr double kFarPixel = 30000.0;
static constexpr float kThinnestWide = 1.5F;
/// Full coverage or opacity.
static constexpr std::uint32_t kWhole = 256;

Canvas::Canvas(QPainter &painter, const QRectF &visible, const QRectF &whole, const Pixels &pixels,
               bool antialiasing, GlyphMasks &masks, const std::atomic<bool> &cancelled)
    : m_painter(painter), m_pixels(pixels),
      m_antialiasing(antialiasing), m_clips{{visible, whole, true, false}}, m_masks(masks),
      m_cancelled(cancelled)
{
    m_painter.setRenderHint(QPainter::Antialiasing, antialiasing);
    updatePixelClip();
}

Canvas::~Canvas()
{
    flushLines();
    while (m_clips.size() > 1)
        popClip();
}

// Clips ------------------------------------------------------------------------------------------

void Canvas::updatePixelClip()
{
    const QRectF &bounds = m_clips.back().bounds;
    m_left = std::max(m_pixels.left, int(std::floor(bounds.left() + 0.5)));
    m_right = std::min(m_pixels.left + m_pixels.width, int(std::floor(bounds.right() + 0.5)));
    m_upper = std::max(m_pixels.top, int(std::floor(bounds.top() + 0.5)));
    m_lower = std::min(m_pixels.top + m_pixels.height, int(std::floor(bounds.bottom() + 0.5)));
}

/// The rectangle that the loops are, if they are one along the axes.
static bool isRectangle(const std::vector<QPolygonF> &loops)
{
    if (loops.size() != 1)
        return false;
    QPolygonF loop = loops.front();
    if (loop.size() == 5 && loop.front() == loop.back())
        loop.removeLast();
    if (loop.size() != 4)
        return false;
    constexpr double kSame = 1e-3;
    const auto same = [](double a, double b) { return std::abs(a - b) < kSame; };
    const bool flatFirst = same(loop[0].y(), loop[1].y()) && same(loop[1].x(), loop[2].x()) &&
                           same(loop[2].y(), loop[3].y()) && same(loop[3].x(), loop[0].x());
    const bool steepFirst = same(loop[0].x(), loop[1].x()) && same(loop[1].y(), loop[2].y()) &&
                            same(loop[2].x(), loop[3].x()) && same(loop[3].y(), loop[0].y());
    return flatFirst || steepFirst;
}

void Canvas::pushClip(const std::vector<QPolygonF> &loops, bool inverted)
{
    flushLines();
    const Clip outer = m_clips.back();
    Clip inner = outer;
    QPainterPath path;
    QRectF box;
    for (const QPolygonF &loop : loops) {
        const QPolygonF near = clipPolygon(loop, outer.whole.adjusted(-2, -2, 2, 2));
        path.addPolygon(near);
        path.closeSubpath();
        box |= near.boundingRect();
    }
    m_painter.save();
    inner.savedPainter = true;
    if (inverted) {
        QPainterPath around;
        around.addRect(outer.whole.adjusted(-4, -4, 4, 4));
        m_painter.setClipPath(around.subtracted(path), Qt::IntersectClip);
        inner.isRectangle = false;
    } else {
        inner.bounds = outer.bounds & box;
        inner.whole = outer.whole & box;
        inner.isRectangle = outer.isRectangle && isRectangle(loops);
        if (inner.isRectangle)
            m_painter.setClipRect(inner.whole, Qt::IntersectClip);
        else
            m_painter.setClipPath(path, Qt::IntersectClip);
    }
    m_clips.push_back(inner);
    m_state = PainterState::unknown;
    updatePixelClip();
}

void Canvas::popClip()
{
    if (m_clips.size() < 2)
        return;
    flushLines();
    if (m_clips.back().savedPainter)
        m_painter.restore();
    m_clips.pop_back();
    m_state = PainterState::unknown;
    updatePixelClip();
}

// State of the painter ---------------------------------------------------------------------------

void Canvas::setPen(QRgb color, float width)
{
    if (color == m_color && width == m_width)
        return;
    flushLines();
    m_color = color;
    m_source = color | 0xFF000000u;
    m_opacity = std::uint32_t(qAlpha(color) + (qAlpha(color) >> 7));
    m_width = width;
    m_state = PainterState::unknown;
}

QPainter &Canvas::painter()
{
    flushLines();
    m_state = PainterState::unknown;
    return m_painter;
}

void Canvas::usePen()
{
    if (m_state == PainterState::pen)
        return;
    const bool isThin = m_width <= kThinnestWide;
    QPen pen(QColor::fromRgba(m_color), isThin ? 1.0 : double(m_width), Qt::SolidLine,
             isThin ? Qt::FlatCap : Qt::RoundCap, isThin ? Qt::MiterJoin : Qt::RoundJoin);
    pen.setCosmetic(isThin);
    m_painter.setPen(pen);
    m_painter.setBrush(Qt::NoBrush);
    m_state = PainterState::pen;
}

void Canvas::useBrush()
{
    if (m_state == PainterState::brush)
        return;
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(QColor::fromRgba(m_color));
    m_state = PainterState::brush;
}

void Canvas::flushLines()
{
    if (m_lines.empty())
        return;
    usePen();
    m_painter.drawLines(m_lines.data(), int(m_lines.size()));
    m_lines.clear();
}

// Lines ------------------------------------------------------------------------------------------

void Canvas::chain(std::span<const QPointF> points)
{
    if (points.size() < 2) {
        if (!points.empty())
            dot(points.front());
        return;
    }
    const bool isThin = m_width <= kThinnestWide;
    if (isThin && isDirect()) {
        for (std::size_t i = 1; i < points.size(); ++i)
            directSegment(points[i - 1], points[i]);
        return;
    }
    const auto isNear = [](QPointF p) { return std::abs(p.x()) < kFarPixel && std::abs(p.y()) < kFarPixel; };
    if (points.size() > 2 && std::ranges::all_of(points, isNear)) {
        flushLines();
        usePen();
        m_painter.drawPolyline(points.data(), int(points.size()));
        return;
    }
    for (std::size_t i = 1; i < points.size(); ++i)
        segment(points[i - 1], points[i]);
}

void Canvas::segment(QPointF from, QPointF to)
{
    const double margin = double(m_width) + 2.0;
    QPointF seenFrom = from;
    QPointF seenTo = to;
    if (!clipLine(seenFrom, seenTo, visible().adjusted(-margin, -margin, margin, margin)) ||
        !clipLine(from, to, whole().adjusted(-margin, -margin, margin, margin)))
        return;
    m_lines.emplace_back(from, to);
    constexpr std::size_t kBatch = 4096;
    if (m_lines.size() >= kBatch)
        flushLines();
}

void Canvas::dot(QPointF point)
{
    if (!visible().adjusted(-8, -8, 8, 8).contains(point))
        return;
    const bool isThin = m_width <= kThinnestWide;
    if (isThin && isDirect())
        return plot(int(std::floor(point.x())), int(std::floor(point.y())), 256);
    flushLines();
    useBrush();
    const double size = isThin ? 1.0 : double(m_width);
    if (isThin)
        m_painter.drawRect(QRectF(std::floor(point.x()), std::floor(point.y()), 1.0, 1.0));
    else
        m_painter.drawEllipse(point, size / 2.0, size / 2.0);
}

// Pixels -----------------------------------------------------------------------------------------

/// Moves the pixel towards the opaque `source` by coverage / 256. One formula for all: what a pixel becomes
/// must not depend on the way it is reached.
static inline void mix(std::uint32_t &pixel, std::uint32_t source, std::uint32_t coverage)
{
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const __m128i was = _mm_unpacklo_epi8(_mm_cvtsi32_si128(int(pixel)), zero);
    const __m128i wanted = _mm_unpacklo_epi8(_mm_cvtsi32_si128(int(source)), zero);
    const __m128i step = _mm_mullo_epi16(_mm_sub_epi16(wanted, was), _mm_set1_epi16(short(coverage)));
    const __m128i mixed = _mm_and_si128(_mm_add_epi16(_mm_srli_epi16(step, 8), was), _mm_set1_epi16(0xFF));
    pixel = std::uint32_t(_mm_cvtsi128_si32(_mm_packus_epi16(mixed, zero)));
#else
    std::uint32_t mixed = 0;
    for (const int shift : {0, 8, 16, 24}) {
        const std::uint32_t was = pixel >> shift & 0xFF;
        const std::uint32_t step = ((source >> shift & 0xFF) - was) * coverage & 0xFFFF;
        mixed |= ((step >> 8) + was & 0xFF) << shift;
    }
    pixel = mixed;
#endif
}

/// mix() for two pixels at once.
static inline void mixPair(std::uint32_t &one, std::uint32_t &other, std::uint32_t source,
                           std::uint32_t coverageOne, std::uint32_t coverageOther)
{
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const __m128i both = _mm_unpacklo_epi32(_mm_cvtsi32_si128(int(one)), _mm_cvtsi32_si128(int(other)));
    const __m128i was = _mm_unpacklo_epi8(both, zero);
    const __m128i wanted = _mm_unpacklo_epi8(_mm_set1_epi32(int(source)), zero);
    const __m128i coverage =
        _mm_unpacklo_epi64(_mm_set1_epi16(short(coverageOne)), _mm_set1_epi16(short(coverageOther)));
    const __m128i step = _mm_mullo_epi16(_mm_sub_epi16(wanted, was), coverage);
    const __m128i mixed = _mm_and_si128(_mm_add_epi16(_mm_srli_epi16(step, 8), was), _mm_set1_epi16(0xFF));
    const __m128i packed = _mm_packus_epi16(mixed, zero);
    one = std::uint32_t(_mm_cvtsi128_si32(packed));
    other = std::uint32_t(_mm_cvtsi128_si32(_mm_srli_epi64(packed, 32)));
#else
    mix(one, source, coverageOne);
    mix(other, source, coverageOther);
#endif
}

/// For numbers of the size of pixels; std::floor() is a call.
static inline int floorOf(double value)
{
    const int whole = int(value);
    return whole - (value < whole);
}

void Canvas::plot(int x, int y, std::uint32_t coverage)
{
    if (x >= m_left && x < m_right && y >= m_upper && y < m_lower)
        mix(*pixelAt(x, y), m_source, coverage * m_opacity >> 8);
}

void Canvas::row(int y, double from, double to)
{
    if (y < m_upper || y >= m_lower)
        return;
    if (from > to)
        std::swap(from, to);
    const int first = std::max(m_left, floorOf(from));
    const int last = std::min(m_right - 1, floorOf(to));
    if (first > last)
        return;
    std::uint32_t *const line = pixelAt(0, y);
    if (m_opacity == kWhole) {
        std::fill(line + first, line + last + 1, m_source);
        return;
    }
    for (int x = first; x <= last; ++x)
        mix(line[x], m_source, m_opacity);
}

void Canvas::column(int x, double from, double to)
{
    if (x < m_left || x >= m_right)
        return;
    if (from > to)
        std::swap(from, to);
    const int first = std::max(m_upper, floorOf(from));
    const int last = std::min(m_lower - 1, floorOf(to));
    std::uint32_t *pixel = pixelAt(x, first);
    for (int y = first; y <= last; ++y, pixel += m_pixels.stride)
        mix(*pixel, m_source, m_opacity);
}

/// Along the axis that the line runs along most, each pixel column (or row) gets the line's place in it,
/// shared between the two nearest pixels. Places are counted from the line's start in whole numbers: they are
/// the same whichever part of the line is painted.
void Canvas::slope(double x0, double y0, double x1, double y1)
{
    const bool isSteep = std::abs(y1 - y0) > std::abs(x1 - x0);
    if (isSteep) {
        std::swap(x0, y0);
        std::swap(x1, y1);
    }
    if (x0 > x1) {
        std::swap(x0, x1);
        std::swap(y0, y1);
    }
    const int begin = floorOf(x0);
    const int end = floorOf(x1);
    const int first = std::max(isSteep ? m_upper : m_left, begin);
    const int last = std::min((isSteep ? m_lower : m_right) - 1, end);
    if (first > last)
        return;
    // 32 bits behind the point; the first and last place stay within the line's ends.
    constexpr double kOne = 4294967296.0;
    const double rise = x1 - x0 > 1e-9 ? (y1 - y0) / (x1 - x0) : 0.0;
    const std::int64_t half = m_antialiasing ? std::int64_t(1) << 31 : 0;
    const auto fixed = [&](double x) { return std::int64_t((y0 + (x - x0) * rise) * kOne) - half; };
    const std::int64_t origin = fixed(begin + 0.5);
    const auto step = std::int64_t(rise * kOne);
    const auto placeAt = [&](int x) {
        return x == begin || x == end ? fixed(std::clamp(x + 0.5, x0, x1)) : origin + step * (x - begin);
    };
    const std::int64_t firstPlace = placeAt(first);
    const std::int64_t lastPlace = placeAt(last);
    const std::ptrdiff_t along = isSteep ? m_pixels.stride : 1;
    const std::ptrdiff_t across = isSteep ? 1 : m_pixels.stride;
    const int lowest = isSteep ? m_left : m_upper;
    const int highest = (isSteep ? m_right : m_lower) - 1;
    if (m_antialiasing && std::min(firstPlace, lastPlace) >> 32 >= lowest &&
        std::max(firstPlace, lastPlace) >> 32 < highest) {
        std::uint32_t *pixel = pixelAt(0, 0) + first * along;
        // Writing pixels could change members, for all that the compiler knows.
        const std::uint32_t source = m_source;
        const std::uint32_t opacity = m_opacity;
        const auto mark = [&](std::int64_t at) {
            const std::uint32_t share = std::uint32_t(at >> 24 & 0xFF) * opacity >> 8;
            std::uint32_t *const nearest = pixel + (at >> 32) * across;
            mixPair(nearest[0], nearest[across], source, opacity - share, share);
            pixel += along;
        };
        mark(firstPlace);
        std::int64_t place = origin + step * (first + 1 - begin);
        for (int x = first + 1; x < last; ++x, place += step)
            mark(place);
        if (last > first)
            mark(lastPlace);
        return;
    }
    const auto mark = [&](int x, std::int64_t y, std::uint32_t coverage) {
        if (y >= lowest && y <= highest)
            mix(*(pixelAt(0, 0) + x * along + y * across), m_source, coverage);
    };
    for (int x = first; x <= last; ++x) {
        const std::int64_t at = placeAt(x);
        const std::uint32_t share = m_antialiasing ? std::uint32_t(at >> 24 & 0xFF) * m_opacity >> 8 : 0;
        mark(x, at >> 32, m_opacity - share);
        if (share > 0)
            mark(x, (at >> 32) + 1, share);
    }
}

void Canvas::directSegment(QPointF from, QPointF to)
{
    // Whatever the visible part, lines are cut here at most.
    constexpr double kFar = 1e6;
    const auto isNear = [](QPointF p) {
        return p.x() > -kFar && p.x() < kFar && p.y() > -kFar && p.y() < kFar;
    };
    if (!(isNear(from) && isNear(to)) && !clipLine(from, to, QRectF(-kFar, -kFar, 2.0 * kFar, 2.0 * kFar)))
        return;
    if (std::max(from.x(), to.x()) < m_left - 1 || std::min(from.x(), to.x()) > m_right + 1 ||
        std::max(from.y(), to.y()) < m_upper - 1 || std::min(from.y(), to.y()) > m_lower + 1)
        return;
    constexpr double kStraight = 0.01;
    // Lines along an axis fill one row of pixels: as sharp as the screen can show them.
    if (std::abs(from.y() - to.y()) < kStraight)
        row(floorOf(from.y()), from.x(), to.x());
    else if (std::abs(from.x() - to.x()) < kStraight)
        column(floorOf(from.x()), from.y(), to.y());
    else
        slope(from.x(), from.y(), to.x(), to.y());
}

// Areas ------------------------------------------------------------------------------------------

/// True when the loop is so thin that its area would hardly colour a pixel.
static bool isThin(const QPolygonF &loop)
{
    double area = 0.0;
    double length = 0.0;
    for (qsizetype i = 0; i < loop.size(); ++i) {
        const QPointF from = loop[i];
        const QPointF to = loop[(i + 1) % loop.size()];
        area += from.x() * to.y() - to.x() * from.y();
        length += std::hypot(to.x() - from.x(), to.y() - from.y());
    }
    // A band of width w and length l has the area w l and the outline 2 l.
    return std::abs(area) < length;
}

void Canvas::fillByRows(std::span<const QPolygonF> loops)
{
    const QRect shown(m_left, m_upper, m_right - m_left, m_lower - m_upper);
    scanFill(loops, shown, m_cancelled, [&](int y, std::span<const std::uint16_t> coverage) {
        std::uint32_t *const line = pixelAt(m_left, y);
        for (std::size_t x = 0; x < coverage.size(); ++x) {
            if (coverage[x] > 0)
                mix(line[x], m_source, coverage[x] * m_opacity >> 8);
        }
    });
}

void Canvas::fill(std::vector<QPolygonF> &loops)
{
    const QRectF near = whole().adjusted(-4, -4, 4, 4);
    std::vector<QPolygonF> thin;
    constexpr qsizetype kVeryMany = 20000;
    for (QPolygonF &loop : loops) {
        if (m_cancelled)
            return;
        loop = clipPolygon(loop, near);
        if (loop.size() > 1 && loop.size() < kVeryMany && isThin(loop))
            thin.push_back(loop);
    }
    std::erase_if(loops, [](const QPolygonF &loop) { return loop.size() < 3; });
    qsizetype corners = 0;
    for (const QPolygonF &loop : loops)
        corners += loop.size();
    if (corners > kVeryMany && isDirect()) {
        flushLines();
        fillByRows(loops);
    } else if (!loops.empty()) {
        flushLines();
        useBrush();
        if (loops.size() == 1) {
            m_painter.drawPolygon(loops.front());
        } else {
            QPainterPath path;
            for (const QPolygonF &loop : loops) {
                path.addPolygon(loop);
                path.closeSubpath();
            }
            m_painter.drawPath(path);
        }
    }
    const float width = std::exchange(m_width, 0.0F);
    for (QPolygonF &outline : thin) {
        m_state = PainterState::unknown;
        outline.push_back(outline.front());
        chain({outline.data(), std::size_t(outline.size())});
        flushLines();
    }
    m_state = thin.empty() ? m_state : PainterState::unknown;
    m_width = width;
}

// Glyphs -----------------------------------------------------------------------------------------

void Canvas::beginGlyphs(const GlyphMatrix &matrix)
{
    m_glyphMatrix = matrix;
    const double size = std::max(std::hypot(matrix.a, matrix.b), std::hypot(matrix.c, matrix.d));
    m_useMasks = isDirect() && m_antialiasing && size <= GlyphMasks::kHighest;
    if (m_useMasks)
        m_masks.setMatrix(matrix);
}

void Canvas::glyph(const Glyph &glyph, QPointF origin)
{
    if (!(std::abs(origin.x()) < kFarPixel && std::abs(origin.y()) < kFarPixel))
        return;
    if (m_useMasks) {
        const GlyphMask &shape = m_masks.mask(glyph, origin);
        return mask(shape, int(origin.x()) + shape.left, int(origin.y()) + shape.top);
    }
    flushLines();
    useBrush();
    QPainterPath path = m_glyphMatrix.at(origin).map(glyph.outline);
    if (!path.controlPointRect().intersects(visible()))
        return;
    path.setFillRule(Qt::WindingFill);
    m_painter.drawPath(path);
}

void Canvas::mask(const GlyphMask &mask, int left, int top)
{
    const int firstX = std::max(m_left, left);
    const int lastX = std::min(m_right, left + mask.width);
    const int firstY = std::max(m_upper, top);
    const int lastY = std::min(m_lower, top + mask.height);
    for (int y = firstY; y < lastY; ++y) {
        const std::uint8_t *const coverage =
            mask.coverage.data() + std::ptrdiff_t(y - top) * mask.width - left;
        std::uint32_t *const line = pixelAt(0, y);
        for (int x = firstX; x < lastX; ++x) {
            if (const std::uint32_t share = coverage[x])
                mix(line[x], m_source, (share + (share >> 7)) * m_opacity >> 8);
        }
    }
}

} // namespace acgi
