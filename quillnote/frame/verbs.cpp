#include "quillnote/frame/verbs.h"

#include "quillnote/aids/overlay_verb.h"
#include "quillnote/exchange/data_verbs.h"
#include "quillnote/reports/mark_area.h"
#include "quillnote/reports/marks_verb.h"
#include "quillnote/reports/report_verb.h"
#include "quillnote/snapshot/commands/compare_verb.h"

static std::vector<AcEdVerb> moduleVerbs()
{
    return {marksVerb(),      reportVerb(),     compareVerb(), refreshVerb(),
            dataExportVerb(), dataImportVerb(), overlayVerb()};
}

void registerVerbs()
{
    for (AcEdVerb &verb : moduleVerbs())
        acedRegisterVerb(std::move(verb));
    acedRegisterAreaOption(markAreaOption());
}

void removeVerbs()
{
    for (const AcEdVerb &verb : moduleVerbs())
        acedRemoveVerb(verb.name);
    acedRemoveAreaOption(markAreaOption().option.name);
}
