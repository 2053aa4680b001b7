// Whether the marks show their text below the target.
#pragma once

/// Command: asks, and redraws the marks. Holds until the settings are read anew; nothing is stored.
void QN3_ShowText();
