// The review of a drawing as reports for people outside it take it: its marks with pictures of then and now,
// and pictures of its spaces with the places of the marks. A value: the drawing may be closed afterwards.
#pragma once

#include "quillnote/reports/reported_mark.h"

#include <QByteArray>
#include <QRectF>
#include <QSize>

#include <vector>

class AcApDocument;

/// A picture as a PNG file.
struct ReviewPicture {
    QByteArray png; ///< Empty: there is none.
    QSize size;
    double pixelsPerInch = 96.0; ///< As the file says; what programs that print take it for.
};

struct ReviewRow {
    ReportedMark mark;
    QString layout;
    ReviewPicture then; ///< The target as it was when it was marked.
    ReviewPicture now;  ///< The same place, of the same size and on the same background; without marks.
};

struct ReviewPlace {
    std::size_t row = 0;
    QRectF box; ///< Pixels of the overview.
};

/// A space that marks stand in, without the marks.
struct ReviewOverview {
    QString layout;
    ReviewPicture picture;
    std::vector<ReviewPlace> places;
};

struct Review {
    QString file;                ///< Full path.
    QString name;                ///< "plan.dxf"
    std::vector<ReviewRow> rows; ///< By number.
    std::vector<ReviewOverview> overviews;
    std::size_t hidden = 0; ///< Marks that are hidden and therefore not among the rows.
};

enum class ReviewPictures { none, targets, all };

Review takeReview(AcApDocument &document, ReviewPictures pictures);

/// Says on the command line how many marks are hidden and therefore left out; nothing for none.
void tellHiddenMarks(const Review &review);
