// The reviews of drawings as tables for a spreadsheet: a row a mark, of all drawings one after another.
#pragma once

#include "quillnote/reports/review.h"

#include "host/base/result.h"

// Each of these replaces an existing file once the new one is complete. The error names the file.

/// UTF-8 with a mark of byte order, commas, lines ended by CR LF. A text that a spreadsheet would take for a
/// formula gets an apostrophe in front.
base::Result<void, QString> writeReviewCsv(const std::vector<Review> &reviews, const QString &path);

/// A workbook of one sheet, pictures of then and now in the cells. A cell holds 32,767 characters at most:
/// longer texts are cut, which the command line tells.
base::Result<void, QString> writeReviewWorkbook(const std::vector<Review> &reviews, const QString &path);
