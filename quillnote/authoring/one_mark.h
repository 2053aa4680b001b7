// What the commands on a single mark have in common: the user's leave to change it, and opening it for that.
// Each says why not where it comes to nothing.
#pragma once

#include "quillnote/entity/mark_record.h"

/// Whether the user may change the mark: the password of a protected one is asked for. False for what is no
/// mark.
bool mayUserChange(AcDbObjectId id);

/// The mark open for write; null when it cannot be.
AcDbObjectPointer<QuillnoteObj3> openToChange(AcDbObjectId id);
