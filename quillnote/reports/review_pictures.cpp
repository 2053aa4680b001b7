#include "quillnote/reports/review_pictures.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/mark_state.h"
#include "quillnote/snapshot/zoom_to_area.h"

#include "host/acdb/dbsymtb.h"
#include "host/aced/edpicture.h"
#include "host/aced/edview.h"

#include <QBuffer>
#include <QImageReader>

#include <algorithm>
#include <cmath>
#include <map>
#include <unordered_map>

PicturesWithoutMarks::PicturesWithoutMarks(AcDbDatabase &database) : m_database(database)
{
    markDrawingState().leftOut = true;
    acgi::displayOf(m_database).regenerate();
}

PicturesWithoutMarks::~PicturesWithoutMarks()
{
    markDrawingState().leftOut = false;
    acgi::displayOf(m_database).regenerate();
}

// Pixels -------------------------------------------------------------------------------------------------

static constexpr QSize kLargestTarget(960, 720);
static constexpr QSize kTargetWithoutSnapshot(480, 360);
static constexpr int kOverviewSide = 1800;
static constexpr int kOverviewShortSide = 320;
static constexpr double kOverviewMargin = 1.04;

static double pixelsPerInch(const QImage &image)
{
    constexpr double kInch = 0.0254;
    const double found = image.dotsPerMeterX() * kInch;
    return found > 0 ? found : 96.0;
}

static ReviewPicture asPng(const QImage &image)
{
    if (image.isNull())
        return {};
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    if (!image.convertToFormat(QImage::Format_RGB32).save(&png, "PNG"))
        return {};
    return {png.data(), image.size(), pixelsPerInch(image)};
}

/// What the bytes of a mark show; null when they are no PNG.
static QImage decoded(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer, "PNG");
    return reader.read();
}

/// The colour that fills most of the picture.
static QColor commonColor(const QImage &image)
{
    std::unordered_map<QRgb, int> counts;
    QRgb most = qRgb(0, 0, 0);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y) | 0xFF000000U;
            if (++counts[pixel] > counts[most])
                most = pixel;
        }
    }
    return QColor::fromRgb(most);
}

/// The share of pixels that two pictures of one size have in common.
static double likeness(const QImage &a, const QImage &b)
{
    qsizetype same = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            same += (a.pixel(x, y) | 0xFF000000U) == (b.pixel(x, y) | 0xFF000000U);
    }
    return double(same) / double(std::max<qsizetype>(1, qsizetype(a.width()) * a.height()));
}

static QImage painted(AcApDocument &document, AcDbObjectId space, AcGiViewport view, const QColor &background)
{
    view.paperSpace = space != document.database()->modelSpaceId();
    acgi::PaintOptions options;
    options.background = background;
    return acedPicture(*document.database(), space, view, options);
}

// Targets ------------------------------------------------------------------------------------------------

/// The box in the frame of a view that is turned by `twist`, filling `size`.
static AcGiViewport viewOf(const AcDbExtents &box, double twist, const QSize &size)
{
    AcApView turned;
    turned.twist = twist;
    const AcGeVector3d diagonal = box.maxPoint() - box.minPoint();
    AcGiViewport view;
    view.twist = twist;
    view.centre = acedViewFrame(turned).inverse() * (box.minPoint() + diagonal * 0.5);
    view.pixelWidth = size.width();
    view.pixelHeight = size.height();
    view.height = std::max(diagonal.y, diagonal.x * size.height() / size.width());
    return view;
}

/// The target as it lay on the screen when it was marked: upright in a view whose twist the mark tells.
static AcDbExtents targetInView(const QuillnoteObj3 &mark, double twist)
{
    AcApView turned;
    turned.twist = twist;
    AcDbExtents box;
    box.addPoint(acedViewFrame(turned) * mark.targetCorner1);
    box.addPoint(acedViewFrame(turned) * mark.targetCorner2);
    return box;
}

static AcDbExtents targetInWorld(const QuillnoteObj3 &mark)
{
    AcDbExtents box;
    box.addPoint(mark.targetCorner1);
    box.addPoint(mark.targetCorner2);
    if (mark.cornersValid) {
        box.addPoint(mark.targetCorner3);
        box.addPoint(mark.targetCorner4);
    }
    return box;
}

static double twistOf(const QuillnoteObj3 &mark)
{
    return -std::atan2(mark.xDirection.y, mark.xDirection.x);
}

/// No picture tells its background: a column fills a target as well. What makes now most like then was it.
static QImage paintedLike(AcApDocument &document, AcDbObjectId space, const AcGiViewport &view,
                          const QImage &then)
{
    constexpr double kGoodEnough = 0.8;
    QImage best;
    double bestLikeness = -1.0;
    std::vector<QRgb> tried;
    for (const QColor &background :
         {commonColor(then), acedScreenOptions(document).background, QColor(Qt::black), QColor(Qt::white)}) {
        if (bestLikeness >= kGoodEnough || std::ranges::find(tried, background.rgb()) != tried.end())
            continue;
        tried.push_back(background.rgb());
        const QImage now = painted(document, space, view, background);
        if (const double like = likeness(then, now); like > bestLikeness) {
            best = now;
            bestLikeness = like;
        }
    }
    return best;
}

