#include "app/canvas/view_picture.h"

#include "host/acgi/query/spatial_index.h"

#include <QElapsedTimer>
#include <QPointer>

#include <cmath>
#include <numeric>
#include <optional>

namespace window
{

/// As long as the window may stand still.
static constexpr int kSlice = 15;           // Milliseconds, for making lists.
static constexpr int kIndexSlice = 8;       // Milliseconds; the mouse has to move smoothly beside it.
static constexpr int kMostAtOnce = 20;      // Milliseconds, for painting.
static constexpr double kFastEnough = 0.02; // Seconds: worth doing at once again.
/// Many small places are not worth painting one by one.
static constexpr int kMostParts = 8;
/// Larger parts are painted piece by piece; pixels.
static constexpr int kLargePart = 20'000;

// Views -------------------------------------------------------------------------------------------

QTransform pixelTransform(const AcGiViewport &from, const AcGiViewport &to)
{
    const AcGeMatrix3d matrix = to.worldToPixel() * from.worldToPixel().inverse();
    const auto &e = matrix.entry;
    return {e[0][0], e[1][0], e[0][1], e[1][1], e[0][3], e[1][3]};
}

bool isSameView(const AcGiViewport &one, const AcGiViewport &other)
{
    return one.centre == other.centre && one.height == other.height && one.twist == other.twist &&
           one.direction == other.direction && one.pixelWidth == other.pixelWidth &&
           one.pixelHeight == other.pixelHeight && one.pixelRatio == other.pixelRatio &&
           one.paperSpace == other.paperSpace;
}

/// How far the pixels of one view lie from the same places in the other; none when that is no whole number of
/// them.
static std::optional<QPoint> wholePixelsBetween(const AcGiViewport &from, const AcGiViewport &to)
{
    const double scale = from.pixelSize() / to.pixelSize();
    if (std::abs(scale - 1.0) > 1e-9 || from.twist != to.twist || from.direction != to.direction)
        return std::nullopt;
    const AcGePoint3d before = from.worldToPixel() * to.centre;
    const double x = to.pixelWidth / 2.0 - before.x;
    const double y = to.pixelHeight / 2.0 - before.y;
    constexpr double kMostOff = 1e-3;
    constexpr double kFar = 1e6;
    if (!(std::abs(x) < kFar && std::abs(y) < kFar) || std::abs(x - std::round(x)) > kMostOff ||
        std::abs(y - std::round(y)) > kMostOff)
        return std::nullopt;
    return QPoint(int(std::lround(x)), int(std::lround(y)));
}

static QSize pixels(const AcGiViewport &view)
{
    return {int(view.pixelWidth), int(view.pixelHeight)};
}

bool ViewSubject::isLike(const ViewSubject &other) const
{
    return database == other.database && space == other.space &&
           options.background == other.options.background &&
           options.lineWeights == other.options.lineWeights && folder == other.folder;
}

// What is to be seen ------------------------------------------------------------------------------

ViewPicture::ViewPicture(QObject *parent) : QObject(parent)
{
    m_next.setSingleShot(true);
    m_next.setInterval(0);
    connect(&m_next, &QTimer::timeout, this, &ViewPicture::advance);
    m_index.setSingleShot(true);
    m_index.setInterval(0);
    connect(&m_index, &QTimer::timeout, this, &ViewPicture::prepareIndex);
}

void ViewPicture::clear()
{
    if (m_subject.database && isPaintingBehind())
        acgi::displayOf(*m_subject.database).stopPainting();
    m_behind.reset();
    m_next.stop();
    m_index.stop();
    m_subject = {};
    m_image = {};
    m_missing = {};
    m_isOutOfDate = true;
    setBusy(false);
    Q_EMIT changed();
}

void ViewPicture::show(const ViewSubject &subject)
{
    const bool isAlike = m_subject.isLike(subject);
    if (isAlike && isSameView(m_subject.view, subject.view)) {
        finishSoon(); // Somebody may have stopped the painting.
        return;
    }
    if (m_subject.database && m_subject.database != subject.database)
        clear();
    const bool isOtherSpace = m_subject.space != subject.space;
    m_subject = subject;
    if (!isAlike) {
        m_isOutOfDate = true;
        m_behind.reset();
    }
    if (isOtherSpace)
        m_image = {};
    moveTo(subject.view);
    if (!m_isOutOfDate && !m_missing.isEmpty())
        advance();
    finishSoon();
    Q_EMIT changed();
}

/// Moves the picture to a view of the same scale; other views wait for a picture of their own.
void ViewPicture::moveTo(const AcGiViewport &view)
{
    if (m_image.isNull() || isSameView(m_imageView, view))
        return;
    const auto offset = wholePixelsBetween(m_imageView, view);
    if (!offset) {
        m_isOutOfDate = true;
        return;
    }
    const QRect whole(QPoint(), pixels(view));
    const QRect kept = m_image.rect().translated(*offset) & whole;
    QImage moved(whole.size(), QImage::Format_RGB32);
    if (moved.isNull())
        return;
    moved.fill(m_subject.options.background);
    QPainter painter(&moved);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(*offset, m_image);
    painter.end();
    m_image = moved;
    m_imageView = view;
    m_missing = (m_missing.translated(*offset) & whole) | (QRegion(whole) - kept);
}

void ViewPicture::takeDamage()
{
    if (!m_subject.database || m_image.isNull())
        return;
    const acgi::Damage damage = acgi::displayOf(*m_subject.database).takeDamage(m_subject.space, m_imageView);
    if (!damage.everything && damage.part.isEmpty())
        return;
    if (damage.everything)
        m_isOutOfDate = true;
    else
        m_missing |= damage.part & m_image.rect();
    m_behind.reset(); // It shows the drawing as it was.
    finishSoon();
}

bool ViewPicture::isSharp() const
{
    return !m_image.isNull() && !m_isOutOfDate && m_missing.isEmpty() &&
           isSameView(m_imageView, m_subject.view);
}

void ViewPicture::paint(QPainter &painter) const
{
    painter.fillRect(QRectF(0, 0, m_subject.view.pixelWidth, m_subject.view.pixelHeight),
                     m_subject.options.background);
    if (m_image.isNull())
        return;
    painter.save();
    if (!isSameView(m_imageView, m_subject.view)) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.setTransform(pixelTransform(m_imageView, m_subject.view), true);
    }
    painter.drawImage(0, 0, m_image);
    painter.restore();
}

