// Views: world, display and pixel coordinates of the current document's view; zooming.
#pragma once

#include "host/acap/docman.h"
#include "host/acge/geextents.h"
#include "host/acge/gematrix.h"
#include "host/acgi/viewport.h"

#include <QPoint>

/// The view as drawing takes it.
AcGiViewport acedGiViewport(const AcGeView &view, bool paperSpace);

/// By viewport number (CVPORT): 2 is model space, 1 the sheet of a layout, others its viewports. Pixel (0, 0)
/// is the upper left of the view. False without a document or for a viewport number that the drawing does not
/// show.
bool acedCoordFromWorldToPixel(int viewport, const AcGePoint3d &world, QPoint &pixel);
bool acedCoordFromPixelToWorld(int viewport, const QPoint &pixel, AcGePoint3d &world);

/// A view to be made current, as AcDbViewTableRecord describes it.
struct AcEdViewRecord {
    AcGePoint3d centre; ///< In eye coordinates.
    double height = 1.0;
    double width = 1.0;
    double twist = 0.0;
    AcDbObjectId layout; ///< Block record of the paper-space layout to switch to; null: stay.
};
Acad::ErrorStatus acedSetCurrentView(const AcEdViewRecord &record);

/// Everything visible in the current space, as acedShownExtents() counts it in the document's view.
AcDbExtents acedCurrentExtents(const AcApDocument &document);
/// Filed extents of everything visible in model space or a layout.
AcDbExtents acedSpaceExtents(AcDbDatabase &database, AcDbObjectId space);
/// With what marks and other custom entities draw beside their extents, flags for example, in a view of
/// everything with the size, the twist and the density of `view`.
AcDbExtents acedShownExtents(AcDbDatabase &database, AcDbObjectId space, AcGiViewport view);
/// Fits the rectangle (world) into the view.
void acedZoomWindow(AcApDocument &document, const AcGePoint3d &corner1, const AcGePoint3d &corner2);
/// To be called before the user's view is changed, so that ZOOM Previous comes back to it. Every space has
/// its own earlier views, the last ten.
void acedRememberView(AcApDocument &document);
/// Back to the last view that was another one; false when there is none.
bool acedPreviousView(AcApDocument &document);
