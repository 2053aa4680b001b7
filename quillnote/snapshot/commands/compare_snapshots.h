// The command that compares every mark's target with its snapshot.
#pragma once

/// Command: lists the marks whose target was modified, in a message box and on the command line; those
/// without a handling status are set to "fully corrected". Stopped before its end it changes nothing.
void QN3_compareSnapshot();
