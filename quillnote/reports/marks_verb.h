// Console verbs of this folder: "marks" lists every filed field and writes the stored pictures, "report"
// writes the text report.
#pragma once

#include "host/aced/edverbs.h"

AcEdVerb marksVerb();
AcEdVerb reportVerb();
