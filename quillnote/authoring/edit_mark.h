// Changing the opinion of a mark that is there.
#pragma once

#include "host/acdb/dbid.h"

/// Command: pick a mark and edit it.
void QN3_QNeditMark();

/// Opens the editor on a mark's opinion and stores what was confirmed. Asks for the password of a protected
/// mark. What is no mark is left alone.
void editMark(AcDbObjectId id);
