// AcGiPicture: one picture while it is painted: the lists, viewports and pens that it is made of, and the
// threads that paint its tiles.
#pragma once

#include "host/acgi/gidisplaycache.h"

#include <mutex>
#include <thread>

/// Glyph masks outlive pictures; each thread that paints borrows a set.
class AcGiGlyphMaskPool
{
public:
    std::unique_ptr<AcGiGlyphMasks> take();
    void give(std::unique_ptr<AcGiGlyphMasks> masks);

private:
    std::mutex m_lock;
    std::vector<std::unique_ptr<AcGiGlyphMasks>> m_idle;
};

/// What pictures are made from; outlives them.
struct AcGiPictureSources {
    const AcDbDatabase &database;
    AcGiDisplayCache &cache;
    const AcGiDrawingTables &tables;
    AcGiImages &images;
    AcGiGlyphMaskPool &masks;
};

/// An area of pixels in tiles of equal size; the last ones of a row or column may be smaller.
struct AcGiTileGrid {
    QRect area;
    int width = 1;
    int height = 1;
    int columns() const { return (area.width() + width - 1) / width; }
    int rows() const { return (area.height() + height - 1) / height; }
};

class AcGiPicture final : public AcGiScene
{
public:
    AcGiPicture(const AcGiPictureSources &sources, const AcGiViewport &view, const AcGiPaintOptions &options);
    /// Stops the threads.
    ~AcGiPicture() override;
    AcGiPicture(const AcGiPicture &) = delete;
    AcGiPicture &operator=(const AcGiPicture &) = delete;

    // One of these first.
    /// The picture of a space; makes lists that are missing.
    void takeSpace(AcDbObjectId space);
    /// The picture of single lists. `own`: the tables of lists that are not the cache's, or null.
    void takeLists(std::vector<const AcGiDisplayList *> lists, const AcGiListTables *own);

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
    AcGiPaintReport report() const;

    const AcGiDisplayList *block(const AcDbStub *record, int slot) const override;
    const AcGiImage &image(std::uint32_t number) const override;
    const AcGiViewportPicture &viewport(std::uint32_t number) const override;
    double viewHeight() const override { return m_view.pixelHeight; }
    AcGiImages &images() const override { return m_sources.images; }
    const AcGiShownSpace *viewportSpace(std::uint32_t number) const override;
    const AcGiPens *viewportPens(std::uint32_t number) const override;

private:
    struct ShownViewport {
        AcGiShownSpace space;
        std::unique_ptr<AcGiPens> pens;
    };
    /// A piece of the picture that one thread paints at a time.
    struct Tile {
        QRect area;
        AcGiShownSpace shown;
        std::map<QString, std::size_t> undrawn;
    };
    /// What a thread keeps from one tile to the next.
    struct Worker {
        std::unique_ptr<AcGiGlyphMasks> masks;
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
    void findImages(const AcGiListTables &tables);
    std::vector<QRectF> boxes(const QRect &area) const;
    AcGiTileGrid chooseGrid(const QRect &area, const std::vector<QRectF> &boxes) const;
    void splitIntoTiles(const QRect &area);
    void aim(QImage &image);
    void splitAndWork();
    void work(bool asks);
    void paintTile(Tile &tile, Worker &worker);
    void paintPart(Tile &tile, QPainter &painter, const AcGiPixels &pixels, Worker &worker);

    AcGiPictureSources m_sources;
    AcGiViewport m_view;
    AcGiPaintOptions m_options;
    AcGiShownSpace m_shown;
    std::map<std::uint32_t, ShownViewport> m_viewports;
    const AcGiListTables *m_ownTables = nullptr;
    AcGiPens m_pens;
    AcGiPaintReport m_report; ///< Without what the tiles found.

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
AcGiViewport acgiViewOf(const AcGiViewportPicture &picture, const AcGiViewport &sheet);
/// Viewports that show nothing, or the space that they stand in, are left out of pictures.
bool acgiIsShown(const AcGiViewportPicture &picture, AcDbObjectId sheet);
