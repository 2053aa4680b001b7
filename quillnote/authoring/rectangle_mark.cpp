#include "quillnote/authoring/rectangle_mark.h"

#include "quillnote/authoring/append_mark.h"
#include "quillnote/authoring/editor_mark.h"
#include "quillnote/authoring/keyword_text.h"
#include "quillnote/authoring/pick_points.h"
#include "quillnote/entity/mark_geometry.h"
#include "quillnote/snapshot/pending_snapshot.h"

void openEditorForRectangle(const AcGePoint3d &a, const AcGePoint3d &b)
{
    // Now, because the editor will lie over the drawing.
    const CompletedCorners others = completeCorners(a, b, AcGeVector3d::kZAxis, viewRight());
    capturePendingSnapshot(
        {.corner1 = a, .corner2 = b, .corner3 = others.corner3, .corner4 = others.corner4});
    NewMark request;
    request.corner1 = a;
    request.corner2 = b;
    if (makeMarkFromEditor(request, keywordText(pendingSnapshot().fingerprint.ids)).isNull())
        pendingSnapshot().reset();
}

void QN3_Quillnote()
{
    AcGePoint3d a;
    AcGePoint3d b;
    if (pickMarkPoints(a, b, PickMode::rectangle))
        openEditorForRectangle(a, b);
}
