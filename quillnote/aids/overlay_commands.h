// Commands for comparing by colour: the drawing in one colour, other drawings laid under it.
#pragma once

/// Everything in the colour of the settings, and its own colours again.
void QN3_whiteAll();
void QN3_restoreColorAll();
/// Asks for the colour of overlays.
void QN8_setDiTuColor();
