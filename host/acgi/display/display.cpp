#include "host/acgi/display/display.h"

#include "host/acgi/display/picture.h"

#include <QObject>

#include <algorithm>
#include <deque>
#include <optional>

namespace acgi
{

class Display::Impl
{
public:
    explicit Impl(AcDbDatabase &database)
        : cache(database, [this] { stop(); }), m_database(database), m_drawing(database)
    {
    }
    ~Impl() { stop(); }

    PaintReport paint(AcDbObjectId space, const AcGiViewport &view, QPainter &painter,
                      const PaintOptions &options);
    bool prepare(AcDbObjectId space, const AcGiViewport &view, int milliseconds);
    void start(AcDbObjectId space, const AcGiViewport &view, const PaintOptions &options,
               std::function<void(QImage, PaintReport)> done);
    void stop();
    void paintEntities(std::span<const AcDbObjectId> entities, const AcGiViewport &view, QPainter &painter,
                       const PaintOptions &options);
    void paintTransients(std::span<const AcDbEntity *const> entities, const AcGiViewport &view,
                         QPainter &painter, const PaintOptions &options);
    Damage takeDamage(AcDbObjectId space, const AcGiViewport &view);

    DisplayCache cache;
    Images pictures;

private:
    struct Shown {
        AcDbObjectId space;
        AcGiViewport view;
    };

    void refreshTables();
    PictureSources sources() { return {m_database, cache, m_drawing, pictures, m_masks}; }
    void deliver(unsigned painting);

