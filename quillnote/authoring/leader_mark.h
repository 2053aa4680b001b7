// Marks whose text stands in a box at the end of a leader.
#pragma once

#include "host/acge/gepoint.h"

/// Command: pick the leader, type the opinion, make the mark.
void QN3_QuillnoteLeader();

/// Opens the mark editor for a new leader mark from `a` on the target to `b`, where the text goes (world
/// coordinates), and makes the mark when it is confirmed. Takes no snapshot.
void openEditorForLeader(const AcGePoint3d &a, const AcGePoint3d &b);
