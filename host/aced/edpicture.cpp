// Pictures of what a document shows.
#include "host/aced/edpicture.h"

#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"
#include "host/acgi/query/spatial_index.h"
#include "host/base/atomic_file.h"
#include "host/base/host_text.h"

#include <QBuffer>

acgi::PaintOptions acedScreenOptions(const AcApDocument &document)
{
    acgi::PaintOptions options;
    options.background = QColor::fromRgb(QRgb(acedIntVar(QStringLiteral("BACKGROUNDCOLOR"), 0)));
    options.pixelsPerMillimetre *= document.view().pixelRatio;
    options.lineWeights = document.database()->headerInteger("$LWDISPLAY", 0) != 0;
    return options;
}

QImage acedPicture(AcDbDatabase &database, AcDbObjectId space, const AcGiViewport &view,
                   const acgi::PaintOptions &options, acgi::PaintReport *report)
{
    QImage image(int(view.pixelWidth), int(view.pixelHeight), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(options.fillBackground ? options.background : QColor(Qt::transparent));
    QPainter painter(&image);
    acgi::PaintOptions beside = options;
    beside.besideScreen = true;
    beside.near = [&database](AcDbObjectId shown, const AcDbExtents &box) {
        return acgi::spatialIndexOf(database).near(shown, box);
    };
    const acgi::PaintReport painted = acgi::displayOf(database).paint(space, view, painter, beside);
    if (report)
        *report = painted;
    return image;
}

QImage acedViewImage(AcApDocument &document, const acgi::PaintOptions &options, acgi::PaintReport *report)
{
    return acedPicture(*document.database(), acedShownSpace(document), acedViewport(document), options,
                       report);
}

base::Result<void, QString> acedWritePng(const QImage &image, const QString &path)
{
    if (image.isNull())
        return base::Failure{Host::tr("%1: there is no memory for such a picture").arg(path)};
    auto file = base::AtomicFileWriter::open(path);
    if (!file)
        return base::Failure{file.error().text()};
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    if (!image.convertToFormat(QImage::Format_RGB32).save(&png, "PNG"))
        return base::Failure{Host::tr("%1: the picture cannot be written as PNG").arg(path)};
    file->write(png.data());
    if (const auto written = file->commit(); !written)
        return base::Failure{written.error().text()};
    return {};
}
