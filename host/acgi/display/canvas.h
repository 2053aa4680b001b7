// Canvas: lines, areas and glyphs in pixels onto a QPainter. Onto an image, thin lines and small glyphs
// are written to its pixels directly, which is many times faster. Everything is clipped before QPainter sees
// it; what is not finite is left out.
#pragma once

#include "host/acgi/display/glyph_masks.h"

#include <QImage>
#include <QPainter>
#include <QPolygonF>

#include <atomic>
#include <span>
#include <vector>

namespace acgi
{

/// Rows of an image with 32 bits to a pixel, premultiplied or opaque.
struct Pixels {
    std::uint32_t *first = nullptr; ///< The pixel (left, top); null: no direct access.
    std::ptrdiff_t stride = 0;      ///< From one row to the next, pixels.
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
};

class Canvas
{
public:
    /// The painter's coordinates are pixels of the view; `visible` is the part of the view, `whole`, that is
    /// to be painted. Each part comes out as it does when the whole is painted.
    Canvas(QPainter &painter, const QRectF &visible, const QRectF &whole, const Pixels &pixels,
           bool antialiasing, GlyphMasks &masks, const std::atomic<bool> &cancelled);
    ~Canvas();
    Canvas(const Canvas &) = delete;
    Canvas &operator=(const Canvas &) = delete;

    /// What shows after all clips; nothing outside needs to be drawn.
    const QRectF &visible() const { return m_clips.back().bounds; }
    /// The same of the whole view. What is cut must be cut here, so that the cuts are where they always are.
    const QRectF &whole() const { return m_clips.back().whole; }

    /// `color` is not premultiplied; `width` in pixels, thin lines up to 1.5.
    void setPen(QRgb color, float width);
    void chain(std::span<const QPointF> points);
    void dot(QPointF point);
    /// Even-odd. Parts thinner than a pixel show as hairlines. Changes the loops.
    void fill(std::vector<QPolygonF> &loops);
    /// Glyphs follow with (a b c d) taking their coordinates to pixels.
    void beginGlyphs(const GlyphMatrix &matrix);
    void glyph(const Glyph &glyph, QPointF origin);
    /// The painter, for what the canvas has no call for; in pixels, with the clips set.
    QPainter &painter();

    void pushClip(const std::vector<QPolygonF> &loops, bool inverted);
    void popClip();

private:
    struct Clip {
        QRectF bounds;
        QRectF whole;
        bool isRectangle = true;
        bool savedPainter = false;
    };
    enum class PainterState { unknown, pen, brush };

    bool isDirect() const { return m_pixels.first && m_clips.back().isRectangle; }
    void updatePixelClip();
    void segment(QPointF from, QPointF to);
    void directSegment(QPointF from, QPointF to);
    void row(int y, double from, double to);
    void column(int x, double from, double to);
    void slope(double x0, double y0, double x1, double y1);
    void plot(int x, int y, std::uint32_t coverage);
    std::uint32_t *pixelAt(int x, int y) const
    {
        return m_pixels.first + std::ptrdiff_t(y - m_pixels.top) * m_pixels.stride + (x - m_pixels.left);
    }
    void mask(const GlyphMask &mask, int x, int y);
    void fillByRows(std::span<const QPolygonF> loops);
    void flushLines();
    void usePen();
    void useBrush();

    QPainter &m_painter;
    Pixels m_pixels;
    bool m_antialiasing;
    std::vector<Clip> m_clips;
    // Direct access: what may be written.
    int m_left = 0;
    int m_right = 0;
    int m_upper = 0;
    int m_lower = 0;

    QRgb m_color = 0xFF000000u;
    std::uint32_t m_source = 0xFF000000u; ///< The colour, opaque.
    std::uint32_t m_opacity = 256;        ///< 0 to 256.
    float m_width = 0.0F;
    PainterState m_state = PainterState::unknown;
    std::vector<QLineF> m_lines; ///< For the painter, with the present pen.
    GlyphMasks &m_masks;
    const std::atomic<bool> &m_cancelled; ///< Then what takes long may be left out.
    GlyphMatrix m_glyphMatrix;
    bool m_useMasks = false;
};

} // namespace acgi
