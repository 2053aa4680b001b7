#include "quillnote/authoring/editor_mark.h"

#include "quillnote/authoring/mark_numbers.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/ui/mark_editor.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"

std::optional<NewMark> askOpinion(NewMark request)
{
    // Now, and not after somebody has typed an opinion.
    AcDbDatabase *const database = acdbCurDwg();
    if (!database || !hasFreeMarkNumber(*database))
        return std::nullopt;
    const std::optional<MarkEditorValue> answer = runMarkEditor({});
    if (!answer || acdbCurDwg() != database)
        return std::nullopt;
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
        acutPrintf(QStringLiteral("\n无法在本图中创建评图标签。"));
    return id;
}

AcDbObjectId makeMarkFromEditor(const NewMark &request)
{
    const std::optional<NewMark> complete = askOpinion(request);
    return complete ? makeMark(*complete) : AcDbObjectId();
}