// Work --------------------------------------------------------------------------------------------

void ViewPicture::setBusy(bool busy)
{
    if (busy == m_isBusy)
        return;
    m_isBusy = busy;
    Q_EMIT busyChanged(busy);
}

void ViewPicture::finishSoon()
{
    if (!m_subject.database)
        return;
    QTimer &due = isSharp() ? m_index : m_next;
    if (!due.isActive())
        due.start();
}

/// What waits for the index would stand still for seconds in a large drawing; nobody waits now.
void ViewPicture::prepareIndex()
{
    if (!m_subject.database || !isSharp())
        return;
    acgi::SpatialIndex &index = acgi::spatialIndexOf(*m_subject.database);
    if (!index.prepare(m_subject.space, kIndexSlice) ||
        !index.prepare(m_subject.database->currentSpaceId(), kIndexSlice))
        m_index.start();
}

/// The next step towards a sharp picture.
void ViewPicture::advance()
{
    if (!m_subject.database || isSharp() || pixels(m_subject.view).isEmpty()) {
        setBusy(false);
        return;
    }
    // While the user pans on, the picture that is being painted is better than one that never ends.
    if (isPaintingBehind() && wholePixelsBetween(m_behindView, m_subject.view))
        return;
    acgi::Display &display = acgi::displayOf(*m_subject.database);
    if (!display.prepare(m_subject.space, m_subject.view, kSlice)) {
        setBusy(true);
        m_next.start();
        return;
    }
    if (m_isOutOfDate || m_image.isNull()) {
        if (m_seconds > kFastEnough || !paintAtOnce())
            paintBehind();
    } else {
        paintMissing();
    }
    setBusy(isPaintingBehind());
}

