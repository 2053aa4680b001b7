// The console verb "marks": every filed field of every mark, and the stored pictures.
#pragma once

#include "host/aced/edverbs.h"

AcEdVerb marksVerb();
