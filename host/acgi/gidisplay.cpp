#include "host/acgi/gidisplay.h"

#include "host/acgi/gidisplaycache.h"

#include <QImage>
#include <QObject>

#include <algorithm>
#include <deque>
#include <thread>

/// The displays of all open drawings.
static std::map<AcDbDatabase *, std::unique_ptr<AcGiDisplay>> &displays()
{
    static std::map<AcDbDatabase *, std::unique_ptr<AcGiDisplay>> all;
    return all;
}

class AcGiDisplay::Impl : public AcGiScene
{
public:
    explicit Impl(AcDbDatabase &database)
        : cache(database, [&database] { displays().erase(&database); }), drawing(database)
    {
    }

    AcGiPaintReport paint(AcDbObjectId space, const AcGiViewport &view, QPainter &painter,
                          const AcGiPaintOptions &options);

    void paintEntities(std::span<const AcDbObjectId> entities, const AcGiViewport &view, QPainter &painter,
                       const AcGiPaintOptions &options);
    void paintTransients(std::span<const AcDbEntity *const> entities, const AcGiViewport &view,
                         QPainter &painter, const AcGiPaintOptions &options);
    void paintOver(const AcGiShownSpace &shown, const AcGiViewport &view, QPainter &painter,
                   const AcGiPaintOptions &options);

    const AcGiDisplayList *block(const AcDbStub *record, int slot) const override
    {
        return cache.list(record->index, slot);
    }
    const AcGiListTables &tables() const override { return cache.tables(); }
    double viewHeight() const override { return m_viewHeight; }
    AcGiImages &images() const override { return pictures; }
    const AcGiShownSpace *viewportSpace(std::uint32_t number) const override
    {
        const auto found = m_viewports.find(number);
        return found == m_viewports.end() ? nullptr : &found->second.space;
    }
    const AcGiPens *viewportPens(std::uint32_t number) const override
    {
        const auto found = m_viewports.find(number);
        return found == m_viewports.end() ? nullptr : found->second.pens.get();
    }

    AcGiDisplayCache cache;
    mutable AcGiImages pictures;
    AcGiDrawingTables drawing;
    std::unique_ptr<QObject> paintings;

private:
    struct ShownViewport {
        AcGiShownSpace space;
        std::unique_ptr<AcGiPens> pens;
    };
    /// What all parts of a picture are painted from.
    struct Job {
        const AcGiShownSpace &space;
        const AcGiViewport &view;
        const AcGiPens &pens;
        const AcGiPaintOptions &options;
        std::atomic<bool> cancelled = false;
    };

    void showViewports(AcDbObjectId space, const AcGiViewport &sheet, const AcGiPaintOptions &options,
                       AcGiPaintReport &report);
    void paintPart(Job &job, QPainter &painter, const QRectF &part, const AcGiPixels &pixels, bool asks,
                   AcGiPaintReport &report);
    void paintBands(Job &job, QImage &image, AcGiPaintReport &report);

    double m_viewHeight = 1.0;
    std::map<std::uint32_t, ShownViewport> m_viewports;
};

/// The view that a viewport is on a sheet that is shown as `sheet`.
static AcGiViewport viewOf(const AcGiViewportPicture &picture, const AcGiViewport &sheet)
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

void AcGiDisplay::Impl::showViewports(AcDbObjectId space, const AcGiViewport &sheet,
                                      const AcGiPaintOptions &options, AcGiPaintReport &report)
{
    m_viewports.clear();
    for (const std::uint32_t number : cache.viewportsOf(space)) {
        const AcGiViewportPicture &picture = tables().viewport(number);
        const bool isFit = picture.width > 0.0 && picture.height > 0.0 && picture.viewHeight > 0.0;
        if (!isFit || !picture.space.isValid() || picture.space == space)
            continue;
        ShownViewport &shown = m_viewports[number];
        shown.space =
            cache.show(picture.space, viewOf(picture, sheet), int(number) + 1, options.isCancelled, report);
        shown.pens = std::make_unique<AcGiPens>(drawing, options, picture.frozenLayers);
    }
    // All traits are known only now.
    for (auto &[number, shown] : m_viewports)
        shown.pens->add(tables().traits());
}

