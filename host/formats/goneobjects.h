// Which objects of a drawing are not to be saved: erased ones with all that they own, however deep.
#pragma once

#include "host/acdb/dbdatabase.h"

#include <vector>

/// By stub index; empty when nothing is erased.
std::vector<bool> goneObjects(const AcDbDatabase &database);
