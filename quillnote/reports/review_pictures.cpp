#include "quillnote/reports/review_pictures.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/snapshot/target_picture.h"
#include "quillnote/snapshot/zoom_to_area.h"

#include "host/acap/docman.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edview.h"

#include <QBuffer>

#include <algorithm>
#include <cmath>
#include <map>

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

// Targets ------------------------------------------------------------------------------------------------

/// The box, filling `size`.
static AcGiViewport viewOf(const AcDbExtents &box, const QSize &size)
{
    const AcGeVector3d diagonal = box.maxPoint() - box.minPoint();
    AcGiViewport view;
    view.centre = box.minPoint() + diagonal * 0.5;
    view.pixelWidth = size.width();
    view.pixelHeight = size.height();
    view.height = std::max(diagonal.y, diagonal.x * size.height() / size.width());
    return view;
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

/// With what is around it, for a mark that keeps no picture.
static TargetPlace withSurroundings(TargetPlace target)
{
    const AcGeVector3d half(target.width / 2, target.height / 2, 0);
    const AcDbExtents window = targetZoomWindow(AcGePoint3d() - half, AcGePoint3d() + half);
    target.width = window.maxPoint().x - window.minPoint().x;
    target.height = window.maxPoint().y - window.minPoint().y;
    return target;
}

static void takeNow(AcDbDatabase &database, const QuillnoteObj3 &mark, const QImage &then, ReviewRow &row)
{
    const TargetPlace target(mark);
    const auto view = then.isNull() ? targetView(withSurroundings(target), kTargetWithoutSnapshot)
                                    : targetView(target, then.size());
    if (view && then.isNull())
        row.now = asPng(spacePicture(database, mark.blockId(), *view, Qt::white, ShownMarks::none));
    else if (view)
        row.now = asPng(spacePictureLike(database, mark.blockId(), *view, then).image);
}

void takeTargetPictures(AcApDocument &document, ReviewRow &row)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(row.mark.id, AcDb::kForRead);
    if (!mark)
        return;
    QImage then = decodedPicture(mark->snapImage);
    if (!then.isNull()) {
        row.then = {mark->snapImage, then.size(), pixelsPerInch(then)};
        if (then.width() > kLargestTarget.width() || then.height() > kLargestTarget.height()) {
            then = then.scaled(kLargestTarget, Qt::KeepAspectRatio, Qt::SmoothTransformation);
            row.then = asPng(then);
        }
    }
    takeNow(*document.database(), *mark, then, row);
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
    AcGiViewport view = viewOf(box, overviewSize(diagonal));
    view.height *= kOverviewMargin;
    overview.picture = asPng(spacePicture(*document.database(), space, view, Qt::white, ShownMarks::none));
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
