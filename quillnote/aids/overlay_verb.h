// The verb "overlay": two drawings on each other, and a list of what differs.
#pragma once

#include "host/aced/edverbs.h"

AcEdVerb overlayVerb();
