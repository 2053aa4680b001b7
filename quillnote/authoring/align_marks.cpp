#include "quillnote/authoring/align_marks.h"

#include "quillnote/authoring/all_marks.h"
#include "quillnote/entity/mark_layout.h"
#include "quillnote/entity/mark_record.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edselect.h"
#include "host/aced/edview.h"

/// The rectangle over a diagonal, on whatever side of corner 1 corner 2 lies.
static MarkCorners rectangleOver(const AcGePoint3d &corner1, const AcGePoint3d &corner2,
                                 const AcGeVector3d &xDirection)
{
    const AcGeVector3d up = xDirection.rotateBy(kGePi / 2.0, AcGeVector3d::kZAxis);
    const AcGeVector3d diagonal = corner2 - corner1;
    return {corner1, corner2, corner1 + up * diagonal.dotProduct(up),
            corner1 + xDirection * diagonal.dotProduct(xDirection)};
}

static MarkCorners moved(const MarkCorners &box, const AcGeVector3d &offset)
{
    return {box.corner1 + offset, box.corner2 + offset, box.corner3 + offset, box.corner4 + offset};
}

MarkCorners alignedTextBox(const MarkCorners &box, const MarkCorners &reference, BoxAlignment alignment,
                           const AcGeVector3d &xDirection, const AcGeMatrix3d &worldToView)
{
    AcGePoint3d low = worldToView * box.corner1;
    AcGePoint3d high = worldToView * box.corner2;
    const AcGePoint3d wantedLow = worldToView * reference.corner1;
    const AcGePoint3d wantedHigh = worldToView * reference.corner2;
    const AcGeMatrix3d viewToWorld = worldToView.inverse();
    if (alignment == BoxAlignment::left)
        return moved(box, viewToWorld * AcGeVector3d(wantedLow.x - low.x, 0.0, 0.0));
    if (alignment == BoxAlignment::sides) {
        low.x = wantedLow.x;
        high.x = wantedHigh.x;
    } else {
        low.y = wantedLow.y;
        high.y = wantedHigh.y;
    }
    return rectangleOver(viewToWorld * low, viewToWorld * high, xDirection);
}

// The commands ------------------------------------------------------------------------------------

/// The text box of the reference; nothing, with a printed line, when none was picked.
static std::optional<MarkCorners> askReference()
{
    AcDbObjectId picked;
    AcGePoint3d pickPoint;
    if (acedEntSel(QStringLiteral("\n请选择一个评图标签作为对齐的参考物： "), picked, pickPoint) != RTNORM) {
        acutPrintf(QStringLiteral("\n未选中评图标签。"));
        return std::nullopt;
    }
    const AcDbObjectPointer<QuillnoteObj3> mark(picked, AcDb::kForRead);
    if (!mark) {
        acedRefuse(QStringLiteral("不是评图标签。"));
        return std::nullopt;
    }
    if (!hasTextBox(mark->leaderMode)) {
        acedRefuse(QStringLiteral("不是引线标记，不能当做参考物。"));
        return std::nullopt;
    }
    return textBoxCorners(*mark);
}

static bool isLeaderMark(AcDbObjectId id)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    return mark && hasTextBox(mark->leaderMode);
}

/// False when the mark cannot be opened for write.
static bool align(AcDbObjectId id, const MarkCorners &reference, BoxAlignment alignment,
                  const AcGeMatrix3d &worldToView)
{
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForWrite);
    if (!mark)
        return false;
    setTextBoxCorners(*mark, alignedTextBox(textBoxCorners(*mark), reference, alignment,
                                            markAxes(*mark).right, worldToView));
    settleMark(*mark, *mark->database());
    return true;
}

static void alignMarks(BoxAlignment alignment)
{
    const std::optional<MarkCorners> reference = askReference();
    AcEdSelectionSet selected;
    const ResbufList marks{resbuf(0, QStringLiteral("QUILLNOTE3"))};
    if (!reference || acedSSGet(QString(), nullptr, nullptr, marks, selected) != RTNORM)
        return;
    const AcGeMatrix3d worldToView = curDoc()->view().getWorldToEyeTransform();
    std::erase_if(selected, [](AcDbObjectId id) { return !isLeaderMark(id); });
    int refused = 0;
    for (const AcDbObjectId id : selected)
        refused += align(id, *reference, alignment, worldToView) ? 0 : 1;
    saySkippedMarks(refused, selected.size());
}

void qn8_align0()
{
    alignMarks(BoxAlignment::sides);
}

void qn8_align1()
{
    alignMarks(BoxAlignment::left);
}

void qn8_align2()
{
    alignMarks(BoxAlignment::heights);
}
