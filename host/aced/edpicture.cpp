// Pictures of what a document shows.
#include "host/aced/edpicture.h"

#include "host/aced/edspace.h"
#include "host/aced/edsysvar.h"

AcGiPaintOptions acedScreenOptions(const AcApDocument &document)
{
    AcGiPaintOptions options;
    options.background = QColor::fromRgb(QRgb(acedIntVar(QStringLiteral("BACKGROUNDCOLOR"), 0)));
    options.lineWeights = document.database()->headerInteger("$LWDISPLAY", 0) != 0;
    return options;
}

QImage acedViewImage(AcApDocument &document, const AcGiPaintOptions &options, AcGiPaintReport *report)
{
    const AcApView &view = document.view();
    QImage image(view.pixelWidth, view.pixelHeight, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return image;
    image.fill(options.fillBackground ? options.background : QColor(Qt::transparent));
    QPainter painter(&image);
    const AcGiPaintReport painted =
        acgiDisplay(*document.database())
            .paint(acedShownSpace(document), acedViewport(document), painter, options);
    if (report)
        *report = painted;
    return image;
}
