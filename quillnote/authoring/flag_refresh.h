// The automatic flag refresh: while it runs, the parts of the marks that keep their size on the screen follow
// the view, by a filter that hears of paintings and of the mouse wheel.
#pragma once

/// Draws those marks of the current drawing anew that were drawn before (drawnMarks());
/// marks that are gone are forgotten. Nothing happens while the drawing cannot be locked.
void refreshDrawnMarks();

/// True when it runs afterwards; false when the host refuses the filter.
bool startFlagRefresh();
void stopFlagRefresh();

/// Commands.
void QN3_AutoRedraw();
void QN3_AutoOFF();
