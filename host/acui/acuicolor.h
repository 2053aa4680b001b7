// The colour dialog: one of the 255 colour indexes.
#pragma once

/// Lets the user choose a colour index, 1 to 255; `index` is what stands there at first. With `allowsMeta` 0
/// (by block) and 256 (by layer) can be chosen too. False when the user leaves the dialog.
///
/// A script sets the number (control 10) and confirms: "@set 10 3", "@ok".
bool acedSetColorDialog(int &index, bool allowsMeta = false);
