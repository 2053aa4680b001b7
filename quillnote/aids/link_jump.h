// From a hot link to its partner.
#pragma once

#include "host/acdb/dbid.h"

/// Shows the partner of a link of the current drawing: zooms to it, in its own layout and drawing, which is
/// activated or opened. What cannot be found is said, and nothing is opened in its place.
void jumpToPartner(AcDbObjectId link);
