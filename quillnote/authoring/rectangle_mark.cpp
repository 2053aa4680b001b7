#include "quillnote/authoring/rectangle_mark.h"

#include "quillnote/authoring/create_mark.h"
#include "quillnote/authoring/pick_points.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/snapshot/pending_snapshot.h"
#include "quillnote/ui/mark_editor.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"

void openEditorForRectangle(const AcGePoint3d &a, const AcGePoint3d &b)
{
    // Now, because the editor will lie over the drawing.
    capturePendingSnapshot(a, b);
    const std::optional<MarkEditorValue> answer = runMarkEditor({});
    if (!answer) {
        pendingSnapshot().reset();
        return;
    }
    NewMark request;
    request.corner1 = a;
    request.corner2 = b;
    request.reviewerName = settings::text(u"name");
    request.opinionText = answer->text;
    request.weight = answer->weight;
    request.bigCategory = answer->bigCategory;
    request.smallCategory = answer->smallCategory;
    if (createMark(*acdbCurDwg(), request).isNull())
        acutPrintf(QStringLiteral("\n无法在本图中创建评图标签。"));
}

void QN3_Quillnote()
{
    AcGePoint3d a;
    AcGePoint3d b;
    if (pickMarkPoints(a, b, PickMode::rectangle))
        openEditorForRectangle(a, b);
}
