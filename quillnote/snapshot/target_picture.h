// Pictures of targets and of spaces, with marks or without. That of a target as the drawing shows it now can
// be laid over the one that its mark keeps: the same part of the drawing, the same size, the same background.
#pragma once

#include "host/acgi/viewport.h"

#include <QColor>
#include <QImage>

#include <optional>

class AcDbDatabase;
class AcDbObjectId;
class QuillnoteObj3;

/// The part of a drawing between two opposite corners (world), in a rectangle whose lower side is turned by
/// `angle`.
struct TargetPlace {
    TargetPlace(const AcGePoint3d &corner1, const AcGePoint3d &corner2, double sideAngle);
    /// As the mark stands.
    explicit TargetPlace(const QuillnoteObj3 &mark);
    bool hasArea() const;

    double angle;
    AcGePoint3d middle;
    double width;
    double height;
};

/// The view that shows just the target in a picture of `size` pixels, upright. It depends on nothing else, so
/// that pictures of one size lie on each other pixel by pixel. None for a target or a size without area.
std::optional<AcGiViewport> targetView(const TargetPlace &target, QSize size);

/// A size that suits the target: its longer side has so many pixels. Empty for a target without area.
QSize targetPictureSize(const TargetPlace &target, int longerSide);

/// What the picture of a mark shows; null when its bytes are no PNG.
QImage decodedPicture(const QByteArray &png);

enum class ShownMarks { all, none };

/// A space (block record of model space or a layout) as seen in the view; what it costs goes with what is
/// seen there. No image when it is too large.
QImage spacePicture(AcDbDatabase &database, AcDbObjectId space, const AcGiViewport &view, QColor background,
                    ShownMarks marks);

struct PictureLikeAnother {
    QImage image;
    QColor background;
};

/// The same for what another picture shows, without marks, over the background of that picture. No picture
/// tells its background, a column may fill it as well: it is the one that makes both most alike.
PictureLikeAnother spacePictureLike(AcDbDatabase &database, AcDbObjectId space, const AcGiViewport &view,
                                    const QImage &other);
