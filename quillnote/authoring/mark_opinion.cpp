#include "quillnote/authoring/mark_opinion.h"

#include "quillnote/authoring/numbering.h"
#include "quillnote/authoring/one_mark.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/ui/mark_editor.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edview.h"

#include <QFile>

// New marks ---------------------------------------------------------------------------------------

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

// A mark that is there ----------------------------------------------------------------------------

namespace
{

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
    if (!mayUserChange(id))
        return;
    MarkEditorStart start;
    AcGePoint3d corner1;
    AcGePoint3d corner2;
    {
        const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
        start.text = mark->suggestionContent;
        corner1 = mark->targetCorner1;
        corner2 = mark->targetCorner2;
    }
    InkSketch sketch;
    OldSketch oldSketch(id);
    start.sketch = [&] {
        oldSketch.hide();
        sketch.askOver(corner1, corner2);
        return sketch.isMade() ? sketch.path() : QString();
    };
    const std::optional<MarkEditorValue> answer = runMarkEditor(start);
    if (!answer || answer->sketchFile.isEmpty())
        oldSketch.putBack();
    if (!answer)
        return;
    if (const auto mark = openToChange(id); mark)
        store(*mark, *answer);
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
