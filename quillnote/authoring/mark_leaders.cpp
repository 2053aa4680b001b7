#include "quillnote/authoring/mark_leaders.h"

#include "quillnote/authoring/one_mark.h"
#include "quillnote/entity/mark_layout.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/aced/edselect.h"

#include <algorithm>

static void becomeLeaderMark(QuillnoteObj3 &mark)
{
    setTextBoxCorners(mark, targetCorners(mark));
    mark.leaderMode = LeaderMode::leader;
    mark.targetStyle = TargetStyle::none;
    mark.flagStyle = FrameStyle(startUpSettings().BKstyle);
}

bool addLeader(QuillnoteObj3 &mark, const AcGePoint3d &end)
{
    const auto unused = std::ranges::find(mark.leaderUsed, false);
    if (unused == mark.leaderUsed.end())
        return false;
    mark.assertWriteEnabled();
    if (!hasTextBox(mark.leaderMode))
        becomeLeaderMark(mark);
    mark.leaderEnds[std::size_t(unused - mark.leaderUsed.begin())] = {end.x, end.y, 0.0};
    *unused = true;
    return true;
}

static bool hasRoomForLeader(const QuillnoteObj3 &mark)
{
    return std::ranges::find(mark.leaderUsed, false) != mark.leaderUsed.end();
}

// The command -------------------------------------------------------------------------------------

/// Null when nothing or more than one was chosen.
static AcDbObjectId selectOneMark()
{
    acutPrintf(QStringLiteral("\n请选择一个评图标签>>"));
    AcEdSelectionSet selected;
    const ResbufList marks{resbuf(0, QStringLiteral("QUILLNOTE3"))};
    if (acedSSGet(QStringLiteral(":S"), nullptr, nullptr, marks, selected) != RTNORM || selected.size() != 1)
        return {};
    return selected.front();
}

/// Where the rubber band begins, in the UCS; none when the mark cannot be read.
static std::optional<AcGePoint3d> leaderBase(AcDbObjectId id)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    if (!mark)
        return std::nullopt;
    AcGePoint3d base = hasTextBox(mark->leaderMode)
                           ? mark->textBoxCorner1
                           : mark->targetCorner1 + (mark->targetCorner2 - mark->targetCorner1) * 0.5;
    base.z = 0.0;
    return acedTrans(base, AcEdSpace::world, AcEdSpace::ucs);
}

/// False when the command ends, for a reason that is printed. A mark that takes no leader is not opened for
/// write: nothing would be to be undone.
static bool addLeaderTo(AcDbObjectId id, const AcGePoint3d &end)
{
    if (!hasRoomForLeader(*AcDbObjectPointer<QuillnoteObj3>(id, AcDb::kForRead))) {
        acedRefuse(QStringLiteral("最多只能添加16根引线！"));
        return false;
    }
    const auto mark = openToChange(id);
    if (!mark)
        return false;
    addLeader(*mark, end);
    settleMark(*mark, *mark->database());
    return true;
}

void QN3_addAleadLine()
{
    const AcDbObjectId id = selectOneMark();
    const std::optional<AcGePoint3d> base = leaderBase(id);
    if (!base)
        return;
    AcGePoint3d end;
    while (acedGetPoint(&*base, QStringLiteral("\n指定标记引线的起点: "), end) == RTNORM) {
        if (!addLeaderTo(id, acedTrans(end, AcEdSpace::ucs, AcEdSpace::world)))
            return;
    }
}