static void takeNow(AcApDocument &document, const QuillnoteObj3 &mark, const QImage &then, ReviewRow &row)
{
    const double twist = twistOf(mark);
    AcDbExtents box = targetInView(mark, twist);
    if (then.isNull())
        box = targetZoomWindow(box.minPoint(), box.maxPoint());
    const AcGiViewport view = viewOf(box, twist, then.isNull() ? kTargetWithoutSnapshot : then.size());
    if (!box.isValid() || !(view.height > 0) || !std::isfinite(view.height))
        return;
    row.now = asPng(then.isNull() ? painted(document, mark.blockId(), view, Qt::white)
                                  : paintedLike(document, mark.blockId(), view, then));
}

void takeTargetPictures(AcApDocument &document, ReviewRow &row)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(row.mark.id, AcDb::kForRead);
    if (!mark)
        return;
    QImage then = decoded(mark->snapImage);
    if (!then.isNull()) {
        row.then = {mark->snapImage, then.size(), pixelsPerInch(then)};
        if (then.width() > kLargestTarget.width() || then.height() > kLargestTarget.height()) {
            then = then.scaled(kLargestTarget, Qt::KeepAspectRatio, Qt::SmoothTransformation);
            row.then = asPng(then);
        }
    }
    takeNow(document, *mark, then, row);
}

// Overviews ----------------------------------------------------------------------------------------------

static QSize overviewSize(const AcGeVector3d &diagonal)
{
    const double longer = std::max(diagonal.x, diagonal.y);
    const auto side = [longer](double length) {
        return std::clamp(int(std::lround(kOverviewSide * length / longer)), kOverviewShortSide,
                          kOverviewSide);
    };
    return {side(diagonal.x), side(diagonal.y)};
}

/// Everything that is visible in a space, and the targets of its marks.
static AcDbExtents boxOf(AcApDocument &document, AcDbObjectId space, const std::vector<AcDbExtents> &targets)
{
    AcDbExtents box = acedSpaceExtents(*document.database(), space);
    for (const AcDbExtents &target : targets) {
        if (target.isValid())
            box.addExt(target);
    }
    return box;
}

static QRectF pixelBox(AcDbExtents box, const AcGiViewport &view)
{
    if (!box.isValid())
        return {};
    box.transformBy(view.worldToPixel());
    return {QPointF(box.minPoint().x, box.minPoint().y), QPointF(box.maxPoint().x, box.maxPoint().y)};
}

static ReviewOverview takeOverview(AcApDocument &document, AcDbObjectId space,
                                   const std::vector<std::size_t> &rows,
                                   const std::vector<AcDbExtents> &targets)
{
    ReviewOverview overview{acdbLayoutName(space), {}, {}};
    const AcDbExtents box = boxOf(document, space, targets);
    const AcGeVector3d diagonal = box.isValid() ? box.maxPoint() - box.minPoint() : AcGeVector3d();
    const bool hasSize = std::max(diagonal.x, diagonal.y) > 0 && std::isfinite(diagonal.x + diagonal.y);
    if (!hasSize)
        return overview;
    AcGiViewport view = viewOf(box, 0.0, overviewSize(diagonal));
    view.height *= kOverviewMargin;
    overview.picture = asPng(painted(document, space, view, Qt::white));
    for (std::size_t i = 0; i < rows.size(); ++i)
        overview.places.push_back({rows[i], pixelBox(targets[i], view)});
    return overview;
}

std::vector<ReviewOverview> takeOverviews(AcApDocument &document, const std::vector<ReviewRow> &rows)
{
    std::vector<AcDbObjectId> spaces;
    std::map<AcDbObjectId, std::vector<std::size_t>> rowsOfSpace;
    std::map<AcDbObjectId, std::vector<AcDbExtents>> targets;
    for (std::size_t row = 0; row < rows.size(); ++row) {
        const AcDbObjectPointer<QuillnoteObj3> mark(rows[row].mark.id, AcDb::kForRead);
        if (!mark)
            continue;
        const AcDbObjectId space = mark->blockId();
        if (!rowsOfSpace.contains(space))
            spaces.push_back(space);
        rowsOfSpace[space].push_back(row);
        targets[space].push_back(targetInWorld(*mark));
    }
    std::vector<ReviewOverview> overviews;
    overviews.reserve(spaces.size());
    for (const AcDbObjectId space : spaces)
        overviews.push_back(takeOverview(document, space, rowsOfSpace[space], targets[space]));
    return overviews;
}
