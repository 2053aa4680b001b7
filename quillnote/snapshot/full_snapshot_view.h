// Switching of the review on two screens: the snapshot mode of the start-up settings.
#pragma once

/// Command: asks whether new marks also record a picture of the whole view and the palette shows that one.
/// Everything but "No" says yes.
void QN3_FullSnapshotView();

/// Whether each new mark also records a picture of the whole view.
bool recordsFullView();