static std::function<bool()> deadline(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    return [clock, milliseconds] { return clock.elapsed() > milliseconds; };
}

static int area(const QRect &part)
{
    return part.width() * part.height();
}

static int area(const QRegion &region)
{
    return std::accumulate(region.begin(), region.end(), 0,
                           [](int sum, const QRect &part) { return sum + area(part); });
}

/// The first piece of a part that is perhaps too large to be painted at once.
static QRect firstPiece(QRect part)
{
    while (area(part) > kLargePart) {
        if (part.width() > part.height())
            part.setWidth(part.width() / 2);
        else
            part.setHeight(part.height() / 2);
    }
    return part;
}

/// As much as there is time for; the rest follows.
void ViewPicture::paintMissing()
{
    if (m_missing.rectCount() > kMostParts)
        m_missing = m_missing.boundingRect();
    constexpr int kMuch = 3; // The share of the picture that is better painted by all threads.
    if (m_seconds > kFastEnough && area(m_missing) > area(m_image.rect()) / kMuch) {
        paintBehind();
        return;
    }
    QElapsedTimer clock;
    clock.start();
    while (!m_missing.isEmpty() && clock.elapsed() < kMostAtOnce) {
        const QRect piece = firstPiece(*m_missing.begin());
        acgi::PaintOptions options = m_subject.options;
        options.isCancelled = deadline(2 * kMostAtOnce);
        options.part = piece;
        QPainter painter(&m_image);
        const acgi::PaintReport report =
            acgi::displayOf(*m_subject.database).paint(m_subject.space, m_imageView, painter, options);
        if (report.cancelled) {
            paintBehind();
            return;
        }
        m_missing -= piece;
    }
    finishSoon();
    Q_EMIT changed();
}

/// False when that would take too long.
bool ViewPicture::paintAtOnce()
{
    QImage image(pixels(m_subject.view), QImage::Format_RGB32);
    if (image.isNull())
        return true; // There is no memory for a picture; it would be no different in the background.
    acgi::PaintOptions options = m_subject.options;
    options.isCancelled = deadline(kMostAtOnce);
    QElapsedTimer clock;
    clock.start();
    QPainter painter(&image);
    const acgi::PaintReport report =
        acgi::displayOf(*m_subject.database).paint(m_subject.space, m_subject.view, painter, options);
    painter.end();
    m_seconds = double(clock.elapsed()) / 1000.0;
    if (report.cancelled) {
        m_seconds = std::max(m_seconds, 2.0 * kFastEnough); // Not tried again before one has gone faster.
        return false;
    }
    takePicture(image, report, m_subject.view);
    return true;
}

void ViewPicture::paintBehind()
{
    const auto alive = std::make_shared<bool>(true);
    m_behind = alive;
    m_behindView = m_subject.view;
    QElapsedTimer clock;
    clock.start();
    acgi::displayOf(*m_subject.database)
        .paintInBackground(
            m_subject.space, m_subject.view, m_subject.options,
            [self = QPointer(this), alive, clock](const QImage &image, const acgi::PaintReport &report) {
                if (!self || self->m_behind.lock() != alive)
                    return; // Out of date.
                self->m_behind.reset();
                self->m_seconds = double(clock.elapsed()) / 1000.0;
                self->takeLatePicture(image, report);
            });
}

/// The view may have moved on meanwhile.
void ViewPicture::takeLatePicture(const QImage &image, const acgi::PaintReport &report)
{
    takePicture(image, report, m_behindView);
    moveTo(m_subject.view);
    finishSoon();
    setBusy(!isSharp());
}

void ViewPicture::takePicture(const QImage &image, const acgi::PaintReport &report, const AcGiViewport &view)
{
    m_image = image;
    m_imageView = view;
    m_missing = {};
    m_isOutOfDate = false;
    Q_EMIT changed();
    Q_EMIT painted(report);
}

} // namespace window
