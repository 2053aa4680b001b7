#include "quillnote/snapshot/zoom_to_area.h"

#include "quillnote/frame/settings/settings.h"

#include "host/aced/edview.h"

#include <cmath>

AcDbExtents widenedArea(const AcDbExtents &area)
{
    const double share = settings::number(u"viewScale2") / 100.0;
    const AcGeVector3d size = area.maxPoint() - area.minPoint();
    const AcGeVector3d margin(size.x * share, size.y * share, 0);
    return {area.minPoint() - margin, area.maxPoint() + margin};
}

AcDbExtents targetZoomWindow(const AcGePoint3d &corner1, const AcGePoint3d &corner2)
{
    const double share = (100 - settings::number(u"viewScale")) / 100.0;
    const AcGeVector3d size = corner2 - corner1;
    const AcGeVector3d margin(std::abs(size.x) * share, std::abs(size.y) * share, 0);
    AcDbExtents window;
    window.addPoint(corner1 - margin);
    window.addPoint(corner2 + margin);
    return window;
}

static bool isVisible(const AcDbExtents &seenArea, const AcGeView &view)
{
    const AcGePoint3d centre = view.getWorldToEyeTransform() * view.centre;
    const AcGeVector3d half(view.width() / 2, view.height / 2, 0);
    return AcDbExtents(centre - half, centre + half).containsInPlane(seenArea);
}

void zoomToArea(const AcDbExtents &area, AcDbObjectId layout, ZoomWhen when)
{
    const AcApDocument *const document = curDoc();
    if (!document || !area.isValid())
        return;
    const AcGeView &view = document->view();
    const bool isHere = layout.isNull() || layout == document->database()->currentSpaceId();
    AcDbExtents seen = area;
    seen.transformBy(view.getWorldToEyeTransform());
    if (when == ZoomWhen::ifOutside && isHere && isVisible(seen, view))
        return;
    const AcDbExtents widened = widenedArea(seen);
    const AcGeVector3d size = widened.maxPoint() - widened.minPoint();
    AcEdViewRecord record;
    record.centre = widened.minPoint() + size * 0.5;
    record.width = size.x;
    record.height = size.y;
    record.twist = view.twist;
    if (!isHere)
        record.layout = layout;
    acedSetCurrentView(record);
}
