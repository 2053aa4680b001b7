#include "quillnote/authoring/editor_mark.h"

#include "quillnote/authoring/ink_sketch.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/ui/mark_editor.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edview.h"

/// The picked line of a leader, or the rectangle, upright in the view.
static std::vector<AcGePoint3d> pickedPlace(const NewMark &request)
{
    const AcApDocument *const document = curDoc();
    if (request.isLeader || !document)
        return {request.corner1, request.corner2};
    const AcGeMatrix3d toView = acedViewFrame(document->view());
    const AcGePoint3d a = toView * request.corner1;
    const AcGePoint3d b = toView * request.corner2;
    const AcGeMatrix3d back = toView.inverse();
    return {request.corner1, back * AcGePoint3d(b.x, a.y, a.z), request.corner2,
            back * AcGePoint3d(a.x, b.y, a.z)};
}

AcDbObjectId makeMarkFromEditor(NewMark request, const QString &keywordText)
{
    AcDbDatabase *const database = acdbCurDwg();
    InkSketch sketch;
    MarkEditorStart start;
    start.keywordText = keywordText;
    start.sketch = [&] {
        sketch.askOver(request.corner1, request.corner2);
        return sketch.isMade() ? sketch.path() : QString();
    };
    acedFrontEnd().showPlace(pickedPlace(request));
    const std::optional<MarkEditorValue> answer = runMarkEditor(start);
    acedFrontEnd().showPlace({});
    if (!answer)
        return {};
    request.sketchFile = answer->sketchFile;
    request.reviewerName = settings::text(u"name");
    request.opinionText = answer->text;
    request.weight = answer->weight;
    request.bigCategory = answer->bigCategory;
    request.smallCategory = answer->smallCategory;
    const AcDbObjectId id = createMark(*database, request);
    if (id.isNull())
        acutPrintf(QStringLiteral("\n无法在本图中创建评图标签。"));
    return id;
}
