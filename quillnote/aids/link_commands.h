// Commands for hot links: drawing a pair, jumping from one to the other, hiding, deleting.
#pragma once

/// Asks for two areas, which may lie in two drawings, and links them. A first area whose second one was not
/// given waits for the next run.
void qn8_drawlink();
/// Shows the partner of the chosen link; opens its drawing when it has to.
void qn8_LinkDblClick();
void QN8_LinksHide();
/// Partners stay.
void QN8_LinksDel();
