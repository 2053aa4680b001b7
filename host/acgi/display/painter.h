// ListPainter: walks display lists and hands what they draw to a canvas, in pixels.
#pragma once

#include "host/acdb/dbnesting.h"
#include "host/acgi/display/box_grid.h"
#include "host/acgi/display/canvas.h"
#include "host/acgi/display/display_list.h"
#include "host/acgi/display/images.h"
#include "host/acgi/display/pens.h"

#include <atomic>
#include <optional>

namespace acgi
{

/// The lists of a space that are to be painted as one view sees them, in drawing order.
struct ShownSpace {
    std::vector<const DisplayList *> lists;
    /// Boxes hold: the view looks straight down.
    bool isPlan = true;
    int slot = 0; ///< Whose lists show what depends on the view.
};

/// A large block: its entities have lists of their own, so that only those are painted that can be seen.
struct BlockParts {
    std::vector<std::uint32_t> lists; ///< Their numbers, in drawing order.
    std::optional<BoxGrid> grid;      ///< Of places in `lists`.
};

/// What a picture is painted from; nothing of it changes while threads paint.
class Scene
{
public:
    virtual ~Scene() = default;
    /// Null when the block draws nothing. `slot` is that of ShownSpace's view.
    virtual const DisplayList *block(const AcDbStub *record, int slot) const = 0;
    virtual const BlockParts *parts(std::uint32_t number) const = 0;
    virtual const DisplayList *list(std::uint32_t number, int slot) const = 0;
    virtual const Image &image(std::uint32_t number) const = 0;
    virtual const ViewportPicture &viewport(std::uint32_t number) const = 0;
    virtual double viewHeight() const = 0; ///< Of the whole picture, pixels.
    virtual Images &images() const = 0;
    /// What the viewport of that number shows, as prepared; null for none.
    virtual const ShownSpace *viewportSpace(std::uint32_t number) const = 0;
    virtual const Pens *viewportPens(std::uint32_t number) const = 0;
};

/// The pixels around the box of a flat list: left, bottom, right, top.
QRectF pixelBox(const AcGeMatrix3d &toPixel, const float *box);

class ListPainter
{
public:
    ListPainter(const Scene &scene, Canvas &canvas, const Pens &pens, const PaintOptions &options,
                std::atomic<bool> &cancelled);

    /// Paints lists that `toPixel` takes to the canvas. `unit` is the length of a pixel pattern unit: how
    /// many pixels a drawing unit of linetypes has.
    void paint(const ShownSpace &space, const AcGeMatrix3d &toPixel, double pixelsPerUnit);
    /// Reasons that came up while painting.
    const std::map<QString, std::size_t> &undrawn() const { return m_undrawn; }
    /// Asked now and then, on this thread; sets the common flag.
    void setCancelQuestion(std::function<bool()> question) { m_isCancelled = std::move(question); }

private:
    /// The frame that lists are painted in: a space, or a block as one reference shows it.
    struct Frame {
        AcGeMatrix3d toPixel;
        const Pens *pens;
        const Pen *shower = nullptr;
        double pixelsPerUnit = 1.0;
        int slot = 0;
    };

    bool goesOn();
    void list(const DisplayList &list);
    void speck(const DisplayList &list, QPointF place);
    bool takePen(std::uint32_t traits);
    QPointF pixel(const AcGePoint3d &point) const;
    QPointF pixel(const AcGeVector3d &vector) const;

    void polyline(ListReader &reader, bool shown);
    void arc(ListReader &reader, bool shown);
    void smallArc(QPointF centre, QPointF u, QPointF v, double start, double sweep, double radius);
    void largeArc(QPointF centre, QPointF u, QPointF v, double from, double to, int depth);
    void fill(ListReader &reader, bool shown);
    void text(ListReader &reader, bool shown);
    void ground(QPointF position, QPointF along, QPointF up);
    void textRun(const Font &font, QStringView text, double tracking, const QTransform &placed);
    void faceRun(std::span<const PlacedGlyph> glyphs, const QTransform &placed);
    void outlines(std::span<const PlacedGlyph> glyphs, const QTransform &placed);
    void infiniteLine(ListReader &reader, bool shown);
    void marker(ListReader &reader, bool shown);
    void image(ListReader &reader, bool shown);
    void imageFrame(const Image &image);
    void missingImage(const Image &image, const Images::Entry &entry);
    void viewport(ListReader &reader, bool shown);
    void reference(ListReader &reader, bool shown);
    void instances(const DisplayList &block, const AcGeMatrix3d &placement, int columns, int rows,
                   const AcGeVector3d &columnStep, const AcGeVector3d &rowStep);
    void instance(const DisplayList &block, const AcGeMatrix3d &placement);
    void parts(ListReader &reader);
    void pushClip(ListReader &reader);
    std::vector<QPolygonF> loops(ListReader &reader) const;
    void stroke(bool closed = false);
    void note(const QString &reason) { ++m_undrawn[reason]; }

    const Scene &m_scene;
    Canvas &m_canvas;
    const PaintOptions &m_options;
    std::atomic<bool> &m_cancelled;
    std::function<bool()> m_isCancelled;
    Frame m_frame;
    const Pen *m_pen = nullptr;
    Pen m_scratch;
    std::uint32_t m_penNumber = ~0u;
    AcDbNesting m_nesting; ///< Of the block that is being painted.
    bool m_insideViewport = false;
    double m_margin = 0.0; ///< How far drawing reaches out of boxes, pixels.
    std::vector<QPointF> m_points;
    std::vector<QPolygonF> m_areas; ///< Filled last in the list, while everything is painted in one colour.
    std::map<QString, std::size_t> m_undrawn;
    std::int64_t m_budget; ///< Words that may still be painted.
    unsigned m_sinceQuestion = 0;
};

} // namespace acgi
