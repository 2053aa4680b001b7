// Groups as text, for the corpus of DXF marks: a line with the code and a line with the value, as in a DXF
// file, but a point is one group with three numbers in its line. "^J" is a line break.
#pragma once

#include "host/acdb/resbuf.h"

namespace tests
{

/// Ends at the first line that is no code. Numbers that are none read as 0.
ResbufList groupsFromLines(const QByteArray &lines);

} // namespace tests