    const AcDbDatabase &m_database;
    DrawingTables m_drawing;
    GlyphMaskPool m_masks;
    std::optional<Shown> m_painted; ///< Last.
    std::unique_ptr<Picture> m_background;
    Shown m_backgroundShown;
    std::function<void(QImage, PaintReport)> m_done;
    unsigned m_painting = 0; ///< Counts paintings in the background; what others post is out of date.
    QObject m_context;       ///< Posts to the thread of the display, and no more once it is gone.
};

static bool isPicture(AcDbObjectId space, const AcGiViewport &view)
{
    return view.height > 0.0 && view.pixelWidth > 0.0 && view.pixelHeight > 0.0 && space.isValid();
}

/// Pens that are in use point into the tables.
void Display::Impl::refreshTables()
{
    if (m_drawing.isFresh())
        return;
    stop();
    m_drawing.refresh();
}

PaintReport Display::Impl::paint(AcDbObjectId space, const AcGiViewport &view, QPainter &painter,
                                 const PaintOptions &options)
{
    if (!isPicture(space, view)) {
        if (options.fillBackground)
            painter.fillRect(QRectF(0, 0, view.pixelWidth, view.pixelHeight), options.background);
        return {};
    }
    refreshTables();
    Picture picture(sources(), view, options);
    picture.takeSpace(space);
    picture.paint(painter);
    PaintReport report = picture.report();
    if (!report.cancelled && !options.besideScreen)
        m_painted = Shown{space, view};
    return report;
}

bool Display::Impl::prepare(AcDbObjectId space, const AcGiViewport &view, int milliseconds)
{
    if (!isPicture(space, view))
        return true;
    const QDeadlineTimer until(milliseconds);
    if (!cache.prepare(space, view, 0, until))
        return false;
    const auto isReady = [&](std::uint32_t number) {
        // A copy: making lists may move what it is read from.
        const ViewportPicture shown = cache.tables().viewport(number);
        return !isShown(shown, space) ||
               cache.prepare(shown.space, viewOf(shown, view), int(number) + 1, until);
    };
    return std::ranges::all_of(cache.viewportsOf(space), isReady);
}

// In the background ------------------------------------------------------------------------------

void Display::Impl::start(AcDbObjectId space, const AcGiViewport &view, const PaintOptions &options,
                          std::function<void(QImage, PaintReport)> done)
{
    stop();
    if (!isPicture(space, view))
        return;
    refreshTables();
    PaintOptions all = options;
    all.fillBackground = true;
    all.isCancelled = nullptr;
    // Plotted text asks fonts, which belong to the calling thread.
    all.plotting = false;
    auto picture = std::make_unique<Picture>(sources(), view, all);
    picture->takeSpace(space);
    m_background = std::move(picture);
    m_backgroundShown = {space, view};
    m_done = std::move(done);
    m_background->start([this, painting = m_painting] {
        QMetaObject::invokeMethod(
            &m_context, [this, painting] { deliver(painting); }, Qt::QueuedConnection);
    });
}

void Display::Impl::stop()
{
    ++m_painting;
    m_background.reset();
    m_done = nullptr;
}

void Display::Impl::deliver(unsigned painting)
{
    if (painting != m_painting)
        return;
    m_background->join();
    const QImage image = m_background->image();
    const PaintReport report = m_background->report();
    const auto done = std::exchange(m_done, nullptr);
    m_painted = m_backgroundShown;
    stop();
    done(image, report);
}

// Over a picture ---------------------------------------------------------------------------------

static PaintOptions overAPicture(const PaintOptions &options)
{
    PaintOptions over = options;
    over.fillBackground = false;
    return over;
}

void Display::Impl::paintEntities(std::span<const AcDbObjectId> entities, const AcGiViewport &view,
                                  QPainter &painter, const PaintOptions &options)
{
    std::vector<const DisplayList *> lists;
    for (const AcDbObjectId entity : entities) {
        const DisplayList *const list = cache.entity(entity, view);
        if (list && list->size > 0)
            lists.push_back(list);
    }
    if (lists.empty())
        return;
    refreshTables();
    Picture picture(sources(), view, overAPicture(options));
    picture.takeLists(std::move(lists), nullptr);
    picture.paint(painter);
}

void Display::Impl::paintTransients(std::span<const AcDbEntity *const> entities, const AcGiViewport &view,
                                    QPainter &painter, const PaintOptions &options)
{
    ListTables tables(ListTables::kOwn);
    ListStore store;
    std::deque<DisplayList> made;
    std::vector<const DisplayList *> lists;
    for (const AcDbEntity *const entity : entities)
        lists.push_back(&made.emplace_back(cache.transient(*entity, view, tables, store)));
    refreshTables();
    Picture picture(sources(), view, overAPicture(options));
    picture.takeLists(std::move(lists), &tables);
    picture.paint(painter);
}

// Damage -----------------------------------------------------------------------------------------

static bool isSameView(const AcGiViewport &a, const AcGiViewport &b)
{
    return a.centre == b.centre && a.height == b.height && a.twist == b.twist && a.direction == b.direction &&
           a.pixelWidth == b.pixelWidth && a.pixelHeight == b.pixelHeight && a.paperSpace == b.paperSpace;
}

Damage Display::Impl::takeDamage(AcDbObjectId space, const AcGiViewport &view)
{
    Damage damage;
    if (!isPicture(space, view))
        return damage;
    const ChangedBoxes changes = cache.takeChanges(space, view);
    damage.everything = changes.everything || !m_painted || m_painted->space != space ||
                        !isSameView(m_painted->view, view) || (!changes.boxes.empty() && !view.isPlan());
    if (damage.everything || changes.boxes.empty())
        return damage;
    refreshTables();
    PaintOptions widest;
    widest.lineWeights = true;
    Pens pens(m_drawing, widest);
    pens.add(cache.tables().traits());
    const double margin = pens.margin(1.0 / view.pixelSize()) + 2.0;
    const AcGeMatrix3d toPixel = view.worldToPixel();
    const QRectF whole(0, 0, std::ceil(view.pixelWidth), std::ceil(view.pixelHeight));
    for (const std::array<float, 4> &box : changes.boxes) {
        const QRectF pixels =
            pixelBox(toPixel, box.data()).adjusted(-margin, -margin, margin, margin) & whole;
        damage.part |= pixels.toAlignedRect();
    }
    return damage;
}

// The display ------------------------------------------------------------------------------------

Display::Display(AcDbDatabase &database) : m_impl(std::make_unique<Impl>(database)) {}

Display::~Display() = default;

PaintReport Display::paint(AcDbObjectId space, const AcGiViewport &view, QPainter &painter,
                           const PaintOptions &options)
{
    return m_impl->paint(space, view, painter, options);
}

bool Display::prepare(AcDbObjectId space, const AcGiViewport &view, int milliseconds)
{
    return m_impl->prepare(space, view, milliseconds);
}

void Display::paintInBackground(AcDbObjectId space, const AcGiViewport &view, const PaintOptions &options,
                                std::function<void(QImage, PaintReport)> done)
{
    m_impl->start(space, view, options, std::move(done));
}

void Display::stopPainting()
{
    m_impl->stop();
}

void Display::paintEntities(std::span<const AcDbObjectId> entities, const AcGiViewport &view,
                            QPainter &painter, const PaintOptions &options)
{
    m_impl->paintEntities(entities, view, painter, options);
}

void Display::paintTransients(std::span<const AcDbEntity *const> entities, const AcGiViewport &view,
                              QPainter &painter, const PaintOptions &options)
{
    m_impl->paintTransients(entities, view, painter, options);
}

AcDbExtents Display::shownBox(AcDbObjectId entity, const AcGiViewport &view)
{
    const DisplayList *const list = m_impl->cache.entity(entity, view);
    if (!list || !list->hasBox() || list->has(DisplayList::kEndless))
        return {};
    return {{list->box[0], list->box[1], 0.0}, {list->box[2], list->box[3], 0.0}};
}

Damage Display::takeDamage(AcDbObjectId space, const AcGiViewport &view)
{
    return m_impl->takeDamage(space, view);
}

void Display::regenerate(AcDbObjectId entity)
{
    m_impl->cache.drop(entity);
}

void Display::regenerate(bool everything)
{
    m_impl->stop();
    m_impl->pictures.clear();
    m_impl->cache.dropViewDependent();
    if (everything)
        m_impl->cache.dropAll();
}

std::size_t Display::memory() const
{
    return m_impl->cache.memory();
}

Display &displayOf(AcDbDatabase &database)
{
    return database.attachments().get<Display>(database);
}

} // namespace acgi
