// Pictures of a document's view: what the screen shows, and what the console shows in its stead.
#pragma once

#include "host/acap/docman.h"
#include "host/acgi/gidisplay.h"

#include <QImage>

/// The view of what is on the screen (acedShownSpace) as a value.
AcGiViewport acedViewport(const AcApDocument &document);
/// Colours and switches that the screen paints with (background, LWDISPLAY).
AcGiPaintOptions acedScreenOptions(const AcApDocument &document);
/// What is on the screen (acedShownSpace) in the document's view, a raster of the view's pixel size.
QImage acedViewImage(AcApDocument &document, const AcGiPaintOptions &options,
                     AcGiPaintReport *report = nullptr);
