#include "quillnote/frame/verbs.h"

#include "quillnote/reports/mark_area.h"
#include "quillnote/reports/marks_verb.h"
#include "quillnote/reports/report_verb.h"

static std::vector<AcEdVerb> moduleVerbs()
{
    return {marksVerb(), reportVerb()};
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
