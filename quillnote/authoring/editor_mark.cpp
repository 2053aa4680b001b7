#include "quillnote/authoring/editor_mark.h"

#include "quillnote/frame/settings/settings.h"
#include "quillnote/ui/mark_editor.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"

AcDbObjectId makeMarkFromEditor(NewMark request)
{
    const std::optional<MarkEditorValue> answer = runMarkEditor({});
    if (!answer)
        return {};
    request.reviewerName = settings::text(u"name");
    request.opinionText = answer->text;
    request.weight = answer->weight;
    request.bigCategory = answer->bigCategory;
    request.smallCategory = answer->smallCategory;
    const AcDbObjectId id = createMark(*acdbCurDwg(), request);
    if (id.isNull())
        acutPrintf(QStringLiteral("\n无法在本图中创建评图标签。"));
    return id;
}
