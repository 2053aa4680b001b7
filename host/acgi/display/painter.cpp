#include "host/acgi/display/painter.h"

#include "host/base/host_text.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace acgi
{

/// What one picture may cost in words of lists; a screenful of a million entities is a tenth of this.
static constexpr std::int64_t kMostWords = 300'000'000;
/// What a block reference costs beside the words of its block.
static constexpr std::int64_t kReferenceWords = 100;

ListPainter::ListPainter(const Scene &scene, Canvas &canvas, const Pens &pens, const PaintOptions &options,
                         std::atomic<bool> &cancelled)
    : m_scene(scene), m_canvas(canvas), m_options(options),
      m_cancelled(cancelled), m_frame{AcGeMatrix3d(), &pens}, m_budget(kMostWords)
{
}

bool ListPainter::goesOn()
{
    constexpr unsigned kBetweenQuestions = 2048;
    if (++m_sinceQuestion >= kBetweenQuestions) {
        m_sinceQuestion = 0;
        if (m_isCancelled && m_isCancelled())
            m_cancelled = true;
    }
    return !m_cancelled.load(std::memory_order_relaxed);
}

QPointF ListPainter::pixel(const AcGePoint3d &point) const
{
    const auto &e = m_frame.toPixel.entry;
    return {e[0][0] * point.x + e[0][1] * point.y + e[0][2] * point.z + e[0][3],
            e[1][0] * point.x + e[1][1] * point.y + e[1][2] * point.z + e[1][3]};
}

QPointF ListPainter::pixel(const AcGeVector3d &vector) const
{
    const auto &e = m_frame.toPixel.entry;
    return {e[0][0] * vector.x + e[0][1] * vector.y + e[0][2] * vector.z,
            e[1][0] * vector.x + e[1][1] * vector.y + e[1][2] * vector.z};
}

QRectF pixelBox(const AcGeMatrix3d &toPixel, const float *box)
{
    const auto &e = toPixel.entry;
    const auto side = [&](std::size_t row) {
        const double middle = e[row][0] * (double(box[0]) + box[2]) / 2.0 +
                              e[row][1] * (double(box[1]) + box[3]) / 2.0 + e[row][3];
        const double half = std::abs(e[row][0]) * (double(box[2]) - box[0]) / 2.0 +
                            std::abs(e[row][1]) * (double(box[3]) - box[1]) / 2.0;
        return std::pair(middle - half, middle + half);
    };
    const auto [left, right] = side(0);
    const auto [top, bottom] = side(1);
    return {left, top, right - left, bottom - top};
}

/// QRectF::intersects() says no to boxes without width.
static bool meets(const QRectF &a, const QRectF &b)
{
    return a.left() <= b.right() && b.left() <= a.right() && a.top() <= b.bottom() && b.top() <= a.bottom();
}

/// Lines are wider than the box around their middles.
static QRectF withMargin(const QRectF &visible, double margin)
{
    return visible.adjusted(-margin, -margin, margin, margin);
}

static void prefetch(const void *memory)
{
#if defined(__GNUC__)
    __builtin_prefetch(memory);
#endif
}

void ListPainter::paint(const ShownSpace &space, const AcGeMatrix3d &toPixel, double pixelsPerUnit)
{
    m_frame.toPixel = toPixel;
    m_frame.pixelsPerUnit = pixelsPerUnit;
    m_frame.slot = space.slot;
    m_penNumber = ~0u;
    m_margin = m_frame.pens->margin(pixelsPerUnit);
    const QRectF shown = withMargin(m_canvas.visible(), m_margin);
    constexpr std::size_t kAhead = 6;
    for (std::size_t i = 0; i < space.lists.size(); ++i) {
        // Lists lie scattered: the memory gets a little time to bring the next ones.
        if (i + 2 * kAhead < space.lists.size()) {
            prefetch(space.lists[i + 2 * kAhead]);
            prefetch(space.lists[i + kAhead]->words);
        }
        const DisplayList *const shownList = space.lists[i];
        if (!goesOn())
            return;
        if (space.isPlan && shownList->hasBox() && !shownList->has(DisplayList::kEndless)) {
            const QRectF box = pixelBox(toPixel, shownList->box);
            if (!meets(box, shown))
                continue;
            if (box.width() < 1.0 && box.height() < 1.0) {
                speck(*shownList, box.center());
                continue;
            }
        }
        m_areas.clear();
        list(*shownList);
    }
}

/// What is smaller than a pixel is one pixel of the colour of what it draws first.
void ListPainter::speck(const DisplayList &list, QPointF place)
{
    ListReader reader(list);
    if (!reader.next())
        return;
    if (takePen(reader.traits()))
        m_canvas.dot(place);
}

bool ListPainter::takePen(std::uint32_t traits)
{
    if (traits != m_penNumber) {
        m_penNumber = traits;
        m_pen = &m_frame.pens->pen(traits, m_frame.shower, m_scratch);
    }
    if (m_pen->isShown)
        m_canvas.setPen(m_pen->color, m_pen->width);
    return m_pen->isShown;
}

void ListPainter::list(const DisplayList &list)
{
    m_budget -= list.size;
    int clips = 0;
    ListReader reader(list);
    while (reader.next() && !m_cancelled.load(std::memory_order_relaxed)) {
        const bool shown = takePen(reader.traits());
        switch (reader.op()) {
        case ListOp::polyline:
            polyline(reader, shown);
            break;
        case ListOp::arc:
            arc(reader, shown);
            break;
        case ListOp::fill:
            fill(reader, shown);
            break;
        case ListOp::text:
            text(reader, shown);
            break;
        case ListOp::infiniteLine:
            infiniteLine(reader, shown);
            break;
        case ListOp::marker:
            marker(reader, shown);
            break;
        case ListOp::image:
            image(reader, shown);
            break;
        case ListOp::viewport:
            viewport(reader, shown);
            break;
        case ListOp::reference:
            reference(reader, shown);
            break;
        case ListOp::parts:
            parts(reader);
            break;
        case ListOp::pushClip:
            pushClip(reader);
            ++clips;
            break;
        case ListOp::popClip:
            if (clips-- > 0)
                m_canvas.popClip();
            break;
        }
    }
    for (; clips > 0; --clips)
        m_canvas.popClip();
}

std::vector<QPolygonF> ListPainter::loops(ListReader &reader) const
{
    std::vector<QPolygonF> read(reader.count());
    for (QPolygonF &loop : read) {
        const std::uint64_t count = reader.word();
        loop.reserve(qsizetype(count));
        for (std::uint64_t i = 0; i < count; ++i)
            loop.push_back(pixel(reader.point()));
    }
    return read;
}

void ListPainter::pushClip(ListReader &reader)
{
    const bool inverted = reader.flag();
    m_canvas.pushClip(loops(reader), inverted);
}

// Blocks -----------------------------------------------------------------------------------------

void ListPainter::reference(ListReader &reader, bool)
{
    const int columns = int(reader.count());
    const bool isArray = reader.flag();
    const auto *const record = std::bit_cast<const AcDbStub *>(reader.word());
    const AcGeMatrix3d placement = m_frame.toPixel * reader.matrix();
    const int rows = isArray ? int(reader.word()) : 1;
    const AcGeVector3d columnStep = isArray ? reader.vector() : AcGeVector3d();
    const AcGeVector3d rowStep = isArray ? reader.vector() : AcGeVector3d();

    const DisplayList *const block = m_scene.block(record, m_frame.slot);
    if (!block || block->size == 0 || m_pen->isFrozen || !m_nesting.enter(record))
        return;
    const Pen shower = *m_pen;
    const Frame outer = m_frame;
    m_frame.shower = &shower;
    m_penNumber = ~0u;
    instances(*block, placement, columns, rows, outer.toPixel * columnStep, outer.toPixel * rowStep);
    m_nesting.leave();
    m_frame = outer;
    m_penNumber = ~0u;
}

namespace
{

/// A range of positions in a row of equal steps.
struct StepRange {
    double first;
    double last;

    /// Keeps those for which [low, high] moved by the position times `step` meets [lower, upper].
    void keep(double low, double high, double step, double lower, double upper)
    {
        if (step == 0.0) {
            if (high < lower || low > upper)
                last = first - 1.0;
            return;
        }
        const double a = (lower - high) / step;
        const double b = (upper - low) / step;
        first = std::max(first, std::ceil(std::min(a, b)));
        last = std::min(last, std::floor(std::max(a, b)));
    }
};

/// The positions of `count` whose box meets the visible part.
StepRange visibleSteps(const QRectF &box, QPointF step, int count, const QRectF &shown)
{
    StepRange range{0.0, count - 1.0};
    range.keep(box.left(), box.right(), step.x(), shown.left(), shown.right());
    range.keep(box.top(), box.bottom(), step.y(), shown.top(), shown.bottom());
    return range;
}

/// Positions closer together than half a pixel would paint the same pixels again.
double stride(QPointF step)
{
    constexpr double kApart = 0.5;
    const double length = std::max(std::abs(step.x()), std::abs(step.y()));
    return length > 0.0 && length < kApart ? std::ceil(kApart / length) : 1.0;
}

/// Which ones stand for their neighbours does not depend on the visible part.
double firstOf(const StepRange &range, QPointF step)
{
    return std::ceil(range.first / stride(step)) * stride(step);
}

} // namespace

void ListPainter::instances(const DisplayList &block, const AcGeMatrix3d &placement, int columns, int rows,
                            const AcGeVector3d &columnStep, const AcGeVector3d &rowStep)
{
    const QRectF shown = withMargin(m_canvas.visible(), m_margin);
    const bool isCulled = block.hasBox() && !block.has(DisplayList::kEndless);
    const QRectF first = isCulled ? pixelBox(placement, block.box) : shown;
    const QPointF acrossStep(columnStep.x, columnStep.y);
    const QPointF upStep(rowStep.x, rowStep.y);
    const QRectF wholeRow = first | first.translated(acrossStep * (columns - 1));
    const StepRange rowRange =
        isCulled ? visibleSteps(wholeRow, upStep, rows, shown) : StepRange{0.0, rows - 1.0};
    for (double row = firstOf(rowRange, upStep); row <= rowRange.last; row += stride(upStep)) {
        const QRectF inRow = first.translated(upStep * row);
        const StepRange range =
            isCulled ? visibleSteps(inRow, acrossStep, columns, shown) : StepRange{0.0, columns - 1.0};
        for (double column = firstOf(range, acrossStep); column <= range.last; column += stride(acrossStep)) {
            m_budget -= kReferenceWords;
            if (m_budget < 0)
                return note(Host::tr("INSERT: more instances than a picture can show"));
            if (!goesOn())
                return;
            const QPointF moved = acrossStep * column + upStep * row;
            const QRectF box = first.translated(moved);
            if (isCulled && box.width() < 1.0 && box.height() < 1.0) {
                speck(block, box.center());
                continue;
            }
            instance(block, AcGeMatrix3d::translation({moved.x(), moved.y(), 0.0}) * placement);
        }
    }
}

void ListPainter::instance(const DisplayList &block, const AcGeMatrix3d &placement)
{
    // What lies beyond any number of pixels would only come out as infinite.
    constexpr double kFarthest = 1e30;
    for (const auto &row : placement.entry) {
        if (!std::ranges::all_of(row, [](double value) { return std::abs(value) < kFarthest; }))
            return;
    }
    m_frame.toPixel = placement;
    list(block);
}

/// What `toPixel`, which does not tilt, takes to these pixels; none when it flattens everything.
static std::optional<QRectF> planeBox(const AcGeMatrix3d &toPixel, const QRectF &pixels)
{
    const auto &e = toPixel.entry;
    const double det = e[0][0] * e[1][1] - e[0][1] * e[1][0];
    if (!(std::abs(det) > 0.0))
        return std::nullopt;
    QPolygonF corners;
    for (const QPointF corner :
         {pixels.topLeft(), pixels.topRight(), pixels.bottomRight(), pixels.bottomLeft()}) {
        const double x = corner.x() - e[0][3];
        const double y = corner.y() - e[1][3];
        corners << QPointF((e[1][1] * x - e[0][1] * y) / det, (e[0][0] * y - e[1][0] * x) / det);
    }
    return corners.boundingRect();
}

void ListPainter::parts(ListReader &reader)
{
    constexpr std::int64_t kPartWords = 8;
    const BlockParts *const parts = m_scene.parts(reader.count());
    if (!parts)
        return;
    const AcGeMatrix3d toPixel = m_frame.toPixel;
    const bool isFlat = toPixel.entry[0][2] == 0.0 && toPixel.entry[1][2] == 0.0;
    const QRectF shown = withMargin(m_canvas.visible(), m_margin);
    const auto plane = isFlat && parts->grid ? planeBox(toPixel, shown) : std::nullopt;
    const auto near = plane ? parts->grid->find(plane->left(), plane->top(), plane->right(), plane->bottom())
                            : std::nullopt;
    const std::size_t count = near ? near->size() : parts->lists.size();
    for (std::size_t i = 0; i < count; ++i) {
        m_budget -= kPartWords;
        if (m_budget < 0)
            return note(Host::tr("INSERT: more instances than a picture can show"));
        if (!goesOn())
            return;
        const DisplayList *const part = m_scene.list(parts->lists[near ? (*near)[i] : i], m_frame.slot);
        if (!part || part->size == 0)
            continue;
        if (isFlat && part->hasBox() && !part->has(DisplayList::kEndless)) {
            const QRectF box = pixelBox(toPixel, part->box);
            if (!meets(box, shown))
                continue;
            if (box.width() < 1.0 && box.height() < 1.0) {
                speck(*part, box.center());
                continue;
            }
        }
        list(*part);
    }
}

// Viewports --------------------------------------------------------------------------------------

static AcGeMatrix3d modelToSheet(const ViewportPicture &picture)
{
    const double scale = picture.height / picture.viewHeight;
    AcGiViewport view;
    view.direction = picture.direction;
    view.twist = picture.twist;
    const AcGeVector3d toSheet(picture.centre.x, picture.centre.y, 0.0);
    return AcGeMatrix3d::translation(toSheet) * AcGeMatrix3d::scaling(scale, scale, scale) *
           AcGeMatrix3d::translation({-picture.viewCentre.x, -picture.viewCentre.y, 0.0}) *
           view.getWorldToEyeTransform() * AcGeMatrix3d::translation(-picture.target.asVector());
}

void ListPainter::viewport(ListReader &reader, bool)
{
    const std::uint32_t number = reader.count();
    const ViewportPicture &picture = m_scene.viewport(number);
    const ShownSpace *const space = m_scene.viewportSpace(number);
    const Pens *const pens = m_scene.viewportPens(number);
    if (m_insideViewport || !space || !pens || !(picture.height > 0.0) || !(picture.viewHeight > 0.0))
        return;
    Loop border = picture.clip;
    if (border.size() < 3) {
        const AcGeVector3d half(picture.width / 2.0, picture.height / 2.0, 0.0);
        const AcGeVector3d other(half.x, -half.y, 0.0);
        border = {picture.centre - half, picture.centre + other, picture.centre + half,
                  picture.centre - other};
    }
    QPolygonF loop;
    for (const AcGePoint3d &corner : border)
        loop.push_back(pixel(corner));
    const Frame outer = m_frame;
    m_canvas.pushClip({loop}, false);
    if (!m_canvas.visible().isEmpty()) {
        m_insideViewport = true;
        const double margin = m_margin;
        m_frame = {AcGeMatrix3d(), pens};
        const double scale = pens->scalesLinetypesOnSheets() ? 1.0 : picture.height / picture.viewHeight;
        paint(*space, outer.toPixel * modelToSheet(picture), outer.pixelsPerUnit * scale);
        m_margin = margin;
        m_insideViewport = false;
    }
    m_canvas.popClip();
    m_frame = outer;
    m_penNumber = ~0u;
}

} // namespace acgi
