#include "quillnote/review/view_by_name_command.h"

#include "quillnote/authoring/all_marks.h"
#include "quillnote/ui/view_by_name.h"

#include "host/acap/docman.h"

#include <unordered_set>

static constexpr qsizetype kMostNames = 15;

void showMarksOf(AcDbDatabase &database, const QString &reviewer)
{
    const std::vector<AcDbObjectId> his = collectMarks(database, {reviewer}).ids;
    if (his.empty())
        return;
    const std::unordered_set<AcDbObjectId> shown(his.begin(), his.end());
    setDisplayModes(database, [&](AcDbObjectId id) {
        return shown.contains(id) ? DisplayMode::full : DisplayMode::hidden;
    });
}

void QN3_ViewByName()
{
    AcDbDatabase &database = *acdbCurDwg();
    const CollectedMarks all = collectAllMarks(database);
    if (all.ids.empty())
        return;
    CViewByName dialog(all.reviewers.mid(0, kMostNames));
    if (dialog.doModal() != QDialog::Accepted)
        return;
    const QString chosen = dialog.chosenName();
    if (chosen.isEmpty())
        setAllMarksDisplayMode(database, DisplayMode::full);
    else
        showMarksOf(database, chosen);
}
