// Leaders of marks that are there.
#pragma once

#include "host/acge/gepoint.h"

class QuillnoteObj3;

/// Adds a leader that ends at the point (world, put onto z 0). A flag mark becomes a leader mark without
/// outline, whose text box is its former target. False, and nothing changed, when the mark has 16 leaders.
/// Needs write access.
bool addLeader(QuillnoteObj3 &mark, const AcGePoint3d &end);

/// Command: choose a mark and point at where its further leaders end.
void QN3_addAleadLine();
