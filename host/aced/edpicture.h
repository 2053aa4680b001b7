// Pictures of a document's view: what the screen shows, and what the console shows in its stead.
#pragma once

#include "host/acap/docman.h"
#include "host/acgi/display/display.h"

#include <QImage>

/// The view of what is on the screen (acedShownSpace) as a value.
AcGiViewport acedViewport(const AcApDocument &document);
/// Colours and switches that the screen paints with (background, LWDISPLAY).
acgi::PaintOptions acedScreenOptions(const AcApDocument &document);
/// A space as seen in `view`, a raster of the view's pixel size. An image of no size when there is no memory
/// for one.
QImage acedPicture(AcDbDatabase &database, AcDbObjectId space, const AcGiViewport &view,
                   const acgi::PaintOptions &options, acgi::PaintReport *report = nullptr);
/// As a PNG file; an existing file is replaced once the picture is complete. The error names the file.
base::Result<void, QString> acedWritePng(const QImage &image, const QString &path);
/// What is on the screen (acedShownSpace) in the document's view, a raster of the view's pixel size.
QImage acedViewImage(AcApDocument &document, const acgi::PaintOptions &options,
                     acgi::PaintReport *report = nullptr);
