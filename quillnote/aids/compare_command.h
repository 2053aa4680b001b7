// The command that compares the current drawing with an older version of it.
#pragma once

/// Asks for the old drawing and a tolerance, lists what differs, and offers marks around it and a picture.
void QN8_overlayCompare();
