// Console verbs of this folder: "marks" lists every filed field, "report" writes the text report.
#pragma once

#include "host/aced/edverbs.h"

AcEdVerb marksVerb();
AcEdVerb reportVerb();
