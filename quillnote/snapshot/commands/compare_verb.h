// Console verbs: "compare" tells which targets have changed, since their snapshots or between two drawings;
// "refresh" takes the snapshots anew.
#pragma once

#include "host/aced/edverbs.h"

AcEdVerb compareVerb();
AcEdVerb refreshVerb();
