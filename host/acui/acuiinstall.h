// Putting the widget layer to work for the layers below it.
#pragma once

/// Message boxes are windows from now on. In a scripted run a dialog that is no CAcUiDialog, and that no
/// script could answer, is closed again and the run ends, so that nobody waits for it. Harmless when
/// repeated.
void acuiInstall();
/// Takes that back; to be called while the application object lives.
void acuiUninstall();
