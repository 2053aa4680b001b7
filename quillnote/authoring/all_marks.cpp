#include "quillnote/authoring/all_marks.h"

#include "quillnote/entity/mark_record.h"
#include "quillnote/frame/settings/start_up_settings.h"

#include "host/acap/docman.h"
#include "host/aced/edfrontend.h"
#include "host/aced/edinput.h"
#include "host/acgi/display/display.h"

CollectedMarks collectAllMarks(const AcDbDatabase &database)
{
    CollectedMarks marks = collectMarks(database);
    if (marks.ids.empty())
        acutPrintf(QStringLiteral("\n本图中无评图标签。"));
    return marks;
}

void saySkippedMarks(int count, std::size_t of)
{
    if (count == 0)
        return;
    const QString text = QStringLiteral("%1 个评图标签无法修改（所在图层可能已锁定），已跳过。").arg(count);
    if (std::size_t(count) == of)
        acedRefuse(text);
    else
        acutPrintf(u'\n' + text);
}

// How much of the marks is seen -------------------------------------------------------------------

static bool setDisplayMode(AcDbObjectId id, DisplayMode mode)
{
    AcDbObjectPointer<QuillnoteObj3> mark(id, AcDb::kForRead);
    if (!mark)
        return false;
    if (mark->displayMode == mode)
        return true;
    if (mark->upgradeOpen() != Acad::eOk)
        return false;
    mark->displayMode = mode;
    return true;
}

// The display learns of a change when the mark is closed.
void setDisplayModes(AcDbDatabase &database, const std::function<DisplayMode(AcDbObjectId)> &modeOf)
{
    int skipped = 0;
    const CollectedMarks marks = collectAllMarks(database);
    for (const AcDbObjectId id : marks.ids)
        skipped += setDisplayMode(id, modeOf(id)) ? 0 : 1;
    saySkippedMarks(skipped, marks.ids.size());
}

void setAllMarksDisplayMode(AcDbDatabase &database, DisplayMode mode)
{
    setDisplayModes(database, [mode](AcDbObjectId) { return mode; });
}

void QN3_allMarksHide()
{
    setAllMarksDisplayMode(*acdbCurDwg(), DisplayMode::hidden);
}

void QN3_allMarksShow()
{
    setAllMarksDisplayMode(*acdbCurDwg(), DisplayMode::full);
}

void QN3_allMarksShrink()
{
    setAllMarksDisplayMode(*acdbCurDwg(), DisplayMode::shrunk);
}

// Having marks drawn anew -------------------------------------------------------------------------

void QN3_Redraw()
{
    AcDbDatabase &database = *acdbCurDwg();
    acgi::Display &display = acgi::displayOf(database);
    for (const AcDbObjectId id : collectAllMarks(database).ids)
        display.regenerate(id);
}

void QN3_ShowText()
{
    acedInitGet(0, QStringLiteral("Yes No"));
    QString keyword;
    const int answer = acedGetKword(QStringLiteral("是否在标记框下方显示标记文字(Y/N)[Y]? "), keyword);
    if (answer != RTNORM && answer != RTNONE)
        return;
    startUpSettings().showMarkText = answer == RTNONE || keyword == QLatin1String("Yes");
    QN3_Redraw();
}
