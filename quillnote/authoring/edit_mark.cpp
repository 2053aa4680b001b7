#include "quillnote/authoring/edit_mark.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/password.h"
#include "quillnote/ui/mark_editor.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"

static std::optional<QString> opinionToEdit(AcDbObjectId id)
{
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    if (!mark || !mayChangeProtected(mark->chPwMD5))
        return {};
    return mark->suggestionContent;
}

void editMark(AcDbObjectId id)
{
    const std::optional<QString> opinion = opinionToEdit(id);
    if (!opinion)
        return;
    MarkEditorValue start;
    start.text = *opinion;
    const std::optional<MarkEditorValue> answer = runMarkEditor(start);
    if (!answer)
        return;
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    if (!mark) {
        acutPrintf(QStringLiteral("\n该评图标签无法修改：%1").arg(acadErrorStatusText(mark.openStatus())));
        return;
    }
    mark->suggestionContent = answer->text;
    mark->editVersion = static_cast<std::int16_t>(mark->editVersion + 1);
}

void QN3_QNeditMark()
{
    AcDbObjectId picked;
    AcGePoint3d pickPoint;
    if (acedEntSel(QStringLiteral("\n请选择一个评图标签： "), picked, pickPoint) == RTNORM)
        editMark(picked);
    else
        acutPrintf(QStringLiteral("\n未选择。"));
}
