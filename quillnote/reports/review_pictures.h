// Pictures for the review of a drawing: the targets of its marks then and now, and its spaces as a whole.
#pragma once

#include "quillnote/reports/review.h"

class AcDbDatabase;

/// Fills in the row's pictures. The stored picture is left as it is unless it is larger than a page needs; a
/// mark without one shows its target of now with what is around it.
void takeTargetPictures(AcApDocument &document, ReviewRow &row);

/// One for each space that a mark of the rows stands in, in the order of the rows.
std::vector<ReviewOverview> takeOverviews(AcApDocument &document, const std::vector<ReviewRow> &rows);
