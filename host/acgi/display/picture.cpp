#include "host/acgi/display/picture.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace acgi
{

// Glyph masks ------------------------------------------------------------------------------------

std::unique_ptr<GlyphMasks> GlyphMaskPool::take()
{
    const std::lock_guard guard(m_lock);
    if (m_idle.empty())
        return std::make_unique<GlyphMasks>();
    std::unique_ptr<GlyphMasks> masks = std::move(m_idle.back());
    m_idle.pop_back();
    return masks;
}

void GlyphMaskPool::give(std::unique_ptr<GlyphMasks> masks)
{
    const std::lock_guard guard(m_lock);
    m_idle.push_back(std::move(masks));
}

/// Pixels; a tile of this size fits into the cache of one core.
static constexpr int kTile = 256;
/// Fewer lists are one tile.
static constexpr std::size_t kWorthTiles = 500;
/// Room for what is only known once its lists are made, pixels.
static constexpr double kMargin = 16.0;

// What is shown ----------------------------------------------------------------------------------

Picture::Picture(const PictureSources &sources, const AcGiViewport &view, const PaintOptions &options)
    : m_sources(sources), m_view(view), m_options(options), m_pens(sources.tables, m_options)
{
}

Picture::~Picture()
{
    stop();
}

AcGiViewport viewOf(const ViewportPicture &picture, const AcGiViewport &sheet)
{
    AcGiViewport view;
    view.direction = picture.direction;
    view.twist = picture.twist;
    view.height = picture.viewHeight;
    view.pixelHeight = picture.height / sheet.pixelSize();
    view.pixelWidth = picture.width / sheet.pixelSize();
    view.centre = picture.target + view.getEyeToWorldTransform() *
                                       AcGeVector3d(picture.viewCentre.x, picture.viewCentre.y, 0.0);
    return view;
}

bool isShown(const ViewportPicture &picture, AcDbObjectId sheet)
{
    return picture.width > 0.0 && picture.height > 0.0 && picture.viewHeight > 0.0 &&
           picture.space.isValid() && picture.space != sheet;
}

void Picture::showViewports(AcDbObjectId space, double margin)
{
    const ListTables &tables = m_sources.cache.tables();
    for (const std::uint32_t number : m_sources.cache.viewportsOf(space)) {
        const ViewportPicture &picture = tables.viewport(number);
        if (!isShown(picture, space))
            continue;
        ShownViewport &shown = m_viewports[number];
        const AcGiViewport view = viewOf(picture, m_view);
        const QRectF all(-margin, -margin, view.pixelWidth + 2.0 * margin, view.pixelHeight + 2.0 * margin);
        shown.space = m_sources.cache.show(picture.space, view, all, int(number) + 1, m_options, m_report);
        shown.pens = std::make_unique<Pens>(m_sources.tables, m_options, picture.frozenLayers);
    }
    // All traits are known only now.
    for (auto &[number, shown] : m_viewports)
        shown.pens->add(tables.traits());
}

void Picture::takeSpace(AcDbObjectId space)
{
    m_pens.add(m_sources.cache.tables().traits());
    const double margin = std::max(kMargin, m_pens.margin(1.0 / m_view.pixelSize()));
    const QRectF part = m_options.part.isEmpty() ? wholeView() : QRectF(m_options.part);
    const int slot = m_options.besideScreen ? m_sources.cache.slotFor(m_view) : 0;
    m_shown = m_sources.cache.show(space, m_view, part.adjusted(-margin, -margin, margin, margin), slot,
                                   m_options, m_report);
    showViewports(space, margin);
    m_report.painted = m_shown.lists.size();
    m_pens.add(m_sources.cache.tables().traits());
    findImages(m_sources.cache.tables());
}

void Picture::takeLists(std::vector<const DisplayList *> lists, const ListTables *own)
{
    m_shown.slot = m_sources.cache.slotFor(m_view);
    m_shown.lists = std::move(lists);
    m_shown.isPlan = m_view.isPlan();
    m_ownTables = own;
    m_pens.add(m_sources.cache.tables().traits());
    findImages(m_sources.cache.tables());
    if (own) {
        m_pens.addOwn(own->traits());
        findImages(*own);
    }
}

void Picture::findImages(const ListTables &tables)
{
    for (const Image &shown : tables.images())
        m_sources.images.find(shown.path, m_sources.database.folder());
}

const DisplayList *Picture::block(const AcDbStub *record, int slot) const
{
    return m_sources.cache.list(m_sources.cache.knownNumber(*record), slot);
}

const BlockParts *Picture::parts(std::uint32_t number) const
{
    return m_sources.cache.parts(number);
}

const DisplayList *Picture::list(std::uint32_t number, int slot) const
{
    return m_sources.cache.list(number, slot);
}

const Image &Picture::image(std::uint32_t number) const
{
    return number < ListTables::kOwn ? m_sources.cache.tables().image(number) : m_ownTables->image(number);
}

const ViewportPicture &Picture::viewport(std::uint32_t number) const
{
    return number < ListTables::kOwn ? m_sources.cache.tables().viewport(number)
                                     : m_ownTables->viewport(number);
}

const ShownSpace *Picture::viewportSpace(std::uint32_t number) const
{
    const auto found = m_viewports.find(number);
    return found == m_viewports.end() ? nullptr : &found->second.space;
}

const Pens *Picture::viewportPens(std::uint32_t number) const
{
    const auto found = m_viewports.find(number);
    return found == m_viewports.end() ? nullptr : found->second.pens.get();
}

// Tiles ------------------------------------------------------------------------------------------

QRect Picture::area(const QSize &device) const
{
    const QSize size(int(std::ceil(m_view.pixelWidth)), int(std::ceil(m_view.pixelHeight)));
    const QRect whole(QPoint(0, 0), size.boundedTo(device));
    return m_options.part.isEmpty() ? whole : whole & m_options.part;
}

static TileGrid gridOf(const QRect &area, int columns, int rows)
{
    return {area, (area.width() + columns - 1) / columns, (area.height() + rows - 1) / rows};
}

/// The tiles from which and to which the box reaches; empty when it lies outside.
static QRect tilesOf(const TileGrid &grid, const QRectF &box)
{
    const auto tile = [](double from, double size, int most) {
        return int(std::clamp(std::floor(from / size), -1.0, double(most)));
    };
    const int columns = grid.columns();
    const int rows = grid.rows();
    const QPoint first(tile(box.left() - grid.area.left(), grid.width, columns),
                       tile(box.top() - grid.area.top(), grid.height, rows));
    const QPoint last(tile(box.right() - grid.area.left(), grid.width, columns),
                      tile(box.bottom() - grid.area.top(), grid.height, rows));
    return QRect(first, last) & QRect(0, 0, columns, rows);
}

/// Where the lists lie, in pixels; everywhere when that is not known.
std::vector<QRectF> Picture::boxes(const QRect &area) const
{
    const AcGeMatrix3d toPixel = m_view.worldToPixel();
    const double margin = m_pens.margin(1.0 / m_view.pixelSize());
    std::vector<QRectF> boxes;
    boxes.reserve(m_shown.lists.size());
    for (const DisplayList *const list : m_shown.lists) {
        if (m_cancelled)
            break;
        const bool isKnown = m_shown.isPlan && list->hasBox() && !list->has(DisplayList::kEndless);
        boxes.push_back(isKnown ? pixelBox(toPixel, list->box).adjusted(-margin, -margin, margin, margin)
                                : QRectF(area));
    }
    return boxes;
}

/// A single list may show a block as large as a drawing.
bool Picture::isWorthTiles() const
{
    const auto isLarge = [](const DisplayList *list) { return list->has(DisplayList::kLarge); };
    return m_shown.lists.size() >= kWorthTiles || std::ranges::any_of(m_shown.lists, isLarge);
}

/// Small tiles stay in the processor's cache; but what lies in many tiles is looked at in each of them.
TileGrid Picture::chooseGrid(const QRect &area, const std::vector<QRectF> &boxes) const
{
    constexpr double kMostRepeated = 1.6;
    constexpr double kReferenceWords = 1000.0;
    const auto count = [](int pixels, int size) { return std::max(1, (pixels + size / 2) / size); };
    if (!isWorthTiles())
        return gridOf(area, 1, 1);
    for (const int size : {kTile, 2 * kTile}) {
        const TileGrid grid = gridOf(area, count(area.width(), size), count(area.height(), size));
        double once = 0.0;
        double repeated = 0.0;
        for (std::size_t i = 0; i < boxes.size() && !m_cancelled; ++i) {
            const DisplayList &list = *m_shown.lists[i];
            // Of large ones each tile looks at what lies in it.
            if (list.has(DisplayList::kLarge))
                continue;
            const QRect tiles = tilesOf(grid, boxes[i]);
            const double words = list.size + (list.has(DisplayList::kReferences) ? kReferenceWords : 0.0);
            once += tiles.isEmpty() ? 0.0 : words;
            repeated += words * tiles.width() * tiles.height();
        }
        if (repeated <= once * kMostRepeated)
            return grid;
    }
    return gridOf(area, 1,
                  std::thread::hardware_concurrency() > 1 ? std::min(8, count(area.height(), 64)) : 1);
}

void Picture::splitIntoTiles(const QRect &area)
{
    m_tiles.clear();
    if (area.isEmpty())
        return;
    const std::vector<QRectF> boxes = this->boxes(area);
    const TileGrid grid = chooseGrid(area, boxes);
    const int columns = grid.columns();
    m_tiles = std::vector<Tile>(std::size_t(columns) * std::size_t(grid.rows()));
    const auto tileAt = [&](int row, int column) -> Tile & {
        return m_tiles[std::size_t(row) * std::size_t(columns) + std::size_t(column)];
    };
    for (int row = 0; row < grid.rows(); ++row) {
        for (int column = 0; column < columns; ++column) {
            Tile &tile = tileAt(row, column);
            tile.area = QRect(area.left() + column * grid.width, area.top() + row * grid.height, grid.width,
                              grid.height) &
                        area;
            tile.shown.isPlan = m_shown.isPlan;
            tile.shown.slot = m_shown.slot;
        }
    }
    for (std::size_t i = 0; i < boxes.size() && !m_cancelled; ++i) {
        const QRect tiles = tilesOf(grid, boxes[i]);
        for (int row = tiles.top(); row <= tiles.bottom(); ++row) {
            for (int column = tiles.left(); column <= tiles.right(); ++column)
                tileAt(row, column).shown.lists.push_back(m_shown.lists[i]);
        }
    }
}

// The pixels of the image itself: its painters must not be made to copy them.
void Picture::aim(QImage &image)
{
    m_target = {const_cast<uchar *>(image.constBits()), image.bytesPerLine(), image.format()};
}

void Picture::paintTile(Tile &tile, Worker &worker)
{
    const QRect &area = tile.area;
    uchar *const target = m_target.bits + area.top() * m_target.bytesPerLine + area.left() * 4;
    const std::size_t pixels = std::size_t(area.width()) * std::size_t(area.height());
    // Rows that lie together keep the processor's caches from looking for each of them.
    const bool isCopied = m_tiles.size() > 1 && pixels <= std::size_t(kTile) * kTile * 4;
    const qsizetype bytesPerLine = isCopied ? qsizetype(area.width()) * 4 : m_target.bytesPerLine;
    if (isCopied)
        worker.pixels.resize(pixels);
    uchar *const first = isCopied ? reinterpret_cast<uchar *>(worker.pixels.data()) : target;
    const auto copyRows = [&](uchar *to, qsizetype toStep, const uchar *from, qsizetype fromStep) {
        for (int row = 0; row < area.height(); ++row)
            std::memcpy(to + row * toStep, from + row * fromStep, std::size_t(area.width()) * 4);
    };
    if (isCopied && !m_options.fillBackground)
        copyRows(first, bytesPerLine, target, m_target.bytesPerLine);
    {
        QImage image(first, area.width(), area.height(), bytesPerLine, m_target.format);
        QPainter painter(&image);
        painter.translate(-area.topLeft());
        if (m_options.fillBackground)
            painter.fillRect(area, m_options.background);
        paintPart(tile, painter,
                  {reinterpret_cast<std::uint32_t *>(first), bytesPerLine / 4, area.left(), area.top(),
                   area.width(), area.height()},
                  worker);
    }
    if (isCopied)
        copyRows(target, m_target.bytesPerLine, first, bytesPerLine);
}

void Picture::paintPart(Tile &tile, QPainter &painter, const Pixels &pixels, Worker &worker)
{
    const QRectF whole = wholeView();
    Canvas canvas(painter, whole & QRectF(tile.area), whole, pixels, m_options.antialiasing, *worker.masks,
                  m_cancelled);
    ListPainter lists(*this, canvas, m_pens, m_options, m_cancelled);
    if (worker.asks)
        lists.setCancelQuestion(m_options.isCancelled);
    lists.paint(tile.shown, m_view.worldToPixel(), 1.0 / m_view.pixelSize());
    tile.undrawn = lists.undrawn();
}

// Threads ----------------------------------------------------------------------------------------

void Picture::work(bool asks)
{
    Worker worker{m_sources.masks.take(), {}, asks};
    for (std::size_t tile = m_nextTile++; tile < m_tiles.size() && !m_cancelled; tile = m_nextTile++)
        paintTile(m_tiles[tile], worker);
    m_sources.masks.give(std::move(worker.masks));
    if (--m_working == 0 && m_finished && !m_cancelled)
        m_finished();
}

/// The threads of a painting in the background split it themselves: with a million lists that takes longer
/// than the caller may stand still.
void Picture::splitAndWork()
{
    std::call_once(m_split, [this] { splitIntoTiles(area(m_image.size())); });
    work(false);
}

static std::size_t threadsFor(std::size_t tiles)
{
    return std::min<std::size_t>(tiles, std::max(1u, std::thread::hardware_concurrency()));
}

/// The image behind a painter whose coordinates are the pixels of the image.
static QImage *plainImage(QPainter &painter)
{
    if (!painter.device() || painter.device()->devType() != QInternal::Image || painter.hasClipping() ||
        !painter.deviceTransform().isIdentity() || painter.opacity() != 1.0 ||
        painter.compositionMode() != QPainter::CompositionMode_SourceOver)
        return nullptr;
    auto *const image = static_cast<QImage *>(painter.device());
    const bool isFit =
        image->format() == QImage::Format_RGB32 || image->format() == QImage::Format_ARGB32_Premultiplied;
    return isFit ? image : nullptr;
}

void Picture::paint(QPainter &painter)
{
    m_cancelled = m_report.cancelled;
    if (QImage *const image = plainImage(painter)) {
        splitIntoTiles(area(image->size()));
        aim(*image);
        m_working = threadsFor(m_tiles.size());
        for (std::size_t thread = 1; thread < threadsFor(m_tiles.size()); ++thread)
            m_threads.emplace_back([this] { work(false); });
        work(true);
        m_threads.clear();
        return;
    }
    Tile &tile = m_tiles.emplace_back();
    tile.shown = m_shown;
    tile.area = area(QSize(1 << 24, 1 << 24));
    painter.save();
    painter.setClipRect(QRectF(tile.area) & wholeView(), Qt::IntersectClip);
    if (m_options.fillBackground)
        painter.fillRect(tile.area, m_options.background);
    Worker worker{std::make_unique<GlyphMasks>(), {}, true};
    paintPart(tile, painter, {}, worker);
    painter.restore();
}

void Picture::start(std::function<void()> finished)
{
    m_finished = std::move(finished);
    m_image =
        QImage(int(std::ceil(m_view.pixelWidth)), int(std::ceil(m_view.pixelHeight)), QImage::Format_RGB32);
    aim(m_image);
    const std::size_t threads =
        isWorthTiles() ? threadsFor(std::size_t(std::thread::hardware_concurrency())) : 1;
    m_working = threads;
    for (std::size_t thread = 0; thread < threads; ++thread)
        m_threads.emplace_back([this] { splitAndWork(); });
}

void Picture::stop()
{
    m_cancelled = true;
    m_threads.clear();
}

PaintReport Picture::report() const
{
    PaintReport report = m_report;
    report.cancelled = m_cancelled;
    for (const Tile &tile : m_tiles) {
        for (const auto &[reason, count] : tile.undrawn) {
            std::size_t &known = report.undrawn[reason];
            known = std::max(known, count);
        }
    }
    return report;
}

} // namespace acgi
