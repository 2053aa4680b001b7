#include "quillnote/authoring/mark_display.h"

#include "quillnote/authoring/mark_set.h"
#include "quillnote/entity/mark_record.h"

#include "host/acap/docman.h"

static bool setDisplayMode(AcDbObjectId id, std::int16_t mode)
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
void setDisplayModes(AcDbDatabase &database, const std::function<std::int16_t(AcDbObjectId)> &modeOf)
{
    int skipped = 0;
    const CollectedMarks marks = collectAllMarks(database);
    for (const AcDbObjectId id : marks.ids)
        skipped += setDisplayMode(id, modeOf(id)) ? 0 : 1;
    saySkippedMarks(skipped, marks.ids.size());
}

void setAllMarksDisplayMode(AcDbDatabase &database, std::int16_t mode)
{
    setDisplayModes(database, [mode](AcDbObjectId) { return mode; });
}

void QN3_allMarksHide()
{
    setAllMarksDisplayMode(*acdbCurDwg(), -1);
}

void QN3_allMarksShow()
{
    setAllMarksDisplayMode(*acdbCurDwg(), 0);
}

void QN3_allMarksShrink()
{
    setAllMarksDisplayMode(*acdbCurDwg(), 1);
}
