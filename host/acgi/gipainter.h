// AcGiListPainter: walks display lists and hands what they draw to a canvas, in pixels.
#pragma once

#include "host/acdb/dbnesting.h"
#include "host/acgi/gicanvas.h"
#include "host/acgi/gidisplaylist.h"
#include "host/acgi/giimages.h"
#include "host/acgi/gipens.h"

#include <atomic>

/// The lists of a space that are to be painted as one view sees them, in drawing order.
struct AcGiShownSpace {
    std::vector<const AcGiDisplayList *> lists;
    /// Boxes hold: the view looks straight down.
    bool isPlan = true;
    int slot = 0; ///< Whose lists show what depends on the view.
};

/// What a picture is painted from; nothing of it changes while threads paint.
class AcGiScene
{
public:
    virtual ~AcGiScene() = default;
    /// Null when the block draws nothing. `slot` is that of AcGiShownSpace's view.
    virtual const AcGiDisplayList *block(const AcDbStub *record, int slot) const = 0;
    virtual const AcGiImage &image(std::uint32_t number) const = 0;
    virtual const AcGiViewportPicture &viewport(std::uint32_t number) const = 0;
    virtual double viewHeight() const = 0; ///< Of the whole picture, pixels.
    virtual AcGiImages &images() const = 0;
    /// What the viewport of that number shows, as prepared; null for none.
    virtual const AcGiShownSpace *viewportSpace(std::uint32_t number) const = 0;
    virtual const AcGiPens *viewportPens(std::uint32_t number) const = 0;
};

/// The pixels around the box of a flat list: left, bottom, right, top.
QRectF acgiPixelBox(const AcGeMatrix3d &toPixel, const float *box);

class AcGiListPainter
{
public:
    AcGiListPainter(const AcGiScene &scene, AcGiCanvas &canvas, const AcGiPens &pens,
                    const AcGiPaintOptions &options, std::atomic<bool> &cancelled);

    /// Paints lists that `toPixel` takes to the canvas. `unit` is the length of a pixel pattern unit: how
    /// many pixels a drawing unit of linetypes has.
    void paint(const AcGiShownSpace &space, const AcGeMatrix3d &toPixel, double pixelsPerUnit);
    /// Reasons that came up while painting.
    const std::map<QString, std::size_t> &undrawn() const { return m_undrawn; }
    /// Asked now and then, on this thread; sets the common flag.
    void setCancelQuestion(std::function<bool()> question) { m_isCancelled = std::move(question); }

private:
    /// The frame that lists are painted in: a space, or a block as one reference shows it.
    struct Frame {
        AcGeMatrix3d toPixel;
        const AcGiPens *pens;
        const AcGiPen *shower = nullptr;
        double pixelsPerUnit = 1.0;
        int slot = 0;
    };

    bool goesOn();
    void list(const AcGiDisplayList &list);
    void speck(const AcGiDisplayList &list, QPointF place);
    bool takePen(std::uint32_t traits);
    QPointF pixel(const AcGePoint3d &point) const;
    QPointF pixel(const AcGeVector3d &vector) const;

    void polyline(AcGiListReader &reader, bool shown);
    void arc(AcGiListReader &reader, bool shown);
    void smallArc(QPointF centre, QPointF u, QPointF v, double start, double sweep, double radius);
    void largeArc(QPointF centre, QPointF u, QPointF v, double from, double to, int depth);
    void fill(AcGiListReader &reader, bool shown);
    void text(AcGiListReader &reader, bool shown);
    void textRun(const AcGiFont &font, QStringView text, double tracking, const QTransform &placed);
    void faceRun(std::span<const AcGiPlacedGlyph> glyphs, const QTransform &placed);
    void outlines(std::span<const AcGiPlacedGlyph> glyphs, const QTransform &placed);
    void infiniteLine(AcGiListReader &reader, bool shown);
    void marker(AcGiListReader &reader, bool shown);
    void image(AcGiListReader &reader, bool shown);
    void imageFrame(const AcGiImage &image);
    void missingImage(const AcGiImage &image, const AcGiImages::Entry &entry);
    void viewport(AcGiListReader &reader, bool shown);
    void reference(AcGiListReader &reader, bool shown);
    void instances(const AcGiDisplayList &block, const AcGeMatrix3d &placement, int columns, int rows,
                   const AcGeVector3d &columnStep, const AcGeVector3d &rowStep);
    void instance(const AcGiDisplayList &block, const AcGeMatrix3d &placement);
    void pushClip(AcGiListReader &reader);
    std::vector<QPolygonF> loops(AcGiListReader &reader) const;
    void stroke(bool closed = false);
    void note(const QString &reason) { ++m_undrawn[reason]; }

    const AcGiScene &m_scene;
    AcGiCanvas &m_canvas;
    const AcGiPaintOptions &m_options;
    std::atomic<bool> &m_cancelled;
    std::function<bool()> m_isCancelled;
    Frame m_frame;
    const AcGiPen *m_pen = nullptr;
    AcGiPen m_scratch;
    std::uint32_t m_penNumber = ~0u;
    AcDbNesting m_nesting; ///< Of the block that is being painted.
    bool m_insideViewport = false;
    double m_margin = 0.0; ///< How far drawing reaches out of boxes, pixels.
    std::vector<QPointF> m_points;
    std::map<QString, std::size_t> m_undrawn;
    std::int64_t m_budget; ///< Words that may still be painted.
    unsigned m_sinceQuestion = 0;
};
