// Having marks drawn anew.
#pragma once

/// Command: all marks of the drawing. Prints a line when there are none.
void QN3_Redraw();

/// Those of the current drawing that were drawn before (drawnMarks()); marks that are gone
/// are forgotten. Nothing happens while the drawing cannot be locked.
void refreshDrawnMarks();
