// The console verb "report": the text report on standard output, and reports as files of the caller's own
// naming.
#pragma once

#include "host/aced/edverbs.h"

AcEdVerb reportVerb();
