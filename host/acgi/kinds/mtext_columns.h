// Columns of multi-line texts in files of 2000 to 2013: every column is an MTEXT of its own. The extended
// data of the first one tells how wide they are and names the others, which state the width of all of them
// together.
#pragma once

#include "host/acdb/dbentity.h"

#include <optional>

namespace acgi
{

/// The width of the column that the text fills, drawing units; nothing when it is no column of several texts.
/// Main thread only.
std::optional<double> columnWidthOf(const AcDbEntity &mtext);

} // namespace acgi
