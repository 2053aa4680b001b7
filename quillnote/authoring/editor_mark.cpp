#include "quillnote/authoring/editor_mark.h"

#include "quillnote/authoring/ink_sketch.h"
#include "quillnote/authoring/mark_numbers.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/ui/mark_editor.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edview.h"

/// The picked line of a leader, or the rectangle, upright in the view.
static std::vector<AcGePoint3d> pickedPlace(const NewMark &request)
{
    const AcApDocument *const document = curDoc();
    if (request.isLeader || !document)
        return {request.corner1, request.corner2};
    const AcGeMatrix3d toView = document->view().getWorldToEyeTransform();
    const AcGePoint3d a = toView * request.corner1;
    const AcGePoint3d b = toView * request.corner2;
    const AcGeMatrix3d back = toView.inverse();
    return {request.corner1, back * AcGePoint3d(b.x, a.y, a.z), request.corner2,
            back * AcGePoint3d(a.x, b.y, a.z)};
}

std::optional<NewMark> askOpinion(NewMark request, InkSketch &sketch, const QString &keywordText)
{
    // Now, and not after somebody has typed an opinion.
    AcDbDatabase *const database = acdbCurDwg();
    if (!database || !hasFreeMarkNumber(*database))
        return std::nullopt;
    MarkEditorStart start;
    start.keywordText = keywordText;
    start.sketch = [&] {
        sketch.askOver(request.corner1, request.corner2);
        return sketch.isMade() ? sketch.path() : QString();
    };
    acedFrontEnd().showPlace(pickedPlace(request));
    const std::optional<MarkEditorValue> answer = runMarkEditor(start);
    acedFrontEnd().showPlace({});
    if (!answer || acdbCurDwg() != database)
        return std::nullopt;
    request.sketchFile = answer->sketchFile;
    request.reviewerName = settings::text(u"name");
    request.opinionText = answer->text;
    request.weight = answer->weight;
    request.bigCategory = answer->bigCategory;
    request.smallCategory = answer->smallCategory;
    return request;
}

AcDbObjectId makeMark(const NewMark &request)
{
    const AcDbObjectId id = createMark(*acdbCurDwg(), request);
    if (id.isNull())
        acedRefuse(QStringLiteral("无法在本图中创建评图标签。"));
    return id;
}

AcDbObjectId makeMarkFromEditor(const NewMark &request, const QString &keywordText)
{
    InkSketch sketch;
    const std::optional<NewMark> complete = askOpinion(request, sketch, keywordText);
    return complete ? makeMark(*complete) : AcDbObjectId();
}
