#include "tests/support/picture.h"

#include "tests/support/files.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cstdlib>

namespace tests
{

AcGiViewport planView(double x, double y, int width, int height, double pixelsPerUnit)
{
    AcGiViewport view;
    view.pixelWidth = width;
    view.pixelHeight = height;
    view.height = height / pixelsPerUnit;
    view.centre = {x + view.width() / 2.0, y + view.height / 2.0, 0.0};
    return view;
}

Picture paintPicture(AcDbObjectId space, const AcGiViewport &view, acgi::PaintOptions options)
{
    Picture picture{QImage(int(view.pixelWidth), int(view.pixelHeight), QImage::Format_RGB32), {}};
    options.background = Qt::white;
    QPainter painter(&picture.image);
    picture.report = acgi::displayOf(*space.database()).paint(space, view, painter, options);
    return picture;
}

static bool differs(QRgb a, QRgb b)
{
    const auto beyond = [](int left, int right) { return std::abs(left - right) > kChannelTolerance; };
    return beyond(qRed(a), qRed(b)) || beyond(qGreen(a), qGreen(b)) || beyond(qBlue(a), qBlue(b));
}

template <class Note>
static void eachDifference(const QImage &a, const QImage &b, Note note)
{
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            if (differs(a.pixel(x, y), b.pixel(x, y)))
                note(x, y);
        }
    }
}

qsizetype differingPixels(const QImage &a, const QImage &b)
{
    if (a.size() != b.size())
        return std::max(qsizetype(a.width()) * a.height(), qsizetype(b.width()) * b.height());
    qsizetype count = 0;
    eachDifference(a, b, [&](int, int) { ++count; });
    return count;
}

/// None when the sizes differ.
static QImage differencePicture(const QImage &picture, const QImage &reference)
{
    if (picture.size() != reference.size())
        return {};
    QImage shown = reference.convertToFormat(QImage::Format_RGB32);
    QPainter(&shown).fillRect(shown.rect(), QColor(255, 255, 255, 190));
    eachDifference(picture, reference, [&](int x, int y) { shown.setPixel(x, y, 0xFFFF0000u); });
    return shown;
}

static void save(const QImage &picture, const QString &path)
{
    QDir().mkpath(QFileInfo(path).path());
    // Few colours are in a picture, so an indexed one is smaller where it loses nothing.
    const QImage indexed = picture.convertToFormat(QImage::Format_Indexed8, Qt::AvoidDither);
    const bool isSame = indexed.convertToFormat(picture.format()) == picture;
    if (!(isSame ? indexed : picture).save(path, "PNG", 0))
        ADD_FAILURE() << "cannot write " << qPrintable(path);
}

static QString keptPath(const QString &reference, const char *ending)
{
    return QStringLiteral(QUILL_BINARY_DIR "/tests/out/") + reference.chopped(4) + QLatin1String(ending);
}

static std::string keep(const QImage &picture, const QImage &expected, const QString &reference)
{
    const QString path = keptPath(reference, ".new.png");
    save(picture, path);
    const QImage difference = differencePicture(picture, expected);
    if (difference.isNull())
        return "\n  kept in " + path.toStdString();
    const QString differencePath = keptPath(reference, ".difference.png");
    save(difference, differencePath);
    return "\n  kept in " + path.toStdString() + "\n  and in  " + differencePath.toStdString();
}

testing::AssertionResult matchesPicture(const QImage &picture, const QString &reference)
{
    const QString path = testDataPath(reference);
    if (qEnvironmentVariableIntValue("QUILL_UPDATE_GOLDEN") == 1) {
        save(picture, path);
        return testing::AssertionSuccess();
    }
    if (!QFileInfo::exists(path))
        return testing::AssertionFailure()
               << "no reference " << qPrintable(path) << keep(picture, {}, reference);
    const QImage expected(path);
    const qsizetype different = differingPixels(picture, expected);
    if (different <= kPixelTolerance * picture.width() * picture.height())
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << different << " pixels of " << picture.width() << " x " << picture.height() << " differ from "
           << qPrintable(path) << " (" << expected.width() << " x " << expected.height() << ")"
           << keep(picture, expected, reference);
}

} // namespace tests
