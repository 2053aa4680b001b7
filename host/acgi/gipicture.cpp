#include "host/acgi/gipicture.h"

#include <algorithm>
#include <cmath>

// Glyph masks ------------------------------------------------------------------------------------

std::unique_ptr<AcGiGlyphMasks> AcGiGlyphMaskPool::take()
{
    const std::lock_guard guard(m_lock);
    if (m_idle.empty())
        return std::make_unique<AcGiGlyphMasks>();
    std::unique_ptr<AcGiGlyphMasks> masks = std::move(m_idle.back());
    m_idle.pop_back();
    return masks;
}

void AcGiGlyphMaskPool::give(std::unique_ptr<AcGiGlyphMasks> masks)
{
    const std::lock_guard guard(m_lock);
    m_idle.push_back(std::move(masks));
}

// What is shown ----------------------------------------------------------------------------------

AcGiPicture::AcGiPicture(const AcGiPictureSources &sources, const AcGiViewport &view,
                         const AcGiPaintOptions &options)
    : m_sources(sources), m_view(view), m_options(options), m_pens(sources.tables, m_options)
{
}

AcGiPicture::~AcGiPicture()
{
    stop();
}

AcGiViewport acgiViewOf(const AcGiViewportPicture &picture, const AcGiViewport &sheet)
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

bool acgiIsShown(const AcGiViewportPicture &picture, AcDbObjectId sheet)
{
    return picture.width > 0.0 && picture.height > 0.0 && picture.viewHeight > 0.0 &&
           picture.space.isValid() && picture.space != sheet;
}

void AcGiPicture::showViewports(AcDbObjectId space)
{
    const AcGiListTables &tables = m_sources.cache.tables();
    for (const std::uint32_t number : m_sources.cache.viewportsOf(space)) {
        const AcGiViewportPicture &picture = tables.viewport(number);
        if (!acgiIsShown(picture, space))
            continue;
        ShownViewport &shown = m_viewports[number];
        shown.space = m_sources.cache.show(picture.space, acgiViewOf(picture, m_view), int(number) + 1,
                                           m_options.isCancelled, m_report);
        shown.pens = std::make_unique<AcGiPens>(m_sources.tables, m_options, picture.frozenLayers);
    }
    // All traits are known only now.
    for (auto &[number, shown] : m_viewports)
        shown.pens->add(tables.traits());
}

void AcGiPicture::takeSpace(AcDbObjectId space)
{
    m_shown = m_sources.cache.show(space, m_view, 0, m_options.isCancelled, m_report);
    showViewports(space);
    m_report.painted = m_shown.lists.size();
    m_pens.add(m_sources.cache.tables().traits());
    findImages(m_sources.cache.tables());
}

void AcGiPicture::takeLists(std::vector<const AcGiDisplayList *> lists, const AcGiListTables *own)
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

void AcGiPicture::findImages(const AcGiListTables &tables)
{
    for (const AcGiImage &shown : tables.images())
        m_sources.images.find(shown.path, m_options.imageFolder);
}

const AcGiDisplayList *AcGiPicture::block(const AcDbStub *record, int slot) const
{
    return m_sources.cache.list(record->index, slot);
}

const AcGiImage &AcGiPicture::image(std::uint32_t number) const
{
    return number < AcGiListTables::kOwn ? m_sources.cache.tables().image(number)
                                         : m_ownTables->image(number);
}

const AcGiViewportPicture &AcGiPicture::viewport(std::uint32_t number) const
{
    return number < AcGiListTables::kOwn ? m_sources.cache.tables().viewport(number)
                                         : m_ownTables->viewport(number);
}

const AcGiShownSpace *AcGiPicture::viewportSpace(std::uint32_t number) const
{
    const auto found = m_viewports.find(number);
    return found == m_viewports.end() ? nullptr : &found->second.space;
}

const AcGiPens *AcGiPicture::viewportPens(std::uint32_t number) const
{
    const auto found = m_viewports.find(number);
    return found == m_viewports.end() ? nullptr : found->second.pens.get();
}

// Bands ------------------------------------------------------------------------------------------

QRect AcGiPicture::area(const QSize &device) const
{
    const QSize size(int(std::ceil(m_view.pixelWidth)), int(std::ceil(m_view.pixelHeight)));
    const QRect whole(QPoint(0, 0), size.boundedTo(device));
    return m_options.part.isEmpty() ? whole : whole & m_options.part;
}

