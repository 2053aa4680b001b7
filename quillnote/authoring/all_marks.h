// The marks of a drawing as a set: finding them for a command, showing more or less of them, having them
// drawn anew.
#pragma once

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_styles.h"

#include <functional>

/// All marks of the drawing; prints a line when there are none.
CollectedMarks collectAllMarks(const AcDbDatabase &database);

/// Prints how many of those marks could not be changed (locked layers); nothing for none. When it was all of
/// them the command is refused.
void saySkippedMarks(int count, std::size_t of);

/// Gives each mark a display mode, which is filed with it. Marks that have it already are not written to;
/// those that cannot be written to are skipped, with a printed line.
void setDisplayModes(AcDbDatabase &database, const std::function<DisplayMode(AcDbObjectId)> &modeOf);
/// The same mode for all.
void setAllMarksDisplayMode(AcDbDatabase &database, DisplayMode mode);

// Commands -----------------------------------------------------------------------------------------

void QN3_allMarksHide();
void QN3_allMarksShow();
void QN3_allMarksShrink();
/// Draws all marks anew.
void QN3_Redraw();
/// Asks whether marks show their text below the target, and redraws them. Holds until the settings are read
/// anew; nothing is stored.
void QN3_ShowText();
