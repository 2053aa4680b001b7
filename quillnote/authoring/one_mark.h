// What the commands on a single mark have in common: the user's leave to change it, and opening it for that.
// Both print the reason when they refuse.
#pragma once

#include "quillnote/entity/mark_record.h"

/// Whether the user may change the mark: the password of a protected one is asked for. False for an
/// entity that is no mark.
bool mayUserChange(AcDbObjectId id);

/// The mark open for write; null when it cannot be.
AcDbObjectPointer<QuillnoteObj3> openToChange(AcDbObjectId id);
