// Commands that are a line or two.
#pragma once

/// Says that display styles are set elsewhere now.
void QN3_ShowType();
/// Waits for Enter or space; menu macros pause with it.
void qn3_wantReturn();
/// Shows the menu bar.
void ptbq0();
