// Commands for tick symbols: placing, erasing, resizing.
#pragma once

/// QN3_Yes: places symbols, one for each point, until Enter. Ctrl: a cross, Shift: a question mark, Alt, or
/// "E" typed before the point: erases what is there. "U" takes back the last one.
void QN3_YesOrErrTick();
/// Erases the symbols among what is selected.
void QN3_TickErase();
/// All symbols and the number flags of marks larger, with Shift or Ctrl smaller.
void QN3_TickBIG();
/// The other way round.
void QN3_TickSmall();
/// Asks for the size of new symbols.
void QN3_TickHeight();
