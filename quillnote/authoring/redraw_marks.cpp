#include "quillnote/authoring/redraw_marks.h"

#include "quillnote/authoring/mark_set.h"
#include "quillnote/entity/mark_state.h"

#include "host/acap/docman.h"
#include "host/acgi/display/display.h"

void QN3_Redraw()
{
    AcDbDatabase &database = *acdbCurDwg();
    acgi::Display &display = acgi::displayOf(database);
    for (const AcDbObjectId id : collectAllMarks(database).ids)
        display.regenerate(id);
}

void refreshDrawnMarks()
{
    AcApDocument *const document = curDoc();
    if (!document)
        return;
    const AcAxDocLock lock(document);
    if (lock.lockStatus() != Acad::eOk)
        return;
    auto &drawn = drawnMarks(*document->database());
    std::erase_if(drawn, [](AcDbObjectId id) { return !id.isValid(); });
    acgi::Display &display = acgi::displayOf(*document->database());
    for (const AcDbObjectId id : drawn)
        display.regenerate(id);
}
