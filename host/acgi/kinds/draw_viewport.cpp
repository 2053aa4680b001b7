// Drawing of viewports of a sheet: the frame, and what the viewport shows.
#include "host/acdb/dbviewport.h"
#include "host/acgi/kinds/draw_tools.h"
#include "host/acgi/kinds/kinds.h"

namespace acgi
{

static Loop clipOf(const AcDbEntity &entity, AcDbHandle boundary)
{
    Loop outline;
    const AcDbObjectId id = objectOf(entity, boundary);
    static const AcDbKind kViewport = acdbKind("VIEWPORT");
    if (id.isEntity() && id.stub()->kind != kViewport)
        readEntity(id, [&](const AcDbEntity &other) { outline = outlineOf(other); });
    if (outline.size() < 3)
        outline.clear();
    return outline;
}

void drawViewport(const AcDbEntity &entity, AcGiGeometry &sink)
{
    if (acdbIsSheetItself(entity))
        return;
    const AcDbViewportData data = acdbViewportData(entity);
    const Loop clip = data.boundary.isNull() ? Loop() : clipOf(entity, data.boundary);
    // The boundary entity is a frame by itself.
    if (clip.empty()) {
        const AcGeVector3d right(data.width / 2.0, 0.0, 0.0);
        const AcGeVector3d up(0.0, data.height / 2.0, 0.0);
        drawClosed({data.centre - right - up, data.centre + right - up, data.centre + right + up,
                    data.centre - right + up},
                   sink);
    }
    if (!data.isOn || !entity.database() || !(data.viewHeight > 0.0 && data.width > 0.0 && data.height > 0.0))
        return;
    sink.viewport({.space = entity.database()->modelSpaceId(),
                   .centre = data.centre,
                   .width = data.width,
                   .height = data.height,
                   .clip = clip,
                   .target = data.target,
                   .viewCentre = data.viewCentre,
                   .viewHeight = data.viewHeight,
                   .direction = data.direction,
                   .twist = data.twist,
                   .frozenLayers = data.frozenLayers});
}

} // namespace acgi
