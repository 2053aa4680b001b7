#include "quillnote/snapshot/commands/compared_picture.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/snapshot/commands/place_differences.h"
#include "quillnote/snapshot/target_picture.h"

#include <QPainter>

#include <cstdlib>

/// Pictures of a target that no picture is kept of.
static constexpr int kLongerSide = 800;
static constexpr int kGap = 8;

// Taking the pictures -----------------------------------------------------------------------------

TwoPictures storedAndNow(AcDbDatabase &database, const QuillnoteObj3 &mark)
{
    TwoPictures pictures;
    pictures.then = decodedPicture(mark.snapImage).convertToFormat(QImage::Format_RGB32);
    const auto view = targetView(TargetPlace(mark), pictures.then.size());
    if (pictures.then.isNull() || !view)
        return {};
    const AcDbObjectId space = mark.blockId();
    const PictureLikeAnother now = spacePictureLike(database, space, *view, pictures.then);
    pictures.now = now.image;
    pictures.background = now.background;
    pictures.nowOtherwise = spacePicture(database, space, *view, now.background, ShownMarks::all);
    // Marks made elsewhere keep what stood on a screen, at whole pixels.
    pictures.tolerance = 1;
    return pictures;
}

TwoPictures oldAndNew(AcDbDatabase &oldDrawing, AcDbDatabase &newDrawing, const ComparedPlace &place,
                      const QuillnoteObj3 &mark)
{
    TwoPictures pictures;
    const TargetPlace target(mark);
    const auto view = targetView(target, targetPictureSize(target, kLongerSide));
    if (!view)
        return pictures;
    pictures.background = Qt::white;
    const auto take = [&](AcDbDatabase &database, AcDbObjectId space) {
        if (!space.isNull())
            return spacePicture(database, space, *view, pictures.background, ShownMarks::none);
        QImage nothing(int(view->pixelWidth), int(view->pixelHeight), QImage::Format_RGB32);
        nothing.fill(pictures.background);
        return nothing;
    };
    pictures.then = take(oldDrawing, place.oldSpace);
    pictures.now = take(newDrawing, place.newSpace);
    return pictures;
}

// What differs ------------------------------------------------------------------------------------

static bool isLike(QRgb a, QRgb b)
{
    constexpr int kLeast = 24; // Of 255: what the eye sees.
    return std::abs(qRed(a) - qRed(b)) < kLeast && std::abs(qGreen(a) - qGreen(b)) < kLeast &&
           std::abs(qBlue(a) - qBlue(b)) < kLeast;
}

/// The picture has the colour at the place or near it.
static bool hasNear(const QImage &picture, int x, int y, QRgb color, int tolerance)
{
    for (int row = std::max(0, y - tolerance); row <= std::min(picture.height() - 1, y + tolerance); ++row) {
        const auto *const pixels = reinterpret_cast<const QRgb *>(picture.constScanLine(row));
        for (int column = std::max(0, x - tolerance); column <= std::min(picture.width() - 1, x + tolerance);
             ++column) {
            if (isLike(pixels[column], color))
                return true;
        }
    }
    return false;
}

static QRgb pale(QRgb color, QRgb background)
{
    const auto mixed = [](int a, int b) { return (a + 2 * b) / 3; };
    return qRgb(mixed(qRed(color), qRed(background)), mixed(qGreen(color), qGreen(background)),
                mixed(qBlue(color), qBlue(background)));
}

namespace
{

/// One of two pictures, and those in which what it shows would have to be found again.
struct Coloured {
    const QImage &picture;
    std::initializer_list<const QImage *> others;
    QRgb color;
};

} // namespace

static QImage coloured(const TwoPictures &pictures, const Coloured &side)
{
    QImage result = side.picture;
    const QRgb background = pictures.background.rgb();
    for (int y = 0; y < result.height(); ++y) {
        auto *const row = reinterpret_cast<QRgb *>(result.scanLine(y));
        for (int x = 0; x < result.width(); ++x) {
            const bool isSame = std::ranges::any_of(side.others, [&](const QImage *other) {
                return !other->isNull() && hasNear(*other, x, y, row[x], pictures.tolerance);
            });
            row[x] = isSame || isLike(row[x], background) ? pale(row[x], background) : side.color;
        }
    }
    return result;
}

QImage sideBySide(const TwoPictures &given)
{
    TwoPictures pictures = given;
    if (pictures.then.isNull() || pictures.now.isNull() || pictures.then.size() != pictures.now.size())
        return {};
    for (QImage *const each : {&pictures.then, &pictures.now, &pictures.nowOtherwise})
        *each = each->convertToFormat(QImage::Format_RGB32);
    const int width = pictures.then.width();
    QImage both(2 * width + 3 * kGap, pictures.then.height() + 2 * kGap, QImage::Format_RGB32);
    if (both.isNull())
        return {};
    both.fill(Qt::gray);
    QPainter painter(&both);
    painter.drawImage(
        kGap, kGap,
        coloured(pictures, {pictures.then, {&pictures.now, &pictures.nowOtherwise}, qRgb(230, 0, 0)}));
    painter.drawImage(2 * kGap + width, kGap,
                      coloured(pictures, {pictures.now, {&pictures.then}, qRgb(0, 150, 0)}));
    return both;
}
