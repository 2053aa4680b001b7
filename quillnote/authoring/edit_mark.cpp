#include "quillnote/authoring/edit_mark.h"

#include "quillnote/authoring/ink_sketch.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/entity/password.h"
#include "quillnote/ui/mark_editor.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"

#include <QFile>

namespace
{

/// What the editor is given of a mark.
struct EditedMark {
    QString opinion;
    AcGePoint3d corner1;
    AcGePoint3d corner2;
};

std::optional<EditedMark> markToEdit(AcDbObjectId id)
{
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    if (!mark)
        acedRefuse(QStringLiteral("不是评图标签。"));
    if (!mark || !mayChangeProtected(mark->chPwMD5))
        return {};
    return EditedMark{mark->suggestionContent, mark->targetCorner1, mark->targetCorner2};
}

/// The sketch of a mark, put back unless it was replaced.
class OldSketch
{
public:
    explicit OldSketch(AcDbObjectId id) : m_id(id) {}
    /// Takes it away, so that it does not show under the new one.
    void hide()
    {
        AcDbObjectPointer<QuillnoteObj3> mark(m_id, AcDb::kForWrite);
        if (mark && !mark->sketchData.isEmpty())
            m_data = std::exchange(mark->sketchData, {});
    }
    void putBack()
    {
        AcDbObjectPointer<QuillnoteObj3> mark(m_id, AcDb::kForWrite);
        if (mark && m_data)
            mark->sketchData = *m_data;
    }

private:
    AcDbObjectId m_id;
    std::optional<QByteArray> m_data;
};

} // namespace

static void store(QuillnoteObj3 &mark, const MarkEditorValue &answer)
{
    mark.suggestionContent = answer.text;
    mark.editVersion = static_cast<std::int16_t>(mark.editVersion + 1);
    QFile sketch(answer.sketchFile);
    if (!answer.sketchFile.isEmpty() && sketch.open(QIODevice::ReadOnly))
        mark.sketchData = sketch.readAll();
}

void editMark(AcDbObjectId id)
{
    const std::optional<EditedMark> edited = markToEdit(id);
    if (!edited)
        return;
    InkSketch sketch;
    OldSketch oldSketch(id);
    MarkEditorStart start;
    start.text = edited->opinion;
    start.sketch = [&] {
        oldSketch.hide();
        sketch.askOver(edited->corner1, edited->corner2);
        return sketch.isMade() ? sketch.path() : QString();
    };
    const std::optional<MarkEditorValue> answer = runMarkEditor(start);
    if (!answer || answer->sketchFile.isEmpty())
        oldSketch.putBack();
    if (!answer)
        return;
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    if (mark)
        store(*mark, *answer);
    else
        acedRefuse(QStringLiteral("该评图标签无法修改：%1").arg(acadErrorStatusText(mark.openStatus())));
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
