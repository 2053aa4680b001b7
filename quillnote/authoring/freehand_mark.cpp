#include "quillnote/authoring/freehand_mark.h"

#include "quillnote/authoring/create_mark.h"
#include "quillnote/authoring/ink_sketch.h"
#include "quillnote/frame/settings/settings.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"

/// False for a viewport that shows no place of the world.
static bool visibleCorners(const QSize &window, NewMark &request)
{
    const int viewport = acedIntVar(QStringLiteral("CVPORT"), 2);
    if (!acedCoordFromPixelToWorld(viewport, QPoint(0, window.height()), request.corner1) ||
        !acedCoordFromPixelToWorld(viewport, QPoint(window.width(), 0), request.corner2))
        return false;
    request.corner1.z = 0.0;
    request.corner2.z = 0.0;
    return true;
}

void QN3_EasyDraw()
{
    const QRect window = acedDrawingWindow();
    NewMark request;
    if (!visibleCorners(window.size(), request)) {
        acutPrintf(QStringLiteral("\n当前视口无法手绘。"));
        return;
    }
    InkSketch sketch;
    sketch.ask(window);
    request.reviewerName = settings::text(u"name");
    request.sketchFile = sketch.path();
    request.isFreehand = true;
    if (createMark(*acdbCurDwg(), request).isNull())
        acutPrintf(QStringLiteral("\n无法在本图中创建评图标签。"));
    acedFrontEnd().focusDrawing();
}
