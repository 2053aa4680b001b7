// How much of the marks is seen: everything, only their flags, nothing. Kept in the marks, so it is saved.
#pragma once

#include <cstdint>

class AcDbDatabase;

/// -1 hidden, 0 full, 1 shrunk to the flag. Marks that are so already are not written to; those that cannot
/// be written to are skipped, with a printed line.
void setAllMarksDisplayMode(AcDbDatabase &database, std::int16_t mode);

/// Commands.
void QN3_allMarksHide();
void QN3_allMarksShow();
void QN3_allMarksShrink();
