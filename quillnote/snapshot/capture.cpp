#include "quillnote/snapshot/capture.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/snapshot/target_picture.h"
#include "quillnote/snapshot/temporary_picture.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edpicture.h"
#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"

#include <QImage>

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

static std::optional<QString> saved(const QImage &picture)
{
    const QString path = keepTemporaryPicture(picture.convertToFormat(QImage::Format_RGB32));
    return path.isEmpty() ? std::nullopt : std::optional(path);
}

// Only the target is painted: what it costs goes with what the target holds, not with the drawing.
std::optional<QString> captureTargetImage(const AcGePoint3d &corner1, const AcGePoint3d &corner2)
{
    const std::optional<QRect> pixels = targetPixels(corner1, corner2);
    if (!pixels || pixels->isEmpty() || std::int64_t(pixels->width()) * pixels->height() > kMostPixels)
        return {};
    AcApDocument &document = *curDoc();
    const auto view = targetView(TargetPlace(corner1, corner2, -document.view().twist), pixels->size());
    if (!view)
        return {};
    return saved(spacePicture(*document.database(), document.database()->currentSpaceId(), *view,
                              acedScreenOptions(document).background, ShownMarks::all));
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
