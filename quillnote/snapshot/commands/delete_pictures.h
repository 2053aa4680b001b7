// The command that makes a drawing smaller: it removes the pictures that its marks keep.
#pragma once

/// Command: asks for the full word YES. Fingerprints stay, so that comparing goes on working.
void QN3_delSnapBitmapAll();
