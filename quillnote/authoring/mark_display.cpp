#include "quillnote/authoring/mark_display.h"

#include "quillnote/aids/links/link_set.h"
#include "quillnote/authoring/mark_set.h"
#include "quillnote/entity/display_mode.h"
#include "quillnote/entity/mark_record.h"

#include "host/acap/docman.h"

// The display learns of a change when the mark is closed.
void setDisplayModes(AcDbDatabase &database, const std::function<std::int16_t(AcDbObjectId)> &modeOf)
{
    int skipped = 0;
    const CollectedMarks marks = collectAllMarks(database);
    for (const AcDbObjectId id : marks.ids)
        skipped += setDisplayMode<QuillnoteObj3>(id, modeOf(id)) ? 0 : 1;
    saySkippedMarks(skipped, marks.ids.size());
}

void setAllMarksDisplayMode(AcDbDatabase &database, std::int16_t mode)
{
    setDisplayModes(database, [mode](AcDbObjectId) { return mode; });
}

static void setAllLinksDisplayMode(AcDbDatabase &database, std::int16_t mode)
{
    const std::vector<AcDbObjectId> links = linkIds(database);
    saySkippedLinks(setLinksDisplayMode(links, mode), links.size());
}

void QN3_allMarksHide()
{
    setAllMarksDisplayMode(*acdbCurDwg(), -1);
    setAllLinksDisplayMode(*acdbCurDwg(), -1);
}

void QN3_allMarksShow()
{
    setAllMarksDisplayMode(*acdbCurDwg(), 0);
    setAllLinksDisplayMode(*acdbCurDwg(), 1);
}

void QN3_allMarksShrink()
{
    setAllMarksDisplayMode(*acdbCurDwg(), 1);
}
