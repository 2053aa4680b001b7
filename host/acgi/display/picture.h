// Picture: one picture while it is painted: the lists, viewports and pens that it is made of, and the
// threads that paint its tiles.
#pragma once

#include "host/acgi/display/display_cache.h"

#include <mutex>
#include <thread>

namespace acgi
{

/// Glyph masks outlive pictures; each thread that paints borrows a set.
class GlyphMaskPool
{
public:
    std::unique_ptr<GlyphMasks> take();
    void give(std::unique_ptr<GlyphMasks> masks);

private:
    std::mutex m_lock;
    std::vector<std::unique_ptr<GlyphMasks>> m_idle;
};

/// What pictures are made from; outlives them.
struct PictureSources {
    const AcDbDatabase &database;
    DisplayCache &cache;
    const DrawingTables &tables;
    Images &images;
    GlyphMaskPool &masks;
};

/// An area of pixels in tiles of equal size; the last ones of a row or column may be smaller.
struct TileGrid {
    QRect area;
    int width = 1;
    int height = 1;
    int columns() const { return (area.width() + width - 1) / width; }
    int rows() const { return (area.height() + height - 1) / height; }
};

class Picture final : public Scene
{
public:
    Picture(const PictureSources &sources, const AcGiViewport &view, const PaintOptions &options);
    /// Stops the threads.
    ~Picture() override;
    Picture(const Picture &) = delete;
    Picture &operator=(const Picture &) = delete;

    // One of these first.
    /// The picture of a space; makes lists that are missing.
    void takeSpace(AcDbObjectId space);
    /// The picture of single lists. `own`: the tables of lists that are not the cache's, or null.
    void takeLists(std::vector<const DisplayList *> lists, const ListTables *own);

    /// Paints and returns. The painter's coordinates are the pixels of the view.
    void paint(QPainter &painter);
    /// Paints an image of the view's size on threads of its own; the last of them calls `finished`, unless
    /// the painting is stopped before. The lists must not change meanwhile.
    void start(std::function<void()> finished);
    void stop();
    /// Waits for the threads.
    void join() { m_threads.clear(); }
    /// After start() and join().
    const QImage &image() const { return m_image; }
    PaintReport report() const;

    const DisplayList *block(const AcDbStub *record, int slot) const override;
    const BlockParts *parts(std::uint32_t number) const override;
    const DisplayList *list(std::uint32_t number, int slot) const override;
    const Image &image(std::uint32_t number) const override;
    const ViewportPicture &viewport(std::uint32_t number) const override;
    double viewHeight() const override { return m_view.pixelHeight; }
    Images &images() const override { return m_sources.images; }
    const ShownSpace *viewportSpace(std::uint32_t number) const override;
    const Pens *viewportPens(std::uint32_t number) const override;

private:
    struct ShownViewport {
        ShownSpace space;
        std::unique_ptr<Pens> pens;
    };
    /// A piece of the picture that one thread paints at a time.
    struct Tile {
        QRect area;
        ShownSpace shown;
        std::map<QString, std::size_t> undrawn;
    };
    /// What a thread keeps from one tile to the next.
    struct Worker {
        std::unique_ptr<GlyphMasks> masks;
        std::vector<std::uint32_t> pixels;
        bool asks; ///< Whether the painting goes on.
    };
    /// The pixels of an image, for several painters at once.
    struct Target {
        uchar *bits = nullptr;
        qsizetype bytesPerLine = 0;
        QImage::Format format = QImage::Format_Invalid;
    };

    QRect area(const QSize &device) const;
    QRectF wholeView() const { return {0, 0, m_view.pixelWidth, m_view.pixelHeight}; }
    void showViewports(AcDbObjectId space, double margin);
    void findImages(const ListTables &tables);
    bool isWorthTiles() const;
    std::vector<QRectF> boxes(const QRect &area) const;
    TileGrid chooseGrid(const QRect &area, const std::vector<QRectF> &boxes) const;
    void splitIntoTiles(const QRect &area);
    void aim(QImage &image);
    void splitAndWork();
    void work(bool asks);
    void paintTile(Tile &tile, Worker &worker);
    void paintPart(Tile &tile, QPainter &painter, const Pixels &pixels, Worker &worker);

    PictureSources m_sources;
    AcGiViewport m_view;
    PaintOptions m_options;
    ShownSpace m_shown;
    std::map<std::uint32_t, ShownViewport> m_viewports;
    const ListTables *m_ownTables = nullptr;
    Pens m_pens;
    PaintReport m_report; ///< Without what the tiles found.

    QImage m_image;
    Target m_target;
    std::vector<Tile> m_tiles;
    std::once_flag m_split;
    std::atomic<std::size_t> m_nextTile = 0;
    std::atomic<std::size_t> m_working = 0;
    std::atomic<bool> m_cancelled = false;
    std::function<void()> m_finished;
    std::vector<std::jthread> m_threads;
};

/// The view that a viewport is on a sheet that is shown as `sheet`.
AcGiViewport viewOf(const ViewportPicture &picture, const AcGiViewport &sheet);
/// Viewports that show nothing, or the space that they stand in, are left out of pictures.
bool isShown(const ViewportPicture &picture, AcDbObjectId sheet);

} // namespace acgi
