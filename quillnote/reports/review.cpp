#include "quillnote/reports/review.h"

#include "quillnote/authoring/collect_marks.h"
#include "quillnote/entity/mark_record.h"
#include "quillnote/reports/review_pictures.h"

#include "host/acap/docman.h"
#include "host/acdb/dbsymtb.h"
#include "host/aced/edfrontend.h"

#include <QFileInfo>

#include <algorithm>

static std::vector<ReviewRow> rowsOf(const CollectedMarks &marks)
{
    std::vector<ReviewRow> rows;
    for (const AcDbObjectId id : marks.ids) {
        auto mark = readReportedMark(id);
        if (!mark)
            continue;
        const AcDbObjectPointer<QuillnoteObj3> opened(id, AcDb::kForRead);
        rows.push_back({*std::move(mark), acdbLayoutName(opened->blockId()), {}, {}});
    }
    std::ranges::stable_sort(rows, {}, [](const ReviewRow &row) { return row.mark.order; });
    return rows;
}

Review takeReview(AcApDocument &document, ReviewPictures pictures)
{
    Review review;
    review.file = document.fileName();
    review.name = QFileInfo(document.docTitle()).fileName();
    review.rows = rowsOf(collectMarks(*document.database()));
    review.hidden = std::erase_if(review.rows, [](const ReviewRow &row) { return row.mark.isHidden; });
    if (pictures == ReviewPictures::none)
        return review;
    for (ReviewRow &row : review.rows)
        takeTargetPictures(document, row);
    if (pictures == ReviewPictures::all)
        review.overviews = takeOverviews(document, review.rows);
    return review;
}

void tellHiddenMarks(const Review &review)
{
    if (review.hidden > 0)
        acutPrintf(QStringLiteral("\n%1 中有 %2 个评图标签是隐藏的，没有列入。")
                       .arg(review.name, QString::number(review.hidden)));
}
