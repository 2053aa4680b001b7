// What the commands over all marks of a drawing have in common: finding them, and telling which were left
// out.
#pragma once

#include "quillnote/authoring/collect_marks.h"

/// All marks of the drawing; prints a line when there are none.
CollectedMarks collectAllMarks(const AcDbDatabase &database);

/// Prints how many of those marks could not be changed (locked layers); nothing for none. When it was all of
/// them the command is refused.
void saySkippedMarks(int count, std::size_t of);
