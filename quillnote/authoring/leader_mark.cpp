#include "quillnote/authoring/leader_mark.h"

#include "quillnote/authoring/editor_mark.h"
#include "quillnote/authoring/pick_points.h"

void openEditorForLeader(const AcGePoint3d &a, const AcGePoint3d &b)
{
    NewMark request;
    request.corner1 = a;
    request.corner2 = b;
    request.isLeader = true;
    makeMarkFromEditor(request);
}

void QN3_QuillnoteLeader()
{
    AcGePoint3d a;
    AcGePoint3d b;
    if (pickMarkPoints(a, b, PickMode::leader))
        openEditorForLeader(a, b);
}
