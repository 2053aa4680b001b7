#include "quillnote/authoring/freehand_mark.h"

#include "quillnote/authoring/create_mark.h"
#include "quillnote/authoring/ink_sketch.h"
#include "quillnote/authoring/mark_numbers.h"
#include "quillnote/frame/settings/settings.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"

/// False for a viewport that shows no place of the world.
static bool visibleCorners(const AcGeView &view, NewMark &request)
{
    // The view counts pixels of the screen; windows count in units that a screen may show as several pixels.
    const int viewport = acedIntVar(QStringLiteral("CVPORT"), 2);
    if (!acedCoordFromPixelToWorld(viewport, QPoint(0, int(view.pixelHeight)), request.corner1) ||
        !acedCoordFromPixelToWorld(viewport, QPoint(int(view.pixelWidth), 0), request.corner2))
        return false;
    request.corner1.z = 0.0;
    request.corner2.z = 0.0;
    return true;
}

void QN3_EasyDraw()
{
    AcApDocument *const document = curDoc();
    if (!document || !hasFreeMarkNumber(*document->database()))
        return;
    NewMark request;
    if (!visibleCorners(document->view(), request)) {
        acedRefuse(QStringLiteral("当前视口无法手绘。"));
        return;
    }
    InkSketch sketch;
    if (sketch.path().isEmpty()) {
        acedRefuse(QStringLiteral("临时文件夹不可写，无法手绘。"));
        return;
    }
    sketch.ask(acedDrawingWindow());
    if (curDoc() != document)
        return;
    if (!sketch.isMade()) {
        acutPrintf(QStringLiteral("\n没有手绘内容，未创建评图标签。"));
        acedFrontEnd().focusDrawing();
        return;
    }
    request.reviewerName = settings::text(u"name");
    request.sketchFile = sketch.path();
    request.isFreehand = true;
    if (createMark(*document->database(), request).isNull())
        acedRefuse(QStringLiteral("无法在本图中创建评图标签。"));
    acedFrontEnd().focusDrawing();
}