/// Several bands to a thread, since most of the work may lie in a few of them.
void AcGiPicture::splitIntoBands(const QRect &area)
{
    constexpr std::size_t kWorthBands = 1000;
    constexpr int kLeastRows = 48;
    constexpr int kMostBands = 16;
    const int count = m_shown.lists.size() > kWorthBands && std::thread::hardware_concurrency() > 1
                          ? std::clamp(area.height() / kLeastRows, 1, kMostBands)
                          : 1;
    const int rows = (area.height() + count - 1) / count;
    m_bands.clear();
    for (int top = area.top(); top <= area.bottom(); top += rows) {
        Band &band = m_bands.emplace_back();
        band.area = QRect(area.left(), top, area.width(), std::min(rows, area.bottom() + 1 - top));
        band.shown.isPlan = m_shown.isPlan;
        band.shown.slot = m_shown.slot;
    }
    if (m_bands.size() == 1) {
        m_bands.front().shown.lists = m_shown.lists;
        return;
    }
    const AcGeMatrix3d toPixel = m_view.worldToPixel();
    const double margin = m_pens.margin(1.0 / m_view.pixelSize());
    const auto bandAt = [&](double y) {
        return std::size_t(std::clamp((y - area.top()) / rows, 0.0, double(m_bands.size() - 1)));
    };
    for (const AcGiDisplayList *const list : m_shown.lists) {
        std::size_t first = 0;
        std::size_t last = m_bands.size() - 1;
        if (m_shown.isPlan && list->hasBox() && !list->has(AcGiDisplayList::kEndless)) {
            const QRectF box = acgiPixelBox(toPixel, list->box);
            if (box.bottom() < area.top() - margin || box.top() > area.bottom() + 1 + margin ||
                box.right() < area.left() - margin || box.left() > area.right() + 1 + margin)
                continue;
            first = bandAt(box.top() - margin);
            last = bandAt(box.bottom() + margin);
        }
        for (std::size_t band = first; band <= last; ++band)
            m_bands[band].shown.lists.push_back(list);
    }
}

// The pixels of the image itself: its painters must not be made to copy them.
void AcGiPicture::aim(QImage &image)
{
    m_target = {const_cast<uchar *>(image.constBits()), image.bytesPerLine(), image.width(), image.format()};
}

void AcGiPicture::paintBand(Band &band, AcGiGlyphMasks &masks, bool asks)
{
    const QRect &area = band.area;
    uchar *const first = m_target.bits + area.top() * m_target.bytesPerLine;
    QImage strip(first, m_target.width, area.height(), m_target.bytesPerLine, m_target.format);
    QPainter painter(&strip);
    painter.translate(0, -area.top());
    if (area.width() < m_target.width)
        painter.setClipRect(area);
    if (m_options.fillBackground)
        painter.fillRect(area, m_options.background);
    const AcGiPixels pixels{reinterpret_cast<std::uint32_t *>(first), m_target.bytesPerLine / 4, area.top(),
                            m_target.width, area.height()};
    paintPart(band, painter, pixels, masks, asks);
}

void AcGiPicture::paintPart(Band &band, QPainter &painter, const AcGiPixels &pixels, AcGiGlyphMasks &masks,
                            bool asks)
{
    const QRectF whole(0, 0, m_view.pixelWidth, m_view.pixelHeight);
    AcGiCanvas canvas(painter, whole & QRectF(band.area), whole, pixels, m_options.antialiasing, masks);
    AcGiListPainter lists(*this, canvas, m_pens, m_options, m_cancelled);
    if (asks)
        lists.setCancelQuestion(m_options.isCancelled);
    lists.paint(band.shown, m_view.worldToPixel(), 1.0 / m_view.pixelSize());
    band.undrawn = lists.undrawn();
}

// Threads ----------------------------------------------------------------------------------------

void AcGiPicture::work(bool asks)
{
    std::unique_ptr<AcGiGlyphMasks> masks = m_sources.masks.take();
    for (std::size_t band = m_nextBand++; band < m_bands.size() && !m_cancelled; band = m_nextBand++)
        paintBand(m_bands[band], *masks, asks);
    m_sources.masks.give(std::move(masks));
    if (--m_working == 0 && m_finished && !m_cancelled)
        m_finished();
}

static std::size_t threadsFor(std::size_t bands)
{
    return std::min<std::size_t>(bands, std::max(1u, std::thread::hardware_concurrency()));
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

void AcGiPicture::paint(QPainter &painter)
{
    m_cancelled = m_report.cancelled;
    if (QImage *const image = plainImage(painter)) {
        splitIntoBands(area(image->size()));
        aim(*image);
        m_working = threadsFor(m_bands.size());
        for (std::size_t thread = 1; thread < threadsFor(m_bands.size()); ++thread)
            m_threads.emplace_back([this] { work(false); });
        work(true);
        m_threads.clear();
        return;
    }
    Band &band = m_bands.emplace_back();
    band.shown = m_shown;
    band.area = area(QSize(1 << 24, 1 << 24));
    painter.save();
    painter.setClipRect(QRectF(band.area) & QRectF(0, 0, m_view.pixelWidth, m_view.pixelHeight),
                        Qt::IntersectClip);
    if (m_options.fillBackground)
        painter.fillRect(band.area, m_options.background);
    AcGiGlyphMasks masks;
    paintPart(band, painter, {}, masks, true);
    painter.restore();
}

void AcGiPicture::start(std::function<void()> finished)
{
    m_finished = std::move(finished);
    m_image =
        QImage(int(std::ceil(m_view.pixelWidth)), int(std::ceil(m_view.pixelHeight)), QImage::Format_RGB32);
    splitIntoBands(area(m_image.size()));
    aim(m_image);
    m_working = threadsFor(m_bands.size());
    if (m_bands.empty())
        return m_finished();
    for (std::size_t thread = 0; thread < threadsFor(m_bands.size()); ++thread)
        m_threads.emplace_back([this] { work(false); });
}

void AcGiPicture::stop()
{
    m_cancelled = true;
    m_threads.clear();
}

AcGiPaintReport AcGiPicture::report() const
{
    AcGiPaintReport report = m_report;
    report.cancelled = m_cancelled;
    for (const Band &band : m_bands) {
        for (const auto &[reason, count] : band.undrawn) {
            std::size_t &known = report.undrawn[reason];
            known = std::max(known, count);
        }
    }
    return report;
}