void AcGiDisplay::Impl::paintPart(Job &job, QPainter &painter, const QRectF &part, const AcGiPixels &pixels,
                                  bool asks, AcGiPaintReport &report)
{
    AcGiCanvas canvas(painter, part, pixels, job.options.antialiasing);
    AcGiListPainter lists(*this, canvas, job.pens, job.options, job.cancelled);
    if (asks)
        lists.setCancelQuestion(job.options.isCancelled);
    lists.paint(job.space, job.view.worldToPixel(), 1.0 / job.view.pixelSize());
    for (const auto &[reason, count] : lists.undrawn()) {
        std::size_t &known = report.undrawn[reason];
        known = std::max(known, count);
    }
}

/// Two threads paint the upper and the lower half: most of the work lies in one of them only.
void AcGiDisplay::Impl::paintBands(Job &job, QImage &image, AcGiPaintReport &report)
{
    constexpr std::size_t kWorthAThread = 2000;
    const int bands =
        job.space.lists.size() > kWorthAThread && std::thread::hardware_concurrency() > 1 ? 2 : 1;
    const int width = std::min(image.width(), int(std::ceil(job.view.pixelWidth)));
    const int height = std::min(image.height(), int(std::ceil(job.view.pixelHeight)));
    std::vector<AcGiPaintReport> reports{std::size_t(bands)};
    const auto paintBand = [&](int band) {
        const int top = height * band / bands;
        const int rows = height * (band + 1) / bands - top;
        // The pixels of the image itself: its painter must not be made to copy them.
        auto *const first =
            const_cast<uchar *>(image.constBits()) + std::ptrdiff_t(top) * image.bytesPerLine();
        QImage strip(first, width, rows, image.bytesPerLine(), image.format());
        QPainter painter(&strip);
        painter.translate(0, -top);
        const AcGiPixels pixels{reinterpret_cast<std::uint32_t *>(first), image.bytesPerLine() / 4, top,
                                width, rows};
        paintPart(job, painter, QRectF(0, top, width, rows), pixels, band == 0, reports[std::size_t(band)]);
    };
    std::vector<std::jthread> threads;
    for (int band = 1; band < bands; ++band)
        threads.emplace_back(paintBand, band);
    paintBand(0);
    threads.clear();
    for (const AcGiPaintReport &part : reports) {
        for (const auto &[reason, count] : part.undrawn) {
            std::size_t &known = report.undrawn[reason];
            known = std::max(known, count);
        }
    }
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

AcGiPaintReport AcGiDisplay::Impl::paint(AcDbObjectId space, const AcGiViewport &view, QPainter &painter,
                                         const AcGiPaintOptions &options)
{
    AcGiPaintReport report;
    const QRectF whole(0, 0, view.pixelWidth, view.pixelHeight);
    if (!options.part.isEmpty()) {
        AcGiPaintOptions inside = options;
        inside.part = {};
        painter.save();
        painter.setClipRect(options.part, Qt::IntersectClip);
        report = paint(space, view, painter, inside);
        painter.restore();
        return report;
    }
    if (options.fillBackground)
        painter.fillRect(whole, options.background);
    if (!(view.height > 0.0) || whole.isEmpty() || !space.isValid())
        return report;
    drawing.refresh();
    m_viewHeight = view.pixelHeight;
    const AcGiShownSpace shown = cache.show(space, view, 0, options.isCancelled, report);
    showViewports(space, view, options, report);
    AcGiPens pens(drawing, options);
    pens.add(tables().traits());
    for (std::uint32_t number = 0; number < tables().imageCount(); ++number)
        pictures.find(tables().image(number).path, options.imageFolder);
    report.painted = shown.lists.size();
    Job job{shown, view, pens, options, report.cancelled};
    if (QImage *const image = plainImage(painter)) {
        paintBands(job, *image, report);
    } else {
        painter.save();
        painter.setClipRect(whole, Qt::IntersectClip);
        paintPart(job, painter, whole, {}, true, report);
        painter.restore();
    }
    report.cancelled = job.cancelled;
    return report;
}

void AcGiDisplay::Impl::paintOver(const AcGiShownSpace &shown, const AcGiViewport &view, QPainter &painter,
                                  const AcGiPaintOptions &options)
{
    AcGiPaintReport report;
    drawing.refresh();
    m_viewHeight = view.pixelHeight;
    m_viewports.clear();
    AcGiPens pens(drawing, options);
    pens.add(tables().traits());
    const QRectF whole(0, 0, view.pixelWidth, view.pixelHeight);
    Job job{shown, view, pens, options};
    painter.save();
    painter.setClipRect(options.part.isEmpty() ? whole : QRectF(options.part), Qt::IntersectClip);
    paintPart(job, painter, whole, {}, true, report);
    painter.restore();
}

void AcGiDisplay::Impl::paintEntities(std::span<const AcDbObjectId> entities, const AcGiViewport &view,
                                      QPainter &painter, const AcGiPaintOptions &options)
{
    AcGiShownSpace shown;
    shown.isPlan = view.isPlan();
    for (const AcDbObjectId entity : entities) {
        const AcGiDisplayList *const list = cache.entity(entity, view);
        if (list && list->size > 0)
            shown.lists.push_back(list);
    }
    paintOver(shown, view, painter, options);
}

void AcGiDisplay::Impl::paintTransients(std::span<const AcDbEntity *const> entities, const AcGiViewport &view,
                                        QPainter &painter, const AcGiPaintOptions &options)
{
    AcGiListStore store;
    std::deque<AcGiDisplayList> lists;
    AcGiShownSpace shown;
    shown.isPlan = view.isPlan();
    for (const AcDbEntity *const entity : entities)
        shown.lists.push_back(&lists.emplace_back(cache.transient(*entity, view, store)));
    paintOver(shown, view, painter, options);
}

AcGiDisplay::AcGiDisplay(AcDbDatabase &database) : m_impl(std::make_unique<Impl>(database)) {}

AcGiDisplay::~AcGiDisplay() = default;

AcGiPaintReport AcGiDisplay::paint(AcDbObjectId space, const AcGiViewport &view, QPainter &painter,
                                   const AcGiPaintOptions &options)
{
    return m_impl->paint(space, view, painter, options);
}

bool AcGiDisplay::prepare(AcDbObjectId space, const AcGiViewport &view, int)
{
    AcGiPaintReport report;
    m_impl->cache.show(space, view, 0, {}, report);
    return true;
}

void AcGiDisplay::paintInBackground(AcDbObjectId space, const AcGiViewport &view,
                                    const AcGiPaintOptions &options,
                                    std::function<void(QImage, AcGiPaintReport)> done)
{
    m_impl->paintings = std::make_unique<QObject>();
    QImage image(int(std::ceil(view.pixelWidth)), int(std::ceil(view.pixelHeight)), QImage::Format_RGB32);
    QPainter painter(&image);
    const AcGiPaintReport report = paint(space, view, painter, options);
    painter.end();
    const auto deliver = [image, report, done] { done(image, report); };
    QMetaObject::invokeMethod(m_impl->paintings.get(), deliver, Qt::QueuedConnection);
}

void AcGiDisplay::stopPainting()
{
    m_impl->paintings.reset();
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

AcGiDamage AcGiDisplay::takeDamage(AcDbObjectId, const AcGiViewport &)
{
    return {true, {}};
}

void AcGiDisplay::regenerate(AcDbObjectId entity)
{
    if (!entity.isNull())
        m_impl->cache.dropOne(entity.stub()->index);
}

void AcGiDisplay::regenerate(bool everything)
{
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
