#include "quillnote/snapshot/capture.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/snapshot/temporary_picture.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edpicture.h"
#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"

#include <QPainter>

/// Pixels of the largest picture. A small target seen from very near would need more memory than there is.
static constexpr std::int64_t kMostPixels = 64LL * 1024 * 1024;

std::optional<QRect> targetPixels(const AcGePoint3d &corner1, const AcGePoint3d &corner2)
{
    const int viewport = acedIntVar(QStringLiteral("CVPORT"));
    QPoint pixel1;
    QPoint pixel2;
    if (!acedCoordFromWorldToPixel(viewport, corner1, pixel1) ||
        !acedCoordFromWorldToPixel(viewport, corner2, pixel2))
        return {};
    const QPoint leftTop(std::min(pixel1.x(), pixel2.x()), std::min(pixel1.y(), pixel2.y()));
    const QPoint rightBottom(std::max(pixel1.x(), pixel2.x()), std::max(pixel1.y(), pixel2.y()));
    return QRect(leftTop, QSize(rightBottom.x() - leftTop.x(), rightBottom.y() - leftTop.y()));
}

static std::optional<QString> saved(const QImage &image)
{
    const QString path = keepTemporaryPicture(image);
    return path.isEmpty() ? std::nullopt : std::optional(path);
}

/// The view with its edges moved to those of a part of it. Pixels stay where they are.
static AcGiViewport partOfView(const AcGiViewport &view, const QRect &part)
{
    AcGiViewport seen = view;
    const double right = part.x() + part.width() / 2.0 - view.pixelWidth / 2.0;
    const double down = part.y() + part.height() / 2.0 - view.pixelHeight / 2.0;
    seen.centre = view.centre + view.getEyeToWorldTransform() *
                                    AcGeVector3d(right * view.pixelSize(), -down * view.pixelSize(), 0);
    seen.height = part.height() * view.pixelSize();
    seen.pixelWidth = part.width();
    seen.pixelHeight = part.height();
    return seen;
}

// Only the part in question is painted: what it costs goes with what the target holds, not with the drawing.
static QImage grab(AcApDocument &document, const QRect &pixels)
{
    QImage image(pixels.size(), QImage::Format_RGB32);
    if (image.isNull())
        return image;
    const AcGiPaintOptions options = acedScreenOptions(document);
    image.fill(options.background);
    const AcGiViewport view = acedViewport(document);
    const QRect seen = pixels & QRect(0, 0, int(view.pixelWidth), int(view.pixelHeight));
    if (seen.isEmpty())
        return image;
    QPainter painter(&image);
    const QPoint offset = seen.topLeft() - pixels.topLeft();
    painter.setClipRect(QRect(offset, seen.size()));
    painter.translate(offset);
    acgiDisplay(*document.database())
        .paint(acedShownSpace(document), partOfView(view, seen), painter, options);
    return image;
}

std::optional<QString> captureTargetImage(const AcGePoint3d &corner1, const AcGePoint3d &corner2)
{
    const std::optional<QRect> pixels = targetPixels(corner1, corner2);
    if (!pixels || pixels->isEmpty() || std::int64_t(pixels->width()) * pixels->height() > kMostPixels)
        return {};
    return saved(grab(*curDoc(), *pixels));
}

static void exportView(const QString &path)
{
    acedSetIntVar(QStringLiteral("CMDECHO"), 0);
    // An empty selection exports everything in the view.
    acedCommandS({QStringLiteral("_PNGOUT"), path, QString()});
    acedSetIntVar(QStringLiteral("CMDECHO"), 1);
}

QString captureFullView()
{
    const QString path = newTemporaryPicture();
    if (!path.isEmpty())
        exportView(path);
    if (!temporaryPicture(path).isEmpty())
        return path;
    removeTemporaryPicture(path); // The folder takes no files.
    return saved(acedViewImage(*curDoc(), acedScreenOptions(*curDoc())).convertToFormat(QImage::Format_RGB32))
        .value_or(QString());
}

std::optional<QString> cropTargetImage(const AcGePoint3d &corner1, const AcGePoint3d &corner2,
                                       const QString &fullViewPath)
{
    const std::optional<QRect> pixels = targetPixels(corner1, corner2);
    const QImage fullView = QImage::fromData(temporaryPicture(fullViewPath));
    if (!pixels || pixels->isEmpty() || std::int64_t(pixels->width()) * pixels->height() > kMostPixels ||
        fullView.isNull())
        return {};
    return saved(fullView.copy(*pixels));
}

static bool canChange(AcDbObjectId id)
{
    if (AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForWrite))
        return true;
    acutPrintf(QStringLiteral("\n记录全屏快照失败，请注意是不是评图标签所在图层本锁定或冻结。"));
    return false;
}

void recordFullSnapshot(AcDbObjectId id)
{
    // The mark is closed while the picture is taken, or the picture would not show it.
    if (!canChange(id))
        return;
    QByteArray picture = takeTemporaryPicture(captureFullView());
    if (picture.isEmpty())
        acutPrintf(QStringLiteral("\n没有生成全屏快照。"));
    if (AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite); mark)
        mark->fullImage = std::move(picture);
}
