#include "quillnote/review/review_palette.h"

#include "quillnote/review/palette_control.h"

static std::unique_ptr<ReviewPalette> &palette()
{
    static std::unique_ptr<ReviewPalette> one;
    return one;
}

void openReviewPalette(AcDbObjectId mark)
{
    if (palette() && !palette()->hasWindow())
        palette().reset();
    if (!palette())
        palette() = std::make_unique<ReviewPalette>();
    palette()->open(mark);
}

void closeReviewPalette()
{
    palette().reset();
    reviewerFilter() = QStringLiteral("ALL");
}

void refreshReviewPalette()
{
    if (palette())
        palette()->refresh();
}

void storeReviewInput(AcApDocument &document, bool forSaving)
{
    if (palette())
        palette()->storeInput(document, forSaving);
}

void forgetReviewed(const AcApDocument &document)
{
    if (palette())
        palette()->forget(document);
}
