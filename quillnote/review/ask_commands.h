// The commands that lead to the review palette, and what a double click on a mark does.
#pragma once

/// Command: pick a mark, or none, and open the palette at it.
void QN3_QuillnoteAsk();
/// Command of the double click: edits the chosen mark, opens the palette at it, or says that double clicks
/// are off, as the setting "doubleClick" wants.
void QN3_QuillnoteAsk2();
