#include "host/acgi/gidisplay.h"

#include "host/acgi/gipicture.h"

#include <QObject>

#include <algorithm>
#include <deque>
#include <optional>

/// The displays of all open drawings.
static std::map<AcDbDatabase *, std::unique_ptr<AcGiDisplay>> &displays()
{
    static std::map<AcDbDatabase *, std::unique_ptr<AcGiDisplay>> all;
    return all;
}

class AcGiDisplay::Impl
{
public:
    explicit Impl(AcDbDatabase &database)
        : cache(
              database, [&database] { displays().erase(&database); }, [this] { stop(); }),
          m_database(database), m_drawing(database)
    {
    }
    ~Impl() { stop(); }

    AcGiPaintReport paint(AcDbObjectId space, const AcGiViewport &view, QPainter &painter,
                          const AcGiPaintOptions &options);
    bool prepare(AcDbObjectId space, const AcGiViewport &view, int milliseconds);
    void start(AcDbObjectId space, const AcGiViewport &view, const AcGiPaintOptions &options,
               std::function<void(QImage, AcGiPaintReport)> done);
    void stop();
    void paintEntities(std::span<const AcDbObjectId> entities, const AcGiViewport &view, QPainter &painter,
                       const AcGiPaintOptions &options);
    void paintTransients(std::span<const AcDbEntity *const> entities, const AcGiViewport &view,
                         QPainter &painter, const AcGiPaintOptions &options);
    AcGiDamage takeDamage(AcDbObjectId space, const AcGiViewport &view);

    AcGiDisplayCache cache;
    AcGiImages pictures;

private:
    struct Shown {
        AcDbObjectId space;
        AcGiViewport view;
    };

    void refreshTables();
    AcGiPictureSources sources() { return {m_database, cache, m_drawing, pictures, m_masks}; }
    void deliver(unsigned painting);

    const AcDbDatabase &m_database;
    AcGiDrawingTables m_drawing;
    AcGiGlyphMaskPool m_masks;
    std::optional<Shown> m_painted; ///< Last.
    std::unique_ptr<AcGiPicture> m_background;
    Shown m_backgroundShown;
    std::function<void(QImage, AcGiPaintReport)> m_done;
    unsigned m_painting = 0; ///< Counts paintings in the background; what others post is out of date.
    QObject m_context;       ///< Posts to the thread of the display, and no more once it is gone.
};

static bool isPicture(AcDbObjectId space, const AcGiViewport &view)
{
    return view.height > 0.0 && view.pixelWidth > 0.0 && view.pixelHeight > 0.0 && space.isValid();
}

/// Pens that are in use point into the tables.
void AcGiDisplay::Impl::refreshTables()
{
    if (m_drawing.isFresh())
        return;
    stop();
    m_drawing.refresh();
}

AcGiPaintReport AcGiDisplay::Impl::paint(AcDbObjectId space, const AcGiViewport &view, QPainter &painter,
                                         const AcGiPaintOptions &options)
{
    if (!isPicture(space, view)) {
        if (options.fillBackground)
            painter.fillRect(QRectF(0, 0, view.pixelWidth, view.pixelHeight), options.background);
        return {};
    }
    refreshTables();
    AcGiPicture picture(sources(), view, options);
    picture.takeSpace(space);
    picture.paint(painter);
    AcGiPaintReport report = picture.report();
    if (!report.cancelled && !options.besideScreen)
        m_painted = Shown{space, view};
    return report;
}

bool AcGiDisplay::Impl::prepare(AcDbObjectId space, const AcGiViewport &view, int milliseconds)
{
    if (!isPicture(space, view))
        return true;
    const QDeadlineTimer until(milliseconds);
    if (!cache.prepare(space, view, 0, until))
        return false;
    const auto isReady = [&](std::uint32_t number) {
        // A copy: making lists may move what it is read from.
        const AcGiViewportPicture shown = cache.tables().viewport(number);
        return !acgiIsShown(shown, space) ||
               cache.prepare(shown.space, acgiViewOf(shown, view), int(number) + 1, until);
    };
    return std::ranges::all_of(cache.viewportsOf(space), isReady);
}

// In the background ------------------------------------------------------------------------------

void AcGiDisplay::Impl::start(AcDbObjectId space, const AcGiViewport &view, const AcGiPaintOptions &options,
                              std::function<void(QImage, AcGiPaintReport)> done)
{
    stop();
    if (!isPicture(space, view))
        return;
    refreshTables();
    AcGiPaintOptions all = options;
    all.fillBackground = true;
    all.isCancelled = nullptr;
    // Plotted text asks fonts, which belong to the calling thread.
    all.plotting = false;
    auto picture = std::make_unique<AcGiPicture>(sources(), view, all);
    picture->takeSpace(space);
    m_background = std::move(picture);
    m_backgroundShown = {space, view};
    m_done = std::move(done);
    m_background->start([this, painting = m_painting] {
        QMetaObject::invokeMethod(
            &m_context, [this, painting] { deliver(painting); }, Qt::QueuedConnection);
    });
}

void AcGiDisplay::Impl::stop()
{
    ++m_painting;
    m_background.reset();
    m_done = nullptr;
}

void AcGiDisplay::Impl::deliver(unsigned painting)
{
    if (painting != m_painting)
        return;
    m_background->join();
    const QImage image = m_background->image();
    const AcGiPaintReport report = m_background->report();
    const auto done = std::exchange(m_done, nullptr);
    m_painted = m_backgroundShown;
    stop();
    done(image, report);
}

// Over a picture ---------------------------------------------------------------------------------

static AcGiPaintOptions overAPicture(const AcGiPaintOptions &options)
{
    AcGiPaintOptions over = options;
    over.fillBackground = false;
    return over;
}

