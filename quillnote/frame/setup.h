// The settings dialog as a command.
#pragma once

/// Command: opens the dialog; what is confirmed is stored and takes effect at once.
void QN3_Setup();
