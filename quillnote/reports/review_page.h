// The page to send: the reviews of drawings as one HTML file that needs nothing else, for people without the
// program.
#pragma once

#include "quillnote/reports/review.h"

#include "host/base/result.h"

/// Command: writes the page of the current drawing beside it and opens it.
void QN3_outputPage();

/// Marks as a list with filters, pictures of then and now that slide over each other, overviews with the
/// places of the marks; UTF-8, pictures inside. Texts of the drawings stand in it as texts: nothing of them
/// is markup, and the page lets no other script run than its own.
QByteArray reviewPage(const std::vector<Review> &reviews);

/// Writes the page; an existing file is replaced once the page is complete. The error names the file.
base::Result<void, QString> writeReviewPage(const std::vector<Review> &reviews, const QString &path);
