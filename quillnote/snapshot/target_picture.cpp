#include "quillnote/snapshot/target_picture.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/snapshot/fingerprint.h"

#include "host/aced/edpicture.h"

#include <QHash>
#include <QPainter>

#include <algorithm>
#include <cmath>

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

/// Entities other than marks that have to do with the view.
static std::vector<AcDbObjectId> withoutMarks(AcDbDatabase &database, AcDbObjectId space,
                                              const AcGiViewport &view)
{
    const AcGeVector3d half =
        AcGeVector3d(view.width() / 2, view.height / 2, 0).rotateBy(-view.twist, AcGeVector3d::kZAxis);
    const acgi::Window window =
        acgi::Window::fromCorners(view.centre - half, view.centre + half, -view.twist);
    std::vector<AcDbObjectId> ids = targetEntities(database, space, window);
    std::ranges::reverse(ids); // The newest lies on top.
    return ids;
}

QImage targetPicture(AcDbDatabase &database, AcDbObjectId space, const AcGiViewport &view, QColor background,
                     ShownMarks marks)
{
    acgi::PaintOptions options;
    options.background = background;
    options.lineWeights = database.headerInteger("$LWDISPLAY", 0) != 0;
    AcGiViewport seen = view;
    seen.paperSpace = space != database.modelSpaceId();
    if (marks == ShownMarks::all)
        return acedPicture(database, space, seen, options);
    QImage image(int(view.pixelWidth), int(view.pixelHeight), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(background);
    QPainter painter(&image);
    acgi::displayOf(database).paintEntities(withoutMarks(database, space, seen), seen, painter, options);
    return image;
}

QColor backgroundOf(const QImage &picture)
{
    QHash<QRgb, int> counts;
    QRgb most = qRgb(0, 0, 0);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            if (++counts[pixel] > counts.value(most))
                most = pixel;
        }
    }
    return QColor::fromRgb(most);
}
