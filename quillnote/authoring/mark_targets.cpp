#include "quillnote/authoring/mark_targets.h"

#include "quillnote/authoring/ink_sketch.h"
#include "quillnote/authoring/keyword_text.h"
#include "quillnote/authoring/mark_opinion.h"
#include "quillnote/authoring/new_mark.h"
#include "quillnote/authoring/numbering.h"
#include "quillnote/entity/mark_geometry.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/snapshot/pending_snapshot.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edsysvar.h"
#include "host/aced/edview.h"

// Picking -----------------------------------------------------------------------------------------

static constexpr settings::Number kPickVariables[] = {u"OSmode", u"Highlight", u"cmdecho"};

PickVariables::PickVariables()
{
    for (const settings::Number row : kPickVariables) {
        settings::setNumber(row, acedIntVar(row->name.toString()));
        acedSetIntVar(row->name.toString(), 0);
    }
}

PickVariables::~PickVariables()
{
    for (const settings::Number row : kPickVariables)
        acedSetIntVar(row->name.toString(), settings::number(row));
}

struct PickTexts {
    QString firstPrompt;
    QString secondPrompt;
    QString noSecond;
};

static PickTexts pickTexts(PickMode mode)
{
    if (mode == PickMode::leader)
        return {QStringLiteral("\n指定标记引线的起点: "), QStringLiteral("\n指定标记引线的终点: "),
                QStringLiteral("未获取第二点，放弃!")};
    return {QStringLiteral("\n指定标记范围的一角: "), QStringLiteral("\n指定标记范围的另一角: "),
            QStringLiteral("未获取对角点，放弃!")};
}

static bool askPoints(AcGePoint3d &a, AcGePoint3d &b, PickMode mode)
{
    const PickTexts texts = pickTexts(mode);
    const PickVariables quiet;
    if (acedGetPoint(nullptr, texts.firstPrompt, a) != RTNORM) {
        acutPrintf(QStringLiteral("未获取点，放弃!"));
        return false;
    }
    const int answer = mode == PickMode::leader ? acedGetPoint(&a, texts.secondPrompt, b)
                                                : acedGetCorner(a, texts.secondPrompt, b);
    if (answer != RTNORM)
        acutPrintf(texts.noSecond);
    return answer == RTNORM;
}

bool pickMarkPoints(AcGePoint3d &a, AcGePoint3d &b, PickMode mode)
{
    if (!askPoints(a, b, mode))
        return false;
    for (AcGePoint3d *point : {&a, &b}) {
        *point = acedTrans(*point, AcEdSpace::ucs, AcEdSpace::world);
        point->z = 0.0;
    }
    if (mode == PickMode::rectangle) {
        const SortedCorners sorted = sortCorners(a, b, curDoc()->view().getWorldToEyeTransform());
        a = sorted.lowerLeft;
        b = sorted.upperRight;
    }
    return true;
}

// Rectangles and leaders --------------------------------------------------------------------------

void QN3_Quillnote()
{
    NewMark request;
    if (!pickMarkPoints(request.corner1, request.corner2, PickMode::rectangle))
        return;
    // Now, because the editor will lie over the drawing.
    const auto [corner3, corner4] =
        completeCorners(request.corner1, request.corner2, AcGeVector3d::kZAxis, viewRight());
    capturePendingSnapshot({request.corner1, request.corner2, corner3, corner4});
    if (makeMarkFromEditor(request, keywordText(pendingSnapshot().fingerprint.ids)).isNull())
        pendingSnapshot().reset();
}

void QN3_QuillnoteLeader()
{
    NewMark request;
    request.isLeader = true;
    if (pickMarkPoints(request.corner1, request.corner2, PickMode::leader))
        makeMarkFromEditor(request);
}

// Freehand ----------------------------------------------------------------------------------------

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
    makeMark(request);
    acedFrontEnd().focusDrawing();
}
