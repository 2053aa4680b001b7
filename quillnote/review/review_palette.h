// The review palette: what its panel's controls do. One palette for the running program; it follows the
// current drawing and everything that happens to its marks.
//
// An answer is stored when it is saved, before another mark is shown, before the drawing is saved or left.
// What was not changed is not written. Where the palette stood goes into the file with the next save and is
// no change.
#pragma once

#include "host/acap/docman.h"

/// Opens the palette at a mark; null: where it was, in a drawing that it has not shown yet where the drawing
/// was left.
void openReviewPalette(AcDbObjectId mark = {});
/// Destroys the palette.
void closeReviewPalette();

/// The palette looks at the current drawing again. Harmless without a palette, as all the following are.
void refreshReviewPalette();
/// Stores what was typed for this drawing, and, for saving, where the palette stood in it.
void storeReviewInput(AcApDocument &document, bool forSaving);
/// The drawing is about to go.
void forgetReviewed(const AcApDocument &document);
