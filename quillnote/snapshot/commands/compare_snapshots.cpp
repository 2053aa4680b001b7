#include "quillnote/snapshot/commands/compare_snapshots.h"

#include "quillnote/authoring/all_marks.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/snapshot/commands/changed_targets.h"
#include "quillnote/snapshot/zoom_to_area.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edmessage.h"
#include "host/aced/edview.h"

#include <QStringList>

static QString resultText(std::size_t marks, const std::vector<ChangedTarget> &changed)
{
    if (changed.empty())
        return QStringLiteral("本图中总共有%1个评图标签，所有评图标签的靶区范围内都没有修改。").arg(marks);
    QStringList numbers;
    for (const ChangedTarget &each : changed)
        numbers.append(each.number);
    return QStringLiteral("本图中总共有%1个评图标签，以下序号的靶区范围内已修改：\n  ").arg(marks) +
           numbers.join(u',');
}

/// The view ends at the mark that was looked at last.
static void showTarget(AcDbObjectId id)
{
    const AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    if (!mark || mark->blockId() != acdbCurDwg()->currentSpaceId())
        return;
    acedRememberView(*curDoc());
    zoomToArea(targetZoomWindow(mark->targetCorner1, mark->targetCorner2));
}

void QN3_compareSnapshot()
{
    AcDbDatabase &database = *acdbCurDwg();
    const CollectedMarks marks = collectAllMarks(database);
    if (marks.ids.empty())
        return;
    TargetComparison found;
    {
        base::ProgressTeller teller(acDocManager()->progress(), QStringLiteral("比较快照"));
        found = compareTargets(database, marks.ids, [&](double share) { return teller.goesOn(share); });
    }
    if (found.stopped) {
        acutPrintf(QStringLiteral("\n已停止比较，图中没有任何改动。"));
        return;
    }
    const int skipped = markCorrected(found.changed);
    QN3_Redraw();
    showTarget(marks.ids.back());
    saySkippedMarks(skipped, found.changed.size());
    const QString text = resultText(marks.ids.size(), found.changed);
    acedAlert(text);
    acutPrintf(u'\n' + text);
}