void AcGiDisplay::Impl::paintEntities(std::span<const AcDbObjectId> entities, const AcGiViewport &view,
                                      QPainter &painter, const AcGiPaintOptions &options)
{
    std::vector<const AcGiDisplayList *> lists;
    for (const AcDbObjectId entity : entities) {
        const AcGiDisplayList *const list = cache.entity(entity, view);
        if (list && list->size > 0)
            lists.push_back(list);
    }
    if (lists.empty())
        return;
    refreshTables();
    AcGiPicture picture(sources(), view, overAPicture(options));
    picture.takeLists(std::move(lists), nullptr);
    picture.paint(painter);
}

void AcGiDisplay::Impl::paintTransients(std::span<const AcDbEntity *const> entities, const AcGiViewport &view,
                                        QPainter &painter, const AcGiPaintOptions &options)
{
    AcGiListTables tables(AcGiListTables::kOwn);
    AcGiListStore store;
    std::deque<AcGiDisplayList> made;
    std::vector<const AcGiDisplayList *> lists;
    for (const AcDbEntity *const entity : entities)
        lists.push_back(&made.emplace_back(cache.transient(*entity, view, tables, store)));
    refreshTables();
    AcGiPicture picture(sources(), view, overAPicture(options));
    picture.takeLists(std::move(lists), &tables);
    picture.paint(painter);
}

// Damage -----------------------------------------------------------------------------------------

static bool isSameView(const AcGiViewport &a, const AcGiViewport &b)
{
    return a.centre == b.centre && a.height == b.height && a.twist == b.twist && a.direction == b.direction &&
           a.pixelWidth == b.pixelWidth && a.pixelHeight == b.pixelHeight && a.paperSpace == b.paperSpace;
}

AcGiDamage AcGiDisplay::Impl::takeDamage(AcDbObjectId space, const AcGiViewport &view)
{
    AcGiDamage damage;
    if (!isPicture(space, view))
        return damage;
    const AcGiChangedBoxes changes = cache.takeChanges(space, view);
    damage.everything = changes.everything || !m_painted || m_painted->space != space ||
                        !isSameView(m_painted->view, view) || (!changes.boxes.empty() && !view.isPlan());
    if (damage.everything || changes.boxes.empty())
        return damage;
    refreshTables();
    AcGiPaintOptions widest;
    widest.lineWeights = true;
    AcGiPens pens(m_drawing, widest);
    pens.add(cache.tables().traits());
    const double margin = pens.margin(1.0 / view.pixelSize()) + 2.0;
    const AcGeMatrix3d toPixel = view.worldToPixel();
    const QRectF whole(0, 0, std::ceil(view.pixelWidth), std::ceil(view.pixelHeight));
    for (const std::array<float, 4> &box : changes.boxes) {
        const QRectF pixels =
            acgiPixelBox(toPixel, box.data()).adjusted(-margin, -margin, margin, margin) & whole;
        damage.part |= pixels.toAlignedRect();
    }
    return damage;
}

// The display ------------------------------------------------------------------------------------

AcGiDisplay::AcGiDisplay(AcDbDatabase &database) : m_impl(std::make_unique<Impl>(database)) {}

AcGiDisplay::~AcGiDisplay() = default;

AcGiPaintReport AcGiDisplay::paint(AcDbObjectId space, const AcGiViewport &view, QPainter &painter,
                                   const AcGiPaintOptions &options)
{
    return m_impl->paint(space, view, painter, options);
}

bool AcGiDisplay::prepare(AcDbObjectId space, const AcGiViewport &view, int milliseconds)
{
    return m_impl->prepare(space, view, milliseconds);
}

void AcGiDisplay::paintInBackground(AcDbObjectId space, const AcGiViewport &view,
                                    const AcGiPaintOptions &options,
                                    std::function<void(QImage, AcGiPaintReport)> done)
{
    m_impl->start(space, view, options, std::move(done));
}

void AcGiDisplay::stopPainting()
{
    m_impl->stop();
}

void AcGiDisplay::paintEntities(std::span<const AcDbObjectId> entities, const AcGiViewport &view,
                                QPainter &painter, const AcGiPaintOptions &options)
{
    m_impl->paintEntities(entities, view, painter, options);
}

void AcGiDisplay::paintTransients(std::span<const AcDbEntity *const> entities, const AcGiViewport &view,
                                  QPainter &painter, const AcGiPaintOptions &options)
{
    m_impl->paintTransients(entities, view, painter, options);
}

AcDbExtents AcGiDisplay::shownBox(AcDbObjectId entity, const AcGiViewport &view)
{
    const AcGiDisplayList *const list = m_impl->cache.entity(entity, view);
    if (!list || !list->hasBox() || list->has(AcGiDisplayList::kEndless))
        return {};
    return {{list->box[0], list->box[1], 0.0}, {list->box[2], list->box[3], 0.0}};
}

AcGiDamage AcGiDisplay::takeDamage(AcDbObjectId space, const AcGiViewport &view)
{
    return m_impl->takeDamage(space, view);
}

void AcGiDisplay::regenerate(AcDbObjectId entity)
{
    m_impl->cache.drop(entity);
}

void AcGiDisplay::regenerate(bool everything)
{
    m_impl->stop();
    m_impl->pictures.clear();
    m_impl->cache.dropViewDependent();
    if (everything)
        m_impl->cache.dropAll();
}

std::size_t AcGiDisplay::memory() const
{
    return m_impl->cache.memory();
}

AcGiDisplay &acgiDisplay(AcDbDatabase &database)
{
    std::unique_ptr<AcGiDisplay> &display = displays()[&database];
    if (!display)
        display.reset(new AcGiDisplay(database));
    return *display;
}
