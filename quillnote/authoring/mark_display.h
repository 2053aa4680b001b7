// How much of the marks is seen: everything, only their flags, nothing. Kept in the marks, so it is saved.
// Hot links are hidden and shown with them.
#pragma once

#include "host/acdb/dbid.h"

#include <cstdint>
#include <functional>

class AcDbDatabase;

/// -1 hidden, 0 full, 1 shrunk to the flag. Marks that are so already are not written to; those that cannot
/// be written to are skipped, with a printed line.
void setAllMarksDisplayMode(AcDbDatabase &database, std::int16_t mode);

/// The same with a mode for each.
void setDisplayModes(AcDbDatabase &database, const std::function<std::int16_t(AcDbObjectId)> &modeOf);

/// Commands.
void QN3_allMarksHide();
void QN3_allMarksShow();
void QN3_allMarksShrink();
