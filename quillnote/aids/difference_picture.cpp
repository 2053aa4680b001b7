#include "quillnote/aids/difference_picture.h"

#include "quillnote/aids/overlay_copy.h"
#include "quillnote/entity/mark_class.h"

#include "host/acdb/dbentity.h"
#include "host/aced/edpicture.h"
#include "host/aced/edplot.h"
#include "host/aced/edview.h"
#include "host/acgi/display/display.h"
#include "host/base/atomic_file.h"

#include <QBuffer>
#include <QPageSize>
#include <QPdfWriter>

#include <algorithm>
#include <cmath>

static constexpr double kMargin = 0.03; ///< Of the page, on each side.
static const QColor kOnlyOld(220, 0, 0);
static const QColor kOnlyNew(0, 145, 0);
static const QColor kBoth(170, 170, 170);
static const QColor kFrame(255, 140, 0);

// One layer of the picture ------------------------------------------------------------------------

static void paintSome(const ComparedSpace &where, const AcGiViewport &view, QPainter &painter, QColor color,
                      const std::function<bool(AcDbObjectId)> &leavesOut)
{
    if (where.space.isNull())
        return;
    acgi::PaintOptions options;
    options.fillBackground = false;
    options.background = Qt::white;
    options.besideScreen = true;
    options.highlight = color;
    options.leavesOut = leavesOut;
    AcGiViewport seen = view;
    seen.paperSpace = where.space != where.database->modelSpaceId();
    acgi::displayOf(*where.database).paint(where.space, seen, painter, options);
}

static void paintFrames(const DrawingDifference &difference, const AcGiViewport &view, QPainter &painter)
{
    const AcGeMatrix3d toPixel = view.worldToPixel();
    const double line = std::max(1.0, view.pixelHeight / 700.0);
    QFont font = painter.font();
    font.setPixelSize(int(line * 14));
    painter.setFont(font);
    painter.setPen(QPen(kFrame, line));
    painter.setBrush(Qt::NoBrush);
    int number = 0;
    for (const DifferingPlace &place : difference.places) {
        const AcGePoint3d low = toPixel * place.box.minPoint();
        const AcGePoint3d high = toPixel * place.box.maxPoint();
        const double gap = 4 * line;
        const QRectF frame(QPointF(low.x - gap, high.y - gap), QPointF(high.x + gap, low.y + gap));
        painter.drawRect(frame);
        painter.drawText(frame.topLeft() - QPointF(0, 2 * line), QString::number(++number));
    }
}

/// Marks and overlays: not part of what is compared.
static bool isAboutTheDrawing(AcDbObjectId id)
{
    static const AcDbKind kMark = acdbKind(kMarkDxfName);
    static const AcDbKind kInsert = acdbKind("INSERT");
    if (id.stub()->kind == kMark)
        return true;
    if (id.stub()->kind != kInsert)
        return false;
    const AcDbObjectPointer<AcDbEntity> reference(id, AcDb::kForRead);
    return reference && showsOverlay(*reference);
}

static void paintAll(const ComparedSpace &old, const ComparedSpace &now, const DrawingDifference &difference,
                     const AcGiViewport &view, QPainter &painter)
{
    paintSome(now, view, painter, kBoth,
              [&](AcDbObjectId id) { return isAboutTheDrawing(id) || difference.onlyNew.contains(id); });
    paintSome(old, view, painter, kOnlyOld,
              [&](AcDbObjectId id) { return !difference.onlyOld.contains(id); });
    paintSome(now, view, painter, kOnlyNew,
              [&](AcDbObjectId id) { return !difference.onlyNew.contains(id); });
    paintFrames(difference, view, painter);
}

// Pages -------------------------------------------------------------------------------------------

/// Everything, in a picture whose longer side has so many pixels; none when nothing is shown.
static std::optional<AcGiViewport> viewOfAll(const AcDbExtents &box, double longerSide, double widest)
{
    if (!box.isValid())
        return std::nullopt;
    const AcGeVector3d size = box.maxPoint() - box.minPoint();
    const double shape = std::clamp(size.x / std::max(size.y, 1e-9), 1.0 / widest, widest);
    AcGeView view;
    view.pixelWidth = std::round(shape >= 1.0 ? longerSide : longerSide * shape);
    view.pixelHeight = std::round(shape >= 1.0 ? longerSide / shape : longerSide);
    view.fit(box, kMargin);
    return acedGiViewport(view, false);
}

static base::Result<void, QString> writeBytes(const QByteArray &bytes, const QString &path)
{
    auto file = base::AtomicFileWriter::open(path);
    if (!file)
        return base::Failure{file.error().text()};
    file->write(bytes);
    if (const auto written = file->commit(); !written)
        return base::Failure{written.error().text()};
    return {};
}

base::Result<void, QString> writeDifferencePicture(const ComparedSpace &old, const ComparedSpace &now,
                                                   const DrawingDifference &difference, const QString &path)
{
    AcDbExtents box = now.extents();
    box.addExt(old.extents());
    const bool asPdf = path.endsWith(u".pdf", Qt::CaseInsensitive);
    constexpr double kPixels = 3000;
    constexpr double kPaper[] = {420.0, 297.0}; // A3, millimetres.
    constexpr double kWidest = kPaper[0] / kPaper[1];
    const double longer = asPdf ? kPaper[0] * kPlotDotsPerMillimetre : kPixels;
    const auto view = viewOfAll(box, longer, asPdf ? kWidest : 4.0);
    if (!view)
        return base::Failure{QStringLiteral("neither drawing shows anything")};
    if (!asPdf) {
        QImage image(int(view->pixelWidth), int(view->pixelHeight), QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        paintAll(old, now, difference, *view, painter);
        painter.end();
        return acedWritePng(image, path);
    }
    QBuffer pdf;
    pdf.open(QIODevice::WriteOnly);
    QPdfWriter writer(&pdf);
    writer.setResolution(kPlotDotsPerInch);
    writer.setCreator(QStringLiteral("Quillnote"));
    writer.setPageSize(QPageSize(QSizeF(view->pixelWidth, view->pixelHeight) / kPlotDotsPerMillimetre,
                                 QPageSize::Millimeter, QString(), QPageSize::ExactMatch));
    writer.setPageMargins({});
    QPainter painter(&writer);
    paintAll(old, now, difference, *view, painter);
    painter.end();
    return writeBytes(pdf.data(), path);
}
