// Commands for comparing by colour: the drawing in one colour, other drawings laid under it.
#pragma once

/// Everything in the colour of the settings, and its own colours again.
void QN3_whiteAll();
void QN3_restoreColorAll();
/// Asks for the colour of overlays.
void QN8_setDiTuColor();
/// Asks for a drawing and lays it under the current one, as a copy in one colour.
void QN8_whiteAttach();
/// Asks for a rectangle and clips every overlay to it.
void QN8_xclip();
/// Makes the copies anew that are gone, from the drawings that they came from.
void QN8_overlayRenew();

/// Says which overlays of the current drawing have lost their copy.
void sayGoneOverlays();
