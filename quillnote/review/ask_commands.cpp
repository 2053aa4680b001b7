#include "quillnote/review/ask_commands.h"

#include "quillnote/authoring/mark_opinion.h"
#include "quillnote/entity/mark_class.h"
#include "quillnote/frame/settings/settings.h"
#include "quillnote/review/review_palette.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"

#include <algorithm>

static bool isMark(AcDbObjectId id)
{
    return id.isValid() && id.stub()->kind == acdbKind(kMarkDxfName);
}

void QN3_QuillnoteAsk()
{
    AcDbObjectId picked;
    AcGePoint3d pickPoint;
    const int answer = acedEntSel(QStringLiteral("\n请选择一个评图标签： "), picked, pickPoint);
    if (answer == RTCAN)
        return;
    if (answer == RTNORM && !isMark(picked))
        acutPrintf(QStringLiteral("\n所选对象不是评图标签。"));
    openReviewPalette(answer == RTNORM && isMark(picked) ? picked : AcDbObjectId());
}

/// The first mark among what was chosen before the command; null when there is none.
static AcDbObjectId chosenMark()
{
    const std::vector<AcDbObjectId> &chosen = curDoc()->pickSet();
    const auto mark = std::ranges::find_if(chosen, isMark);
    return mark == chosen.end() ? AcDbObjectId() : *mark;
}

void QN3_QuillnoteAsk2()
{
    enum Setting { edits = 0, isOff = 1, opensPalette = 2 };
    const AcDbObjectId mark = chosenMark();
    switch (settings::number(u"doubleClick")) {
    case isOff:
        acutPrintf(QStringLiteral("\n评图标签双击功能已经关闭，若需要使用请在[设置]中打开。"));
        break;
    case opensPalette:
        openReviewPalette(mark);
        break;
    default:
        mark.isNull() ? QN3_QNeditMark() : editMark(mark);
    }
}
