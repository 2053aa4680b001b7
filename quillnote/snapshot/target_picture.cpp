#include "quillnote/snapshot/target_picture.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/snapshot/fingerprint.h"

#include "host/aced/edpicture.h"
#include "host/aced/edsysvar.h"
#include "host/acgi/query/spatial_index.h"

#include <QBuffer>
#include <QHash>
#include <QImageReader>

#include <algorithm>
#include <cmath>
#include <vector>

TargetPlace::TargetPlace(const AcGePoint3d &corner1, const AcGePoint3d &corner2, double sideAngle)
    : angle(sideAngle), middle(corner1 + (corner2 - corner1) * 0.5)
{
    const AcGeVector3d diagonal = (corner2 - corner1).rotateBy(-angle, AcGeVector3d::kZAxis);
    width = std::abs(diagonal.x);
    height = std::abs(diagonal.y);
}

TargetPlace::TargetPlace(const QuillnoteObj3 &mark)
    : TargetPlace(mark.targetCorner1, mark.targetCorner2, std::atan2(mark.xDirection.y, mark.xDirection.x))
{
}

bool TargetPlace::hasArea() const
{
    return width > 0 && height > 0 && std::isfinite(width) && std::isfinite(height);
}

std::optional<AcGiViewport> targetView(const TargetPlace &target, QSize size)
{
    if (!target.hasArea() || size.isEmpty())
        return std::nullopt;
    AcGiViewport view;
    view.centre = target.middle;
    view.twist = -target.angle;
    view.pixelWidth = size.width();
    view.pixelHeight = size.height();
    view.height = std::max(target.height, target.width * size.height() / size.width());
    return view;
}

QSize targetPictureSize(const TargetPlace &target, int longerSide)
{
    if (!target.hasArea())
        return {};
    const double scale = longerSide / std::max(target.width, target.height);
    return {std::max(1, int(std::lround(target.width * scale))),
            std::max(1, int(std::lround(target.height * scale)))};
}

QImage decodedPicture(const QByteArray &png)
{
    QBuffer buffer;
    buffer.setData(png);
    return QImageReader(&buffer, "PNG").read();
}

QImage spacePicture(AcDbDatabase &database, AcDbObjectId space, const AcGiViewport &view, QColor background,
                    ShownMarks marks)
{
    acgi::PaintOptions options;
    options.background = background;
    options.lineWeights = database.headerInteger("$LWDISPLAY", 0) != 0;
    if (marks == ShownMarks::none)
        options.leavesOut = isReviewMark;
    AcGiViewport seen = view;
    seen.paperSpace = space != database.modelSpaceId();
    // Whoever takes a picture of a target also takes its fingerprint, which needs the index.
    constexpr int kWholeIndex = -1;
    acgi::spatialIndexOf(database).prepare(space, kWholeIndex);
    return acedPicture(database, space, seen, options);
}

// The background ----------------------------------------------------------------------------------

/// Of 32 bits a pixel; opaque.
static QImage plainPixels(const QImage &image)
{
    return image.convertToFormat(QImage::Format_RGB32);
}

static QColor commonColor(const QImage &image)
{
    QHash<QRgb, int> counts;
    QRgb most = qRgb(0, 0, 0);
    for (int y = 0; y < image.height(); ++y) {
        const auto *const row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            if (++counts[row[x]] > counts.value(most))
                most = row[x];
        }
    }
    return QColor::fromRgb(most);
}

/// The share of pixels that two pictures of one size have in common.
static double likeness(const QImage &a, const QImage &b)
{
    qsizetype same = 0;
    for (int y = 0; y < a.height(); ++y) {
        const auto *const rowOfA = reinterpret_cast<const QRgb *>(a.constScanLine(y));
        const auto *const rowOfB = reinterpret_cast<const QRgb *>(b.constScanLine(y));
        for (int x = 0; x < a.width(); ++x)
            same += rowOfA[x] == rowOfB[x];
    }
    return double(same) / double(std::max<qsizetype>(1, qsizetype(a.width()) * a.height()));
}

PictureLikeAnother spacePictureLike(AcDbDatabase &database, AcDbObjectId space, const AcGiViewport &view,
                                    const QImage &other)
{
    constexpr double kGoodEnough = 0.8;
    const QImage wanted = plainPixels(other);
    const auto ofScreen = QColor::fromRgb(QRgb(acedIntVar(QStringLiteral("BACKGROUNDCOLOR"), 0)));
    PictureLikeAnother best;
    double bestLikeness = -1.0;
    std::vector<QRgb> tried;
    for (const QColor &background : {commonColor(wanted), ofScreen, QColor(Qt::black), QColor(Qt::white)}) {
        if (bestLikeness >= kGoodEnough || std::ranges::find(tried, background.rgb()) != tried.end())
            continue;
        tried.push_back(background.rgb());
        const QImage now = plainPixels(spacePicture(database, space, view, background, ShownMarks::none));
        if (now.size() != wanted.size())
            return {};
        if (const double like = likeness(wanted, now); like > bestLikeness) {
            best = {now, background};
            bestLikeness = like;
        }
    }
    return best;
}
